/// What the OpenGL 3 helper paints, read back from a real context.
#include "tests/preview/ShaderModel.h"
#include "tests/support/CaseName.h"
#include "tests/support/GLContext.h"
#include "tests/support/PreviewFixture.h"
#include "tests/support/Random.h"
#include "tests/support/TestFrame.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <array>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;

using Frame = host::Owned<TestFrame>;

/// Noise in the size and format asked for.
Frame noise(const MemoryFrameOptions& options, std::uint64_t seed)
{
    Frame frame = TestFrame::create(options);
    Random(seed).fill(std::span(frame->bytes(), frame->size()), Content::Uniform);
    return frame;
}

/// The lines of a frame that are uploaded, one below the other. GL counts them in whole texels.
TexturePicture uploadedLines(TestFrame& frame)
{
    TexturePicture picture{
        static_cast<int>(frame.GetRowBytes() / 4), static_cast<int>(frame.GetHeight() / 2), {}};
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t* line = frame.bytes() + 2 * y * picture.width * 4;
        picture.bytes.insert(picture.bytes.end(), line, line + picture.width * 4);
    }
    return picture;
}

TexturePicture sideBySide(const TexturePicture& left, const TexturePicture& right)
{
    TexturePicture both{2 * left.width, left.height, {}};
    for (int y = 0; y < both.height; ++y)
        for (const TexturePicture* eye : {&left, &right})
            both.bytes.insert(both.bytes.end(), eye->texel(0, y),
                              eye->texel(0, y) + eye->width * 4);
    return both;
}

TexturePicture oneAboveTheOther(const TexturePicture& top, const TexturePicture& bottom)
{
    TexturePicture both{top.width, 2 * top.height, top.bytes};
    both.bytes.insert(both.bytes.end(), bottom.bytes.begin(), bottom.bytes.end());
    return both;
}

// --- A table that changes nothing, to look at the unpacking alone
// ---------------------------------

const float* identityTable()
{
    static const std::vector<float> table = [] {
        std::vector<float> entries;
        for (int z = 0; z < 33; ++z)
            for (int y = 0; y < 33; ++y)
                for (int x = 0; x < 33; ++x)
                    entries.insert(entries.end(),
                                   {static_cast<float>(x) / 32, static_cast<float>(y) / 32,
                                    static_cast<float>(z) / 32, 1.0f});
        return entries;
    }();
    return table.data();
}

// In floats, where the helper leaves the precision to the driver, so that the low bits of deep
// formats can be seen.
void identityTexImage3D(GLenum target, GLint level, GLint, GLsizei width, GLsizei height,
                        GLsizei depth, GLint border, GLenum format, GLenum type, const void*)
{
    driverGL<decltype(::glTexImage3D)>("glTexImage3D")(
        target, level, GL_RGBA32F, width, height, depth, border, format, type, identityTable());
}

void keepTable(GLenum, GLint, GLint, GLint, GLint, GLsizei, GLsizei, GLsizei, GLenum, GLenum,
               const void*)
{
}

class GL3Pixels : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(context.failure(), "");
        gl.useDriver();
    }

    void TearDown() override
    {
        if (context.failure().empty()) {
            EXPECT_EQ(glErrorNow(), GLenum{GL_NO_ERROR});
        }
    }

    Helper initialised()
    {
        Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        return helper;
    }

    GLContext context{GLContext::Kind::Core32};
    GLRecorder& gl = GLRecorder::get();
};

/// Behind the identity table.
class GL3Unpacking : public GL3Pixels {
protected:
    void SetUp() override
    {
        GL3Pixels::SetUp();
        if (HasFatalFailure())
            return;
        gl.replace("glTexImage3D", identityTexImage3D);
        gl.replace("glTexSubImage3D", keepTable);
        helper = initialised();
    }

