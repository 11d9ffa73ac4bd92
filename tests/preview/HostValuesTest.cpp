/// What hosts can get wrong in a frame: a status or the picture before, and no byte outside the
/// frame's lines and the helper's memory.
#include "tests/support/GuardedBytes.h"
#include "tests/support/InventedFrame.h"
#include "tests/support/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <functional>
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
    explicit Picture(MemoryFrameOptions options, IKestrixVideoFrame* right = nullptr)
    {
        options.rightEye = right;
        options.packing3D = Packing3DLeftOnly;
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

// What a frame said first holds, whatever it says later.
TEST_P(HostValues, FramesThatChangeBetweenTwoCalls)
{
    const std::int64_t values[] = {-8,
                                   0,
                                   1,
                                   13,
                                   64,
                                   512,
                                   8192,
                                   k2To16,
                                   k2To31,
                                   kMost,
                                   kLeast,
                                   std::int64_t{code("R12B")},
                                   std::int64_t{code("v210")}};
    for (const std::uint32_t preview :
         {Preview3DTopBottom, Preview3DSideBySide, Preview3DRightOnly}) {
        EXPECT_EQ(helper->Set3DPreviewFormat(preview), S_OK);
        for (int question = 0; question < static_cast<int>(Question::Count); ++question)
            for (const std::int64_t value : values)
                for (const bool rightLies : {false, true}) {
                    Picture right(options(code("RGBA")));
                    Picture left(options(code("RGBA")), right.frame.get());
                    (rightLies ? right : left).frame->answer(Question{question}).later = value;
                    EXPECT_EQ(show(left), S_OK);
                }
    }
}

TEST_P(HostValues, RightEyesOfAnotherSize)
{
    for (const std::uint32_t preview :
         {Preview3DTopBottom, Preview3DSideBySide, Preview3DRightOnly}) {
        EXPECT_EQ(helper->Set3DPreviewFormat(preview), S_OK);
        for (const auto& [question, value] : {std::pair{Question::Width, std::int64_t{64}},
                                              {Question::Width, 16},
                                              {Question::Height, 64},
                                              {Question::Height, 4},
                                              {Question::RowBytes, 64},
                                              {Question::RowBytes, 0},
                                              {Question::RowBytes, kLeast},
                                              {Question::PixelFormat, code("R12B")}}) {
            Picture right(options(kARGB));
            right.frame->answer(question, value);
            Picture left(options(kARGB), right.frame.get());
            EXPECT_EQ(show(left), S_OK);
        }
        // In less memory than the left one has, as it says.
        GuardedBytes few(64 * 4 + kBehind);
        MemoryFrameOptions small = options(kARGB);
        small.width = 16;
        small.height = 4;
        small.rowBytes = 64;
        small.bytes = few.begin();
        const auto right = InventedFrame::create(small);
        Picture left(options(kARGB), right.get());
        EXPECT_EQ(show(left), S_OK);
    }
}

TEST_P(HostValues, OperationsThatFail)
{
    const std::function<void(InventedFrame&)> faults[] = {
        [](InventedFrame& frame) { frame.lacks = {IID_IKestrixVideoBuffer}; },
        [](InventedFrame& frame) { frame.lacks = {IID_IKestrixVideoFrameMetadata}; },
        [](InventedFrame& frame) { frame.lacks = {IID_IKestrixVideoFrame3DExtensions}; },
        [](InventedFrame& frame) { frame.lacks = {IID_IKestrixVideoInputFrame}; },
        [](InventedFrame& frame) { frame.givesNull = {IID_IKestrixVideoBuffer}; },
        [](InventedFrame& frame) { frame.givesNull = {IID_IKestrixVideoFrameMetadata}; },
        [](InventedFrame& frame) { frame.givesNull = {IID_IKestrixVideoFrame3DExtensions}; },
        [](InventedFrame& frame) { frame.givesNull = {IID_IKestrixVideoInputFrame}; },
        [](InventedFrame& frame) { frame.startAccessStatus = E_FAIL; },
        [](InventedFrame& frame) { frame.getBytesStatus = E_FAIL; },
        [](InventedFrame& frame) { frame.givesNullBytes = true; },
        [](InventedFrame& frame) { frame.getIntStatus = E_FAIL; },
        [](InventedFrame& frame) { frame.rightEyeStatus = E_FAIL; },
    };
    for (const auto& fault : faults)
        for (const bool ofTheRight : {false, true}) {
            MemoryFrameOptions captured = options(kARGB);
            captured.captured = true;
            Picture right(captured);
            Picture left(captured, right.frame.get());
            fault(ofTheRight ? *right.frame : *left.frame);
            EXPECT_EQ(show(left), S_OK);
        }
}

TEST_P(HostValues, EyesAndColoursThatNobodyKnows)
{
    for (const std::int64_t unknown : {std::int64_t{0}, std::int64_t{0xFFFFFFFF}, kLeast, kMost}) {
        MemoryFrameOptions coloured = options(kARGB);
        coloured.colorspace = unknown;
        Picture picture(coloured);
        EXPECT_EQ(show(picture), convertsAtOnce() ? E_INVALIDARG : S_OK);
        EXPECT_EQ(helper->Set3DPreviewFormat(static_cast<std::uint32_t>(unknown)), S_OK);
        Picture right(options(kARGB));
        Picture left(options(kARGB), right.frame.get());
        EXPECT_EQ(show(left), S_OK);
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
