/// A fixed-function helper on the fake GL, frames that tell their lines, and what reached the
/// texture.
#pragma once

#include "tests/support/PreviewFixture.h"
#include "tests/support/TestFrame.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <gmock/gmock.h>

#include <optional>
#include <utility>
#include <vector>

namespace kestrix::test {

using Frame = host::Owned<TestFrame>;

inline constexpr const char* kNonPowerOfTwo = "GL_ARB_texture_non_power_of_two";
inline constexpr const char* kPixelBuffers = "GL_ARB_pixel_buffer_object";

/// A frame whose pixels are their column, their line, `tag` and an alpha of 77. In `RGBA` that is
/// shown as it is.
inline Frame taggedFrame(host::MemoryFrameOptions options, std::uint8_t tag)
{
    Frame frame = TestFrame::create(options);
    for (std::int64_t y = 0; y < options.height; ++y)
        for (std::int64_t x = 0; x < options.width; ++x) {
            std::uint8_t* pixel = frame->bytes() + y * frame->GetRowBytes() + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x);
            pixel[1] = static_cast<std::uint8_t>(y);
            pixel[2] = tag;
            pixel[3] = 77;
        }
    return frame;
}

constexpr host::MemoryFrameOptions rgba(std::int64_t width, std::int64_t height)
{
    return {.width = width, .height = height, .format = code("RGBA")};
}

inline host::MemoryFrameOptions stereo(host::MemoryFrameOptions options, const Frame& right,
                                       std::uint32_t packing = Packing3DLeftOnly)
{
    options.packing3D = packing;
    options.rightEye = right.get();
    return options;
}

/// What reached the texture.
struct Upload {
    bool newTexture = false;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    const std::uint8_t* pixel(int x, int y) const
    {
        return &bytes.at(static_cast<std::size_t>(y * width + x) * 4);
    }
    /// The line of the frame that is on a line of the texture, told by its pixel at `x`.
    int lineAt(int y, int x = 0) const { return pixel(x, y)[1]; }
    int tagAt(int x, int y) const { return pixel(x, y)[2]; }
};

class GLPreview : public FakeGLTest {
protected:
    explicit GLPreview(const char* extensions = kNonPowerOfTwo)
    {
        gl.fake.extensions = extensions;
        helper = initialisedLegacyHelper();
        gl.observe("glTexImage2D", [this](const GLCall& made) {
            take(true, made.arguments[3], made.arguments[4], made.arguments[8]);
        });
        gl.observe("glTexSubImage2D", [this](const GLCall& made) {
            take(false, made.arguments[4], made.arguments[5], made.arguments[8]);
        });
    }

    /// Paints and gives what was uploaded.
    std::optional<Upload> paint()
    {
        gl.clear();
        m_upload.reset();
        EXPECT_EQ(helper->PaintGL(), S_OK);
        return std::exchange(m_upload, std::nullopt);
    }

    /// Hands a frame over and paints, where something is to be uploaded.
    Upload show(IKestrixVideoFrame* frame)
    {
        EXPECT_EQ(helper->SetFrame(frame), S_OK);
        const std::optional<Upload> upload = paint();
        EXPECT_TRUE(upload);
        return upload.value_or(Upload{});
    }

    /// Texture coordinates and positions as the quad was drawn.
    std::vector<GLCall> quad() const
    {
        return gl.callsTo({"glBegin", "glTexCoord2f", "glVertex2f", "glEnd"});
    }

    static auto quadWith(double s, double t)
    {
        return testing::ElementsAre(call("glBegin", GL_QUADS), call("glTexCoord2f", 0.0, t),
                                    call("glVertex2f", -1.0, -1.0), call("glTexCoord2f", s, t),
                                    call("glVertex2f", 1.0, -1.0), call("glTexCoord2f", s, 0.0),
                                    call("glVertex2f", 1.0, 1.0), call("glTexCoord2f", 0.0, 0.0),
                                    call("glVertex2f", -1.0, 1.0), call("glEnd"));
    }

    Helper helper;

private:
    void take(bool newTexture, const GLArgument& width, const GLArgument& height,
              const GLArgument& source)
    {
        m_upload = Upload{
            newTexture, static_cast<int>(width.integer()), static_cast<int>(height.integer()), {}};
        const auto size = static_cast<std::size_t>(m_upload->width * m_upload->height) * 4;
        const unsigned buffer = gl.fake.boundBuffers[GL_PIXEL_UNPACK_BUFFER];
        if (buffer) {
            EXPECT_EQ(source, GLArgument(bufferOffset(0)));
            m_upload->bytes = gl.fake.bufferBytes[buffer];
        } else {
            const auto* bytes = static_cast<const std::uint8_t*>(source.address());
            m_upload->bytes.assign(bytes, bytes + size);
        }
        // A buffer is as large as the slot's memory, which never shrinks.
        EXPECT_GE(m_upload->bytes.size(), size);
    }

    std::optional<Upload> m_upload;
};

} // namespace kestrix::test
