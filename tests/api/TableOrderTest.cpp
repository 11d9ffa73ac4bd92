/// The binary interface from outside: objects made by hand, with tables of plain functions, and the
/// library's own called by position. A reordered or added operation calls the wrong function.
///
/// Of the headers only ids, codes and factories are used; no C++ class is called or derived from.
#include "api/v14_2_1/GLScreenPreviewHelper.h"
#include "api/v14_2_1/ProvidedFrames.h"
#include "api/v14_2_1/VideoFrame3DExtensions.h"
#include "api/v14_2_1/VideoFrame_From.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;

/// What goes through a register: a number, or an object or its address. An id goes through two.
using Word = std::uint64_t;
constexpr unsigned kWords = 6;

/// What an operation of a hand-made object answers, a number of its own.
constexpr Word kAnswer = 0x0123456700001000;

/// An object made by hand: for the library, a pointer to a table of functions.
struct HandMade {
    const void* const* table;
    /// What queries find: objects, and providers that were registered with one of them.
    std::vector<std::pair<REFIID, HandMade*>> interfaces{};
    std::vector<std::pair<REFIID, void*>> providers{};
    /// The position of the operation that registers providers.
    unsigned registers = 0;
    int references = 1;
    /// Positions called, `IUnknown`'s left out, and what came with the last call.
    std::vector<unsigned> calls{};
    std::array<Word, kWords> words{};
    /// What to do when called, beside taking it down.
    std::function<Word(unsigned position)> perform = [](unsigned position) {
        return kAnswer + position;
    };
};

/// Calls an operation by its position.
template<class... WORDS>
Word call(void* object, unsigned position, WORDS... words)
{
    void** const table = *static_cast<void***>(object);
    return reinterpret_cast<Word (*)(void*, WORDS...)>(table[position])(object, words...);
}

HRESULT status(Word answer)
{
    return static_cast<HRESULT>(answer);
}

Word word(const void* pointer)
{
    return reinterpret_cast<Word>(pointer);
}

/// Queries by position; gives the reference back at once and answers the pointer.
void* queried(void* object, const REFIID& id)
{
    std::array<Word, 2> words{};
    std::memcpy(words.data(), id.bytes, sizeof(words));
    void* found = nullptr;
    call(object, 0, words[0], words[1], word(&found));
    if (found)
        call(found, 2);
    return found;
}

Word handMadeQueryInterface(HandMade* self, Word low, Word high, void** out)
{
    REFIID id{};
    std::memcpy(id.bytes, &low, sizeof(low));
    std::memcpy(id.bytes + sizeof(low), &high, sizeof(high));
    for (const auto& [any, object] : self->interfaces)
        for (const auto& [known, provider] : object->providers)
            if (known == id)
                return call(provider, 0, low, high, word(out));
    for (const auto& [known, object] : self->interfaces)
        if (known == id) {
            ++object->references;
            *out = object;
            return S_OK;
        }
    *out = nullptr;
    return static_cast<Word>(E_NOINTERFACE);
}

Word handMadeAddRef(HandMade* self)
{
    return static_cast<Word>(++self->references);
}

Word handMadeRelease(HandMade* self)
{
    return static_cast<Word>(--self->references);
}

template<unsigned POSITION>
Word handMadeOperation(HandMade* self, Word a, Word b, Word c, Word d, Word e, Word f)
{
    self->calls.push_back(POSITION);
    self->words = {a, b, c, d, e, f};
    if (POSITION == self->registers) {
        REFIID id{};
        std::memcpy(id.bytes, &a, sizeof(a));
        std::memcpy(id.bytes + sizeof(a), &b, sizeof(b));
        self->providers.emplace_back(id, reinterpret_cast<void*>(c));
        call(reinterpret_cast<void*>(c), 1);
        return S_OK;
    }
    return self->perform(POSITION);
}

template<unsigned... POSITIONS>
std::array<const void*, 5 + sizeof...(POSITIONS)>
makeTable(const std::type_info& type, std::integer_sequence<unsigned, POSITIONS...>)
{
    // In front of a table stand an offset and the type, which only sanitizers look at.
    return {nullptr,
            &type,
            reinterpret_cast<const void*>(handMadeQueryInterface),
            reinterpret_cast<const void*>(handMadeAddRef),
            reinterpret_cast<const void*>(handMadeRelease),
            reinterpret_cast<const void*>(handMadeOperation<POSITIONS + 3>)...};
}

