/// What the fixed-function helper paints, read back from a real context.
#include "tests/support/GLContext.h"
#include "tests/support/PreviewFixture.h"
#include "tests/support/Random.h"
#include "tests/support/TestFrame.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <array>
#include <span>

namespace kestrix::test {
namespace {

class GLPixels : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(context.failure(), "");
        gl.useDriver();
        helper.reset(CreateOpenGLScreenPreviewHelper_0002());
        ASSERT_EQ(helper->InitializeGL(), S_OK);
    }

    void TearDown() override
    {
        if (context.failure().empty()) {
            EXPECT_EQ(glErrorNow(), GLenum{GL_NO_ERROR});
        }
    }

    GLContext context{GLContext::Kind::Legacy};
    GLRecorder& gl = GLRecorder::get();
    Helper helper;
};

TEST_F(GLPixels, AreTheFramesOwn)
{
    struct {
        std::uint32_t format;
        int red, green, blue; // their bytes in a pixel
    } const formats[] = {{code("RGBA"), 0, 1, 2}, {code("BGRA"), 2, 1, 0}, {32, 1, 2, 3}};
    for (const auto& c : formats)
        for (const int width : {16, 37})
            for (const bool flipped : {false, true}) {
                const auto frame = TestFrame::create(
                    {.width = width,
                     .height = 12,
                     .format = c.format,
                     .flags = flipped ? FrameFlagFlipVertical : FrameFlagDefault});
                Random(3).fill(std::span(frame->bytes(), frame->size()), Content::Uniform);
                ASSERT_EQ(helper->SetFrame(frame.get()), S_OK);
                Canvas canvas(width, 6);
                EXPECT_EQ(helper->PaintGL(), S_OK);
                const auto painted = canvas.read();
                for (int y = 0; y < 6; ++y)
                    for (int x = 0; x < width; ++x) {
                        const int line = flipped ? 11 - 2 * y : 2 * y;
                        const std::uint8_t* source = frame->bytes() + (line * width + x) * 4;
                        const auto& pixel = painted[static_cast<std::size_t>(y * width + x)];
                        // Every pixel is on a texel, so nothing is interpolated. Alpha is the
                        // current colour's, whatever the frame had.
                        EXPECT_NEAR(pixel[0], source[c.red] / 255.0, 1e-3);
                        EXPECT_NEAR(pixel[1], source[c.green] / 255.0, 1e-3);
                        EXPECT_NEAR(pixel[2], source[c.blue] / 255.0, 1e-3);
                        EXPECT_EQ(pixel[3], 1.0f);
                    }
            }
}

TEST_F(GLPixels, AreBlackWithoutAFrame)
{
    Canvas canvas(8, 8);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    const std::array<float, 4> black{0, 0, 0, 1};
    for (const auto& pixel : canvas.read())
        ASSERT_EQ(pixel, black);
}

TEST_F(GLPixels, LeaveTheStateAsPromised)
{
    const auto isEnabled = driverGL<decltype(::glIsEnabled)>("glIsEnabled");
    const auto environmentMode = [] {
        GLint mode = 0;
        driverGL<decltype(::glGetTexEnviv)>("glGetTexEnviv")(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE,
                                                             &mode);
        return mode;
    };
    Canvas canvas(8, 8);
    driverGL<decltype(::glTexEnvi)>("glTexEnvi")(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_BLEND);
    driverGL<decltype(::glEnable)>("glEnable")(GL_TEXTURE_2D);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    EXPECT_TRUE(isEnabled(GL_TEXTURE_2D)) << "as the host had it, where there is no frame";

    helper->SetFrame(TestFrame::create({.width = 8, .height = 8, .format = code("RGBA")}).get());
    for (int paint = 0; paint < 2; ++paint) {
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
        EXPECT_EQ(glState(GL_TEXTURE_BINDING_2D), 0);
        EXPECT_EQ(glState(GL_PIXEL_UNPACK_BUFFER_BINDING), 0);
        EXPECT_EQ(environmentMode(), GL_BLEND);
    }
}

} // namespace
} // namespace kestrix::test