    /// Paints what is in the helper and compares every pixel with the model's, whose `t` may be
    /// bent.
    template<class BEND>
    void expectPicture(const TexturePicture& picture, std::uint32_t format, double frameWidth,
                       double frameHeight, BEND bend, double tolerance)
    {
        // Prime numbers, so that places in the picture do not repeat.
        Canvas canvas(53, 31);
        ASSERT_EQ(helper->PaintGL(), S_OK);
        const auto painted = canvas.read();
        for (int y = 0; y < canvas.height(); ++y)
            for (int x = 0; x < canvas.width(); ++x) {
                const Colour expected =
                    shaderColour(picture, format, frameWidth, frameHeight,
                                 (x + 0.5) / canvas.width(), bend((y + 0.5) / canvas.height()));
                for (std::size_t i = 0; i < 4; ++i)
                    ASSERT_NEAR(painted[static_cast<std::size_t>(y * canvas.width() + x)][i],
                                expected[i], tolerance)
                        << "column " << x << ", line " << y << ", component " << i;
            }
    }

    Helper helper;
};

struct ShaderFormat {
    std::uint32_t code;
    const char* name;
    int groupPixels;
    int groupBytes;
};

const ShaderFormat kShaderFormats[] = {
    {code("2vuy"), "2vuy", 2, 4},  {code("v210"), "v210", 6, 16},
    {code("Ay10"), "Ay10", 2, 8},  {32, "ARGB", 1, 4},
    {code("BGRA"), "BGRA", 1, 4},  {code("vRGB"), "vRGB", 1, 4},
    {code("BGRv"), "BGRv", 1, 4},  {code("r210"), "r210", 1, 4},
    {code("R10l"), "R10l", 1, 4},  {code("R10L"), "R10Lfull", 1, 4},
    {code("R10b"), "R10b", 1, 4},  {code("R10B"), "R10Bfull", 1, 4},
    {code("R12b"), "R12b", 8, 36}, {code("R12B"), "R12Bfull", 8, 36},
    {code("R12l"), "R12l", 8, 36}, {code("R12L"), "R12Lfull", 8, 36},
};

void PrintTo(const ShaderFormat& format, std::ostream* out)
{
    *out << format.name;
}

bool isFiltered(std::uint32_t format)
{
    return format == 32 || format == code("BGRA") || format == code("vRGB") ||
           format == code("BGRv");
}

/// Single precision, on noise: the weights of neighbours come from coordinates that the rasteriser
/// interpolates. The sampler of 8-bit textures has weights of 8 bits.
double toleranceOf(std::uint32_t format)
{
    return isFiltered(format) ? 2.0 / 255 : 1e-4;
}

double straight(double t)
{
    return t;
}

class GL3FormatPixels : public GL3Unpacking, public testing::WithParamInterface<ShaderFormat> {
protected:
    MemoryFrameOptions frameOf(std::int64_t width, std::int64_t height, int padding = 0) const
    {
        const ShaderFormat& format = GetParam();
        const std::int64_t groups = (width + format.groupPixels - 1) / format.groupPixels;
        return {.width = width,
                .height = height,
                .format = format.code,
                .rowBytes = groups * format.groupBytes + padding};
    }
};

TEST_P(GL3FormatPixels, AreUnpackedToTheLastColumn)
{
    const ShaderFormat& format = GetParam();
    // Behind the last group nothing, less than a texel, one texel, and more.
    for (const int padding : {0, 3, 4, 8, 20})
        for (const std::int64_t width :
             {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 16, 17, 23, 24, 30, 48}) {
            const Frame frame =
                noise(frameOf(width, 12, padding), static_cast<std::uint64_t>(width));
            helper->SetFrame(frame.get());
            SCOPED_TRACE(testing::Message() << "width " << width << ", padding " << padding);
            expectPicture(uploadedLines(*frame), format.code, static_cast<double>(width), 6,
                          straight, toleranceOf(format.code));
            if (HasFatalFailure())
                return;
        }
}

TEST_P(GL3FormatPixels, AreFlipped)
{
    const ShaderFormat& format = GetParam();
    MemoryFrameOptions options = frameOf(24, 12);
    options.flags = FrameFlagFlipVertical;
    const Frame frame = noise(options, 5);
    helper->SetFrame(frame.get());
    expectPicture(
        uploadedLines(*frame), format.code, 24, 6, [](double t) { return 1 - t; },
        toleranceOf(format.code));
}

