/// The adapters between the revisions, in both directions: which object answers a query, whose
/// references count, and what remains after a failure.
#include "api/v14_2_1/GLScreenPreviewHelper.h"
#include "api/v14_2_1/VideoFrame_From.h"
#include "tests/api/AdaptedFrames.h"
#include "tests/common/AllocationFaults.h"
#include "tests/common/CaseName.h"

#include <gtest/gtest.h>

#include <barrier>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace kestrix::test {
namespace {

using host::Owned;
using host::query;

const REFIID kNobodysID = {{1, 2, 3}};

/// The probe as an out-argument.
void** probe()
{
    return reinterpret_cast<void**>(ProbeSentinel);
}

/// An old frame whose answer to the probe can be chosen.
class OldTestFrame : public host::OldMemoryFrame {
public:
    static Owned<OldTestFrame> create(const host::OldMemoryFrameOptions& options)
    {
        return Owned<OldTestFrame>(new OldTestFrame(options));
    }

    /// What a query for `IUnknown` returns, if it is given.
    std::optional<HRESULT> probeStatus;
    enum { Leave, GiveItself, GiveNoReference, GiveNull } probeStores = Leave;
    /// The current frame that it is an adapter of.
    IKestrixVideoFrame* current = nullptr;
    HRESULT rightEyeStatus = S_OK;
    bool givesNoRightEye = false;

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (id == IID_IUnknown && probeStatus) {
            if (probeStores == GiveItself)
                OldMemoryFrame::QueryInterface(id, out);
            else if (probeStores == GiveNoReference)
                *out = static_cast<IKestrixVideoFrame_v14_2_1*>(this);
            else if (probeStores == GiveNull)
                *out = nullptr;
            return *probeStatus;
        }
        if (id == IID_IKestrixVideoFrame && current)
            return current->QueryInterface(id, out);
        return OldMemoryFrame::QueryInterface(id, out);
    }

    HRESULT GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out) override
    {
        if (givesNoRightEye) {
            *out = nullptr;
            return S_OK;
        }
        const HRESULT status = OldMemoryFrame::GetFrameForRightEye(out);
        return rightEyeStatus == S_OK ? status : rightEyeStatus;
    }

protected:
    using OldMemoryFrame::OldMemoryFrame;
};

Owned<IKestrixVideoFrame> wrap(Old* old)
{
    return Owned<IKestrixVideoFrame>(CKestrixVideoFrame_From_v14_2_1::create(old));
}

/// Checks the extensions `id` of a frame. `left` is the innermost frame that they wrap. It returns
/// each of `failures` instead of `right`.
template<class Extensions, class Frame, class Left, class Right>
void expectRightEye(Frame* frame, REFIID id, Left& left, Right& right,
                    const std::vector<HRESULT>& failures)
{
    const auto extensions = query<Extensions>(frame, id);
    ASSERT_NE(extensions, nullptr);
    EXPECT_EQ(query<IUnknown>(extensions.get(), id).get(), extensions.get());
    EXPECT_EQ(query<IUnknown>(extensions.get(), IID_IUnknown),
              query<IUnknown>(&left, IID_IUnknown));
    EXPECT_EQ(extensions->Get3DPackingFormat(), Packing3DLeftOnly);
    EXPECT_EQ(extensions->GetFrameForRightEye(nullptr), E_INVALIDARG);

    for (const HRESULT status : failures) {
        left.rightEyeStatus = status;
        Frame* none = frame;
        EXPECT_EQ(extensions->GetFrameForRightEye(&none), status);
        EXPECT_EQ(none, nullptr);
    }
    left.rightEyeStatus = S_OK;
    left.givesNoRightEye = true;
    Frame* absent = frame;
    EXPECT_EQ(extensions->GetFrameForRightEye(&absent), S_OK);
    EXPECT_EQ(absent, nullptr);
    left.givesNoRightEye = false;
    Frame* eye = nullptr;
    ASSERT_EQ(extensions->GetFrameForRightEye(&eye), S_OK);
    EXPECT_EQ(query<IUnknown>(eye, IID_IKestrixVideoFrame_v14_2_1),
              query<IUnknown>(&right, IID_IKestrixVideoFrame_v14_2_1));
    EXPECT_EQ(right.references(), 3U);
    eye->Release();
    EXPECT_EQ(right.references(), 2U);
}

