/// What the fixed-function helper paints, read back from a real context.
#include "tests/preview/DriverFixture.h"

#include <GL/glext.h>

namespace kestrix::test {
namespace {

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

} // namespace
} // namespace kestrix::test
