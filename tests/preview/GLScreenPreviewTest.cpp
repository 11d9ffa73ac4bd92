/// The fixed-function helper: what it converts into its slots, and how slots reach the texture.
#include "tests/common/AllocationFaults.h"
#include "tests/common/CaseName.h"
#include "tests/common/GuardedBytes.h"
#include "tests/common/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kestrix::test {
namespace {

constexpr MemoryFrameOptions rgba(std::int64_t width, std::int64_t height)
{
    return {.width = width, .height = height, .format = code("RGBA")};
}

/// A frame whose pixels are their column, their line, `tag` and an alpha of 77. A frame in `RGBA`
/// is shown as it is.
Frame taggedFrame(const MemoryFrameOptions& options, int tag)
{
    Frame frame = TestFrame::create(options);
    for (std::int64_t y = 0; y < options.height; ++y)
        for (std::int64_t x = 0; x < options.width; ++x) {
            const std::int64_t pixel[] = {x, y, tag, 77};
            std::ranges::copy(pixel, frame->bytes() + y * frame->GetRowBytes() + x * 4);
        }
    return frame;
}

Frame small(int tag)
{
    return taggedFrame(rgba(16, 8), tag);
}

/// What was uploaded to the texture.
struct Upload {
    bool newTexture = false;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    const std::uint8_t* pixel(int x, int y) const
    {
        return &bytes.at(static_cast<std::size_t>(y * width + x) * 4);
    }
};

/// The part of a frame that is expected at a place of the texture.
struct Part {
    int tag;
    int width = 16;
    int rows = 4;
    int firstLine = 0;
    int lineStep = 2;
    int left = 0;
    int top = 0;
};

void expectPart(const Upload& upload, const Part& part)
{
    for (int y = 0; y < part.rows; ++y)
        for (int x = 0; x < part.width; ++x) {
            const int pixel[] = {x % 256, part.firstLine + y * part.lineStep, part.tag, 77};
            const auto* const got = upload.pixel(part.left + x, part.top + y);
            ASSERT_TRUE(std::ranges::equal(pixel, std::span(got, 4)))
                << "tag " << part.tag << ", column " << x << ", line " << y;
        }
}

constexpr const char* kNonPowerOfTwo = "GL_ARB_texture_non_power_of_two";
constexpr const char* kPixelBuffers = "GL_ARB_pixel_buffer_object";

class GLPreview : public FakeGLTest {
protected:
    explicit GLPreview(const char* extensions = kNonPowerOfTwo)
    {
        gl.fake.extensions = extensions;
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        gl.observe("glTexImage2D", [this](const GLCall& made) { take(true, 3, made); });
        gl.observe("glTexSubImage2D", [this](const GLCall& made) { take(false, 4, made); });
    }

    /// Paints and returns what was uploaded.
    std::optional<Upload> paint()
    {
        gl.clear();
        EXPECT_EQ(helper->PaintGL(), S_OK);
        return std::exchange(m_upload, std::nullopt);
    }

    /// Sets a frame and paints. Fails if nothing is uploaded.
    Upload show(const Frame& frame)
    {
        EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
        const std::optional<Upload> upload = paint();
        EXPECT_TRUE(upload);
        return upload.value_or(Upload{});
    }

    /// Fails unless the quad was drawn with the picture up to these texture coordinates.
    void expectQuad(double s, double t) const
    {
        EXPECT_THAT(gl.callsTo({"glTexCoord2f"}),
                    ElementsAre(call("glTexCoord2f", 0, t), call("glTexCoord2f", s, t),
                                call("glTexCoord2f", s, 0), call("glTexCoord2f", 0, 0)));
    }

    Helper helper{CreateOpenGLScreenPreviewHelper_0002()};

private:
    void take(bool newTexture, std::size_t firstSize, const GLCall& made)
    {
        const auto width = static_cast<int>(made.arguments[firstSize]);
        const auto height = static_cast<int>(made.arguments[firstSize + 1]);
        m_upload = Upload{newTexture, width, height, {}};
        const auto size = static_cast<std::size_t>(width * height) * 4;
        const void* const source = made.address(8);
        if (const unsigned buffer = gl.fake.boundBuffers[GL_PIXEL_UNPACK_BUFFER]) {
            EXPECT_EQ(source, nullptr);
            // The buffer is as large as the slot's memory, which never shrinks.
            m_upload->bytes = gl.fake.bufferBytes[buffer];
            EXPECT_GE(m_upload->bytes.size(), size);
        } else {
            const auto* bytes = static_cast<const std::uint8_t*>(source);
            m_upload->bytes.assign(bytes, bytes + size);
        }
    }