// --- Old frames as current ones ------------------------------------------------------------------

TEST(OldFrame, IsUnwrappedOnlyWhereItAnswersTheProbe)
{
    const struct {
        HRESULT status;
        decltype(OldTestFrame::probeStores) stores;
        bool hasCurrent = true;
        bool unwrapped = false;
    } cases[] = {
        {ProbeReply, OldTestFrame::Leave, true, true},
        {ProbeReply, OldTestFrame::Leave, false}, // but it has no current frame
        {ProbeReply, OldTestFrame::GiveItself},
        {ProbeReply, OldTestFrame::GiveNull},
        {S_OK, OldTestFrame::GiveItself},
        {S_OK, OldTestFrame::Leave},
        {E_NOINTERFACE, OldTestFrame::GiveNull},
        {E_NOINTERFACE, OldTestFrame::Leave},
        {E_FAIL, OldTestFrame::GiveNoReference},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const auto current = capturedFrame();
        const auto old = oldFrame<OldTestFrame>();
        old->probeStatus = c.status;
        old->probeStores = c.stores;
        old->current = c.hasCurrent ? current.get() : nullptr;
        {
            const auto frame = wrap(old.get());
            ASSERT_NE(frame, nullptr);
            EXPECT_EQ(frame.get() == current.get(), c.unwrapped);
            EXPECT_EQ(current->references(), c.unwrapped ? 2U : 1U);
            EXPECT_EQ(old->references(), c.unwrapped ? 1U : 2U);
        }
        EXPECT_EQ(old->references(), 1U);
        EXPECT_EQ(current->references(), 1U);
    }
    EXPECT_EQ(CKestrixVideoFrame_From_v14_2_1::create(nullptr), nullptr);
}

