/// Old frames and helpers as current ones, and the other way round: who answers for what, whose
/// references are counted, and what is left when something fails on the way.
#include "api/v14_2_1/GLScreenPreviewHelper.h"
#include "api/v14_2_1/ProvidedFrames.h"
#include "api/v14_2_1/VideoFrame3DExtensions.h"
#include "api/v14_2_1/VideoFrame_From.h"
#include "host/OldMemoryFrame.h"
#include "tests/support/AllocationFaults.h"
#include "tests/support/CaseName.h"
#include "tests/support/TestFrame.h"

#include <gmock/gmock.h>

#include <barrier>
#include <thread>

namespace kestrix::test {
namespace {

using host::Owned;
using host::query;
using testing::Each;

const REFIID kNobodysID = {{1, 2, 3}};

/// The probe as an out-argument.
void** probe()
{
    return reinterpret_cast<void**>(ProbeSentinel);
}

/// An old frame that answers the probe in one way or another.
class OldTestFrame : public host::OldMemoryFrame {
public:
    static Owned<OldTestFrame> create(const host::OldMemoryFrameOptions& options)
    {
        return Owned<OldTestFrame>(new OldTestFrame(options));
    }

    /// The answer to a query for `IUnknown`, where there is one.
    std::optional<HRESULT> probeStatus;
    enum { Leave, GiveItself, GiveNoReference, GiveNull } probeStores = Leave;
    /// The current frame that it is in truth.
    IKestrixVideoFrame* current = nullptr;
    HRESULT rightEyeStatus = S_OK;

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
        const HRESULT status = OldMemoryFrame::GetFrameForRightEye(out);
        return rightEyeStatus == S_OK ? status : rightEyeStatus;
    }

protected:
    using OldMemoryFrame::OldMemoryFrame;
};

Owned<OldTestFrame> oldFrame(IKestrixVideoFrame_v14_2_1* rightEye = nullptr)
{
    host::OldMemoryFrameOptions options = {.width = 4, .height = 2, .format = 32};
    if (rightEye) {
        options.packing3D = Packing3DLeftOnly;
        options.rightEye = rightEye;
    }
    return OldTestFrame::create(options);
}

host::MemoryFrameOptions capturedOptions(IKestrixVideoFrame* rightEye = nullptr)
{
    host::MemoryFrameOptions options = {.width = 4, .height = 2, .format = 32, .captured = true};
    if (rightEye) {
        options.packing3D = Packing3DLeftOnly;
        options.rightEye = rightEye;
    }
    return options;
}

Owned<IKestrixVideoFrame> wrap(IKestrixVideoFrame_v14_2_1* old)
{
    return Owned<IKestrixVideoFrame>(CKestrixVideoFrame_From_v14_2_1::create(old));
}

/// Lets allocation 0, 1, ... fail of those that `act` makes, until there are no more, `points` at
/// least. `act` gets what `make` made, and answers whether it came to the end that it has where an
/// allocation failed. Whatever it does, no memory may be left behind.
template<class Make, class Act>
void failEveryAllocation(int points, Make make, Act act)
{
    for (int number = 0;; ++number) {
        SCOPED_TRACE(number);
        int failed = 0;
        const long before = liveAllocations();
        {
            auto object = make();
            bool failure = false;
            {
                const auto faults = AllocationFaults::number(number);
                failure = act(object);
                failed = faults.failed();
            }
            EXPECT_EQ(failure, failed != 0);
            EXPECT_EQ(object->references(), 1U);
        }
        ASSERT_EQ(liveAllocations(), before);
        if (!failed) {
            EXPECT_GE(number, points);
            return;
        }
    }
}

// --- Old frames as current ones ------------------------------------------------------------------

TEST(OldFrame, IsUnwrappedOnlyWhereItAnswersTheProbe)
{
    const struct {
        const char* name;
        HRESULT status;
        decltype(OldTestFrame::probeStores) stores;
        bool hasCurrent;
        bool unwrapped;
    } cases[] = {
        {"the probe's answer", ProbeReply, OldTestFrame::Leave, true, true},
        {"no current frame after all", ProbeReply, OldTestFrame::Leave, false, false},
        {"an interface beside the answer", ProbeReply, OldTestFrame::GiveItself, true, false},
        {"null beside the answer", ProbeReply, OldTestFrame::GiveNull, true, false},
        {"an interface", S_OK, OldTestFrame::GiveItself, true, false},
        {"success without an interface", S_OK, OldTestFrame::Leave, true, false},
        {"refusal", E_NOINTERFACE, OldTestFrame::GiveNull, true, false},
        {"refusal with something left over", E_FAIL, OldTestFrame::GiveNoReference, true, false},
        {"refusal that leaves the probe alone", E_NOINTERFACE, OldTestFrame::Leave, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto current = TestFrame::create(capturedOptions());
        const auto old = oldFrame();
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
    const auto old = oldFrame();
    {
        const auto frame = wrap(old.get());
        const auto buffer = query<IKestrixVideoBuffer>(frame.get(), IID_IKestrixVideoBuffer);
        ASSERT_NE(buffer, nullptr);
        EXPECT_NE(static_cast<void*>(buffer.get()), static_cast<void*>(frame.get()));
        EXPECT_EQ(frame->AddRef(), 3U);
        EXPECT_EQ(buffer->Release(), 2U);
        EXPECT_EQ(query<IUnknown>(buffer.get(), IID_IKestrixVideoFrame).get(), frame.get());
        EXPECT_EQ(query<IUnknown>(buffer.get(), IID_IUnknown).get(), frame.get());
        void* bytes = nullptr;
        EXPECT_EQ(buffer->GetBytes(&bytes), S_OK);
        EXPECT_EQ(bytes, old->bytes());

        // What the wrapper has not goes to the old frame, and 3D where the old frame has none.
        EXPECT_EQ(
            query<IKestrixVideoFrame_v14_2_1>(frame.get(), IID_IKestrixVideoFrame_v14_2_1).get(),
            old.get());
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
    const auto right = oldFrame();
    const auto left = oldFrame(right.get());
    {
        const auto frame = wrap(left.get());
        const auto extensions =
            query<IKestrixVideoFrame3DExtensions>(frame.get(), IID_IKestrixVideoFrame3DExtensions);
        ASSERT_NE(extensions, nullptr);
        EXPECT_EQ(query<IUnknown>(extensions.get(), IID_IKestrixVideoFrame3DExtensions).get(),
                  extensions.get());
        EXPECT_EQ(
            query<IKestrixVideoFrame_v14_2_1>(extensions.get(), IID_IKestrixVideoFrame_v14_2_1)
                .get(),
            left.get());
        EXPECT_EQ(extensions->Get3DPackingFormat(), Packing3DLeftOnly);
        EXPECT_EQ(extensions->GetFrameForRightEye(nullptr), E_INVALIDARG);

        IKestrixVideoFrame* eye = nullptr;
        ASSERT_EQ(extensions->GetFrameForRightEye(&eye), S_OK);
        EXPECT_EQ(query<IKestrixVideoFrame_v14_2_1>(eye, IID_IKestrixVideoFrame_v14_2_1).get(),
                  right.get());
        eye->Release();
        // Only 0 counts as success.
        for (const HRESULT status : {E_FAIL, HRESULT{1}}) {
            left->rightEyeStatus = status;
            eye = frame.get();
            EXPECT_EQ(extensions->GetFrameForRightEye(&eye), status);
            EXPECT_EQ(eye, nullptr);
        }
        EXPECT_EQ(right->references(), 2U);
    }
    EXPECT_EQ(left->references(), 1U);

    failEveryAllocation(
        1, [] { return oldFrame(); }, [](auto& old) { return wrap(old.get()) == nullptr; });
    failEveryAllocation(
        3, [&] { return oldFrame(right.get()); },
        [](auto& old) {
            const auto frame = wrap(old.get());
            if (!frame)
                return true;
            IKestrixVideoFrame3DExtensions* extensions = nullptr;
            HRESULT status =
                QueryInto(frame.get(), IID_IKestrixVideoFrame3DExtensions, &extensions);
            if (!extensions)
                return status == E_OUTOFMEMORY;
            IKestrixVideoFrame* eye = nullptr;
            status = extensions->GetFrameForRightEye(&eye);
            extensions->Release();
            if (!eye)
                return status == E_OUTOFMEMORY;
            eye->Release();
            return false;
        });
    EXPECT_EQ(right->references(), 2U);
}

// --- Current frames as old ones ------------------------------------------------------------------

/// One of the three adapters.
struct Kind {
    const char* name;
    REFIID id;
    /// Ids that it is registered for, in that order.
    std::vector<REFIID> registered;
    /// Those for which the frame goes on answering where the last registration was refused.
    std::size_t leftBehind;
    /// Makes a frame that takes so many registrations.
    Owned<host::MemoryFrame> (*make)(int registrationsTaken);
    HRESULT (*attach)(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out);
};

constexpr int kAll = 1000;

template<class FRAME>
Owned<host::MemoryFrame> makeFrame(int registrationsTaken)
{
    auto frame = FRAME::create(capturedOptions());
    frame->registrationsTaken = registrationsTaken;
    return frame;
}

/// Attaches an `Adapter` to the `Current` interface of a frame.
template<class Adapter, class Old, class Current>
HRESULT attach(Current* frame, IKestrixVideoFrame_v14_2_1** out)
{
    Old* adapter = nullptr;
    const HRESULT status = Adapter::create(frame, &adapter);
    *out = adapter;
    return status;
}

HRESULT attachPlain(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out)
{
    return CKestrixVideoFrame_v14_2_1::create(frame, out);
}

HRESULT attachMutable(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out)
{
    const auto current = query<IKestrixMutableVideoFrame>(frame, IID_IKestrixMutableVideoFrame);
    return attach<CKestrixMutableVideoFrame_v14_2_1, IKestrixMutableVideoFrame_v14_2_1>(
        current.get(), out);
}

HRESULT attachInput(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out)
{
    return attach<CKestrixVideoInputFrame_v14_2_1, IKestrixVideoInputFrame_v14_2_1>(frame, out);
}

class CurrentFrame : public testing::TestWithParam<Kind> {};

TEST_P(CurrentFrame, HasOneAdapterThatSharesItsCount)
{
    const auto frame = GetParam().make(kAll);
    IKestrixVideoFrame_v14_2_1* old = nullptr;
    IKestrixVideoFrame_v14_2_1* again = nullptr;
    ASSERT_EQ(GetParam().attach(frame.get(), &old), S_OK);
    ASSERT_EQ(GetParam().attach(frame.get(), &again), S_OK);
    EXPECT_EQ(old, again);
    EXPECT_EQ(frame->references(), 3U);
    EXPECT_EQ(again->Release(), 2U);
    EXPECT_EQ(old->AddRef(), 3U);
    EXPECT_EQ(old->Release(), 2U);

    for (const REFIID& id : {GetParam().id, IID_IKestrixVideoFrame_v14_2_1}) {
        EXPECT_EQ(query<IUnknown>(frame.get(), id).get(), old);
        EXPECT_EQ(query<IUnknown>(old, id).get(), old);
    }
    EXPECT_EQ(query<IUnknown>(old, IID_IUnknown), query<IUnknown>(frame.get(), IID_IUnknown));
    void* none = this;
    EXPECT_EQ(old->QueryInterface(kNobodysID, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(old->QueryInterface(GetParam().id, nullptr), E_POINTER);
    for (const REFIID& id :
         {kNobodysID, GetParam().id, IID_IUnknown, IID_IKestrixVideoFrame3DExtensions_v14_2_1})
        EXPECT_EQ(old->QueryInterface(id, probe()), ProbeReply);

    // Opened once for reading and writing, for good.
    void* bytes = nullptr;
    EXPECT_EQ(old->GetBytes(&bytes), S_OK);
    EXPECT_EQ(bytes, frame->bytes());
    EXPECT_EQ(old->GetBytes(nullptr), E_POINTER);
    old->Release();
    EXPECT_EQ(frame->references(), 1U);
    EXPECT_EQ(frame->openAccesses(), 1);
    EXPECT_EQ(frame->EndAccess(BufferAccessReadWrite), S_OK);

    // The other way round, the adapter hands the probe on to a frame that does not know it.
    ASSERT_EQ(GetParam().attach(frame.get(), &old), S_OK);
    EXPECT_NE(wrap(old).get(), frame.get());
    old->Release();
}

TEST_P(CurrentFrame, KeepsOrGivesBackRegistrationsWhereOneIsRefused)
{
    const auto& ids = GetParam().registered;
    for (std::size_t taken = 0; taken < ids.size(); ++taken) {
        SCOPED_TRACE(taken);
        const auto frame = GetParam().make(static_cast<int>(taken));
        IKestrixVideoFrame_v14_2_1* old = nullptr;
        EXPECT_EQ(GetParam().attach(frame.get(), &old), TestFrame::kRegistrationRefused);
        EXPECT_EQ(old, nullptr);
        EXPECT_EQ(frame->references(), 1U);
        for (std::size_t i = 0; i < ids.size(); ++i)
            EXPECT_EQ(query<IUnknown>(frame.get(), ids[i]) != nullptr,
                      GetParam().leftBehind && i < taken && i < 2)
                << i;
    }
}

TEST_P(CurrentFrame, HasNoAdapterWhereMemoryIsShort)
{
    // The provider, the adapter, and what a registration takes of the frame.
    failEveryAllocation(
        3, [] { return GetParam().make(kAll); },
        [](auto& frame) {
            IKestrixVideoFrame_v14_2_1* old = nullptr;
            const HRESULT status = GetParam().attach(frame.get(), &old);
            if (old)
                old->Release();
            return status == E_OUTOFMEMORY && !old;
        });
}

// One thread finds what the others attach.
TEST_P(CurrentFrame, HasOneAdapterWhenThreadsMeet)
{
    constexpr int kThreads = 4;
    for (int round = 0; round < 100; ++round) {
        const auto frame = GetParam().make(kAll);
        std::barrier start(kThreads + 1);
        IKestrixVideoFrame_v14_2_1* adapters[kThreads] = {};
        std::vector<std::thread> threads;
        for (auto& adapter : adapters)
            threads.emplace_back([&] {
                start.arrive_and_wait();
                EXPECT_EQ(GetParam().attach(frame.get(), &adapter), S_OK);
            });
        start.arrive_and_wait();
        Owned<IUnknown> found;
        while (!found)
            found = query<IUnknown>(frame.get(), GetParam().id);
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_THAT(adapters, Each(found.get()));
        EXPECT_EQ(frame->references(), 2U + kThreads);
        for (auto* adapter : adapters)
            adapter->Release();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Api, CurrentFrame,
    testing::Values(Kind{"Plain",
                         IID_IKestrixVideoFrame_v14_2_1,
                         {IID_IKestrixVideoFrame_v14_2_1},
                         0,
                         makeFrame<MutableTestFrame>,
                         attachPlain},
                    Kind{"Mutable",
                         IID_IKestrixMutableVideoFrame_v14_2_1,
                         {IID_IKestrixMutableVideoFrame_v14_2_1, IID_IKestrixVideoFrame_v14_2_1},
                         0,
                         makeFrame<MutableTestFrame>,
                         attachMutable},
                    Kind{"Input",
                         IID_IKestrixVideoInputFrame_v14_2_1,
                         {IID_IKestrixVideoInputFrame_v14_2_1, IID_IKestrixVideoFrame_v14_2_1,
                          IID_IKestrixVideoFrame3DExtensions_v14_2_1},
                         2,
                         makeFrame<TestFrame>,
                         attachInput}),
    caseName);

TEST(CurrentFrame, TakesNoAdapterWithoutTheInterfacesForIt)
{
    const auto frame = TestFrame::create(capturedOptions());
    IKestrixVideoFrame_v14_2_1* old = nullptr;
    EXPECT_EQ(attachPlain(frame.get(), &old), E_UNEXPECTED);
    frame->lacks = {IID_IKestrixFrameProviderRegistry};
    EXPECT_EQ(attachInput(frame.get(), &old), E_FAIL);
    EXPECT_EQ(query<IUnknown>(frame.get(), IID_IKestrixVideoFrame_v14_2_1), nullptr);

    // With a registry, but no captured frame: an adapter of nothing, which does no harm.
    frame->lacks = {IID_IKestrixVideoInputFrame};
    ASSERT_EQ(attachInput(frame.get(), &old), S_OK);
    EXPECT_EQ(old->AddRef(), 0U);
    EXPECT_EQ(old->Release(), 0U);
    EXPECT_EQ(old->GetWidth(), 0);
    EXPECT_EQ(old->GetTimecode(0, nullptr), E_FAIL);
    void* out = this;
    EXPECT_EQ(old->GetBytes(&out), E_FAIL);
    for (const REFIID& id : {IID_IKestrixVideoFrame3DExtensions_v14_2_1, IID_IUnknown})
        EXPECT_EQ(old->QueryInterface(id, &out), E_NOINTERFACE);
    EXPECT_EQ(frame->references(), 1U);
}

TEST(CurrentFrame, IsUnwrappedThroughItsAdapterWhereItAnswersTheProbe)
{
    for (const bool answers : {false, true}) {
        const auto frame = TestFrame::create(capturedOptions());
        frame->answersProbe = answers;
        IKestrixVideoFrame_v14_2_1* old = nullptr;
        ASSERT_EQ(attachInput(frame.get(), &old), S_OK);
        EXPECT_EQ(wrap(old).get() == frame.get(), answers);
        old->Release();
        EXPECT_EQ(frame->references(), 1U);
    }
}

TEST(CurrentFrame, WithoutABufferHasAnAdapterWithoutBytes)
{
    for (const HRESULT startAccessStatus : {S_OK, E_FAIL}) {
        const auto frame = TestFrame::create(capturedOptions());
        frame->startAccessStatus = startAccessStatus;
        if (startAccessStatus == S_OK)
            frame->lacks = {IID_IKestrixVideoBuffer};
        IKestrixVideoFrame_v14_2_1* old = nullptr;
        ASSERT_EQ(attachInput(frame.get(), &old), S_OK);
        void* bytes = this;
        EXPECT_EQ(old->GetBytes(&bytes), E_FAIL);
        EXPECT_EQ(bytes, nullptr);
        old->Release();
    }
}

TEST(CurrentFrame, GivesItsExtensionsAndItsRightEyeToOldHosts)
{
    const auto right = TestFrame::create(capturedOptions());
    const auto left = TestFrame::create(capturedOptions(right.get()));
    {
        IKestrixVideoFrame_v14_2_1* old = nullptr;
        ASSERT_EQ(attachInput(left.get(), &old), S_OK);
        const auto extensions = query<IKestrixVideoFrame3DExtensions_v14_2_1>(
            left.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1);
        old->Release();
        ASSERT_NE(extensions, nullptr);
        EXPECT_EQ(
            query<IUnknown>(extensions.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1).get(),
            extensions.get());
        EXPECT_EQ(extensions->Get3DPackingFormat(), Packing3DLeftOnly);
        EXPECT_EQ(extensions->GetFrameForRightEye(nullptr), E_INVALIDARG);

        // What is the right eye's own registry's fault is told; nothing is given then.
        IKestrixVideoFrame_v14_2_1* eye = nullptr;
        right->lacks = {IID_IKestrixFrameProviderRegistry};
        EXPECT_EQ(extensions->GetFrameForRightEye(&eye), E_FAIL);
        EXPECT_EQ(eye, nullptr);
        right->lacks = {};
        left->rightEyeStatus = E_UNEXPECTED;
        EXPECT_EQ(extensions->GetFrameForRightEye(&eye), E_UNEXPECTED);
        EXPECT_EQ(eye, nullptr);
        left->rightEyeStatus = S_OK;
        EXPECT_EQ(right->references(), 2U);
        ASSERT_EQ(extensions->GetFrameForRightEye(&eye), S_OK);
        EXPECT_EQ(query<IUnknown>(right.get(), IID_IKestrixVideoFrame_v14_2_1).get(), eye);
        EXPECT_EQ(eye->Release(), 2U);
    }
    EXPECT_EQ(left->references(), 1U);

    // A flat frame has none to give, though its adapter is registered for them.
    IKestrixVideoFrame_v14_2_1* flat = nullptr;
    ASSERT_EQ(attachInput(right.get(), &flat), S_OK);
    EXPECT_EQ(query<IUnknown>(right.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1), nullptr);
    flat->Release();
}

TEST(CurrentFrame, GivesNoExtensionsWhereMemoryIsShort)
{
    failEveryAllocation(
        5,
        [] {
            const auto right = TestFrame::create(capturedOptions());
            return TestFrame::create(capturedOptions(right.get()));
        },
        [](auto& left) {
            IKestrixVideoFrame_v14_2_1* old = nullptr;
            HRESULT status = attachInput(left.get(), &old);
            if (!old)
                return status == E_OUTOFMEMORY;
            IKestrixVideoFrame3DExtensions_v14_2_1* extensions = nullptr;
            status = QueryInto(old, IID_IKestrixVideoFrame3DExtensions_v14_2_1, &extensions);
            old->Release();
            if (!extensions)
                return status == E_OUTOFMEMORY;
            IKestrixVideoFrame_v14_2_1* eye = nullptr;
            status = extensions->GetFrameForRightEye(&eye);
            extensions->Release();
            if (!eye)
                return status == E_OUTOFMEMORY;
            eye->Release();
            return false;
        });
}

// --- The helper ----------------------------------------------------------------------------------

/// Keeps what it is given.
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
        const auto old = oldFrame();
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