    std::optional<Upload> m_upload;
};

// --- With and without the extensions -------------------------------------------------------------

struct Context {
    const char* name;
    const char* extensions;
};

class GLPreviewWith : public GLPreview, public testing::WithParamInterface<Context> {
protected:
    GLPreviewWith() : GLPreview(GetParam().extensions) {}
};

TEST_P(GLPreviewWith, SizesTheTextureForThePicture)
{
    const std::string extensions = GetParam().extensions;
    const bool anySize = extensions.find(kNonPowerOfTwo) != std::string::npos;
    struct {
        int width, height;
        int textureWidth, textureHeight; // rounded to powers of two
    } const cases[] = {
        {1920, 1080, 2048, 1024}, {1024, 64, 1024, 32}, {5, 2, 8, 1}, {65, 66, 128, 64}};
    for (const auto& c : cases) {
        const Upload upload = show(TestFrame::create(rgba(c.width, c.height)));
        const int width = anySize ? c.width : c.textureWidth;
        const int height = anySize ? c.height / 2 : c.textureHeight;
        EXPECT_EQ(upload.width, width);
        EXPECT_EQ(upload.height, height);
        expectQuad(static_cast<float>(c.width) / static_cast<float>(width),
                   static_cast<float>(c.height / 2) / static_cast<float>(height));
    }
}

TEST_P(GLPreviewWith, MakesATextureASlotAndUpdatesItThen)
{
    for (int i = 0; i < 6; ++i) {
        const Upload upload = show(small(i));
        EXPECT_EQ(upload.newTexture, i < 2) << i;
        expectPart(upload, {.tag = i});
        const GLCall expected = i < 2 ? call("glTexImage2D", GL_TEXTURE_2D, 0, GL_RGB, 16, 4, 0,
                                             GL_RGBA, GL_UNSIGNED_BYTE, kAny)
                                      : call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0, 0, 16, 4,
                                             GL_RGBA, GL_UNSIGNED_BYTE, kAny);
        EXPECT_THAT(gl.calls(), Contains(expected));
        for (const auto& [parameter, value] : {std::pair{GL_TEXTURE_MIN_FILTER, GL_LINEAR},
                                               {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                                               {GL_TEXTURE_WRAP_S, GL_CLAMP},
                                               {GL_TEXTURE_WRAP_T, GL_CLAMP}})
            EXPECT_EQ(std::ranges::count(gl.calls(),
                                         call("glTexParameteri", GL_TEXTURE_2D, parameter, value)),
                      i < 2);
    }
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);
    EXPECT_FALSE(paint()) << "a repaint has nothing to upload";
    expectQuad(1, 1);

    // For another size, new textures replace the old ones.
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(show(TestFrame::create(rgba(8, 8))).newTexture, i < 2);
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);

    // After another initialisation, the picture gets a new texture.
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_TRUE(paint().value_or(Upload{}).newTexture);

    // The helper deletes its buffers; the textures stay.
    gl.clear();
    helper.reset();
    EXPECT_THAT(gl.fake.liveOf("buffer"), IsEmpty());
    EXPECT_THAT(gl.callNames(), Each("glDeleteBuffers"));
}

INSTANTIATE_TEST_SUITE_P(
    Contexts, GLPreviewWith,
    testing::Values(Context{"Bare", ""}, Context{"AnySize", kNonPowerOfTwo},
                    Context{"Buffers", kPixelBuffers},
                    Context{"Both",
                            "GL_a GL_ARB_texture_non_power_of_two GL_ARB_pixel_buffer_object"}),
    caseName);

class GLPreviewWithBuffers : public GLPreview {
protected:
    GLPreviewWithBuffers() : GLPreview(kPixelBuffers) {}
};