/// An object that passes as an `INTERFACE`.
template<class INTERFACE>
HandMade handMade()
{
    static const auto table =
        makeTable(typeid(INTERFACE), std::make_integer_sequence<unsigned, 16>());
    return {table.data() + 2};
}

template<class INTERFACE>
INTERFACE* as(void* object)
{
    return static_cast<INTERFACE*>(object);
}

/// An operation of `outer`, by position, and the one of `inner` that it has to reach, the sizes of
/// its arguments in bits.
struct Forwarding {
    unsigned outer;
    unsigned inner;
    std::vector<unsigned> bits{};
    bool whole = false; ///< the answer has 64 bits
};

void expectForwarding(void* outer, HandMade& inner, const std::vector<Forwarding>& operations)
{
    for (const Forwarding& operation : operations) {
        SCOPED_TRACE(operation.outer);
        inner.calls.clear();
        void* place = nullptr;
        const std::array<Word, kWords> sent = {word(&place),     0x2122232425262728,
                                               0x31323334353637, 0x414243444546474,
                                               0x51525354555657, 0x61626364656667};
        const Word answer =
            call(outer, operation.outer, sent[0], sent[1], sent[2], sent[3], sent[4], sent[5]);
        ASSERT_THAT(inner.calls, ElementsAre(operation.inner));
        const unsigned unusedInAnswer = operation.whole ? 0 : 32;
        EXPECT_EQ(answer << unusedInAnswer, (kAnswer + operation.inner) << unusedInAnswer);
        for (std::size_t i = 0; i < operation.bits.size(); ++i) {
            const unsigned unused = 64 - operation.bits[i];
            EXPECT_EQ(inner.words[i] << unused, sent[i] << unused) << "argument " << i;
        }
    }
}

const std::vector<Forwarding> kSameInAllFrames = {
    {3, 3, {}, true}, // GetWidth
    {4, 4, {}, true}, // GetHeight
    {5, 5, {}, true}, // GetRowBytes
    {6, 6},           // GetPixelFormat
    {7, 7},           // GetFlags
};

TEST(TableOrder, OfAnOldFrameAndItsWrapper)
{
    HandMade old = handMade<IKestrixVideoFrame_v14_2_1>();
    void* const frame =
        CKestrixVideoFrame_From_v14_2_1::create(as<IKestrixVideoFrame_v14_2_1>(&old));
    EXPECT_EQ(queried(frame, IID_IUnknown), frame);
    EXPECT_EQ(status(call(frame, 1)), 2);
    EXPECT_EQ(status(call(frame, 2)), 1);
    expectForwarding(frame, old, kSameInAllFrames);
    expectForwarding(frame, old, {{8, 9, {32, 64}}, {9, 10, {64}}}); // timecode, ancillary data

    void* const buffer = queried(frame, IID_IKestrixVideoBuffer);
    ASSERT_NE(buffer, nullptr);
    expectForwarding(buffer, old, {{3, 8, {64}}}); // GetBytes
    old.calls.clear();
    EXPECT_EQ(status(call(buffer, 4, Word{1})), S_OK);
    EXPECT_EQ(status(call(buffer, 5, Word{1})), S_OK);
    EXPECT_THAT(old.calls, ElementsAre());

    EXPECT_EQ(old.references, 2);
    call(frame, 11); // the deleting destructor
    EXPECT_EQ(old.references, 1);
}

class AttachedAdapter : public testing::Test {
protected:
    /// Gives the providers back, with which the adapters go.
    static void detach(HandMade& registry)
    {
        for (const auto& [id, provider] : registry.providers)
            call(provider, 2);
    }

    HandMade buffer = handMade<IKestrixVideoBuffer>();
};