TEST(OldFrame, IsWrappedWithABufferAndOneCount)
{
    const auto old = oldFrame<OldTestFrame>();
    {
        const auto frame = wrap(old.get());
        const auto buffer = query<IKestrixVideoBuffer>(frame.get(), IID_IKestrixVideoBuffer);
        ASSERT_NE(buffer, nullptr);
        EXPECT_NE(static_cast<void*>(buffer.get()), static_cast<void*>(frame.get()));
        EXPECT_EQ(frame->AddRef(), 3U);
        EXPECT_EQ(buffer->Release(), 2U);
        EXPECT_EQ(query<IUnknown>(buffer.get(), IID_IKestrixVideoFrame).get(), frame.get());
        EXPECT_EQ(query<IUnknown>(buffer.get(), IID_IUnknown).get(), frame.get());

        // Other interfaces are those of the old frame, which has no extensions here.
        EXPECT_EQ(query<Old>(frame.get(), IID_IKestrixVideoFrame_v14_2_1).get(), old.get());
        for (const REFIID& id : {kNobodysID, IID_IKestrixVideoFrame3DExtensions}) {
            void* none = this;
            EXPECT_EQ(frame->QueryInterface(id, &none), E_NOINTERFACE);
            EXPECT_EQ(none, nullptr);
        }
        EXPECT_EQ(frame->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        EXPECT_EQ(frame->QueryInterface(kNobodysID, probe()), ProbeReply);
        EXPECT_EQ(old->references(), 2U);
    }
    EXPECT_EQ(old->references(), 1U);

    const Owned<IKestrixVideoFrame> empty(new CKestrixVideoFrame_From_v14_2_1(nullptr));
    void* out = this;
    EXPECT_EQ(empty->QueryInterface(IID_IUnknown, &out), E_FAIL);
    EXPECT_EQ(out, this);
}

TEST(OldFrame, HasItsExtensionsAndItsRightEyeWrapped)
{
    const auto right = oldFrame<OldTestFrame>();
    const auto left = oldFrame<OldTestFrame>(right.get());
    // Only 0 counts as success.
    expectRightEye<IKestrixVideoFrame3DExtensions>(
        wrap(left.get()).get(), IID_IKestrixVideoFrame3DExtensions, *left, *right, {E_FAIL, 1});
    EXPECT_EQ(left->references(), 1U);
}

// --- Current frames as old ones ------------------------------------------------------------------

constexpr auto attachPlain = attach<CKestrixVideoFrame_v14_2_1>;
constexpr auto attachMutable = attach<CKestrixMutableVideoFrame_v14_2_1>;
constexpr auto attachInput = attach<CKestrixVideoInputFrame_v14_2_1>;

/// Makes a frame that accepts this number of registrations.
template<class Frame>
Owned<host::MemoryFrame> frameThatTakes(int registrations)
{
    auto frame = capturedFrame<Frame>();
    frame->registrationsTaken = registrations;
    frame->registrationTime = std::chrono::microseconds(200);
    return frame;
}

/// One of the three adapters.
struct Kind {
    const char* name;
    /// The ids that it registers, in this order. The first is its own.
    std::vector<REFIID> ids;
    /// Whether earlier registrations remain if one is refused.
    bool keepsRegistrations;
    Owned<host::MemoryFrame> (*make)(int registrations);
    HRESULT (*attach)(host::MemoryFrame* frame, Owned<Old>& out);
};

class CurrentFrame : public testing::TestWithParam<Kind> {};

TEST_P(CurrentFrame, HasOneAdapterThatSharesItsCount)
{
    const REFIID ownID = GetParam().ids[0];
    const auto frame = GetParam().make(1000);
    Owned<Old> old;
    Owned<Old> again;
    ASSERT_EQ(GetParam().attach(frame.get(), old), S_OK);
    ASSERT_EQ(GetParam().attach(frame.get(), again), S_OK);
    EXPECT_EQ(old, again);
    EXPECT_EQ(frame->references(), 3U);
    EXPECT_EQ(old->AddRef(), 4U);
    EXPECT_EQ(old->Release(), 3U);

    for (const REFIID& id : {ownID, IID_IKestrixVideoFrame_v14_2_1}) {
        EXPECT_EQ(query<IUnknown>(frame.get(), id).get(), old.get());
        EXPECT_EQ(query<IUnknown>(old.get(), id).get(), old.get());
    }
    EXPECT_EQ(query<IUnknown>(old.get(), IID_IUnknown), query<IUnknown>(frame.get(), IID_IUnknown));
    void* out = this;
    EXPECT_EQ(old->QueryInterface(kNobodysID, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(old->QueryInterface(ownID, nullptr), E_POINTER);
    for (const REFIID& id :
         {kNobodysID, ownID, IID_IUnknown, IID_IKestrixVideoFrame3DExtensions_v14_2_1})
        EXPECT_EQ(old->QueryInterface(id, probe()), ProbeReply);

    // The adapter opens one access for reading and writing, and never closes it.
    EXPECT_EQ(old->GetBytes(&out), S_OK);
    EXPECT_EQ(out, frame->bytes());
    EXPECT_EQ(old->GetBytes(nullptr), E_POINTER);
    old.reset();
    again.reset();
    EXPECT_EQ(frame->references(), 1U);
    EXPECT_EQ(frame->openAccesses(), 1);
    EXPECT_EQ(frame->EndAccess(BufferAccessReadWrite), S_OK);
}

TEST_P(CurrentFrame, KeepsOrGivesBackRegistrationsWhereOneIsRefused)
{
    const auto& ids = GetParam().ids;
    for (std::size_t taken = 0; taken < ids.size(); ++taken) {
        SCOPED_TRACE(taken);
        const auto frame = GetParam().make(static_cast<int>(taken));
        Owned<Old> old;
        EXPECT_EQ(GetParam().attach(frame.get(), old), TestFrame::kRegistrationRefused);
        EXPECT_EQ(old, nullptr);
        EXPECT_EQ(frame->references(), 1U);
        for (std::size_t i = 0; i < ids.size(); ++i)
            EXPECT_EQ(query<IUnknown>(frame.get(), ids[i]) != nullptr,
                      GetParam().keepsRegistrations && i < taken)
                << i;
    }
}

// One thread queries what the others attach. The frame accepts the registrations of one thread.
TEST_P(CurrentFrame, HasOneAdapterWhenThreadsMeet)
{
    constexpr int kThreads = 4;
    for (int round = 0; round < 20; ++round) {
        const auto frame = GetParam().make(static_cast<int>(GetParam().ids.size()));
        std::barrier start(kThreads + 1);
        Owned<Old> adapters[kThreads];
        std::vector<std::thread> threads;
        for (auto& adapter : adapters)
            threads.emplace_back([&] {
                start.arrive_and_wait();
                EXPECT_EQ(GetParam().attach(frame.get(), adapter), S_OK);
            });
        start.arrive_and_wait();
        Owned<IUnknown> found;
        while (!found)
            found = query<IUnknown>(frame.get(), GetParam().ids[0]);
        for (std::thread& thread : threads)
            thread.join();
        for (const auto& adapter : adapters)
            EXPECT_EQ(adapter.get(), found.get());
        EXPECT_EQ(frame->references(), 2U + kThreads);
    }
}

// A lock that stayed locked would block the second attempt.
TEST_P(CurrentFrame, ThatThrowsLeavesNothingOpenAndCanBeAttachedLater)
{
    bool done = false;
    for (int position = 0; !done; ++position) {
        const auto frame = GetParam().make(1000);
        int calls = 0;
        bool attached = false;
        const auto throwing = [&](const char*) {
            if (!attached && calls++ == position)
                throw std::runtime_error("");
        };
        if (auto* const captured = dynamic_cast<TestFrame*>(frame.get()))
            captured->called = throwing;
        else
            dynamic_cast<MutableTestFrame&>(*frame).called = throwing;
        Owned<Old> old;
        try {
            GetParam().attach(frame.get(), old);
            done = attached = true;
        } catch (const std::runtime_error&) {
            EXPECT_EQ(frame->references(), 1U) << position;
            EXPECT_EQ(GetParam().attach(frame.get(), old), S_OK) << position;
        }
        ASSERT_NE(old, nullptr);
        EXPECT_EQ(old->GetWidth(), 16);
        old.reset();
        EXPECT_EQ(frame->references(), 1U) << position;
        EXPECT_EQ(frame->openAccesses(), 1) << position << ": that of the adapter";
        EXPECT_EQ(frame->EndAccess(BufferAccessReadWrite), S_OK);
    }
}

const Kind kKinds[] = {
    {"Plain",
     {IID_IKestrixVideoFrame_v14_2_1},
     false,
     frameThatTakes<MutableTestFrame>,
     attachPlain},
    {"Mutable",
     {IID_IKestrixMutableVideoFrame_v14_2_1, IID_IKestrixVideoFrame_v14_2_1},
     false,
     frameThatTakes<MutableTestFrame>,
     attachMutable},
    {"Input",
     {IID_IKestrixVideoInputFrame_v14_2_1, IID_IKestrixVideoFrame_v14_2_1,
      IID_IKestrixVideoFrame3DExtensions_v14_2_1},
     true,
     frameThatTakes<TestFrame>,
     attachInput},
};
INSTANTIATE_TEST_SUITE_P(Api, CurrentFrame, testing::ValuesIn(kKinds), caseName);

TEST(CurrentFrame, HasNoAdapterOrAPoorOneWhereItLacksInterfaces)
{
    const auto frame = capturedFrame();
    Owned<Old> old;
    EXPECT_EQ(attachPlain(frame.get(), old), E_UNEXPECTED);
    frame->lacks = {IID_IKestrixFrameProviderRegistry};
    EXPECT_EQ(attachInput(frame.get(), old), E_FAIL);
    EXPECT_EQ(query<IUnknown>(frame.get(), IID_IKestrixVideoFrame_v14_2_1), nullptr);

    // With a registry, but no captured frame: an adapter without a frame, which does no harm.
    frame->lacks = {IID_IKestrixVideoInputFrame};
    ASSERT_EQ(attachInput(frame.get(), old), S_OK);
    EXPECT_EQ(old->AddRef(), 0U);
    EXPECT_EQ(old->Release(), 0U);
    EXPECT_EQ(old->GetWidth(), 0);
    EXPECT_EQ(old->GetTimecode(0, nullptr), E_FAIL);
    for (const REFIID& id : {IID_IKestrixVideoFrame3DExtensions_v14_2_1, IID_IUnknown}) {
        void* out = this;
        EXPECT_EQ(old->QueryInterface(id, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(frame->references(), 1U);

    for (const bool hasBuffer : {false, true}) {
        const auto closed = capturedFrame();
        closed->startAccessStatus = E_FAIL;
        if (!hasBuffer)
            closed->lacks = {IID_IKestrixVideoBuffer};
        ASSERT_EQ(attachInput(closed.get(), old), S_OK);
        void* out = this;
        EXPECT_EQ(old->GetBytes(&out), E_FAIL);
        EXPECT_EQ(out, nullptr);
        old.reset();
    }
}

TEST(CurrentFrame, IsUnwrappedThroughItsAdapterWhereItAnswersTheProbe)
{
    const auto frame = capturedFrame();
    Owned<Old> old;
    ASSERT_EQ(attachInput(frame.get(), old), S_OK);
    EXPECT_NE(wrap(old.get()).get(), frame.get());
    frame->answersProbe = true;
    EXPECT_EQ(wrap(old.get()).get(), frame.get());
    EXPECT_EQ(frame->references(), 2U);
}

TEST(CurrentFrame, GivesItsExtensionsAndItsRightEyeToOldHosts)
{
    const auto right = capturedFrame();
    const auto left = capturedFrame(right.get());
    Owned<Old> old;
    ASSERT_EQ(attachInput(left.get(), old), S_OK);
    const REFIID id = IID_IKestrixVideoFrame3DExtensions_v14_2_1;
    using Extensions = IKestrixVideoFrame3DExtensions_v14_2_1;
    // If the right eye has no registry, the status says so and there is no right eye.
    right->lacks = {IID_IKestrixFrameProviderRegistry};
    Old* eye = old.get();
    EXPECT_EQ(query<Extensions>(old.get(), id)->GetFrameForRightEye(&eye), E_FAIL);
    EXPECT_EQ(eye, nullptr);
    right->lacks = {};
    expectRightEye<Extensions>(old.get(), id, *left, *right, {E_UNEXPECTED, 1});
    EXPECT_NE(query<IUnknown>(left.get(), id), nullptr);
    EXPECT_EQ(left->references(), 2U);

    // A frame of one eye has no extensions, but its adapter is registered for them.
    ASSERT_EQ(attachInput(right.get(), old), S_OK);
    EXPECT_EQ(query<IUnknown>(right.get(), id), nullptr);
}

// --- The helper ----------------------------------------------------------------------------------

/// Keeps the frame that it is given.
class TestHelper : public IKestrixGLScreenPreviewHelper {
public:
    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    std::uint32_t AddRef() override { return ++references; }
    std::uint32_t Release() override { return --references; }
    HRESULT InitializeGL() override { return S_OK; }
    HRESULT PaintGL() override { return S_OK; }
    HRESULT Set3DPreviewFormat(std::uint32_t) override { return S_OK; }
    HRESULT SetFrame(IKestrixVideoFrame* given) override
    {
        ++frames;
        frame = host::share(given);
        return E_INVALIDARG;
    }

    std::uint32_t references = 1;
    int frames = 0;
    Owned<IKestrixVideoFrame> frame;
};

TEST(OldHelper, HandsFramesOnWrapped)
{
    TestHelper current;
    {
        const auto old = oldFrame<OldTestFrame>();
        const Owned<IKestrixGLScreenPreviewHelper_v14_2_1> helper(
            new CKestrixGLScreenPreviewHelper_v14_2_1(&current));
        EXPECT_EQ(current.references, 2U);
        EXPECT_EQ(helper->SetFrame(old.get()), E_INVALIDARG) << "the current helper's answer";
        ASSERT_NE(current.frame, nullptr);
        EXPECT_EQ(current.frame->AddRef(), 2U) << "the wrapper is the current helper's alone";
        current.frame->Release();
        EXPECT_EQ(old->references(), 2U);
        EXPECT_EQ(helper->SetFrame(nullptr), E_INVALIDARG);
        EXPECT_EQ(current.frame, nullptr);
        EXPECT_EQ(old->references(), 1U);
        {
            const auto faults = AllocationFaults::number(0);
            EXPECT_EQ(helper->SetFrame(old.get()), E_INVALIDARG);
        }
        EXPECT_EQ(current.frame, nullptr) << "what can't be wrapped counts as no frame";
        EXPECT_EQ(current.frames, 3);
        EXPECT_EQ(old->references(), 1U);
    }
    EXPECT_EQ(current.references, 1U);
}

} // namespace
} // namespace kestrix::test