TEST_F(GLPreviewWithBuffers, StreamsThroughTheSlotsBuffer)
{
    const std::vector<unsigned> buffers = gl.fake.liveOf("buffer");
    for (std::size_t i = 0; i < 4; ++i) {
        // 16 by 3 lines in a texture of 16 by 4: the last line belongs to no picture.
        const Upload upload = show(taggedFrame(rgba(16, 6), 9));
        EXPECT_EQ(upload.height, 4);
        expectPart(upload, {.tag = 9, .rows = 3});
        EXPECT_THAT(std::vector(upload.bytes.begin() + 3 * 64, upload.bytes.end()), Each(0));
        EXPECT_THAT(gl.callsTo({"glBindBuffer", "glBufferData", "glMapBuffer", "glUnmapBuffer"}),
                    ElementsAre(call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, buffers.at(i % 2)),
                                call("glBufferData", GL_PIXEL_UNPACK_BUFFER, 16 * 4 * 4, nullptr,
                                     GL_STREAM_DRAW),
                                call("glMapBuffer", GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY),
                                call("glUnmapBuffer", GL_PIXEL_UNPACK_BUFFER),
                                call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0)));
    }

    gl.fake.buffersMap = false;
    EXPECT_EQ(helper->SetFrame(small(1).get()), S_OK);
    EXPECT_FALSE(paint()) << "what can't be mapped is not uploaded";
    EXPECT_THAT(gl.callNames(), Not(Contains("glUnmapBuffer")));
    EXPECT_EQ(gl.callsTo({"glBindBuffer"}).back(), call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0));
    expectQuad(1, 1);

    // Textures that got no storage this way get it with the next picture of their slot.
    const MemoryFrameOptions wider = rgba(32, 8);
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        EXPECT_EQ(helper->SetFrame(taggedFrame(wider, 2).get()), S_OK);
        EXPECT_FALSE(paint());
    }
    gl.fake.buffersMap = true;
    for (std::size_t i = 0; i < 2 * buffers.size(); ++i) {
        const Upload upload = show(taggedFrame(wider, 3));
        EXPECT_EQ(upload.newTexture, i < buffers.size());
        expectPart(upload, {.tag = 3, .width = 32});
    }
}

// --- Lines ---------------------------------------------------------------------------------------

TEST_F(GLPreview, TakesFewerLinesOfWiderFrames)
{
    struct {
        int width, padding, step;
        bool upward = false;
    } const cases[] = {{16, 0, 2},         {16, 24, 2},  {16, 24, 2, true},
                       {1920, 0, 2, true}, {3839, 0, 2}, {3840, 0, 4},
                       {7679, 0, 4, true}, {7680, 0, 8}, {8192, 0, 8}};
    for (const auto& [width, padding, step, upward] : cases)
        for (const bool flipped : {false, true}) {
            MemoryFrameOptions options = rgba(width, 32);
            // If the row size is negative, the first line is the last in memory.
            const std::int64_t row = width * 4 + padding;
            GuardedBytes memory(static_cast<std::size_t>(32 * row - padding));
            options.rowBytes = upward ? -row : row;
            options.bytes = memory.begin() + (upward ? 31 * row : 0);
            // No other bit has an effect.
            options.flags = flipped ? FrameFlagFlipVertical : ~std::uint32_t{FrameFlagFlipVertical};
            const Upload upload = show(taggedFrame(options, 1));
            SCOPED_TRACE(width);
            EXPECT_EQ(upload.width, width);
            ASSERT_EQ(upload.height, 32 / step);
            expectPart(upload, {.tag = 1,
                                .width = width,
                                .rows = 32 / step,
                                .firstLine = flipped ? 31 : 0,
                                .lineStep = flipped ? -step : step});
        }
}

// The first line that is shown begins 4 GiB after the frame's bytes.
TEST_F(GLPreview, FindsTheLinesOfAFrameOfMoreThan4GiB)
{
    constexpr std::size_t kRowBytes = std::size_t{1} << 29;
    void* const memory = mmap(nullptr, 9 * kRowBytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const bytes = static_cast<std::uint8_t*>(memory);
    MemoryFrameOptions options = rgba(1, 9);
    options.rowBytes = kRowBytes;
    options.flags = FrameFlagFlipVertical;
    options.bytes = memory;
    for (std::uint8_t line = 0; line < 9; ++line)
        std::ranges::copy(std::array<std::uint8_t, 4>{0, line, 5, 77}, bytes + line * kRowBytes);
    expectPart(show(TestFrame::create(options)),
               {.tag = 5, .width = 1, .rows = 4, .firstLine = 8, .lineStep = -2});
    munmap(memory, 9 * kRowBytes);
}

// --- No frame, bad frames ------------------------------------------------------------------------

TEST_F(GLPreview, TakesSlotsInTurnAndGivesThemBack)
{
    for (int tag = 0; tag < 5; ++tag)
        EXPECT_EQ(helper->SetFrame(small(tag).get()), S_OK);
    expectPart(paint().value_or(Upload{}), {.tag = 4}); // the newest
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
        EXPECT_FALSE(paint());
        EXPECT_THAT(gl.callNames(), Not(Contains("glBindTexture")));
        // The slot is free again: two more frames get one each.
        show(small(1));
        show(small(2));
    }
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);
}

