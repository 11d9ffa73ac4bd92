/// A frame in memory as the library sees it: interfaces, references, accesses.
#include "host/MemoryFrame.h"

#include "conversion/KSXPixelConversion.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <stdexcept>
#include <vector>

namespace {

using namespace kestrix::host;
using namespace KSX::PixelConversion;

MemoryFrameOptions smallFrame()
{
    return {.width = 7, .height = 3, .format = PixelFormat_v210};
}

/// The pointers as addresses, which is what identity is about.
std::vector<void*> interfacesOf(IUnknown* object)
{
    std::vector<void*> found;
    for (const REFIID& id : {IID_IUnknown, IID_IKestrixVideoFrame, IID_IKestrixVideoBuffer,
                             IID_IKestrixVideoFrameMetadata, IID_IKestrixVideoFrame3DExtensions,
                             IID_IKestrixVideoInputFrame, IID_IKestrixFrameProviderRegistry})
        found.push_back(query<IUnknown>(object, id).get());
    return found;
}

TEST(MemoryFrame, EveryInterfaceLeadsToTheSameOnes)
{
    const auto right = MemoryFrame::create(smallFrame());
    MemoryFrameOptions options = smallFrame();
    options.colorspace = ColorspaceCodeRec2020;
    options.captured = true;
    options.packing3D = Packing3DLeftOnly;
    options.rightEye = right.get();
    const auto frame = MemoryFrame::create(options);
    const auto fromFrame = interfacesOf(static_cast<IKestrixVideoFrame*>(frame.get()));
    for (void* pointer : fromFrame) {
        ASSERT_NE(pointer, nullptr);
        EXPECT_EQ(interfacesOf(static_cast<IUnknown*>(pointer)), fromFrame);
    }
    EXPECT_EQ(frame->references(), 1U);
}

TEST(MemoryFrame, HasAlignedZeroedMemoryOfWholeGroups)
{
    const auto frame = MemoryFrame::create(smallFrame());
    EXPECT_EQ(frame->GetRowBytes(), 32); // 7 pixels are two groups of 6
    EXPECT_EQ(frame->size(), 96U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(frame->bytes()) % 16, 0U);
    static_assert(kReadableBehind == 64, "what conversions may read, rounded up");
    EXPECT_GE(malloc_usable_size(frame->bytes()), frame->size() + 64);
    for (std::size_t i = 0; i < frame->size() + kReadableBehind; ++i)
        ASSERT_EQ(frame->bytes()[i], 0) << i;
}

TEST(MemoryFrame, RefusesWhatItCannotBe)
{
    for (const MemoryFrameOptions& options :
         {MemoryFrameOptions{.width = 2, .height = 2, .format = 0},
          {.width = -2, .height = 2, .format = PixelFormat_BGRA},
          {.width = 2, .height = 2, .format = 0, .rowBytes = -8}})
        EXPECT_THROW(MemoryFrame::create(options), std::invalid_argument);
    EXPECT_THROW(
        MemoryFrame::create({.width = 2, .height = INT64_MAX / 4, .format = 0, .rowBytes = 8}),
        std::bad_alloc);
}

TEST(MemoryFrame, GivesBytesOnlyWhileAnAccessIsOpen)
{
    const auto frame = MemoryFrame::create(smallFrame());
    void* bytes = this;
    EXPECT_EQ(frame->GetBytes(&bytes), E_FAIL);
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(frame->GetBytes(nullptr), E_POINTER);

    EXPECT_EQ(frame->StartAccess(BufferAccessRead), S_OK);
    EXPECT_EQ(frame->StartAccess(BufferAccessReadWrite), S_OK);
    EXPECT_EQ(frame->openAccesses(), 2);
    EXPECT_EQ(frame->EndAccess(BufferAccessRead), S_OK);
    EXPECT_EQ(frame->GetBytes(&bytes), S_OK);
    EXPECT_EQ(bytes, frame->bytes());

    EXPECT_EQ(frame->EndAccess(BufferAccessRead), E_FAIL) << "the open one is for writing too";
    EXPECT_EQ(frame->EndAccess(BufferAccessReadWrite), S_OK);
    EXPECT_EQ(frame->GetBytes(&bytes), E_FAIL);
    EXPECT_EQ(frame->StartAccess(2), E_INVALIDARG);
    EXPECT_EQ(frame->openAccesses(), 0);
}

/// Asks its frame for an interface when it ends.
class AskingProvider : public IUnknown {
public:
    explicit AskingProvider(MemoryFrame* frame) : m_frame(frame) {}
    HRESULT QueryInterface(REFIID, void** out) override
    {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    std::uint32_t AddRef() override { return ++m_references; }
    std::uint32_t Release() override
    {
        if (--m_references == 0)
            asked = query<IUnknown>(static_cast<IKestrixVideoFrame*>(m_frame), kId) == nullptr;
        return m_references;
    }

    static constexpr REFIID kId = {{1, 2, 3}};
    bool asked = false;

private:
    MemoryFrame* m_frame;
    std::uint32_t m_references = 0;
};

// If the frame held its lock, the query would wait for ever.
TEST(MemoryFrame, ReleasesAReplacedProviderOutsideItsLock)
{
    MemoryFrameOptions options = smallFrame();
    options.captured = true;
    const auto frame = MemoryFrame::create(options);
    AskingProvider first(frame.get());
    AskingProvider second(frame.get());
    EXPECT_EQ(frame->RegisterInterfaceProvider(AskingProvider::kId, &first), S_OK);
    EXPECT_EQ(frame->RegisterInterfaceProvider(AskingProvider::kId, &second), S_OK);
    EXPECT_TRUE(first.asked);
    EXPECT_EQ(frame->RegisterInterfaceProvider(AskingProvider::kId, nullptr), S_OK);
    EXPECT_TRUE(second.asked);
}

} // namespace
