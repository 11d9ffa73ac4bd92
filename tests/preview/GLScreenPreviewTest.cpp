/// The fixed-function helper: what it converts into its slots, and how those reach the texture.
#include "tests/preview/GLPreviewFixture.h"
#include "tests/support/AllocationFaults.h"
#include "tests/support/CaseName.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kBoth = "GL_a GL_ARB_texture_non_power_of_two GL_ARB_pixel_buffer_object";

/// With and without either extension.
struct Context {
    const char* name;
    const char* extensions;
};

void PrintTo(const Context& context, std::ostream* out)
{
    *out << context.name;
}

class GLPreviewWith : public GLPreview, public testing::WithParamInterface<Context> {
protected:
    GLPreviewWith() : GLPreview(GetParam().extensions) {}
};

// --- Initialisation ------------------------------------------------------------------------------

TEST(GLInitialization, NeedsNothingOfTheContext)
{
    GLRecorder& gl = GLRecorder::get();
    gl.useFake();
    const Helper helper(CreateOpenGLScreenPreviewHelper_0002());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_THAT(gl.callNames(), ElementsAre("glGetString"));
    EXPECT_THAT(gl.lookups(), IsEmpty());
}

// In processes of their own: entry points are kept once they are found.
TEST(GLInitializationDeathTest, LooksPixelBuffersUpOnce)
{
    GLRecorder& gl = GLRecorder::get();
    const auto body = [&] {
        gl.useFake();
        gl.fake.extensions = kPixelBuffers;
        EXPECT_EQ(CreateOpenGLScreenPreviewHelper_0002()->InitializeGL(), S_OK);
        EXPECT_THAT(gl.lookups(),
                    ElementsAre("glGenBuffers", "glBindBuffer", "glBufferData", "glBufferSubData",
                                "glDeleteBuffers", "glGetBufferParameteriv", "glMapBuffer",
                                "glUnmapBuffer"));
        EXPECT_EQ(gl.fake.liveOf("buffer").size(), 2u);
        gl.clear();
        EXPECT_EQ(CreateOpenGLScreenPreviewHelper_0002()->InitializeGL(), S_OK);
        EXPECT_THAT(gl.lookups(), IsEmpty());
        EXPECT_EQ(gl.fake.liveOf("buffer").size(), 4u);
        exitWithOutcome();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

// --- Sizes ---------------------------------------------------------------------------------------

TEST_F(GLPreview, TakesEverySecondLine)
{
    const Upload upload = show(taggedFrame(rgba(16, 12), 1).get());
    EXPECT_TRUE(upload.newTexture);
    EXPECT_EQ(upload.width, 16);
    ASSERT_EQ(upload.height, 6);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 16; ++x) {
            EXPECT_EQ(upload.pixel(x, y)[0], x);
            EXPECT_EQ(upload.pixel(x, y)[1], 2 * y);
            EXPECT_EQ(upload.pixel(x, y)[3], 77);
        }
    EXPECT_THAT(quad(), quadWith(1, 1));
}

TEST_F(GLPreview, TakesFewerLinesOfWideFrames)
{
    struct {
        int width, step;
    } const cases[] = {{1920, 2}, {3839, 2}, {3840, 4}, {7679, 4}, {7680, 8}, {8192, 8}};
    for (const auto& [width, step] : cases) {
        const Upload upload = show(taggedFrame(rgba(width, 32), 1).get());
        EXPECT_EQ(upload.width, width);
        ASSERT_EQ(upload.height, 32 / step) << width;
        for (int y = 0; y < upload.height; ++y)
            EXPECT_EQ(upload.lineAt(y, width - 1), y * step) << width;
    }
}

TEST_P(GLPreviewWith, SizesTheTextureForThePicture)
{
    const std::string extensions = GetParam().extensions;
    const bool anySize = extensions.find(kNonPowerOfTwo) != std::string::npos;
    struct {
        int width, height;
        int textureWidth, textureHeight; // in powers of two
    } const cases[] = {
        {1920, 1080, 2048, 1024}, {1024, 64, 1024, 32}, {5, 2, 8, 1}, {65, 66, 128, 64}};
    for (const auto& c : cases) {
        const Upload upload = show(TestFrame::create(rgba(c.width, c.height)).get());
        const int width = anySize ? c.width : c.textureWidth;
        const int height = anySize ? c.height / 2 : c.textureHeight;
        EXPECT_EQ(upload.width, width);
        EXPECT_EQ(upload.height, height);
        EXPECT_THAT(quad(),
                    quadWith(static_cast<float>(c.width) / static_cast<float>(width),
                             static_cast<float>(c.height / 2) / static_cast<float>(height)));
    }
}

TEST_F(GLPreview, AcceptsRowsLongerThanThePicture)
{
    MemoryFrameOptions padded = rgba(16, 12);
    padded.rowBytes = 16 * 4 + 24;
    for (int i = 0; i < 2; ++i) {
        const Upload upload = show(taggedFrame(padded, 3).get());
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 16; ++x) {
                EXPECT_EQ(upload.pixel(x, y)[0], x);
                EXPECT_EQ(upload.pixel(x, y)[1], 2 * y);
            }
    }
}

