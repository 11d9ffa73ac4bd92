/// Every allocation of every operation fails once: the stated status or null comes out, no
/// exception does, the frames get back what was taken of them, and nothing is left behind.
#include "api/v14_2_1/ProvidedFrames.h"
#include "api/v14_2_1/VideoFrame3DExtensions.h"
#include "api/v14_2_1/VideoFrame_From.h"
#include "host/OldMemoryFrame.h"
#include "preview/ScreenPreviewLut.h"
#include "tests/common/AllocationFaults.h"
#include "tests/common/CaseName.h"
#include "tests/common/PreviewFixture.h"

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;
using host::OldMemoryFrame;
using host::OldMemoryFrameOptions;
using host::Owned;
using host::query;

/// Does what it is given while the allocation whose turn it is fails.
using ShortOfMemory = std::function<HRESULT(const std::function<HRESULT()>&)>;

struct Operation {
    const char* name;
    /// What it answers when allocation 0, 1, ... fails, an answer for each that it makes.
    std::vector<HRESULT> answers;
    /// Prepares, makes the call, and clears away.
    HRESULT (*run)(const ShortOfMemory& shortOfMemory);
};

/// As a status what is told by a pointer.
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

/// A pair of frames that has to come out of a call as it went in.
struct Pair {
    explicit Pair(std::uint32_t format = code("BGRA"))
        : right(TestFrame::create({.width = 16, .height = 8, .format = format, .captured = true})),
          left(TestFrame::create(stereo({.width = 16,
                                         .height = 8,
                                         .format = format,
                                         .colorspace = code("r709"),
                                         .captured = true},
                                        right)))
    {
    }

    ~Pair()
    {
        EXPECT_EQ(left->references(), 1U);
        EXPECT_EQ(right->references(), 2U);
        EXPECT_TRUE(adapted || left->openAccesses() + right->openAccesses() == 0);
    }

    Frame right;
    Frame left;
    /// Has an adapter, which never closes its access.
    bool adapted = false;
};

struct OldPair {
    ~OldPair()
    {
        EXPECT_EQ(left->references(), 1U);
        EXPECT_EQ(right->references(), 2U);
    }

    Owned<OldMemoryFrame> right = OldMemoryFrame::create({.width = 16, .height = 8, .format = 32});
    Owned<OldMemoryFrame> left = OldMemoryFrame::create({.width = 16,
                                                         .height = 8,
                                                         .format = 32,
                                                         .packing3D = Packing3DLeftOnly,
                                                         .rightEye = right.get()});
};

template<auto FACTORY>
auto readyHelper()
{
    Owned<std::remove_pointer_t<decltype(FACTORY())>> helper(FACTORY());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    return helper;
}

template<auto FACTORY, class PAIR>
HRESULT setFrame(const ShortOfMemory& shortOfMemory)
{
    const PAIR pair;
    const auto helper = readyHelper<FACTORY>();
    return shortOfMemory([&] { return helper->SetFrame(pair.left.get()); });
}

template<auto FACTORY, class PAIR>
HRESULT paint(const ShortOfMemory& shortOfMemory)
{
    const PAIR pair;
    const auto helper = readyHelper<FACTORY>();
    helper->SetFrame(pair.left.get());
    return shortOfMemory([&] { return helper->PaintGL(); });
}

HRESULT initializeWithoutShaders(const ShortOfMemory& shortOfMemory)
{
    const Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    GLRecorder::get().fake.doesNotBuild = "fragment shader";
    return shortOfMemory([&] { return helper->InitializeGL() == E_FAIL ? S_OK : E_UNEXPECTED; });
}

/// Attaches an adapter to `frame` by its interface `id`.
template<class ADAPTER, class CURRENT, class OLD, class FRAME>
HRESULT attach(const ShortOfMemory& shortOfMemory, FRAME* frame, REFIID id)
{
    const auto current = query<CURRENT>(frame, id);
    return shortOfMemory([&] {
        OLD* adapter = nullptr;
        const HRESULT status = ADAPTER::create(current.get(), &adapter);
        EXPECT_EQ(Owned<OLD>(adapter) != nullptr, status == S_OK);
        return status;
    });
}