TEST_F(AttachedAdapter, OfAFrameAndAMutableFrame)
{
    HandMade frame = handMade<IKestrixMutableVideoFrame>();
    frame.interfaces = {{IID_IKestrixVideoBuffer, &buffer},
                        {IID_IKestrixMutableVideoFrame, &frame}};
    frame.registers = 17;
    IKestrixVideoFrame_v14_2_1* plain = nullptr;
    ASSERT_EQ(CKestrixVideoFrame_v14_2_1::create(as<IKestrixVideoFrame>(&frame), &plain), S_OK);
    EXPECT_THAT(buffer.calls, ElementsAre(4, 3)); // StartAccess, GetBytes
    IKestrixMutableVideoFrame_v14_2_1* changeable = nullptr;
    ASSERT_EQ(CKestrixMutableVideoFrame_v14_2_1::create(as<IKestrixMutableVideoFrame>(&frame),
                                                        &changeable),
              S_OK);

    for (void* const old : {static_cast<void*>(plain), static_cast<void*>(changeable)}) {
        expectForwarding(old, frame, kSameInAllFrames);
        expectForwarding(old, frame, {{9, 8, {32, 64}}, {10, 9, {64}}});
        EXPECT_EQ(status(call(old, 8, Word{0})), E_POINTER); // GetBytes
    }
    expectForwarding(changeable, frame,
                     {{13, 12, {32}},                 // SetFlags
                      {14, 13, {32, 64}},             // SetTimecode
                      {15, 14, {32, 8, 8, 8, 8, 32}}, // SetTimecodeFromComponents
                      {16, 15, {64}},                 // SetAncillaryData
                      {17, 16, {32, 32}}});           // SetTimecodeUserBits
    EXPECT_EQ(frame.references, 3);
    detach(frame);
}

TEST_F(AttachedAdapter, OfAnInputFrameAndItsExtensions)
{
    HandMade frame = handMade<IKestrixVideoInputFrame>();
    HandMade registry = handMade<IKestrixFrameProviderRegistry>();
    HandMade extensions = handMade<IKestrixVideoFrame3DExtensions>();
    registry.registers = 5;
    frame.interfaces = {{IID_IKestrixVideoInputFrame, &frame},
                        {IID_IKestrixFrameProviderRegistry, &registry},
                        {IID_IKestrixVideoFrame3DExtensions, &extensions}};
    IKestrixVideoInputFrame_v14_2_1* old = nullptr;
    ASSERT_EQ(CKestrixVideoInputFrame_v14_2_1::create(as<IKestrixVideoFrame>(&frame), &old), S_OK);
    expectForwarding(old, frame, kSameInAllFrames);
    expectForwarding(old, frame, {{9, 8, {32, 64}}, {10, 9, {64}}});
    expectForwarding(old, frame,
                     {{13, 12, {64, 64, 64}},   // GetStreamTime
                      {14, 13, {64, 64, 64}}}); // GetHardwareReferenceTimestamp
    EXPECT_EQ(queried(old, IID_IKestrixVideoFrame_v14_2_1), old);
    EXPECT_EQ(frame.references, 2);
    detach(registry);
}

TEST(TableOrder, OfStereoscopicExtensions)
{
    HandMade oldExtensions = handMade<IKestrixVideoFrame3DExtensions_v14_2_1>();
    HandMade extensions = handMade<IKestrixVideoFrame3DExtensions>();
    const std::pair<void*, HandMade*> both[] = {
        {CKestrixVideoFrame3DExtensions_From_v14_2_1::create(
             as<IKestrixVideoFrame3DExtensions_v14_2_1>(&oldExtensions)),
         &oldExtensions},
        {CKestrixVideoFrame3DExtensions_v14_2_1::create(
             as<IKestrixVideoFrame3DExtensions>(&extensions)),
         &extensions}};
    for (const auto& [outer, inner] : both) {
        expectForwarding(outer, *inner, {{3, 3}, {4, 4}}); // packing, right eye
        EXPECT_EQ(inner->references, 2);
        call(outer, 6); // the deleting destructor
        EXPECT_EQ(inner->references, 1);
    }
}

TEST(TableOrder, OfHelpers)
{
    HandMade current = handMade<IKestrixGLScreenPreviewHelper>();
    void* const old =
        new CKestrixGLScreenPreviewHelper_v14_2_1(as<IKestrixGLScreenPreviewHelper>(&current));
    expectForwarding(old, current, {{3, 3}, {4, 4}, {6, 6, {32}}}); // initialise, paint, 3D format
    current.calls.clear();
    EXPECT_EQ(status(call(old, 5, Word{0})), status(kAnswer + 5)); // SetFrame
    EXPECT_THAT(current.calls, ElementsAre(5));
    EXPECT_EQ(current.words[0], 0U);
    EXPECT_EQ(current.references, 2);
    call(old, 8); // the deleting destructor
    EXPECT_EQ(current.references, 1);
}

