/// Tests the binary interface from outside, in C. Objects are made by hand, each with a table of
/// plain functions, and the library's objects are called by position. A reordered or added
/// operation calls the wrong function.
///
/// Takes no arguments. Prints a line for each fault, and exits with 1 if there was one.
#include <stdint.h>
#include <stdio.h>
#include <string.h>

/// What a register passes: a number, an object or an address. An id takes two registers.
typedef uint64_t Word;
typedef void (*Operation)(void);
typedef Word (*Call)(void* self, Word, Word, Word, Word, Word, Word);
typedef struct {
    uint8_t bytes[16];
} Id;

enum { kWords = 6, kLinks = 8, kOperations = 16, kFirst = 3 };

// clang-format off
static const Id kUnknown = {{
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const Id kFrame = {{
    0xa1, 0x70, 0x65, 0xf5, 0x52, 0xc2, 0x4a, 0xcf, 0x80, 0xef, 0x8f, 0xa9, 0x46, 0x01, 0x00, 0x4b}};
static const Id kBuffer = {{
    0x17, 0x77, 0x8e, 0x83, 0x5e, 0xfe, 0x4e, 0xdf, 0xa3, 0x0a, 0x66, 0x68, 0xb3, 0x0c, 0x97, 0x67}};
static const Id kExtensions = {{
    0x9c, 0x32, 0xc3, 0x68, 0x5b, 0x40, 0x4d, 0x62, 0xbc, 0x40, 0xeb, 0x50, 0x1d, 0x16, 0x8c, 0x71}};
static const Id kHelper = {{
    0xdb, 0x11, 0xc7, 0x0f, 0x66, 0x14, 0x4c, 0x89, 0xb4, 0xba, 0xd2, 0xf1, 0xbc, 0x79, 0xeb, 0x13}};
static const Id kMetadata = {{
    0x9a, 0xea, 0x63, 0xb0, 0x5b, 0x1f, 0x4b, 0xd0, 0xa7, 0x2a, 0x7d, 0x44, 0x3c, 0x0c, 0x6b, 0xd1}};
static const Id kInputFrame = {{
    0xb3, 0xa1, 0xc0, 0x53, 0xbf, 0x9b, 0x43, 0xa5, 0x92, 0xa1, 0x36, 0x49, 0x52, 0x2c, 0x8b, 0x41}};
static const Id kMutableFrame = {{
    0x1d, 0xbf, 0x01, 0x2c, 0x3b, 0x5a, 0x44, 0xd5, 0xa6, 0x09, 0x5a, 0xf6, 0x3e, 0xea, 0x61, 0x0b}};
static const Id kRegistry = {{
    0x7f, 0xd8, 0xa3, 0x7a, 0xfe, 0x46, 0x42, 0x3a, 0xb0, 0x53, 0xf9, 0x07, 0xe2, 0xd9, 0x3c, 0x29}};
static const Id kOldFrame = {{
    0x49, 0x3d, 0xf1, 0x4e, 0x36, 0x51, 0x41, 0xf1, 0x89, 0x26, 0x1a, 0xa1, 0x9b, 0x48, 0x50, 0x75}};
static const Id kOldExtensions = {{
    0x22, 0xed, 0x22, 0xbd, 0x8e, 0xca, 0x45, 0x52, 0x9b, 0x68, 0x04, 0x89, 0xea, 0x14, 0x9a, 0x26}};
static const Id kOldHelper = {{
    0x3a, 0x69, 0x65, 0xbb, 0xb5, 0x1f, 0x4b, 0x98, 0xa4, 0xd9, 0x17, 0xe3, 0xf1, 0x31, 0xd0, 0xd2}};
// clang-format on

void* CreateOpenGLScreenPreviewHelper_0001(void);
void* CreateOpenGLScreenPreviewHelper_0002(void);
void* CreateOpenGL3ScreenPreviewHelper_0001(void);
void* CreateOpenGL3ScreenPreviewHelper_0002(void);

// The `create` functions of the library's adapters, which are not exported.
int32_t attachPlain(void* frame, void** out) __asm__(
    "_ZN26CKestrixVideoFrame_v14_2_16createEP18IKestrixVideoFramePP26IKestrixVideoFrame_v14_2_1");
int32_t attachMutable(void* frame, void** out) __asm__(
    "_ZN33CKestrixMutableVideoFrame_v14_2_16createEP25IKestrixMutableVideoFrame"
    "PP33IKestrixMutableVideoFrame_v14_2_1");
int32_t attachInput(void* frame, void** out) __asm__(
    "_ZN31CKestrixVideoInputFrame_v14_2_16createEP18IKestrixVideoFrame"
    "PP31IKestrixVideoInputFrame_v14_2_1");
void* wrapFrame(void* old) __asm__(
    "_ZN31CKestrixVideoFrame_From_v14_2_16createEP26IKestrixVideoFrame_v14_2_1");
void* wrapExtensions(void* old) __asm__("_ZN43CKestrixVideoFrame3DExtensions_From_v14_2_16createE"
                                        "P38IKestrixVideoFrame3DExtensions_v14_2_1");
void* adaptExtensions(void* current) __asm__(
    "_ZN38CKestrixVideoFrame3DExtensions_v14_2_16createEP30IKestrixVideoFrame3DExtensions");

static int s_failed = 0;

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            fprintf(stderr, "table_walk.c:%d: %s\n", __LINE__, #condition);                        \
            s_failed = 1;                                                                          \
        }                                                                                          \
    } while (0)

// --- Objects made by hand ------------------------------------------------------------------------

/// To the library, this is a pointer to a table of functions.
typedef struct Object {
    const Operation* table;
    /// What queries find, and the registered providers.
    struct {
        Id id;
        void* object;
    } interfaces[kLinks], providers[kLinks];
    /// The position of the operation that registers providers, and the object that has the
    /// providers; null for this one.
    unsigned registers;
    struct Object* registry;
    int references;
    /// The number of calls for each position, and the arguments of the last call.
    unsigned calls[kFirst + kOperations];
    Word words[kWords];
    /// What each position returns, plus 1; 0 if it returns `answerOf`.
    Word answers[kFirst + kOperations];
} Object;

static Word call(void* object, unsigned position, Word a, Word b, Word c)
{
    return ((Call)(*(Operation**)object)[position])(object, a, b, c, 0, 0, 0);
}

static Word word(const void* pointer)
{
    return (Word)(uintptr_t)pointer;
}

static int32_t query(void* object, Id id, void** out)
{
    Word words[2];
    memcpy(words, &id, sizeof(id));
    return (int32_t)call(object, 0, words[0], words[1], word(out));
}

/// Queries an object and gives the new reference back at once.
static void* queried(void* object, Id id)
{
    void* found = NULL;
    query(object, id, &found);
    if (found)
        call(found, 2, 0, 0, 0);
    return found;
}

static int32_t queryInterface(Object* self, Id id, void** out)
{
    Object* const registry = self->registry ? self->registry : self;
    for (unsigned i = 0; i < kLinks; ++i)
        if (registry->providers[i].object && !memcmp(&registry->providers[i].id, &id, sizeof(id)))
            return query(registry->providers[i].object, id, out);
    *out = NULL;
    for (unsigned i = 0; i < kLinks && !*out; ++i)
        if (self->interfaces[i].object && !memcmp(&self->interfaces[i].id, &id, sizeof(id)))
            *out = self->interfaces[i].object;
    if (!*out)
        return (int32_t)0x80000004;
    call(*out, 1, 0, 0, 0);
    return 0;
}

static uint32_t addRef(Object* self)
{
    return (uint32_t)++self->references;
}

static uint32_t release(Object* self)
{
    return (uint32_t)--self->references;
}

/// An answer that shows the position, in all its 64 bits.
static Word answerOf(unsigned position)
{
    return 0x0123456700001000 + position;
}

static Word operate(Object* self, unsigned position, const Word* words)
{
    ++self->calls[position];
    memcpy(self->words, words, sizeof(self->words));
    if (position == self->registers) {
        unsigned i = 0;
        while (self->providers[i].object)
            ++i;
        memcpy(&self->providers[i].id, words, sizeof(Id));
        self->providers[i].object = (void*)(uintptr_t)words[2];
        call(self->providers[i].object, 1, 0, 0, 0);
        return 0;
    }
    return self->answers[position] ? self->answers[position] - 1 : answerOf(position);
}

#define EACH_OPERATION(X)                                                                          \
    X(3) X(4) X(5) X(6) X(7) X(8) X(9) X(10) X(11) X(12) X(13) X(14) X(15) X(16) X(17) X(18)
#define DEFINE(n)                                                                                  \
    static Word operation##n(Object* self, Word a, Word b, Word c, Word d, Word e, Word f)         \
    {                                                                                              \
        const Word words[kWords] = {a, b, c, d, e, f};                                             \
        return operate(self, n, words);                                                            \
    }
EACH_OPERATION(DEFINE)
#define NAME(n) (Operation) operation##n,
static const Operation kTable[] = {(Operation)queryInterface, (Operation)addRef, (Operation)release,
                                   EACH_OPERATION(NAME)};

static Object made(void)
{
    Object object = {.table = kTable, .references = 1};
    return object;
}

static void link(Object* object, Id id, void* interface)
{
    unsigned i = 0;
    while (object->interfaces[i].object)
        ++i;
    object->interfaces[i].id = id;
    object->interfaces[i].object = interface;
}

/// Makes an operation return a number.
static void answer(Object* object, unsigned position, Word value)
{
    object->answers[position] = value + 1;
}

static unsigned calls(const Object* object)
{
    unsigned count = 0;
    for (unsigned i = 0; i < kFirst + kOperations; ++i)
        count += object->calls[i];
    return count;
}

// --- Operations that hand on ---------------------------------------------------------------------

/// An operation by its position, the operation of the inner object that it must call, and the sizes
/// of its arguments in bits.
typedef struct {
    unsigned outer, inner;
    unsigned bits[kWords];
} Forwarding;

static const Forwarding kEnd = {0, 0, {0}};

static const Forwarding kProperties[] = {{3, 3, {0}}, {4, 4, {0}}, {5, 5, {0}},
                                         {6, 6, {0}}, {7, 7, {0}}, {0, 0, {0}}};

static void forwards(const char* what, void* outer, Object* inner, const Forwarding* operations)
{
    for (const Forwarding* f = operations; f->outer; ++f) {
        void* place = NULL;
        const Word sent[kWords] = {word(&place),     0x2122232425262728, 0x0031323334353637,
                                   0x41424344454647, 0x5152535455565758, 0x6162636465666768};
        memset(inner->calls, 0, sizeof(inner->calls));
        const Word answered = ((Call)(*(Operation**)outer)[f->outer])(
            outer, sent[0], sent[1], sent[2], sent[3], sent[4], sent[5]);
        // The first three properties have 64 bits; all other results have 32.
        const unsigned unused =
            f->outer == f->inner && f->outer <= 5 && operations == kProperties ? 0 : 32;
        int good = calls(inner) == 1 && inner->calls[f->inner] == 1 &&
                   answered << unused == answerOf(f->inner) << unused;
        for (unsigned i = 0; i < kWords && f->bits[i]; ++i)
            good &= (inner->words[i] ^ sent[i]) << (64 - f->bits[i]) == 0;
        if (!good) {
            fprintf(stderr, "table_walk.c: %s: operation %u is not %u of the other side\n", what,
                    f->outer, f->inner);
            s_failed = 1;
        }
    }
}

#define FORWARDS(what, outer, inner, ...)                                                          \
    do {                                                                                           \
        const Forwarding operations[] = {__VA_ARGS__, kEnd};                                       \
        forwards(what, outer, inner, operations);                                                  \
    } while (0)

static void walkWrappedFrame(void)
{
    Object old = made();
    void* const frame = wrapFrame(&old);
    CHECK(queried(frame, kUnknown) == frame && queried(frame, kFrame) == frame);
    CHECK((uint32_t)call(frame, 1, 0, 0, 0) == 2 && (uint32_t)call(frame, 2, 0, 0, 0) == 1);
    forwards("frame", frame, &old, kProperties);
    FORWARDS("frame", frame, &old, {8, 9, {32, 64}}, {9, 10, {64}}); // timecode, ancillary data

    void* const buffer = queried(frame, kBuffer);
    CHECK(buffer != NULL);
    FORWARDS("buffer", buffer, &old, {3, 8, {64}}); // GetBytes
    memset(old.calls, 0, sizeof(old.calls));
    CHECK((int32_t)call(buffer, 4, 1, 0, 0) == 0 && (int32_t)call(buffer, 5, 1, 0, 0) == 0);
    CHECK(calls(&old) == 0);
    CHECK(old.references == 2);
    call(frame, 11, 0, 0, 0); // the deleting destructor
    CHECK(old.references == 1);
}

/// Gives the providers back, which destroys the adapters.
static void detach(Object* registry)
{
    for (unsigned i = 0; i < kLinks; ++i)
        if (registry->providers[i].object)
            call(registry->providers[i].object, 2, 0, 0, 0);
}

static void walkAdapters(void)
{
    Object frame = made();
    Object buffer = made();
    void* plain = NULL;
    void* changeable = NULL;
    link(&frame, kBuffer, &buffer);
    link(&frame, kMutableFrame, &frame);
    frame.registers = 17; // RegisterInterfaceProvider
    CHECK(attachPlain(&frame, &plain) == 0);
    CHECK(buffer.calls[4] == 1 && buffer.calls[3] == 1); // StartAccess, GetBytes
    detach(&frame);
    memset(frame.providers, 0, sizeof(frame.providers));
    CHECK(attachMutable(&frame, &changeable) == 0);
    forwards("mutable frame", changeable, &frame, kProperties);
    FORWARDS("mutable frame", changeable, &frame, {9, 8, {32, 64}}, {10, 9, {64}},
             {13, 12, {32}},                                     // SetFlags
             {14, 13, {32, 64}},                                 // SetTimecode
             {15, 14, {32, 8, 8, 8, 8}},                         // SetTimecodeFromComponents
             {16, 15, {64}},                                     // SetAncillaryData
             {17, 16, {32, 32}});                                // SetTimecodeUserBits
    CHECK((uint32_t)call(changeable, 8, 0, 0, 0) == 0x80000005); // GetBytes
    detach(&frame);

    Object input = made();
    Object registry = made();
    Object extensions = made();
    void* old = NULL;
    registry.registers = 5; // RegisterInterfaceProvider
    input.registry = &registry;
    link(&input, kInputFrame, &input);
    link(&input, kRegistry, &registry);
    link(&input, kExtensions, &extensions);
    CHECK(attachInput(&input, &old) == 0);
    forwards("input frame", old, &input, kProperties);
    FORWARDS("input frame", old, &input, {9, 8, {32, 64}}, {10, 9, {64}},
             {13, 12, {64, 64, 64}},  // GetStreamTime
             {14, 13, {64, 64, 64}}); // GetHardwareReferenceTimestamp
    CHECK(queried(old, kOldFrame) == old);
    CHECK(queried(old, kOldExtensions) != NULL);
    CHECK(input.references == 2);
    detach(&registry);
}

static void walkExtensions(void)
{
    Object inner[2] = {made(), made()};
    void* const outer[2] = {wrapExtensions(&inner[0]), adaptExtensions(&inner[1])};
    for (int i = 0; i < 2; ++i) {
        FORWARDS("3D extensions", outer[i], &inner[i], {3, 3, {0}}, {4, 4, {0}});
        CHECK(inner[i].references == 2);
        call(outer[i], 6, 0, 0, 0); // the deleting destructor
        CHECK(inner[i].references == 1);
    }
}

// --- Helpers, and the frames that they ask -------------------------------------------------------

static uint32_t s_pixels[4];

/// `GetBytes`. It is counted at 0, where no other operation is counted.
static Word giveBytes(Object* self, void** out)
{
    ++self->calls[0];
    *out = s_pixels;
    return 0;
}

static Word giveRec709(Object* self, uint32_t id, int64_t* out)
{
    ++self->calls[kFirst];
    CHECK(id == 0x63737063);
    *out = 0x72373039;
    return 0;
}

/// Makes a frame of 2 by 2 pixels of BGRA, for both revisions, up to position 7.
static void describe(Object* frame)
{
    const Word answers[] = {2, 2, 8, 0x42475241, 0};
    for (unsigned i = 0; i < 5; ++i)
        answer(frame, kFirst + i, answers[i]);
}

static void walkLegacyHelper(void)
{
    Operation bufferTable[6];
    memcpy(bufferTable, kTable, sizeof(bufferTable));
    bufferTable[3] = (Operation)giveBytes;
    const Operation metadataTable[] = {kTable[0], kTable[1], kTable[2], (Operation)giveRec709};
    Object frame = made();
    Object buffer = made();
    Object metadata = made();
    Object extensions = made();
    buffer.table = bufferTable;
    metadata.table = metadataTable;
    answer(&buffer, 4, 0);
    answer(&buffer, 5, 0);
    answer(&extensions, 3, 0x6c656674);
    answer(&extensions, 4, 0x80000008);
    describe(&frame);
    link(&frame, kBuffer, &buffer);
    link(&frame, kMetadata, &metadata);
    link(&frame, kExtensions, &extensions);

    void* const helper = CreateOpenGLScreenPreviewHelper_0002();
    CHECK(queried(helper, kHelper) == helper);
    CHECK((int32_t)call(helper, 6, 0x746f7062, 0, 0) == 0);   // Set3DPreviewFormat
    CHECK((int32_t)call(helper, 5, word(&frame), 0, 0) == 0); // SetFrame
    CHECK(buffer.calls[4] == 1 && buffer.calls[5] == 1);      // StartAccess, EndAccess
    CHECK((uint32_t)buffer.words[0] == 1);                    // for reading
    CHECK(buffer.calls[0] == 1);                              // GetBytes
    CHECK(metadata.calls[kFirst] > 0);
    CHECK(extensions.calls[3] == 1 && extensions.calls[4] == 1);
    CHECK((int32_t)call(helper, 2, 0, 0, 0) == 0);
    CHECK(frame.references == 1 && buffer.references == 1 && metadata.references == 1 &&
          extensions.references == 1);
}

static void walkOldHelper(void)
{
    Operation frameTable[kFirst + kOperations];
    memcpy(frameTable, kTable, sizeof(frameTable));
    frameTable[8] = (Operation)giveBytes;
    Object frame = made();
    frame.table = frameTable;
    describe(&frame);
    void* const helper = CreateOpenGLScreenPreviewHelper_0001();
    void* const current = queried(helper, kHelper);
    CHECK(queried(helper, kOldHelper) == helper);
    CHECK(current != NULL && current != helper);
    CHECK((int32_t)call(helper, 6, 0x6c656674, 0, 0) == 0);
    CHECK((int32_t)call(helper, 5, word(&frame), 0, 0) == 0);
    CHECK(frame.calls[0] == 1); // GetBytes
    CHECK((int32_t)call(helper, 2, 0, 0, 0) == 0);
    CHECK(frame.references == 1);
}

/// Calls operations whose result is defined before there is a context.
static void walkGL3Helpers(void)
{
    Object frame = made();
    void* const helpers[2] = {CreateOpenGL3ScreenPreviewHelper_0002(),
                              CreateOpenGL3ScreenPreviewHelper_0001()};
    for (int i = 0; i < 2; ++i) {
        CHECK((uint32_t)call(helpers[i], 3, 0, 0, 0) == 0x80000001);  // InitializeGL
        CHECK((uint32_t)call(helpers[i], 4, 0, 0, 0) == 0x80000008);  // PaintGL
        CHECK((int32_t)call(helpers[i], 6, 0x6c656674, 0, 0) == 0);   // Set3DPreviewFormat
        CHECK((int32_t)call(helpers[i], 5, word(&frame), 0, 0) == 0); // SetFrame
        CHECK(frame.references == 2);
        CHECK((int32_t)call(helpers[i], 5, 0, 0, 0) == 0);
        CHECK(frame.references == 1);
        call(helpers[i], 8, 0, 0, 0); // the deleting destructor
    }
}

int main(void)
{
    walkWrappedFrame();
    walkAdapters();
    walkExtensions();
    walkLegacyHelper();
    walkOldHelper();
    walkGL3Helpers();
    return s_failed;
}
