/// The order in which a frame's memory is opened, kept and closed.
#include "api/ScopedBufferBytes.h"
#include "api/InterfaceRef.h"
#include "tests/support/AllocationFaults.h"
#include "tests/support/TestFrame.h"

#include <gmock/gmock.h>

namespace kestrix::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FrameAccess : public testing::Test {
protected:
    FrameAccess() { frame->log = &log; }
    // The frame's end is logged too, and the log goes first.
    ~FrameAccess() override { frame->log = nullptr; }

    std::vector<std::string> log;
    IUnknown* unknown() { return static_cast<IKestrixVideoFrame*>(frame.get()); }

    host::Owned<TestFrame> frame =
        TestFrame::create({.width = 4, .height = 2, .format = 32, .rowBytes = 16});
};

TEST_F(FrameAccess, StaysOpenUntilTheLastCopyGoes)
{
    std::shared_ptr<void> bytes = ScopedBufferBytes(frame.get(), BufferAccessReadWrite);
    EXPECT_EQ(bytes.get(), frame->bytes());
    EXPECT_THAT(log, ElementsAre("StartAccess 3", "GetBytes", "AddRef"));

    std::shared_ptr<void> copy = bytes;
    bytes.reset();
    EXPECT_EQ(frame->openAccesses(), 1);
    EXPECT_EQ(frame->references(), 2u); // one keeps the frame alive for the bytes

    log.clear();
    copy.reset();
    EXPECT_THAT(log, ElementsAre("EndAccess 3", "Release"));
    EXPECT_EQ(frame->references(), 1u);
}

TEST_F(FrameAccess, IsEmptyWhereThereAreNoBytes)
{
    EXPECT_EQ(ScopedBufferBytes(nullptr, BufferAccessRead), nullptr);

    frame->getBytesStatus = E_FAIL;
    EXPECT_EQ(ScopedBufferBytes(frame.get(), BufferAccessRead), nullptr);
    EXPECT_THAT(log, ElementsAre("StartAccess 1", "GetBytes", "EndAccess 1"));

    // What was refused is not closed.
    log.clear();
    frame->startAccessStatus = E_FAIL;
    EXPECT_EQ(ScopedBufferBytes(frame.get(), BufferAccessRead), nullptr);
    EXPECT_THAT(log, ElementsAre("StartAccess 1"));
}

TEST_F(FrameAccess, IsUndoneWhereThereIsNoMemoryForTheCount)
{
    log.reserve(16);
    {
        const auto faults = AllocationFaults::fromSize(24);
        EXPECT_THROW(ScopedBufferBytes(frame.get(), BufferAccessRead), std::bad_alloc);
        EXPECT_EQ(faults.failed(), 1);
        EXPECT_EQ(ReadableFrameBytes(frame.get()), nullptr) << "no picture, but no exception";
        EXPECT_EQ(faults.failed(), 2);
    }
    log.resize(5);
    EXPECT_THAT(log, ElementsAre("StartAccess 1", "GetBytes", "AddRef", "EndAccess 1", "Release"));
    EXPECT_EQ(frame->references(), 1u);
    EXPECT_EQ(frame->openAccesses(), 0);
}

class OwningPointer : public FrameAccess {};

TEST_F(OwningPointer, AddsAReferenceToAPlainPointerAndTakesOverAQueriedOne)
{
    {
        const InterfaceRef<IKestrixVideoFrame> plain(frame.get());
        EXPECT_EQ(frame->references(), 2u);
        EXPECT_EQ(plain.id(), IID_IUnknown);

        InterfaceRef<IKestrixVideoBuffer> queried;
        EXPECT_EQ(queried.query(unknown(), IID_IKestrixVideoBuffer), S_OK);
        EXPECT_EQ(queried.get(), static_cast<IKestrixVideoBuffer*>(frame.get()));
        EXPECT_EQ(queried.id(), IID_IKestrixVideoBuffer);
        EXPECT_EQ(frame->references(), 3u);

        // Asked for what the object has not: the old reference goes, none comes.
        EXPECT_EQ(queried.query(unknown(), IID_IKestrixVideoFrameMetadata), E_NOINTERFACE);
        EXPECT_FALSE(queried);
        EXPECT_EQ(frame->references(), 2u);
    }
    EXPECT_EQ(frame->references(), 1u);
}

TEST_F(OwningPointer, CountsCopiesAndMoves)
{
    InterfaceRef<IKestrixVideoFrame> first(frame.get());
    InterfaceRef<IKestrixVideoFrame> copy(first);
    EXPECT_EQ(frame->references(), 3u);
    const InterfaceRef<IKestrixVideoFrame> moved(std::move(copy));
    EXPECT_EQ(frame->references(), 3u);
    first = moved;
    EXPECT_EQ(frame->references(), 3u);
    first.reset();
    first.reset();
    EXPECT_FALSE(first);
    EXPECT_EQ(frame->references(), 2u);
}

} // namespace
} // namespace kestrix::test