TEST_F(GLPreview, KeepsThePictureWhereAFrameCanNotBeShown)
{
    const Frame right = small(1);
    const MemoryFrameOptions unknown{
        .width = 16, .height = 8, .format = code("none"), .rowBytes = 64};
    const MemoryFrameOptions unspecified{
        .width = 16, .height = 8, .format = code("RGBA"), .colorspace = code("unsp")};
    struct {
        MemoryFrameOptions options;
        HRESULT status;
    } const cases[] = {
        {unknown, E_INVALIDARG},
        {unspecified, E_INVALIDARG},
        {stereo(unspecified, right), E_INVALIDARG},
        {stereo(rgba(16, 8), right, code("side")), E_OUTOFMEMORY},
        {stereo(unknown, right, code("side")), E_OUTOFMEMORY},
    };
    show(small(5));
    const unsigned texture = gl.fake.liveOf("texture").at(0);
    for (const auto& [options, status] : cases) {
        const Frame frame = TestFrame::create(options);
        EXPECT_EQ(helper->SetFrame(frame.get()), status);
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_FALSE(paint());
        EXPECT_THAT(gl.calls(), Contains(call("glBindTexture", GL_TEXTURE_2D, texture)));
        expectQuad(1, 1);
    }
    // For the left eye alone, the packing does not matter.
    helper->Set3DPreviewFormat(Preview3DLeftOnly);
    expectPart(show(taggedFrame(stereo(rgba(16, 8), right, code("side")), 6)), {.tag = 6});
}

// The memory ends at a page that cannot be read: the helper must not read a frame that it refuses.
TEST_F(GLPreview, RefusesSizesThatNoFrameHas)
{
    constexpr std::int64_t k2To31 = std::int64_t{1} << 31;
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t kRow = 32 * 4;
    // Within this, a view that is wider than the picture is a matter of the engine's contract.
    constexpr std::size_t kReadableBehind = 64;
    const auto expect = [&](HRESULT status, std::uint32_t format, Question question,
                            const std::vector<std::int64_t>& values) {
        for (const std::int64_t value : values) {
            GuardedBytes memory(kRow * 8 + kReadableBehind);
            const Frame frame = TestFrame::create({.width = 32,
                                                   .height = 8,
                                                   .format = format,
                                                   .rowBytes = kRow,
                                                   .colorspace = ColorspaceCodeRec709,
                                                   .bytes = memory.begin()});
            frame->answers[question] = {value};
            EXPECT_EQ(helper->SetFrame(frame.get()), status)
                << std::hex << format << ": " << static_cast<int>(question) << ' ' << value;
            EXPECT_EQ(frame->openAccesses(), 0);
            EXPECT_EQ(frame->references(), 1u);
            EXPECT_EQ(helper->PaintGL(), S_OK);
        }
    };
    for (const std::uint32_t format : {kARGB, code("RGBA")}) {
        expect(S_OK, format, Question::Width, {0, 1});
        expect(S_OK, format, Question::Height, {0, 1}); // no line is shown
        expect(S_OK, format, Question::Flags, {0xFFFFFFFE});
        expect(E_INVALIDARG, format, Question::Width,
               {-1, 1 << 16, k2To31, 2 * k2To31 + 8, kMost, kLeast});
        expect(E_INVALIDARG, format, Question::Height,
               {-8, k2To31, kMost, kLeast, kLeast + 64}); // the last is 64 in 32 bits
        expect(E_INVALIDARG, format, Question::RowBytes,
               {0, kRow - 1, 1 - kRow, k2To31, k2To31 / 2, kMost, kLeast});
        expect(E_INVALIDARG, format, Question::PixelFormat, {0, 0xFFFFFFFF});
    }
    // Formats whose chroma is rebuilt in steps of several pixels need more than one step.
    for (const auto& [format, least] :
         {std::pair{"v210", 13}, {"Ay10", 5}, {"2vuy", 0}, {"R12B", 0}, {"RGB3", 0}, {"BGRA", 0}})
        for (int width = 0; width <= 20; ++width)
            expect(width < least ? E_INVALIDARG : S_OK, code(format), Question::Width, {width});
}

