/// What hosts can get wrong in a frame's numbers: a status, and no byte outside the frame's lines
/// and the helper's memory. The fuzz target has what changes and what fails.
#include "tests/common/GuardedBytes.h"
#include "tests/common/InventedFrame.h"
#include "tests/common/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <limits>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;

constexpr std::int64_t k2To16 = std::int64_t{1} << 16;
constexpr std::int64_t k2To31 = std::int64_t{1} << 31;
constexpr std::int64_t k2To32 = std::int64_t{1} << 32;
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

/// The bytes that behind a frame's last line may be read as well: a preview that is a step or so
/// wider than the picture is a matter of the engine's contract.
constexpr std::size_t kBehind = 64;

/// A frame and its memory, which ends where a page begins that can't be read.
struct Picture {
    explicit Picture(MemoryFrameOptions options)
    {
        options.bytes = memory.begin();
        frame = InventedFrame::create(options);
    }

    static constexpr std::int64_t kWidth = 32;
    static constexpr std::int64_t kHeight = 8;
    static constexpr std::int64_t kRowBytes = kWidth * 4;
    GuardedBytes memory{kRowBytes * kHeight + kBehind};
    host::Owned<InventedFrame> frame;
};

MemoryFrameOptions options(std::uint32_t format)
{
    return {.width = Picture::kWidth,
            .height = Picture::kHeight,
            .format = format,
            .rowBytes = Picture::kRowBytes,
            .colorspace = ColorspaceCodeRec709};
}

/// Reads what the GL would read of the rows that it is given.
void readRows(GLsizei width, GLsizei height, const void* pixels)
{
    GLRecorder& gl = GLRecorder::get();
    EXPECT_GE(width, 0);
    EXPECT_GE(height, 0);
    if (!pixels || gl.fake.boundBuffers[GL_PIXEL_UNPACK_BUFFER])
        return;
    const GLsizei row = gl.fake.unpackRowLength ? gl.fake.unpackRowLength : width;
    const auto* bytes = static_cast<const volatile std::uint8_t*>(pixels);
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < std::int64_t{width} * 4; ++x)
            static_cast<void>(bytes[y * row * 4 + x]);
}

class HostValues : public FakeGLTest, public testing::WithParamInterface<const char*> {
protected:
    HostValues()
    {
        gl.fake.extensions = "GL_ARB_texture_non_power_of_two";
        gl.replace(
            "glTexSubImage2D",
            +[](GLenum, GLint, GLint, GLint, GLsizei width, GLsizei height, GLenum, GLenum,
                const void* pixels) { readRows(width, height, pixels); });
        gl.replace(
            "glTexImage2D", +[](GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint, GLenum,
                                GLenum, const void* pixels) {
                if (pixels)
                    readRows(width, height, pixels);
            });
        EXPECT_EQ(helper->InitializeGL(), S_OK);
    }

    /// Hands it over and paints; nothing of it may be left open.
    HRESULT show(Picture& picture)
    {
        picture.frame->askAgain();
        const HRESULT status = helper->SetFrame(picture.frame.get());
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(picture.frame->openAccesses(), 0);
        EXPECT_EQ(picture.frame->references(), 1u);
        gl.clear();
        return status;
    }

    bool convertsAtOnce() const { return GetParam() != std::string("OpenGL3"); }

    Helper helper{convertsAtOnce() ? CreateOpenGLScreenPreviewHelper_0002()
                                   : CreateOpenGL3ScreenPreviewHelper_0002()};
};