TEST_P(GL3FormatPixels, ShowBothEyes)
{
    const ShaderFormat& format = GetParam();
    const double tolerance = toleranceOf(format.code);
    const Frame right = noise(frameOf(24, 12), 6);
    const auto leftWith = [&](std::uint32_t flags) {
        MemoryFrameOptions options = frameOf(24, 12);
        options.flags = flags;
        options.packing3D = Packing3DLeftOnly;
        options.rightEye = right.get();
        return noise(options, 7);
    };
    const Frame left = leftWith(FrameFlagDefault);
    const Frame flipped = leftWith(FrameFlagFlipVertical);
    const TexturePicture leftLines = uploadedLines(*left);
    const TexturePicture rightLines = uploadedLines(*right);

    helper->Set3DPreviewFormat(Preview3DRightOnly);
    helper->SetFrame(left.get());
    expectPicture(rightLines, format.code, 24, 6, straight, tolerance);

    helper->Set3DPreviewFormat(Preview3DSideBySide);
    helper->SetFrame(left.get());
    expectPicture(sideBySide(leftLines, rightLines), format.code, 48, 6, straight, tolerance);
    helper->SetFrame(flipped.get());
    expectPicture(
        sideBySide(leftLines, rightLines), format.code, 48, 6, [](double t) { return 1 - t; },
        tolerance);

    helper->Set3DPreviewFormat(Preview3DTopBottom);
    helper->SetFrame(left.get());
    expectPicture(oneAboveTheOther(leftLines, rightLines), format.code, 24, 12, straight,
                  tolerance);
    // The upper half alone, stretched over the view.
    helper->SetFrame(flipped.get());
    expectPicture(
        oneAboveTheOther(leftLines, rightLines), format.code, 24, 12,
        [](double t) { return (1 - t) / 2; }, tolerance);
}

INSTANTIATE_TEST_SUITE_P(Formats, GL3FormatPixels, testing::ValuesIn(kShaderFormats), caseName);

TEST_F(GL3Unpacking, IsOpaqueBlackForWhatTheShaderDoesNotKnow)
{
    const TexturePicture nothing{1, 1, {0, 0, 0, 0}};
    // Before there was any frame.
    expectPicture(nothing, 0, 1, 1, straight, 1e-9);
    for (const char* format : {"YUY2", "RGBA", "ay10", "none"}) {
        const Frame frame =
            noise({.width = 8, .height = 8, .format = code(format), .rowBytes = 32}, 1);
        helper->SetFrame(frame.get());
        expectPicture(nothing, code(format), 8, 4, straight, 1e-9);
    }
}

// --- With the helper's own table -----------------------------------------------------------------

// The driver may keep the table in 8 bits: half a code value of it, and as much for each of its
// three interpolations.
constexpr double kTableTolerance = 2.0 / 255;

TEST_F(GL3Pixels, ShowFullRangeRec709AsItIs)
{
    const Helper helper = initialised();
    const Frame frame = noise({.width = 32, .height = 32, .format = code("BGRA")}, 8);
    helper->SetFrame(frame.get());
    Canvas canvas(32, 16);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    const auto painted = canvas.read();
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x) {
            const std::uint8_t* source = frame->bytes() + 2 * y * 128 + x * 4;
            const auto& pixel = painted[static_cast<std::size_t>(y * 32 + x)];
            EXPECT_NEAR(pixel[0], source[2] / 255.0, kTableTolerance);
            EXPECT_NEAR(pixel[1], source[1] / 255.0, kTableTolerance);
            EXPECT_NEAR(pixel[2], source[0] / 255.0, kTableTolerance);
            EXPECT_EQ(pixel[3], 1.0f);
        }
}

TEST_F(GL3Pixels, ClearToTransparentBlackForNoFrame)
{
    const Helper helper = initialised();
    const Frame frame = noise({.width = 32, .height = 32, .format = code("BGRA")}, 9);
    Canvas canvas(32, 16);
    helper->SetFrame(frame.get());
    helper->PaintGL();
    const auto picture = canvas.read();
    helper->SetFrame(nullptr);
    helper->PaintGL();
    const std::array<float, 4> transparent{};
    for (const auto& pixel : canvas.read())
        ASSERT_EQ(pixel, transparent);
    canvas.soil();
    helper->PaintGL();
    EXPECT_EQ(canvas.read(), picture);
}