// --- Textures and buffers ------------------------------------------------------------------------

TEST_P(GLPreviewWith, MakesATextureASlotAndUpdatesItThen)
{
    for (int i = 0; i < 6; ++i) {
        const Upload upload = show(taggedFrame(rgba(16, 8), static_cast<std::uint8_t>(i)).get());
        EXPECT_EQ(upload.newTexture, i < 2) << i;
        EXPECT_EQ(upload.tagAt(0, 0), i);
        if (i < 2)
            EXPECT_THAT(gl.calls(), Contains(call("glTexImage2D", GL_TEXTURE_2D, 0, GL_RGB, 16, 4,
                                                  0, GL_RGBA, GL_UNSIGNED_BYTE, kAny)));
        else
            EXPECT_THAT(gl.calls(), Contains(call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0, 0, 16, 4,
                                                  GL_RGBA, GL_UNSIGNED_BYTE, kAny)));
    }
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);
    EXPECT_FALSE(paint()) << "a repaint has nothing to upload";
    EXPECT_THAT(quad(), quadWith(1, 1));

    // Another size takes new textures in the place of the old.
    EXPECT_TRUE(show(TestFrame::create(rgba(8, 8)).get()).newTexture);
    EXPECT_TRUE(show(TestFrame::create(rgba(8, 8)).get()).newTexture);
    EXPECT_FALSE(show(TestFrame::create(rgba(8, 8)).get()).newTexture);
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(Contexts, GLPreviewWith,
                         testing::Values(Context{"Bare", ""}, Context{"AnySize", kNonPowerOfTwo},
                                         Context{"Buffers", kPixelBuffers}, Context{"Both", kBoth}),
                         caseName);

TEST_F(GLPreview, SetsItsTexturesUp)
{
    show(TestFrame::create(rgba(16, 8)).get());
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        EXPECT_THAT(gl.calls(),
                    Contains(call("glTexParameteri", GL_TEXTURE_2D, filter, GL_LINEAR)));
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        EXPECT_THAT(gl.calls(), Contains(call("glTexParameteri", GL_TEXTURE_2D, wrap, GL_CLAMP)));
}

TEST_F(GLPreview, DecalsAndPutsTheHostsModeBack)
{
    gl.fake.textureEnvironmentMode = GL_REPLACE;
    show(TestFrame::create(rgba(16, 8)).get());
    const auto texture = static_cast<int>(gl.fake.liveOf("texture").at(0));
    std::vector<GLCall> calls =
        gl.callsTo({"glEnable", "glTexEnvi", "glBegin", "glBindTexture", "glDisable"});
    EXPECT_EQ(calls.front(), call("glEnable", GL_TEXTURE_2D));
    calls.erase(calls.begin(), calls.end() - 6);
    const GLCall bind = call("glBindTexture", GL_TEXTURE_2D, texture);
    // The mode and the texture may be set in either order before the quad.
    EXPECT_THAT(std::vector(calls.begin(), calls.begin() + 2), Contains(bind));
    EXPECT_THAT(std::vector(calls.begin(), calls.begin() + 2),
                Contains(call("glTexEnvi", GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL)));
    EXPECT_THAT(std::vector(calls.begin() + 2, calls.end()),
                ElementsAre(call("glBegin", GL_QUADS), call("glBindTexture", GL_TEXTURE_2D, 0),
                            call("glTexEnvi", GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE),
                            call("glDisable", GL_TEXTURE_2D)));
}

class GLPreviewWithBuffers : public GLPreview {
protected:
    GLPreviewWithBuffers() : GLPreview(kPixelBuffers) {}
};