TEST_P(HostValues, SizesThatNoFrameHas)
{
    const struct {
        Question question;
        std::int64_t value;
        HRESULT status; // of the fixed-function helper
    } cases[] = {
        {Question::Width, 0, S_OK},
        {Question::Height, 0, S_OK},
        {Question::Height, 1, S_OK}, // not one line is shown
        {Question::Width, 1, S_OK},
        {Question::Width, -1, E_INVALIDARG},
        {Question::Height, -8, E_INVALIDARG},
        {Question::Width, k2To16, E_INVALIDARG},
        {Question::Width, k2To31, E_INVALIDARG},
        {Question::Width, k2To32 + 8, E_INVALIDARG},
        {Question::Width, kMost, E_INVALIDARG},
        {Question::Width, kLeast, E_INVALIDARG},
        {Question::Height, k2To31, E_INVALIDARG},
        {Question::Height, kMost, E_INVALIDARG},
        {Question::Height, kLeast, E_INVALIDARG},
        {Question::Height, kLeast + 64, E_INVALIDARG}, // 64, in 32 bits
        {Question::RowBytes, 0, E_INVALIDARG},
        {Question::RowBytes, 127, E_INVALIDARG},
        {Question::RowBytes, -127, E_INVALIDARG},
        {Question::RowBytes, k2To31, E_INVALIDARG},
        {Question::RowBytes, k2To31 / 2, E_INVALIDARG}, // two lines on, in 32 bits
        {Question::RowBytes, kMost, E_INVALIDARG},
        {Question::RowBytes, kLeast, E_INVALIDARG},
        {Question::PixelFormat, 0, E_INVALIDARG},
        {Question::PixelFormat, 0xFFFFFFFF, E_INVALIDARG},
        {Question::Flags, 0xFFFFFFFE, S_OK},
    };
    for (const std::uint32_t format : {kARGB, code("RGBA")})
        for (const auto& [question, value, status] : cases) {
            Picture picture(options(format));
            // The frame has no memory of such a size, nor would the driver get to reading it.
            if (question == Question::Height && value > Picture::kHeight && !convertsAtOnce())
                picture.frame->startAccessStatus = E_FAIL;
            if (question == Question::RowBytes && value > Picture::kRowBytes)
                picture.frame->startAccessStatus = E_FAIL;
            picture.frame->answer(question, value);
            const HRESULT expected = convertsAtOnce() ? status : S_OK;
            EXPECT_EQ(show(picture), expected) << static_cast<int>(question) << ' ' << value;
        }
}

// Formats whose chroma is rebuilt a step at a time need more than a step.
TEST_P(HostValues, NarrowFramesOfEveryFormat)
{
    for (const auto& [format, least] : {std::pair{"v210", 13},
                                        {"Ay10", 5},
                                        {"2vuy", 0},
                                        {"R12B", 0},
                                        {"RGB3", 0},
                                        {"BGRA", 0},
                                        {"RGBA", 0}})
        for (int width = 0; width <= 20; ++width) {
            Picture picture(options(code(format)));
            picture.frame->answer(Question::Width, width);
            const bool good = width >= least || !convertsAtOnce();
            EXPECT_EQ(show(picture), good ? S_OK : E_INVALIDARG) << format << ' ' << width;
        }
}

INSTANTIATE_TEST_SUITE_P(Helpers, HostValues,
                         testing::Values("OpenGL3", "FixedFunction", "FixedFunctionPowersOfTwo"),
                         [](const auto& helper) { return std::string(helper.param); });

// --- Pictures ------------------------------------------------------------------------------------

// A negative row size in the plain copy: the first line is the last in memory.
TEST(HostPictures, OfLinesInReverseOrder)
{
    GLRecorder& gl = GLRecorder::get();
    gl.useFake();
    gl.fake.extensions = "GL_ARB_texture_non_power_of_two";
    const Helper helper(CreateOpenGLScreenPreviewHelper_0002());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    std::vector<int> shown;
    const auto observe = [&](const GLCall& made) {
        const auto* pixels = static_cast<const std::uint8_t*>(made.address(8));
        for (int y = 0; y < 4; ++y)
            shown.push_back(pixels[y * 16]);
    };
    gl.observe("glTexImage2D", observe);
    gl.observe("glTexSubImage2D", observe);
    for (const bool flipped : {false, true}) {
        constexpr std::int64_t kRow = 16 + 12; // padded
        GuardedBytes memory(kRow * 8 - 12);
        for (std::int64_t y = 0; y < 8; ++y)
            memory.begin()[y * kRow] = static_cast<std::uint8_t>(y);
        const Frame frame = TestFrame::create({.width = 4,
                                               .height = 8,
                                               .format = code("RGBA"),
                                               .rowBytes = -kRow,
                                               .flags = flipped ? FrameFlagFlipVertical : 0u,
                                               .bytes = memory.begin() + 7 * kRow});
        shown.clear();
        EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(shown, flipped ? (std::vector{0, 2, 4, 6}) : (std::vector{7, 5, 3, 1}));
    }
}

} // namespace
} // namespace kestrix::test