TEST_F(GLPreview, SurvivesAShortageOfMemory)
{
    show(taggedFrame(rgba(64, 64), 5));
    show(taggedFrame(rgba(64, 64), 6));
    const Frame large = taggedFrame(rgba(64, 62), 7);
    const Frame larger = taggedFrame(rgba(128, 64), 8);
    {
        const auto faults = AllocationFaults::fromSize(128 * 64 * 4 / 2);
        // No larger than the memory of the slot.
        expectPart(show(large), {.tag = 7, .width = 64, .rows = 31});
        EXPECT_EQ(faults.failed(), 0);
        for (int failed = 1; failed <= 2; ++failed) {
            EXPECT_EQ(helper->SetFrame(larger.get()), E_OUTOFMEMORY);
            EXPECT_EQ(faults.failed(), failed);
            EXPECT_EQ(larger->references(), 1u);
            EXPECT_FALSE(paint());
        }
    }
    // Memory of more than 32 bits is not even asked for.
    {
        const Frame huge = TestFrame::create(rgba(16, 8));
        huge->answers[Question::Height] = {(std::int64_t{1} << 27) + 2};
        const auto faults = AllocationFaults::fromSize(std::size_t{1} << 31);
        EXPECT_EQ(helper->SetFrame(huge.get()), E_OUTOFMEMORY);
        EXPECT_EQ(faults.failed(), 0);
    }
    expectPart(show(larger), {.tag = 8, .width = 128, .rows = 32});
    expectPart(show(small(9)), {.tag = 9});
}

TEST_F(GLPreview, ShowsOldContentsForAFrameWithoutBytes)
{
    show(small(5));
    show(small(6));
    const Frame frame = small(9);
    frame->startAccessStatus = E_FAIL;
    for (const int expected : {5, 6}) // one slot after the other
        expectPart(show(frame), {.tag = expected});
    frame->lacks = {IID_IKestrixVideoBuffer};
    expectPart(show(frame), {.tag = 5});
}

// --- Two eyes ------------------------------------------------------------------------------------

TEST_F(GLPreview, ShowsTheEyesAsTold)
{
    // Each eye has its own flag.
    MemoryFrameOptions flipped = rgba(16, 8);
    flipped.flags = FrameFlagFlipVertical;
    const Frame right = taggedFrame(flipped, 2);
    const Frame left = taggedFrame(stereo(rgba(16, 8), right), 1);
    const Part leftEye{.tag = 1};
    const auto rightEyeAt = [](int x, int y) {
        return Part{.tag = 2, .firstLine = 7, .lineStep = -2, .left = x, .top = y};
    };
    struct {
        const char* format; // null: not set yet
        int width, height;
        std::vector<Part> parts;
    } const cases[] = {
        {nullptr, 16, 8, {leftEye, rightEyeAt(0, 4)}},
        {"left", 16, 4, {leftEye}},
        {"righ", 16, 4, {rightEyeAt(0, 0)}},
        {"side", 32, 4, {leftEye, rightEyeAt(16, 0)}},
        {"topb", 16, 8, {leftEye, rightEyeAt(0, 4)}},
        {"defa", 16, 8, {leftEye, rightEyeAt(0, 4)}},
        {"none", 16, 8, {leftEye, rightEyeAt(0, 4)}},
    };
    for (const auto& [format, width, height, parts] : cases) {
        SCOPED_TRACE(format ? format : "none told yet");
        if (format) {
            EXPECT_EQ(helper->Set3DPreviewFormat(code(format)), S_OK);
        }
        const Upload upload = show(left);
        EXPECT_EQ(upload.width, width);
        ASSERT_EQ(upload.height, height);
        for (const Part& part : parts)
            expectPart(upload, part);
        EXPECT_EQ(left->references(), 1u);
        EXPECT_EQ(right->references(), 2u); // the test's and the left frame's
        EXPECT_EQ(left->openAccesses() + right->openAccesses(), 0);

        left->rightEyeStatus = E_FAIL;
        const Upload alone = show(left);
        EXPECT_EQ(alone.width, 16);
        ASSERT_EQ(alone.height, 4);
        expectPart(alone, leftEye);
        left->rightEyeStatus = S_OK;
    }
}

TEST_F(GLPreview, LeavesTheOldRightEyeWhereTheNewIsOfAnotherKind)
{
    const MemoryFrameOptions otherFormat{.width = 16, .height = 8, .format = code("BGRA")};
    const MemoryFrameOptions otherColours{
        .width = 16, .height = 8, .format = code("RGBA"), .colorspace = code("2020")};
    const Frame oldRight = small(2);
    const Frame oldLeft = taggedFrame(stereo(rgba(16, 8), oldRight), 1);
    for (const MemoryFrameOptions& options : {otherFormat, otherColours})
        for (const bool across : {true, false}) {
            helper->Set3DPreviewFormat(across ? Preview3DSideBySide : Preview3DTopBottom);
            // Fills both slots.
            show(oldLeft);
            show(oldLeft);
            const Frame right = taggedFrame(options, 4);
            const Upload upload = show(taggedFrame(stereo(rgba(16, 8), right), 3));
            expectPart(upload, {.tag = 3});
            expectPart(upload, {.tag = 2, .left = across ? 16 : 0, .top = across ? 0 : 4});
        }
}

} // namespace
} // namespace kestrix::test
