/// Fuzzes both helpers through their factories. An input is a run of calls with frames whose
/// properties can be anything. The memory of a frame fits the first value of each property, and
/// ends after the 64 bytes that may be read behind the last line. Later values may differ.
#include "conversion/KSXPixelConversion.h"
#include "tests/common/GLRecorder.h"
#include "tests/common/GuardedBytes.h"
#include "tests/common/TestFrame.h"
#include "tests/fuzz/FuzzTarget.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>

using namespace kestrix::test;
namespace host = kestrix::host;

namespace {

constexpr std::int64_t kReadableBehind = 64;
constexpr std::int64_t kMostBytes = 1 << 20;

/// A number that a host might give. Most are small; some are near a limit of some type.
std::int64_t number(FuzzInput& input)
{
    constexpr std::int64_t kEdges[] = {0,         1,         -1,       720,       3840,
                                       7680,      1 << 16,   1 << 30,  INT32_MAX, 1LL << 31,
                                       1LL << 32, INT64_MAX, INT64_MIN};
    const unsigned kind = input.byte();
    if (kind < 160)
        return kind;
    if (kind < 224)
        return static_cast<std::int16_t>(input.word());
    const auto distance = static_cast<std::uint64_t>(static_cast<std::int8_t>(input.byte()));
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(kEdges[kind % std::size(kEdges)]) +
                                     distance);
}

std::int64_t format(FuzzInput& input)
{
    using namespace KSX::PixelConversion;
    constexpr PixelFormat kShown[] = {
        PixelFormat_RGBA, PixelFormat_2vuy, PixelFormat_v210, PixelFormat_Ay10, PixelFormat_ARGB,
        PixelFormat_vRGB, PixelFormat_BGRA, PixelFormat_BGRv, PixelFormat_r210, PixelFormat_R210,
        PixelFormat_RGB3, PixelFormat_R10l, PixelFormat_R10B, PixelFormat_R12B, PixelFormat_R12l};
    const unsigned kind = input.byte();
    return kind < 240 ? std::int64_t{kShown[kind % std::size(kShown)]}
                      : std::int64_t{input.dword()};
}

/// A frame and its memory.
struct Picture {
    Picture(FuzzInput& input, IKestrixVideoFrame* right)
    {
        const std::int64_t width = number(input);
        std::int64_t height = number(input);
        // The helper would allocate gigabytes for these sizes. It refuses larger ones.
        if (const double area = static_cast<double>(width) * static_cast<double>(height);
            area > 0x1p22 && area < 0x1p36)
            height = 2;
        // Most rows have room for their pixels. Some pictures have the first line last in memory.
        const unsigned shape = input.byte();
        std::int64_t rowBytes = number(input);
        if (shape % 4 != 0 && width >= 0 && width < 10000)
            rowBytes = (width + 47) / 48 * 128 + width * 5 + shape / 16;
        if (shape % 8 == 7 && rowBytes > -kMostBytes)
            rowBytes = -rowBytes;

        const std::int64_t lines = std::max(height, std::int64_t{0});
        std::int64_t size = 0;
        const bool fits = rowBytes > -kMostBytes && rowBytes < kMostBytes && lines < kMostBytes &&
                          (size = std::abs(rowBytes) * lines) < kMostBytes;
        const std::int64_t above = fits && rowBytes < 0 ? size + rowBytes : 0;
        bytes = std::make_unique<GuardedBytes>(
            static_cast<std::size_t>((fits ? size : 0) + kReadableBehind));

        const unsigned flags = input.byte();
        host::MemoryFrameOptions options{
            .rowBytes = 0, .captured = (flags & 1) != 0, .rightEye = right};
        options.bytes = bytes->begin() + std::max(above, std::int64_t{0});
        if (flags & 2)
            options.colorspace =
                (flags & 4) ? std::int64_t{ColorspaceCodeRec2020} : std::int64_t{input.dword()};
        if (right || flags & 8)
            options.packing3D = (flags & 16) ? input.dword() : std::uint32_t{Packing3DLeftOnly};
        frame = TestFrame::create(options);
        const std::int64_t pixelFormat = format(input);
        frame->answers = {{Question::Width, {width}},
                          {Question::Height, {height}},
                          {Question::RowBytes, {rowBytes}},
                          {Question::PixelFormat, {pixelFormat}},
                          {Question::Flags, {flags >> 7}}};
        if (flags & 32)
            frame->answers[static_cast<Question>(input.byte() % static_cast<int>(Question::Count))]
                .push_back(flags & 64 ? number(input) : format(input));

        const unsigned fault = input.byte();
        const REFIID kInterfaces[] = {IID_IKestrixVideoBuffer, IID_IKestrixVideoFrameMetadata,
                                      IID_IKestrixVideoFrame3DExtensions,
                                      IID_IKestrixVideoInputFrame};
        frame->startAccessStatus = !fits || fault == 1 ? E_FAIL : S_OK;
        frame->getBytesStatus = fault == 2 ? E_FAIL : S_OK;
        frame->givesNullBytes = fault == 3;
        frame->getIntStatus = fault == 4 ? E_FAIL : S_OK;
        frame->rightEyeStatus = fault == 5 ? E_FAIL : S_OK;
        if (fault >= 8 && fault < 16) {
            frame->lacks = {kInterfaces[fault % 4]};
            frame->lacksStatus = fault < 12 ? E_NOINTERFACE : S_OK;
        }
    }

