/// The helpers as reference-counted objects, and the factories that make them.
#include "tests/support/AllocationFaults.h"
#include "tests/support/CaseName.h"
#include "tests/support/PreviewFixture.h"

#include <thread>

namespace kestrix::test {
namespace {

struct Factory {
    const char* name;
    CreateScreenPreviewHelperFunction create;
};

class HelperObject : public FakeGLTest, public testing::WithParamInterface<Factory> {
protected:
    /// Can be released, as its destructor may want GL.
    Helper make()
    {
        Helper helper(GetParam().create());
        EXPECT_TRUE(gl.calls().empty() && gl.lookups().empty()) << "a factory needs no GL";
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        gl.clear();
        return helper;
    }
};

TEST_P(HelperObject, AnswersForItselfAndForIUnknownWithOnePointer)
{
    const Helper helper = make();
    void* out = nullptr;
    for (const REFIID id : {IID_IUnknown, IID_IKestrixGLScreenPreviewHelper}) {
        EXPECT_EQ(helper->QueryInterface(id, &out), S_OK);
        EXPECT_EQ(out, helper.get());
        // One reference of the test's, one of the query's.
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
    EXPECT_EQ(helper->AddRef(), 2u);
    EXPECT_EQ(helper->Release(), 1u);
}

TEST_P(HelperObject, CountsReferencesOfManyThreadsByItself)
{
    Helper helper = make();
    const Helper other = make();
    ASSERT_NE(helper.get(), other.get());
    const auto work = [&] {
        for (int i = 0; i < 20000; ++i) {
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

    helper.reset();
    EXPECT_EQ(other->SetFrame(nullptr), S_OK);
    EXPECT_EQ(other->PaintGL(), S_OK);
    EXPECT_EQ(other->AddRef(), 2u);
    EXPECT_EQ(other->Release(), 1u);
}

// Every allocation in turn fails, until all succeed. Null or a sound helper, nothing else, and no
// memory lost on the way.
TEST_P(HelperObject, IsNullWhereMemoryIsShort)
{
    // What a process keeps for good, such as colour tables, is made first.
    make().reset();

    for (int number = 0;; ++number) {
        const long before = liveAllocations();
        int failed = 0;
        Helper helper;
        {
            const auto faults = AllocationFaults::number(number);
            helper.reset(GetParam().create());
            failed = faults.failed();
        }
        if (!failed) {
            EXPECT_GE(number, 1);
            ASSERT_NE(helper, nullptr);
            EXPECT_EQ(helper->InitializeGL(), S_OK);
            break;
        }
        EXPECT_EQ(helper, nullptr) << "allocation " << number;
        EXPECT_EQ(liveAllocations(), before) << "allocation " << number;
    }
}

INSTANTIATE_TEST_SUITE_P(Api, HelperObject,
                         testing::Values(Factory{"Legacy", CreateOpenGLScreenPreviewHelper_0002},
                                         Factory{"OpenGL3", CreateOpenGL3ScreenPreviewHelper_0002}),
                         caseName);

} // namespace
} // namespace kestrix::test
