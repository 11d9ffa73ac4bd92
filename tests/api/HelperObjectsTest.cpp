/// The helpers as reference-counted objects, and the factories that make them.
#include "tests/common/CaseName.h"
#include "tests/common/PreviewFixture.h"

#include <barrier>
#include <thread>

namespace kestrix::test {
namespace {

// The walk over the tables in C knows the other ids.
TEST(OldFrameIds, AreTheOnesThatOldHostsAskFor)
{
    constexpr REFIID kMutable = {{0xc4, 0x09, 0x19, 0xed, 0x79, 0xb2, 0x42, 0x4c, 0x9f, 0x27, 0xc8,
                                  0x71, 0xc6, 0x4b, 0xf0, 0xbf}};
    constexpr REFIID kInput = {{0xab, 0xde, 0x26, 0x33, 0x08, 0x24, 0x45, 0xbf, 0xaf, 0x70, 0x03,
                                0xf6, 0x11, 0xeb, 0xd8, 0xae}};
    EXPECT_EQ(IID_IKestrixMutableVideoFrame_v14_2_1, kMutable);
    EXPECT_EQ(IID_IKestrixVideoInputFrame_v14_2_1, kInput);
}

class HelperObject : public FakeGLTest, public testing::WithParamInterface<HelperKind> {};

TEST_P(HelperObject, AnswersForItsInterfacesAndCountsReferences)
{
    const Helper helper(GetParam().create());
    EXPECT_TRUE(gl.calls().empty() && gl.lookups().empty()) << "a factory needs no GL";
    EXPECT_EQ(helper->InitializeGL(), S_OK); // what its destructor does needs it
    void* out = nullptr;
    for (const REFIID id : {IID_IUnknown, IID_IKestrixGLScreenPreviewHelper}) {
        EXPECT_EQ(helper->QueryInterface(id, &out), S_OK);
        EXPECT_EQ(out, helper.get());
        EXPECT_EQ(helper->Release(), 1u);
    }
    // All bytes of an id count, the last as well as the first.
    REFIID nearly = IID_IKestrixGLScreenPreviewHelper;
    nearly.bytes[15] ^= 1;
    REFIID nearlyUnknown = IID_IUnknown;
    nearlyUnknown.bytes[0] ^= 1;
    for (const REFIID id : {IID_IKestrixVideoFrame, nearly, nearlyUnknown}) {
        out = this;
        EXPECT_EQ(helper->QueryInterface(id, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(helper->QueryInterface(IID_IUnknown, nullptr), E_POINTER);

    std::barrier start(2);
    const auto work = [&] {
        start.arrive_and_wait();
        for (int i = 0; i < 500000; ++i) {
            helper->AddRef();
            helper->Release();
        }
    };
    std::thread a(work);
    std::thread b(work);
    a.join();
    b.join();
    EXPECT_EQ(helper->AddRef(), 2u);
    EXPECT_EQ(helper->Release(), 1u);
}

TEST_P(HelperObject, IsInsideTheOldOneAndOwnedByIt)
{
    const host::Owned<IKestrixGLScreenPreviewHelper_v14_2_1> old(GetParam().createOld());
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(host::query<IUnknown>(old.get(), IID_IKestrixGLScreenPreviewHelper_v14_2_1).get(),
              old.get());
    const auto current =
        host::query<IKestrixGLScreenPreviewHelper>(old.get(), IID_IKestrixGLScreenPreviewHelper);
    ASSERT_NE(current, nullptr);
    EXPECT_EQ(host::query<IUnknown>(old.get(), IID_IUnknown).get(), current.get());
    EXPECT_EQ(current->AddRef(), 3u) << "the old one's, the query's and this";
    EXPECT_EQ(current->Release(), 2u);
    for (const HRESULT status : {old->InitializeGL(), old->Set3DPreviewFormat(Preview3DSideBySide),
                                 old->SetFrame(nullptr), old->PaintGL()})
        EXPECT_EQ(status, S_OK);
}

INSTANTIATE_TEST_SUITE_P(Api, HelperObject, testing::ValuesIn(kHelperKinds), caseName);

} // namespace
} // namespace kestrix::test
