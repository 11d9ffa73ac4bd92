/// Each allocation of each operation fails once. The operation then returns the stated status or
/// null. It throws nothing, keeps no reference and no access of the frames, and leaks no memory.
#include "api/v14_2_1/VideoFrame_From.h"
#include "preview/ScreenPreviewLut.h"
#include "tests/api/AdaptedFrames.h"
#include "tests/common/AllocationFaults.h"
#include "tests/common/CaseName.h"
#include "tests/common/PreviewFixture.h"

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace kestrix::test {
namespace {

using host::Owned;

/// Runs a call, and lets one of its allocations fail.
using ShortOfMemory = std::function<HRESULT(const std::function<HRESULT()>&)>;

struct Operation {
    const char* name;
    /// The status if allocation 0, 1, ... fails: one for each allocation that the call makes.
    std::vector<HRESULT> answers;
    /// Prepares, makes the call, and clears away.
    HRESULT (*run)(const ShortOfMemory& shortOfMemory);
};

/// A status for a call that returns null if allocation fails.
template<class OBJECT>
HRESULT made(OBJECT* object)
{
    return Owned<OBJECT>(object) ? S_OK : E_OUTOFMEMORY;
}

template<auto FACTORY>
HRESULT makeHelper(const ShortOfMemory& shortOfMemory)
{
    return shortOfMemory([] { return made(FACTORY()); });
}

/// Frames of two eyes. The operation under test must return all references and accesses.
template<auto MAKE>
struct Pair {
    ~Pair()
    {
        EXPECT_EQ(left->references(), 1U);
        EXPECT_EQ(right->references(), 2U);
        if constexpr (requires { left->openAccesses(); }) {
            EXPECT_TRUE(adapted || left->openAccesses() + right->openAccesses() == 0);
        }
    }

    decltype(MAKE(nullptr)) right = MAKE(nullptr);
    decltype(MAKE(nullptr)) left = MAKE(right.get());
    /// The left eye has an adapter, which never closes its access.
    bool adapted = false;
};
using CurrentPair = Pair<capturedFrame<TestFrame>>;
using OldPair = Pair<oldFrame<host::OldMemoryFrame>>;

enum Step { SetFrame, Paint };

/// Uses a helper that runs out of memory at `STEP`.
template<auto FACTORY, class PAIR, Step STEP>
HRESULT use(const ShortOfMemory& shortOfMemory)
{
    const PAIR pair;
    const Owned<std::remove_pointer_t<decltype(FACTORY())>> helper(FACTORY());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    const auto setFrame = [&] { return helper->SetFrame(pair.left.get()); };
    if (STEP == SetFrame)
        return shortOfMemory(setFrame);
    setFrame();
    return shortOfMemory([&] { return helper->PaintGL(); });
}

HRESULT initializeWithoutShaders(const ShortOfMemory& shortOfMemory)
{
    const Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    GLRecorder::get().fake.doesNotBuild = "fragment shader";
    return shortOfMemory([&] { return helper->InitializeGL() == E_FAIL ? S_OK : E_UNEXPECTED; });
}

template<class ADAPTER, class FRAME>
HRESULT attachTo(const ShortOfMemory& shortOfMemory)
{
    const auto frame = capturedFrame<FRAME>();
    Owned<Old> adapter;
    const HRESULT status = shortOfMemory([&] { return attach<ADAPTER>(frame.get(), adapter); });
    EXPECT_EQ(adapter != nullptr, status == S_OK);
    adapter.reset();
    EXPECT_EQ(frame->references(), 1U);
    return status;
}

/// Queries a frame for its extensions `id`, and these for the right eye.
template<class EXTENSIONS, class FRAME>
HRESULT findRightEye(const ShortOfMemory& shortOfMemory, FRAME* frame, REFIID id)
{
    return shortOfMemory([&] {
        EXTENSIONS* queried = nullptr;
        const HRESULT found = QueryInto(frame, id, &queried);
        const Owned<EXTENSIONS> extensions(queried);
        if (!extensions)
            return found;
        FRAME* eye = nullptr;
        const HRESULT status = extensions->GetFrameForRightEye(&eye);
        EXPECT_EQ(Owned<FRAME>(eye) != nullptr, status == S_OK);
        return status;
    });
}

HRESULT findOldRightEye(const ShortOfMemory& shortOfMemory)
{
    const OldPair pair;
    const Owned<IKestrixVideoFrame> frame(CKestrixVideoFrame_From_v14_2_1::create(pair.left.get()));
    return findRightEye<IKestrixVideoFrame3DExtensions>(shortOfMemory, frame.get(),
                                                        IID_IKestrixVideoFrame3DExtensions);
}

HRESULT findAdaptedRightEye(const ShortOfMemory& shortOfMemory)
{
    CurrentPair pair;
    pair.adapted = true;
    Owned<Old> old;
    attach<CKestrixVideoInputFrame_v14_2_1>(pair.left.get(), old);
    return findRightEye<IKestrixVideoFrame3DExtensions_v14_2_1>(
        shortOfMemory, old.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1);
}

constexpr auto kLegacy = CreateOpenGLScreenPreviewHelper_0002;
constexpr auto kGL3 = CreateOpenGL3ScreenPreviewHelper_0002;
constexpr auto kOldLegacy = CreateOpenGLScreenPreviewHelper_0001;
constexpr auto kOldGL3 = CreateOpenGL3ScreenPreviewHelper_0001;
constexpr HRESULT kNone = E_OUTOFMEMORY;

const Operation kOperations[] = {
    // The helper; the renderer of the OpenGL 3 one; the old helper around it.
    {"LegacyFactory", {kNone}, makeHelper<kLegacy>},
    {"OpenGL3Factory", {kNone, kNone}, makeHelper<kGL3>},
    {"OldLegacyFactory", {kNone, kNone}, makeHelper<kOldLegacy>},
    {"OldOpenGL3Factory", {kNone, kNone, kNone}, makeHelper<kOldGL3>},

    // The slot's memory, and the shared count of each eye's bytes.
    {"LegacySetFrame", {kNone, S_OK, S_OK}, use<kLegacy, CurrentPair, SetFrame>},
    {"LegacyPaint", {}, use<kLegacy, CurrentPair, Paint>},
    // The shared counts, in the paint.
    {"OpenGL3SetFrame", {}, use<kGL3, CurrentPair, SetFrame>},
    {"OpenGL3Paint", {S_OK, S_OK}, use<kGL3, CurrentPair, Paint>},
    // The allocation is for the driver's log, which is not worth a failure.
    {"OpenGL3Initialize", {S_OK}, initializeWithoutShaders},
    // The wrappers of the frame, its extensions and its right eye. Without the first there is no
    // frame, without the others there is one eye. Then as above.
    {"OldLegacySetFrame",
     {S_OK, S_OK, S_OK, kNone, S_OK, S_OK},
     use<kOldLegacy, OldPair, SetFrame>},
    {"OldOpenGL3SetFrame", {S_OK}, use<kOldGL3, OldPair, SetFrame>},
    {"OldOpenGL3Paint", {S_OK, S_OK, S_OK, S_OK}, use<kOldGL3, OldPair, Paint>},

    // The provider, the growth of the frame's list of registrations, and the adapter.
    {"PlainAdapter", {kNone, kNone, kNone}, attachTo<CKestrixVideoFrame_v14_2_1, MutableTestFrame>},
    {"MutableAdapter",
     {kNone, kNone, kNone, kNone},
     attachTo<CKestrixMutableVideoFrame_v14_2_1, MutableTestFrame>},
    {"InputAdapter",
     {kNone, kNone, kNone, kNone, kNone},
     attachTo<CKestrixVideoInputFrame_v14_2_1, TestFrame>},
    {"OldFrameWrapper",
     {kNone},
     [](const ShortOfMemory& shortOfMemory) {
         const OldPair pair;
         return shortOfMemory(
             [&] { return made(CKestrixVideoFrame_From_v14_2_1::create(pair.left.get())); });
     }},
    {"OldRightEye", {kNone, kNone}, findOldRightEye},
    {"AdaptedRightEye", {kNone, kNone, kNone, kNone, kNone, kNone}, findAdaptedRightEye},
};

class FailingAllocation : public testing::TestWithParam<Operation> {};

TEST_P(FailingAllocation, IsToldAndLeavesNothingBehind)
{
    // First make what a process keeps, such as colour tables.
    ScreenPreviewLut::Generate(LutFormat_RGBA32F);
    const auto& answers = GetParam().answers;
    for (std::size_t number = 0; number <= answers.size(); ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        int failed = 0;
        const ShortOfMemory shortOfMemory = [&](const std::function<HRESULT()>& call) {
            const auto faults = AllocationFaults::number(static_cast<int>(number));
            const HRESULT status = call();
            failed = faults.failed();
            return status;
        };
        GLRecorder::get().useFake();
        const long before = liveAllocations();
        const bool last = number == answers.size();
        EXPECT_EQ(GetParam().run(shortOfMemory), last ? S_OK : answers[number]);
        EXPECT_EQ(failed, last ? 0 : 1);
        GLRecorder::get().useFake();
        // The first round may make other things that the process keeps.
        EXPECT_TRUE(number == 0 || liveAllocations() == before);
    }
}

INSTANTIATE_TEST_SUITE_P(Api, FailingAllocation, testing::ValuesIn(kOperations), caseName);

// A null pointer and the probe are no places to store an answer.
TEST(OutOfMemory, IsToldByProvidersWithoutAPlaceForTheAnswer)
{
    const auto frame = TestFrame::create({.width = 16, .height = 8, .format = 32});
    const auto provider = CKestrixVideoFrame_v14_2_1::Provider::create(frame.get());
    for (const std::uintptr_t out : {std::uintptr_t{0}, ProbeSentinel}) {
        const auto faults = AllocationFaults::number(0);
        EXPECT_EQ(
            provider->QueryInterface(IID_IKestrixVideoFrame_v14_2_1, reinterpret_cast<void**>(out)),
            E_OUTOFMEMORY);
    }
}

// If allocation of a table fails, the table is missing until the next helper is made.
TEST(OutOfMemoryDeathTest, LeavesTablesOutOfAFreshProcess)
{
    constexpr int kOfHelper = 2;
    constexpr int kTables = 15;
    const auto missing = [] {
        int count = 0;
        for (unsigned id = 0; id < kTables; ++id)
            count += !ScreenPreviewLut::Get(static_cast<LutID>(id), LutFormat_RGBA32F);
        return count;
    };
    const auto body = [&](int number) {
        const bool tableFails = number >= kOfHelper && number < kOfHelper + kTables;
        Helper helper;
        int failed = 0;
        {
            const auto faults = AllocationFaults::number(number);
            helper.reset(CreateOpenGL3ScreenPreviewHelper_0002());
            failed = faults.failed();
        }
        EXPECT_EQ(failed, number < kOfHelper + kTables);
        EXPECT_EQ(helper != nullptr, number >= kOfHelper);
        EXPECT_EQ(missing(), number < kOfHelper ? kTables : tableFails);
        GLRecorder::get().useFake();
        if (helper) {
            const CurrentPair pair;
            EXPECT_EQ(helper->InitializeGL(), S_OK);
            EXPECT_EQ(helper->SetFrame(pair.left.get()), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
        }
        EXPECT_NE(Helper(CreateOpenGL3ScreenPreviewHelper_0002()), nullptr);
        EXPECT_EQ(missing(), 0);
        exitWithOutcome();
    };
    for (int number = 0; number <= kOfHelper + kTables; ++number)
        EXPECT_EXIT(body(number), testing::ExitedWithCode(0), "") << "allocation " << number;
}

} // namespace
} // namespace kestrix::test