TEST_F(GLPreviewWithBuffers, StreamsThroughTheSlotsBuffer)
{
    // 16 by 3 lines in a texture of 16 by 4: the last line is of no picture and stays behind.
    const std::vector<unsigned> buffers = gl.fake.liveOf("buffer");
    ASSERT_EQ(buffers.size(), 2u);
    for (int i = 0; i < 4; ++i) {
        const Upload upload = show(taggedFrame(rgba(16, 6), 9).get());
        EXPECT_EQ(upload.height, 4);
        EXPECT_EQ(upload.lineAt(2), 4);
        EXPECT_EQ(upload.tagAt(15, 2), 9);
        EXPECT_THAT(std::vector(upload.bytes.begin() + 3 * 64, upload.bytes.end()), Each(0));
        const GLCall bind = call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, buffers[i % 2]);
        EXPECT_THAT(gl.callsTo({"glBindBuffer", "glBufferData", "glMapBuffer", "glUnmapBuffer"}),
                    ElementsAre(bind,
                                call("glBufferData", GL_PIXEL_UNPACK_BUFFER, 16 * 4 * 4, nullptr,
                                     GL_STREAM_DRAW),
                                call("glMapBuffer", GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY),
                                call("glUnmapBuffer", GL_PIXEL_UNPACK_BUFFER),
                                call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0)));
    }
}

TEST_F(GLPreviewWithBuffers, SkipsTheUploadWhereTheBufferCanNotBeMapped)
{
    gl.fake.buffersMap = false;
    EXPECT_EQ(helper->SetFrame(TestFrame::create(rgba(16, 8)).get()), S_OK);
    EXPECT_FALSE(paint());
    EXPECT_THAT(gl.callNames(), Not(Contains("glUnmapBuffer")));
    EXPECT_EQ(gl.callsTo({"glBindBuffer"}).back(), call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0));
    EXPECT_THAT(quad(), quadWith(1, 1));
}

TEST_F(GLPreviewWithBuffers, DeletesItsBuffersAndNoTexture)
{
    show(TestFrame::create(rgba(16, 8)).get());
    gl.clear();
    helper.reset();
    EXPECT_THAT(gl.fake.liveOf("buffer"), IsEmpty());
    EXPECT_THAT(gl.callNames(), Each("glDeleteBuffers"));
}

TEST_F(GLPreview, MakesNoCallsWhereThereAreNoBuffersToDelete)
{
    show(TestFrame::create(rgba(16, 8)).get());
    gl.clear();
    helper.reset();
    EXPECT_THAT(gl.calls(), IsEmpty());
}

// --- No frame, bad frames ------------------------------------------------------------------------

TEST_F(GLPreview, PaintsBlackWithoutAFrame)
{
    const auto black =
        ElementsAre(call("glColor3f", 0.0, 0.0, 0.0), call("glBegin", GL_QUADS),
                    call("glVertex2f", -1.0, -1.0), call("glVertex2f", 1.0, -1.0),
                    call("glVertex2f", 1.0, 1.0), call("glVertex2f", -1.0, 1.0), call("glEnd"));
    EXPECT_FALSE(paint());
    EXPECT_THAT(gl.calls(), black);

    show(TestFrame::create(rgba(16, 8)).get());
    EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
    EXPECT_FALSE(paint());
    EXPECT_THAT(gl.calls(), black);
    // The slot is free again: two more frames find one each, with their textures as they were.
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
        for (int frame = 0; frame < 2; ++frame)
            show(TestFrame::create(rgba(16, 8)).get());
    }
    EXPECT_EQ(gl.fake.liveOf("texture").size(), 2u);
}

TEST_F(GLPreview, ShowsTheNewestOfManyFrames)
{
    for (std::uint8_t tag = 0; tag < 5; ++tag)
        EXPECT_EQ(helper->SetFrame(taggedFrame(rgba(16, 8), tag).get()), S_OK);
    EXPECT_EQ(paint().value_or(Upload{}).tagAt(0, 0), 4);
}

TEST_F(GLPreview, KeepsThePictureWhereAFrameCanNotBeShown)
{
    const Frame right = TestFrame::create(rgba(16, 8));
    MemoryFrameOptions unknown = rgba(16, 8);
    unknown.rowBytes = 64;
    unknown.format = code("none");
    MemoryFrameOptions unspecified = rgba(16, 8);
    unspecified.colorspace = code("unsp");
    MemoryFrameOptions wide = rgba(16, 8);
    wide.colorspace = code("2020"); // of RGBA there is none to Rec. 709
    struct {
        MemoryFrameOptions options;
        HRESULT status;
    } const cases[] = {
        {unknown, E_INVALIDARG},
        {unspecified, E_INVALIDARG},
        {wide, E_INVALIDARG},
        {stereo(unspecified, right), E_INVALIDARG},
        {stereo(rgba(16, 8), right, code("side")), E_OUTOFMEMORY},
        {stereo(unknown, right, code("side")), E_OUTOFMEMORY},
    };
    show(taggedFrame(rgba(16, 8), 5).get());
    const auto texture = static_cast<int>(gl.fake.liveOf("texture").at(0));
    for (const auto& [options, status] : cases) {
        const Frame frame = TestFrame::create(options);
        EXPECT_EQ(helper->SetFrame(frame.get()), status);
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_FALSE(paint());
        EXPECT_THAT(gl.calls(), Contains(call("glBindTexture", GL_TEXTURE_2D, texture)));
        EXPECT_THAT(quad(), quadWith(1, 1));
    }
    EXPECT_EQ(show(taggedFrame(rgba(16, 8), 6).get()).tagAt(0, 0), 6);
}

