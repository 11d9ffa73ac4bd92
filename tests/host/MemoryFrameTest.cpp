/// A frame in memory as the library sees it: interfaces, references, accesses.
#include "host/MemoryFrame.h"

#include "conversion/KSXPixelConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace kestrix::host;
using namespace KSX::PixelConversion;

const std::array kAllIds = {IID_IUnknown,
                            IID_IKestrixVideoFrame,
                            IID_IKestrixVideoBuffer,
                            IID_IKestrixVideoFrameMetadata,
                            IID_IKestrixVideoFrame3DExtensions,
                            IID_IKestrixVideoInputFrame,
                            IID_IKestrixFrameProviderRegistry};

MemoryFrameOptions smallFrame()
{
    return {.width = 7, .height = 3, .format = PixelFormat_v210};
}

MemoryFrameOptions frameWithEverything(IKestrixVideoFrame* rightEye)
{
    MemoryFrameOptions options = smallFrame();
    options.colorspace = ColorspaceCodeRec2020;
    options.captured = true;
    options.packing3D = Packing3DLeftOnly;
    options.rightEye = rightEye;
    return options;
}

/// The pointers as addresses, which is what identity is about.
std::vector<void*> interfacesOf(IUnknown* object)
{
    std::vector<void*> found;
    for (const REFIID& id : kAllIds) {
        void* pointer = nullptr;
        EXPECT_EQ(object->QueryInterface(id, &pointer), S_OK);
        found.push_back(pointer);
        if (pointer)
            static_cast<IUnknown*>(pointer)->Release();
    }
    return found;
}

TEST(MemoryFrame, EveryInterfaceLeadsToTheSameOnes)
{
    const auto right = MemoryFrame::create(smallFrame());
    const auto frame = MemoryFrame::create(frameWithEverything(right.get()));
    const std::vector<void*> fromFrame =
        interfacesOf(static_cast<IKestrixVideoFrame*>(frame.get()));
    for (void* pointer : fromFrame)
        EXPECT_EQ(interfacesOf(static_cast<IUnknown*>(pointer)), fromFrame);
    EXPECT_EQ(frame->references(), 1U);
}

TEST(MemoryFrame, HasOnlyTheInterfacesAskedFor)
{
    const auto frame = MemoryFrame::create(smallFrame());
    for (const REFIID& id : {IID_IKestrixVideoFrameMetadata, IID_IKestrixVideoFrame3DExtensions,
                             IID_IKestrixVideoInputFrame, IID_IKestrixMutableVideoFrame,
                             IID_IKestrixFrameProviderRegistry}) {
        void* pointer = this;
        EXPECT_EQ(frame->QueryInterface(id, &pointer), E_NOINTERFACE);
        EXPECT_EQ(pointer, nullptr);
    }
    EXPECT_EQ(frame->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(frame->references(), 1U);
}

TEST(MemoryFrame, CountsReferencesFromAnyThreadAndInterface)
{
    const auto frame = MemoryFrame::create(smallFrame());
    EXPECT_EQ(frame->AddRef(), 2U);
    const auto buffer = query<IKestrixVideoBuffer>(frame.get(), IID_IKestrixVideoBuffer);
    EXPECT_EQ(frame->references(), 3U);
    EXPECT_EQ(buffer->Release() + 1, buffer->AddRef());

    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 10000; ++j) {
                frame->AddRef();
                buffer->StartAccess(BufferAccessRead);
                buffer->EndAccess(BufferAccessRead);
                buffer->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(frame->references(), 3U);
    EXPECT_EQ(frame->openAccesses(), 0);
    EXPECT_EQ(frame->Release(), 2U);
}

TEST(MemoryFrame, TellsWhatItWasMadeOf)
{
    std::array<std::uint8_t, 64> bytes{};
    const auto frame = MemoryFrame::create({.width = 720,
                                            .height = 2,
                                            .format = 0x3f3f3f3f,
                                            .rowBytes = -32,
                                            .flags = FrameFlagFlipVertical,
                                            .bytes = bytes.data()});
    EXPECT_EQ(frame->GetWidth(), 720);
    EXPECT_EQ(frame->GetHeight(), 2);
    EXPECT_EQ(frame->GetPixelFormat(), 0x3f3f3f3fU);
    EXPECT_EQ(frame->GetRowBytes(), -32);
    EXPECT_EQ(frame->GetFlags(), 1U);
    EXPECT_EQ(frame->bytes(), bytes.data());
}

TEST(MemoryFrame, HasAlignedZeroedMemoryOfWholeGroups)
{
    const auto frame = MemoryFrame::create(smallFrame());
    EXPECT_EQ(frame->GetRowBytes(), 32); // 7 pixels are two groups of 6
    EXPECT_EQ(frame->size(), 96U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(frame->bytes()) % 16, 0U);
    for (std::size_t i = 0; i < frame->size() + kReadableBehind; ++i)
        ASSERT_EQ(frame->bytes()[i], 0) << i;
}

TEST(MemoryFrame, RefusesWhatItCannotBe)
{
    EXPECT_THROW(MemoryFrame::create({.width = 2, .height = 2, .format = 0}),
                 std::invalid_argument);
    EXPECT_THROW(MemoryFrame::create({.width = -2, .height = 2, .format = PixelFormat_BGRA}),
                 std::invalid_argument);
    EXPECT_THROW(MemoryFrame::create({.width = 2, .height = 2, .format = 0, .rowBytes = -8}),
                 std::invalid_argument);
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

TEST(MemoryFrame, StatesItsColorspaceAndNothingElse)
{
    MemoryFrameOptions options = smallFrame();
    options.colorspace = ColorspaceCodeRec601;
    const auto frame = MemoryFrame::create(options);
    const auto metadata =
        query<IKestrixVideoFrameMetadata>(frame.get(), IID_IKestrixVideoFrameMetadata);
    std::int64_t value = 0;
    EXPECT_EQ(metadata->GetInt(MetadataColorspace, &value), S_OK);
    EXPECT_EQ(value, 0x72363031);
    EXPECT_LT(metadata->GetInt(MetadataColorspace + 1, &value), 0);
    EXPECT_LT(metadata->GetInt(MetadataColorspace, nullptr), 0);
}

TEST(MemoryFrame, HoldsItsRightEye)
{
    auto right = MemoryFrame::create(smallFrame());
    {
        const auto left = MemoryFrame::create(frameWithEverything(right.get()));
        EXPECT_EQ(right->references(), 2U);
        const auto extensions =
            query<IKestrixVideoFrame3DExtensions>(left.get(), IID_IKestrixVideoFrame3DExtensions);
        EXPECT_EQ(extensions->Get3DPackingFormat(), 0x6c656674U);
        IKestrixVideoFrame* found = nullptr;
        ASSERT_EQ(extensions->GetFrameForRightEye(&found), S_OK);
        EXPECT_EQ(found, right.get());
        EXPECT_EQ(found->Release(), 2U);
        EXPECT_EQ(extensions->GetFrameForRightEye(nullptr), E_INVALIDARG);
    }
    EXPECT_EQ(right->references(), 1U);

    const auto alone = MemoryFrame::create(frameWithEverything(nullptr));
    IKestrixVideoFrame* found = right.get();
    EXPECT_LT(alone->GetFrameForRightEye(&found), 0);
    EXPECT_EQ(found, nullptr);
}

} // namespace