    std::unique_ptr<GuardedBytes> bytes;
    host::Owned<TestFrame> frame;
};

/// Reads the first and the last byte of each row that the GL would read.
void readRows(GLenum, GLint, GLint, GLint, GLsizei width, GLsizei height, GLenum, GLenum,
              const void* pixels)
{
    const FakeGL& fake = GLRecorder::get().fake;
    const auto buffer = fake.boundBuffers.find(GL_PIXEL_UNPACK_BUFFER);
    check(width >= 0 && height >= 0, "a size below 0");
    if (width == 0 || (buffer != fake.boundBuffers.end() && buffer->second != 0))
        return;
    const std::int64_t row = std::int64_t{fake.unpackRowLength ? fake.unpackRowLength : width} * 4;
    const auto* bytes = static_cast<const volatile std::uint8_t*>(pixels);
    for (std::int64_t y = 0; y < height; ++y) {
        static_cast<void>(bytes[y * row]);
        static_cast<void>(bytes[y * row + std::int64_t{width} * 4 - 1]);
    }
}

void readNewRows(GLenum target, GLint level, GLint, GLsizei width, GLsizei height, GLint,
                 GLenum format, GLenum type, const void* pixels)
{
    const int limit = GLRecorder::get().fake.maxTextureSize;
    check(width <= limit && height <= limit, "a texture beyond the limit");
    if (pixels)
        readRows(target, level, 0, 0, width, height, format, type, pixels);
}

/// Only objects that exist are bound, and a draw has a program and a vertex array.
void checkObjects(GLRecorder& gl)
{
    for (const char* const bind :
         {"glBindTexture", "glBindBuffer", "glBindVertexArray", "glUseProgram"})
        gl.observe(bind, [&gl](const GLCall& made) {
            const auto name = static_cast<unsigned>(made.arguments.back());
            check(name == 0 || gl.fake.live.contains(name), made.name + " of what is gone");
        });
    gl.observe("glDrawElements", [&gl](const GLCall&) {
        for (const char* const bind : {"glBindVertexArray", "glUseProgram"}) {
            const std::vector<GLCall> binds = gl.callsTo({bind});
            check(!binds.empty() && binds.back().arguments.back() != 0,
                  std::string("a draw without ") + bind);
        }
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    GLRecorder& gl = GLRecorder::get();
    gl.useFake();
    checkObjects(gl);
    gl.replace("glTexSubImage2D", readRows);
    gl.replace("glTexImage2D", readNewRows);
    constexpr const char* kExtensions[] = {
        "", "GL_ARB_texture_non_power_of_two", "GL_ARB_pixel_buffer_object",
        "GL_ARB_texture_non_power_of_two GL_ARB_pixel_buffer_object"};
    constexpr const char* kFailures[] = {"", "", "", "vertex shader", "fragment shader", "program"};

    const bool fixed = input.byte() % 2 == 0;
    host::Owned<IKestrixGLScreenPreviewHelper> helper(
        fixed ? CreateOpenGLScreenPreviewHelper_0002() : CreateOpenGL3ScreenPreviewHelper_0002());
    for (int call = 0; call < 12; ++call) {
        gl.clear();
        switch (const unsigned action = input.byte() % 8) {
        case 0: {
            const unsigned how = input.byte();
            gl.fake.extensions = kExtensions[how % 4];
            gl.fake.doesNotBuild = kFailures[how / 4 % std::size(kFailures)];
            gl.fake.majorVersion = how > 240 ? 2 : 4;
            gl.fake.buffersMap = how % 16 != 7;
            helper->InitializeGL();
            break;
        }
        case 1: {
            constexpr std::uint32_t kFormats[] = {Preview3DDefault,   Preview3DLeftOnly,
                                                  Preview3DRightOnly, Preview3DSideBySide,
                                                  Preview3DTopBottom, 0};
            check(helper->Set3DPreviewFormat(kFormats[input.byte() % std::size(kFormats)]) == S_OK,
                  "Set3DPreviewFormat fails");
            break;
        }
        case 2:
            check(helper->SetFrame(nullptr) == S_OK, "null is refused");
            break;
        case 3:
            helper->PaintGL();
            break;
        default: {
            std::unique_ptr<Picture> right;
            if (action < 6)
                right = std::make_unique<Picture>(input, nullptr);
            Picture picture(input, right ? right->frame.get() : nullptr);
            const HRESULT status = helper->SetFrame(picture.frame.get());
            check(status <= 0, "an unknown status");
            // The OpenGL 3 helper reads the frame in the paint, while the memory still exists.
            helper->PaintGL();
            helper->SetFrame(nullptr);
            check(picture.frame->openAccesses() == 0, "an access is open");
            check(picture.frame->references() == 1, "a reference is kept");
            check(!right || right->frame->openAccesses() == 0, "the right eye's access is open");
            check(!right || right->frame->references() == 2, "the right eye's reference is kept");
        }
        }
    }
    helper.reset();
    for (const auto& [name, kind] : gl.fake.live)
        check(fixed && kind == "texture", "a GL object is left");
    return 0;
}