TEST_F(GLPreview, SurvivesAShortageOfMemory)
{
    show(taggedFrame(rgba(64, 64), 5).get());
    show(taggedFrame(rgba(64, 64), 6).get());
    {
        const auto faults = AllocationFaults::fromSize(128 * 64 * 4 / 2);
        const Frame large = taggedFrame(rgba(64, 62), 7);
        // No larger than what the slot has.
        EXPECT_EQ(show(large.get()).tagAt(0, 0), 7);
        EXPECT_EQ(faults.failed(), 0);
    }
    const Frame larger = taggedFrame(rgba(128, 64), 8);
    {
        const auto faults = AllocationFaults::fromSize(128 * 64 * 4 / 2);
        EXPECT_EQ(helper->SetFrame(larger.get()), E_OUTOFMEMORY);
        EXPECT_EQ(faults.failed(), 1);
        EXPECT_EQ(larger->references(), 1u);
        EXPECT_FALSE(paint());
        EXPECT_EQ(helper->SetFrame(larger.get()), E_OUTOFMEMORY);
    }
    EXPECT_EQ(show(larger.get()).tagAt(127, 31), 8);
    EXPECT_EQ(show(taggedFrame(rgba(16, 8), 9).get()).tagAt(0, 0), 9);
}

TEST_F(GLPreview, KeepsNoReferenceAndNoAccess)
{
    const Frame right = TestFrame::create(rgba(16, 8));
    const Frame left = TestFrame::create(stereo(rgba(16, 8), right));
    for (const char* format : {"defa", "left", "righ", "side", "topb"}) {
        helper->Set3DPreviewFormat(code(format));
        EXPECT_EQ(helper->SetFrame(left.get()), S_OK);
        EXPECT_EQ(left->references(), 1u);
        EXPECT_EQ(right->references(), 2u); // the test's and the left frame's
        EXPECT_EQ(left->openAccesses() + right->openAccesses(), 0);
    }
}

TEST_F(GLPreview, ShowsOldContentsForAFrameWithoutBytes)
{
    show(taggedFrame(rgba(16, 8), 5).get());
    show(taggedFrame(rgba(16, 8), 6).get());
    for (const int expected : {5, 6}) { // one slot after the other
        const Frame frame = taggedFrame(rgba(16, 8), 9);
        frame->startAccessStatus = E_FAIL;
        EXPECT_EQ(show(frame.get()).tagAt(0, 0), expected);
    }
    const Frame frame = taggedFrame(rgba(16, 8), 9);
    frame->hasBuffer = false;
    EXPECT_EQ(show(frame.get()).tagAt(0, 0), 5);
}

// --- Orientation and colour ----------------------------------------------------------------------

TEST_F(GLPreview, TurnsFlippedFramesOver)
{
    MemoryFrameOptions options = rgba(16, 8);
    options.flags = FrameFlagFlipVertical;
    const Upload upload = show(taggedFrame(options, 1).get());
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(upload.lineAt(y), 7 - 2 * y);
    // No other bit is looked at.
    options.flags = ~std::uint32_t{FrameFlagFlipVertical};
    EXPECT_EQ(show(taggedFrame(options, 1).get()).lineAt(0), 0);
}

TEST_F(GLPreview, PutsComponentsInOrderAndDropsAlphaInConversions)
{
    struct {
        std::uint32_t format;
        int red, green, blue; // their bytes in a pixel
    } const formats[] = {{code("BGRA"), 2, 1, 0}, {32, 1, 2, 3}};
    for (const auto& c : formats)
        for (const std::int64_t width : {1, 2, 3, 4, 5, 16, 19}) {
            const Frame frame =
                TestFrame::create({.width = width, .height = 4, .format = c.format});
            for (std::size_t i = 0; i < frame->size(); ++i)
                frame->bytes()[i] = static_cast<std::uint8_t>(i * 37 + 11);
            const Upload upload = show(frame.get());
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < width; ++x) {
                    const std::uint8_t* source = frame->bytes() + 2 * y * width * 4 + x * 4;
                    EXPECT_EQ(upload.pixel(x, y)[0], source[c.red]);
                    EXPECT_EQ(upload.pixel(x, y)[1], source[c.green]);
                    EXPECT_EQ(upload.pixel(x, y)[2], source[c.blue]);
                    EXPECT_EQ(upload.pixel(x, y)[3], 255);
                }
        }
}

} // namespace
} // namespace kestrix::test