/// A picture of 2 by 2 black pixels whose parts are made by hand.
class PreviewedFrame : public testing::Test {
protected:
    /// Answers as frames of both revisions do up to position 7.
    Word describe(unsigned position) const
    {
        const Word answers[] = {2, 2, 8, 0x42475241 /* "BGRA" */, 0};
        return position >= 3 && position <= 7 ? answers[position - 3] : kAnswer;
    }

    /// Does what an operation does that gives the bytes.
    Word giveBytes(HandMade& object)
    {
        *reinterpret_cast<void**>(object.words[0]) = bytes;
        return S_OK;
    }

    std::uint32_t bytes[4] = {};
};

// Through the fixed-function helper, which needs no GL to take a frame.
TEST_F(PreviewedFrame, IsAskedByPosition)
{
    HandMade frame = handMade<IKestrixVideoFrame>();
    HandMade buffer = handMade<IKestrixVideoBuffer>();
    HandMade metadata = handMade<IKestrixVideoFrameMetadata>();
    HandMade extensions = handMade<IKestrixVideoFrame3DExtensions>();
    frame.interfaces = {{IID_IKestrixVideoBuffer, &buffer},
                        {IID_IKestrixVideoFrameMetadata, &metadata},
                        {IID_IKestrixVideoFrame3DExtensions, &extensions}};
    frame.perform = [&](unsigned position) { return describe(position); };
    buffer.perform = [&](unsigned position) {
        if (position == 3)
            return giveBytes(buffer);
        EXPECT_EQ(buffer.words[0] & 0xffffffff, BufferAccessRead);
        return Word{S_OK};
    };
    metadata.perform = [&](unsigned position) {
        EXPECT_EQ(position, 3U);
        EXPECT_EQ(metadata.words[0] & 0xffffffff, MetadataColorspace);
        *reinterpret_cast<std::int64_t*>(metadata.words[1]) = ColorspaceCodeRec709;
        return Word{S_OK};
    };
    extensions.perform = [](unsigned position) {
        return position == 3 ? Word{Packing3DLeftOnly} : Word{S_OK};
    };

    void* const helper = CreateOpenGLScreenPreviewHelper_0002();
    EXPECT_EQ(queried(helper, IID_IKestrixGLScreenPreviewHelper), helper);
    EXPECT_EQ(status(call(helper, 6, Word{Preview3DTopBottom})), S_OK); // Set3DPreviewFormat
    EXPECT_EQ(status(call(helper, 5, word(&frame))), S_OK);             // SetFrame
    EXPECT_THAT(buffer.calls, ElementsAre(4, 3, 5)); // StartAccess, GetBytes, EndAccess
    EXPECT_FALSE(metadata.calls.empty());
    EXPECT_THAT(extensions.calls, ElementsAre(3, 4)); // Get3DPackingFormat, GetFrameForRightEye
    EXPECT_EQ(status(call(helper, 2)), 0);
    for (const HandMade* object : {&frame, &buffer, &metadata, &extensions})
        EXPECT_EQ(object->references, 1);
}

TEST_F(PreviewedFrame, OfTheOldRevisionIsAskedByPosition)
{
    HandMade frame = handMade<IKestrixVideoFrame_v14_2_1>();
    frame.perform = [&](unsigned position) {
        return position == 8 ? giveBytes(frame) : describe(position);
    };
    void* const helper = CreateOpenGLScreenPreviewHelper_0001();
    EXPECT_EQ(queried(helper, IID_IKestrixGLScreenPreviewHelper_v14_2_1), helper);
    EXPECT_EQ(status(call(helper, 5, word(&frame))), S_OK);
    EXPECT_THAT(frame.calls, testing::Contains(8U).Times(1));
    EXPECT_EQ(status(call(helper, 2)), 0);
    EXPECT_EQ(frame.references, 1);
}

} // namespace