template<class ADAPTER, class CURRENT, class OLD>
HRESULT attachToMutable(const ShortOfMemory& shortOfMemory)
{
    const auto frame = MutableTestFrame::create({.width = 16, .height = 8, .format = 32});
    const HRESULT status = attach<ADAPTER, CURRENT, OLD>(shortOfMemory, frame.get(),
                                                         std::is_same_v<CURRENT, IKestrixVideoFrame>
                                                             ? IID_IKestrixVideoFrame
                                                             : IID_IKestrixMutableVideoFrame);
    EXPECT_EQ(frame->references(), 1U);
    return status;
}

HRESULT attachToInput(const ShortOfMemory& shortOfMemory)
{
    Pair pair;
    pair.adapted = true;
    return attach<CKestrixVideoInputFrame_v14_2_1, IKestrixVideoFrame,
                  IKestrixVideoInputFrame_v14_2_1>(shortOfMemory, pair.left.get(),
                                                   IID_IKestrixVideoFrame);
}

HRESULT wrapOldFrame(const ShortOfMemory& shortOfMemory)
{
    const OldPair pair;
    return shortOfMemory(
        [&] { return made(CKestrixVideoFrame_From_v14_2_1::create(pair.left.get())); });
}

/// From a frame over its extensions `id` to the right eye.
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
    Pair pair;
    pair.adapted = true;
    IKestrixVideoInputFrame_v14_2_1* adapter = nullptr;
    CKestrixVideoInputFrame_v14_2_1::create(pair.left.get(), &adapter);
    const Owned<IKestrixVideoFrame_v14_2_1> old(adapter);
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
    {"LegacySetFrame", {kNone, S_OK, S_OK}, setFrame<kLegacy, Pair>},
    {"LegacyPaint", {}, paint<kLegacy, Pair>},
    // The shared counts, in the paint.
    {"OpenGL3SetFrame", {}, setFrame<kGL3, Pair>},
    {"OpenGL3Paint", {S_OK, S_OK}, paint<kGL3, Pair>},
    // What is in the driver's log of a failed build is not worth a failure.
    {"OpenGL3Initialize", {S_OK}, initializeWithoutShaders},
    // The frame's wrapper, without which there is no frame; its extensions' and the right eye's,
    // without which there is one eye.
    {"OldLegacySetFrame", {S_OK, S_OK, S_OK, kNone, S_OK, S_OK}, setFrame<kOldLegacy, OldPair>},
    {"OldOpenGL3SetFrame", {S_OK}, setFrame<kOldGL3, OldPair>},
    {"OldOpenGL3Paint", {S_OK, S_OK, S_OK, S_OK}, paint<kOldGL3, OldPair>},

    // The provider, the frame's list of registrations, which grows, and the adapter.
    {"PlainAdapter",
     {kNone, kNone, kNone},
     attachToMutable<CKestrixVideoFrame_v14_2_1, IKestrixVideoFrame, IKestrixVideoFrame_v14_2_1>},
    {"MutableAdapter",
     {kNone, kNone, kNone, kNone},
     attachToMutable<CKestrixMutableVideoFrame_v14_2_1, IKestrixMutableVideoFrame,
                     IKestrixMutableVideoFrame_v14_2_1>},
    {"InputAdapter", {kNone, kNone, kNone, kNone, kNone}, attachToInput},
    {"OldFrameWrapper", {kNone}, wrapOldFrame},
    {"OldRightEye", {kNone, kNone}, findOldRightEye},
    {"AdaptedRightEye", {kNone, kNone, kNone, kNone, kNone, kNone}, findAdaptedRightEye},
};

class FailingAllocation : public testing::TestWithParam<Operation> {};

TEST_P(FailingAllocation, IsToldAndLeavesNothingBehind)
{
    // What a process keeps for good, such as colour tables, is made first.
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
        // The first round of all may have left what is made once for the process.
        EXPECT_TRUE(number == 0 || liveAllocations() == before);
    }
}

INSTANTIATE_TEST_SUITE_P(Api, FailingAllocation, testing::ValuesIn(kOperations), caseName);

// Nothing is stored where there is no place for it.
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

// A table for which there is no memory is missing until the next helper is made.
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
            const Pair pair;
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