// --- State ---------------------------------------------------------------------------------------

class GL3State : public GL3Pixels {
protected:
    static void expectNothingBound()
    {
        for (const GLenum binding :
             {GL_CURRENT_PROGRAM, GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING})
            EXPECT_EQ(glState(binding), 0) << std::hex << binding;
        EXPECT_EQ(glState(GL_ACTIVE_TEXTURE), GL_TEXTURE0);
        const auto activate = driverGL<decltype(::glActiveTexture)>("glActiveTexture");
        for (const GLenum unit : {GL_TEXTURE1, GL_TEXTURE0}) {
            activate(unit);
            EXPECT_EQ(glState(GL_TEXTURE_BINDING_2D), 0);
            EXPECT_EQ(glState(GL_TEXTURE_BINDING_3D), 0);
        }
    }
};

TEST_F(GL3State, IsLeftBehindAsPromised)
{
    Canvas canvas(16, 8);
    driverGL<decltype(::glViewport)>("glViewport")(1, 2, 3, 4);
    driverGL<decltype(::glEnable)>("glEnable")(GL_BLEND);
    driverGL<decltype(::glDisable)>("glDisable")(GL_DEPTH_TEST);
    const int framebuffer = glState(GL_DRAW_FRAMEBUFFER_BINDING);

    const Helper helper = initialised();
    EXPECT_NE(glState(GL_VERTEX_ARRAY_BINDING), 0);
    expectNothingBound();

    driverGL<decltype(::glPixelStorei)>("glPixelStorei")(GL_UNPACK_ROW_LENGTH, 123);
    const Frame right = noise({.width = 16, .height = 16, .format = code("v210")}, 1);
    const Frame stereo = noise({.width = 16,
                                .height = 16,
                                .format = code("v210"),
                                .packing3D = Packing3DLeftOnly,
                                .rightEye = right.get()},
                               2);
    const Frame without = noise({.width = 16, .height = 16, .format = code("BGRA")}, 3);
    without->hasBuffer = false;
    // A frame of two eyes, none, and one that changes the table and has no bytes.
    for (IKestrixVideoFrame* frame :
         {static_cast<IKestrixVideoFrame*>(stereo.get()), static_cast<IKestrixVideoFrame*>(nullptr),
          static_cast<IKestrixVideoFrame*>(without.get())}) {
        helper->SetFrame(frame);
        for (int paint = 0; paint < 2; ++paint) {
            EXPECT_EQ(helper->PaintGL(), S_OK);
            expectNothingBound();
            EXPECT_EQ(glState(GL_VERTEX_ARRAY_BINDING), 0);
            EXPECT_EQ(glState(GL_UNPACK_ROW_LENGTH), 123);
        }
    }

    GLint viewport[4];
    driverGL<decltype(::glGetIntegerv)>("glGetIntegerv")(GL_VIEWPORT, viewport);
    EXPECT_EQ(std::vector(viewport, viewport + 4), (std::vector{1, 2, 3, 4}));
    EXPECT_TRUE(driverGL<decltype(::glIsEnabled)>("glIsEnabled")(GL_BLEND));
    EXPECT_FALSE(driverGL<decltype(::glIsEnabled)>("glIsEnabled")(GL_DEPTH_TEST));
    EXPECT_EQ(glState(GL_DRAW_FRAMEBUFFER_BINDING), framebuffer);
}

TEST_F(GL3State, IsMadeAnew)
{
    const Frame frame = noise({.width = 16, .height = 16, .format = code("BGRA")}, 4);
    const Helper helper = initialised();
    const auto paint = [&] {
        Canvas canvas(16, 8);
        helper->SetFrame(frame.get());
        EXPECT_EQ(helper->PaintGL(), S_OK);
        return canvas.read();
    };
    const auto before = paint();
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_EQ(paint(), before);
}

} // namespace
} // namespace kestrix::test
