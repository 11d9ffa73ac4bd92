/// What the helpers paint, read back from real contexts.
#include "preview/PreviewShaders.h"
#include "preview/ScreenPreviewLut.h"
#include "preview/ShaderFormats.h"
#include "tests/common/CaseName.h"
#include "tests/preview/DriverFixture.h"
#include "tests/preview/ShaderModel.h"

#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <utility>

namespace kestrix::test {
namespace {

// --- The fixed-function helper -------------------------------------------------------------------

class GLPixels : public DriverTest {
protected:
    GLPixels() : DriverTest(GLContext::Kind::Legacy) {}

    void SetUp() override
    {
        DriverTest::SetUp();
        if (HasFatalFailure())
            return;
        helper.reset(CreateOpenGLScreenPreviewHelper_0002());
        ASSERT_EQ(helper->InitializeGL(), S_OK);
    }
};

TEST_F(GLPixels, AreTheFramesOwnAndBlackWithoutAFrame)
{
    // A mode and a colour of the host, which would show if they affected the picture.
    driverGL<decltype(::glTexEnvi)>("glTexEnvi")(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    Canvas blank(8, 8);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    for (const auto& pixel : blank.read())
        ASSERT_EQ(pixel, (std::array<float, 4>{0, 0, 0, 1}));
    driverGL<decltype(::glColor3f)>("glColor3f")(0.25f, 0.5f, 0.75f);

    struct {
        std::uint32_t format;
        int components[3]; // bytes of red, green, blue in a pixel
    } const formats[] = {{code("RGBA"), {0, 1, 2}}, {code("BGRA"), {2, 1, 0}}, {kARGB, {1, 2, 3}}};
    for (const auto& [format, components] : formats)
        for (const int width : {16, 37})
            for (const bool flipped : {false, true}) {
                const Frame frame = noise({.width = width,
                                           .height = 12,
                                           .format = format,
                                           .flags = flipped ? FrameFlagFlipVertical : 0u},
                                          3);
                Canvas canvas(width, 6);
                paint(frame.get());
                const auto painted = canvas.read();
                for (int i = 0; i < width * 6; ++i) {
                    const int y = i / width;
                    const int line = flipped ? 11 - 2 * y : 2 * y;
                    const std::uint8_t* source = frame->bytes() + (line * width + i % width) * 4;
                    // Every pixel is on a texel, so nothing is interpolated. Alpha is that of the
                    // current colour, whatever alpha the frame had.
                    const auto& pixel = painted[static_cast<std::size_t>(i)];
                    for (std::size_t c = 0; c < 3; ++c)
                        ASSERT_NEAR(pixel[c], source[components[c]] / 255.0, 1e-3);
                    ASSERT_EQ(pixel[3], 1.0f);
                }
            }
}

// --- The OpenGL 3 helper against a model of the shader -------------------------------------------

/// The lines of a frame that are uploaded, one below the other. GL counts their length in whole
/// texels.
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

TexturePicture bothEyes(const TexturePicture& left, const TexturePicture& right, bool sideBySide)
{
    TexturePicture both{left.width * (sideBySide ? 2 : 1), left.height * (sideBySide ? 1 : 2), {}};
    for (int y = 0; y < both.height; ++y)
        for (int eye = 0; eye < both.width / left.width; ++eye) {
            const TexturePicture& picture = eye > 0 || y >= left.height ? right : left;
            const std::uint8_t* line = picture.texel(0, y % left.height);
            both.bytes.insert(both.bytes.end(), line, line + left.width * 4);
        }
    return both;
}

class GL3Pixels : public DriverTest {
protected:
    GL3Pixels() : DriverTest(GLContext::Kind::Core32) {}

    void initialise()
    {
        helper.reset(CreateOpenGL3ScreenPreviewHelper_0002());
        ASSERT_EQ(helper->InitializeGL(), S_OK);
    }
};

/// Whether the identity replaces all tables, to test the unpacking alone.
bool identity = false;

// The helper leaves the precision of the table to the driver. This makes it floats, so that the low
// bits of deep formats show.
void floatTexImage3D(GLenum target, GLint level, GLint, GLsizei width, GLsizei height,
                     GLsizei depth, GLint border, GLenum format, GLenum type, const void*)
{
    driverGL<decltype(::glTexImage3D)>("glTexImage3D")(
        target, level, GL_RGBA32F, width, height, depth, border, format, type,
        ScreenPreviewLut::Get(LutID_FullRGB_709, LutFormat_RGBA32F));
}

void maybeTexSubImage3D(GLenum target, GLint level, GLint x, GLint y, GLint z, GLsizei width,
                        GLsizei height, GLsizei depth, GLenum format, GLenum type,
                        const void* table)
{
    if (!identity)
        driverGL<decltype(::glTexSubImage3D)>("glTexSubImage3D")(
            target, level, x, y, z, width, height, depth, format, type, table);
}

class GL3Unpacking : public GL3Pixels {
protected:
    void SetUp() override
    {
        GL3Pixels::SetUp();
        if (HasFatalFailure())
            return;
        gl.replace("glTexImage3D", floatTexImage3D);
        gl.replace("glTexSubImage3D", maybeTexSubImage3D);
        identity = true;
        initialise();
    }

    /// Paints what is in the helper and compares every pixel with the model. `model(s, t)` returns
    /// the colour at a place of the texture, and the tolerance of each component. `flipped`
    /// pictures fill the view upside down; `part` is the share of the picture's height that is
    /// shown.
    void expectPicture(const std::function<std::pair<Colour, Colour>(double s, double t)>& model,
                       bool flipped = false, double part = 1)
    {
        // Prime numbers, so that places in the picture do not repeat.
        Canvas canvas(53, 31);
        ASSERT_EQ(helper->PaintGL(), S_OK);
        const auto painted = canvas.read();
        for (int i = 0; i < 53 * 31; ++i) {
            const double t = (i / 53 + 0.5) / 31;
            const auto [expected, tolerance] =
                model((i % 53 + 0.5) / 53, (flipped ? 1 - t : t) * part);
            for (std::size_t c = 0; c < 4; ++c)
                ASSERT_NEAR(painted[static_cast<std::size_t>(i)][c], expected[c], tolerance[c])
                    << "column " << i % 53 << ", line " << i / 53 << ", component " << c;
        }
    }
};

struct FormatCase {
    std::uint32_t code;
    const char* name;
    int groupPixels;
    int groupBytes;
    /// The first of the four tables for the format's components and range.
    unsigned firstTable;
    bool filtered = false;
};

class GL3FormatPixels : public GL3Unpacking, public testing::WithParamInterface<FormatCase> {
protected:
    static MemoryFrameOptions frameOf(std::int64_t width, int padding = 0, std::int64_t height = 12)
    {
        const FormatCase& format = GetParam();
        const std::int64_t groups = (width + format.groupPixels - 1) / format.groupPixels;
        return {.width = width,
                .height = height,
                .format = format.code,
                .rowBytes = groups * format.groupBytes + padding};
    }

    void expectFormat(const TexturePicture& picture, double frameWidth, double frameHeight,
                      LutID id = LutID_FullRGB_709, bool flipped = false, double part = 1)
    {
        const FormatCase& format = GetParam();
        const float* const table = ScreenPreviewLut::Get(id, LutFormat_RGBA32F);
        // For noise: the weights of neighbours come from coordinates in single precision. The
        // coordinates are coarser if they count more pixels.
        const double inFloats = 2e-5 + 3e-7 * (frameWidth + frameHeight);
        const auto unpacked = [&](double s, double t) -> std::pair<Colour, Colour> {
            return {shaderColour(picture, format.code, table, frameWidth, frameHeight, s, t),
                    {inFloats, inFloats, inFloats, inFloats}};
        };
        // The sampler of 8-bit textures has weights of 8 bits, one for columns and one for lines.
        // The table comes after it, and enlarges the error where the table is steep.
        const auto filtered = [&](double s, double t) {
            const Colour sampled = sampledColour(picture, format.code, s, t);
            std::pair<Colour, Colour> result{throughTable(table, sampled),
                                             {inFloats, inFloats, inFloats, 0}};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                Colour steps{};
                for (const double by : {-2.0 / 255, 2.0 / 255}) {
                    Colour beside = sampled;
                    beside[axis] += by;
                    beside = throughTable(table, beside);
                    for (std::size_t c = 0; c < 3; ++c)
                        steps[c] = std::max(steps[c], std::abs(beside[c] - result.first[c]));
                }
                for (std::size_t c = 0; c < 3; ++c)
                    result.second[c] += steps[c];
            }
            return result;
        };
        if (format.filtered)
            expectPicture(filtered, flipped, part);
        else
            expectPicture(unpacked, flipped, part);
    }
};

TEST_P(GL3FormatPixels, AreUnpackedToTheLastColumn)
{
    // After the last group there is nothing, less than a texel, one texel, or more.
    for (const int padding : {0, 3, 4, 8, 20})
        for (const int width : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 16, 17, 23, 24, 30, 48}) {
            const Frame frame = noise(frameOf(width, padding), static_cast<std::uint64_t>(width));
            helper->SetFrame(frame.get());
            SCOPED_TRACE(testing::Message() << "width " << width << ", padding " << padding);
            expectFormat(uploadedLines(*frame), width, 6);
            if (HasFatalFailure())
                return;
        }
}

TEST_P(GL3FormatPixels, ShowOneOrBothEyesInEveryColourspace)
{
    struct {
        const char* colourspace;
        std::int64_t width, height;
        unsigned table;
    } const cases[] = {
        {"none", 24, 12, 2}, // through the identity
        {"2020", 23, 12, 3}, {"r709", 23, 12, 2}, {"r601", 23, 12, 0}, {"r601", 720, 576, 1},
    };
    for (const auto& c : cases) {
        identity = &c == cases;
        const auto table =
            identity ? LutID_FullRGB_709 : static_cast<LutID>(GetParam().firstTable + c.table);
        MemoryFrameOptions options = frameOf(c.width, 0, c.height);
        options.colorspace = code(c.colourspace);
        const Frame right = noise(options, 6);
        const TexturePicture rightLines = uploadedLines(*right);
        const auto width = static_cast<double>(c.width);
        const auto height = static_cast<double>(c.height) / 2;
        options = stereo(options, right);
        for (const bool flipped : {false, true}) {
            options.flags = flipped ? FrameFlagFlipVertical : FrameFlagDefault;
            const Frame left = noise(options, 7);
            const TexturePicture leftLines = uploadedLines(*left);
            const auto expect = [&](std::uint32_t format3D, const TexturePicture& picture,
                                    double frameWidth, double frameHeight, double part = 1) {
                if (HasFatalFailure())
                    return;
                SCOPED_TRACE(testing::Message() << "table " << table << ", " << std::hex << format3D
                                                << ", flipped " << flipped);
                helper->Set3DPreviewFormat(format3D);
                helper->SetFrame(left.get());
                expectFormat(picture, frameWidth, frameHeight, table, flipped, part);
            };
            expect(Preview3DLeftOnly, leftLines, width, height);
            expect(Preview3DRightOnly, rightLines, width, height);
            expect(Preview3DSideBySide, bothEyes(leftLines, rightLines, true), 2 * width, height);
            // If flipped, the upper half alone is stretched over the view.
            expect(Preview3DTopBottom, bothEyes(leftLines, rightLines, false), width, 2 * height,
                   flipped ? 0.5 : 1);
        }
    }
}

const FormatCase kFormatCases[] = {
    {code("2vuy"), "2vuy", 2, 4, 0},       {code("v210"), "v210", 6, 16, 0},
    {code("Ay10"), "Ay10", 2, 8, 0},       {kARGB, "ARGB", 1, 4, 4, true},
    {code("BGRA"), "BGRA", 1, 4, 4, true}, {code("vRGB"), "vRGB", 1, 4, 8, true},
    {code("BGRv"), "BGRv", 1, 4, 8, true}, {code("r210"), "r210", 1, 4, 8},
    {code("R10l"), "R10l", 1, 4, 8},       {code("R10L"), "R10Lfull", 1, 4, 4},
    {code("R10b"), "R10b", 1, 4, 8},       {code("R10B"), "R10Bfull", 1, 4, 4},
    {code("R12b"), "R12b", 8, 36, 8},      {code("R12B"), "R12Bfull", 8, 36, 4},
    {code("R12l"), "R12l", 8, 36, 8},      {code("R12L"), "R12Lfull", 8, 36, 4},
};
INSTANTIATE_TEST_SUITE_P(Formats, GL3FormatPixels, testing::ValuesIn(kFormatCases), caseName);

TEST(ShaderFormats, AreTheCasesOfTheShadersSwitchAndOfTheTests)
{
    std::istringstream words(kFragmentShader);
    std::multiset<std::uint32_t> cases;
    for (std::string word, code; words >> word;)
        if (word == "case" && words >> code)
            cases.insert(static_cast<std::uint32_t>(std::stoul(code, nullptr, 0)));
    std::multiset<std::uint32_t> listed;
    for (const ShaderFormat& format : kShaderFormats)
        listed.insert(format.code);
    std::multiset<std::uint32_t> tested;
    for (const FormatCase& format : kFormatCases)
        tested.insert(format.code);
    EXPECT_EQ(cases, listed);
    EXPECT_EQ(tested, listed);
}

TEST_F(GL3Unpacking, IsOpaqueBlackForWhatTheShaderDoesNotKnow)
{
    const auto black = [](double, double) -> std::pair<Colour, Colour> {
        return {{0, 0, 0, 1}, {}};
    };
    // Before the first frame.
    expectPicture(black);
    for (const char* format : {"YUY2", "RGBA", "ay10", "none"}) {
        paint(noise({.width = 8, .height = 8, .format = code(format), .rowBytes = 32}, 1).get());
        expectPicture(black);
    }
}

// --- The OpenGL 3 helper with its own table ------------------------------------------------------

TEST_F(GL3Pixels, ShowFullRangeRec709AsItIsAndNoFrameAsNothing)
{
    initialise();
    const Frame frame = noise({.width = 32, .height = 32, .format = code("BGRA")}, 8);
    Canvas canvas(32, 16);
    paint(frame.get());
    const auto painted = canvas.read();
    for (int i = 0; i < 32 * 16; ++i) {
        const std::uint8_t* source = frame->bytes() + (i / 32 * 2 * 32 + i % 32) * 4;
        // The driver may keep the table in 8 bits. The error is half a code value for that, and as
        // much for each of its three interpolations.
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_NEAR(painted[static_cast<std::size_t>(i)][c], source[2 - c] / 255.0, 2.0 / 255);
        ASSERT_EQ(painted[static_cast<std::size_t>(i)][3], 1.0f);
    }

    paint(nullptr);
    for (const auto& pixel : canvas.read())
        ASSERT_EQ(pixel, (std::array<float, 4>{}));
    canvas.soil();
    EXPECT_EQ(helper->PaintGL(), S_OK);
    EXPECT_EQ(canvas.read(), painted) << "the last picture comes back";

    EXPECT_EQ(helper->InitializeGL(), S_OK);
    paint(frame.get());
    EXPECT_EQ(canvas.read(), painted) << "also with all objects made anew";
}

} // namespace
} // namespace kestrix::test
