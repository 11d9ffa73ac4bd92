/// Frames to which interfaces can be added, and frames of the old revision.
#include "host/InterfaceProviders.h"
#include "host/MutableMemoryFrame.h"
#include "host/OldMemoryFrame.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace kestrix::host;

/// Answers every query with itself.
class Provider : public IUnknown {
public:
    HRESULT QueryInterface(REFIID, void** out) override
    {
        AddRef();
        *out = this;
        return S_OK;
    }
    std::uint32_t AddRef() override { return ++references; }
    std::uint32_t Release() override { return --references; }

    std::uint32_t references = 1;
};

// By the mutable frame and by the captured one's registry.
TEST(InterfaceProviders, AnswerUntilReplacedOrRemoved)
{
    const REFIID id = IID_IKestrixVideoFrame_v14_2_1;
    Provider first;
    Provider second;
    {
        const auto playout = MutableMemoryFrame::create({.width = 2, .height = 2, .format = 32});
        const auto captured =
            MemoryFrame::create({.width = 2, .height = 2, .format = 32, .captured = true});
        const auto mutableFrame =
            query<IKestrixMutableVideoFrame>(playout.get(), IID_IKestrixMutableVideoFrame);
        const auto registry =
            query<IKestrixFrameProviderRegistry>(captured.get(), IID_IKestrixFrameProviderRegistry);
        const auto check = [&](auto& registrar, auto& frame) {
            const auto isAnsweredBy = [&](IUnknown* provider) {
                return query<IUnknown>(frame.get(), id).get() == provider;
            };
            const std::uint32_t before = second.references;
            EXPECT_TRUE(isAnsweredBy(nullptr));
            EXPECT_EQ(registrar->RegisterInterfaceProvider(id, nullptr), S_OK);
            EXPECT_EQ(registrar->RegisterInterfaceProvider(id, &first), S_OK);
            EXPECT_TRUE(isAnsweredBy(&first));
            EXPECT_EQ(first.references, 2U);
            EXPECT_EQ(registrar->RegisterInterfaceProvider(id, &second), S_OK);
            EXPECT_TRUE(isAnsweredBy(&second));
            EXPECT_EQ(first.references, 1U);
            EXPECT_EQ(registrar->RegisterInterfaceProvider(id, nullptr), S_OK);
            EXPECT_TRUE(isAnsweredBy(nullptr));
            EXPECT_EQ(second.references, before);
            EXPECT_EQ(registrar->RegisterInterfaceProvider(id, &second), S_OK);
        };
        check(mutableFrame, playout);
        check(registry, captured);
        EXPECT_EQ(second.references, 3U);
    }
    EXPECT_EQ(second.references, 1U) << "frames give their providers back";
}

TEST(MutableMemoryFrame, IsOneObjectWhoseFlagsCanBeSet)
{
    const auto frame = MutableMemoryFrame::create({.width = 2, .height = 2, .format = 32});
    const auto same = query<IKestrixMutableVideoFrame>(frame.get(), IID_IKestrixMutableVideoFrame);
    EXPECT_EQ(frame->references(), 2U);
    EXPECT_EQ(query<IUnknown>(same.get(), IID_IUnknown),
              query<IUnknown>(frame.get(), IID_IUnknown));
    EXPECT_EQ(same->SetFlags(FrameFlagFlipVertical), S_OK);
    EXPECT_EQ(frame->GetFlags(), FrameFlagFlipVertical);
    EXPECT_EQ(same->SetTimecodeUserBits(0, 0), E_NOTIMPL);
}

TEST(OldMemoryFrame, HasItsBytesAndItsRightEye)
{
    EXPECT_THROW(OldMemoryFrame::create({.width = 2, .height = 2, .format = 0}),
                 std::invalid_argument);
    const auto right = OldMemoryFrame::create({.width = 2, .height = 2, .format = 32});
    const auto frame = OldMemoryFrame::create({.width = 6,
                                               .height = 2,
                                               .format = 0x76323130, // "v210"
                                               .packing3D = Packing3DLeftOnly,
                                               .rightEye = right.get()});
    EXPECT_EQ(frame->GetRowBytes(), 16);
    void* bytes = nullptr;
    EXPECT_EQ(frame->GetBytes(&bytes), S_OK);
    EXPECT_EQ(bytes, frame->bytes());
    EXPECT_EQ(frame->GetBytes(nullptr), E_POINTER);

    const auto extensions = query<IKestrixVideoFrame3DExtensions_v14_2_1>(
        frame.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1);
    ASSERT_NE(extensions, nullptr);
    EXPECT_EQ(extensions->Get3DPackingFormat(), Packing3DLeftOnly);
    IKestrixVideoFrame_v14_2_1* found = nullptr;
    EXPECT_EQ(extensions->GetFrameForRightEye(&found), S_OK);
    EXPECT_EQ(found, right.get());
    EXPECT_EQ(found->Release(), 2U);
    EXPECT_EQ(query<IUnknown>(right.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1), nullptr);
}

} // namespace
