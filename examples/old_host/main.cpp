/// A host as one wrote it for interface revision 14.2.1: its frames have their bytes themselves,
/// and it knows nothing of what came later. Shows the moving test pattern in a window, through the
/// fixed-function helper or the one for OpenGL 3; or writes the first picture to a file.
///
///     old_host gl|gl3 [PICTURE.png]
#include <KestrixPreviewAPI_v14_2_1.h>

#include "host/OldMemoryFrame.h"
#include "host/RowEncoder.h"
#include "host/TestPattern.h"

#include <GLFW/glfw3.h>
#include <png.h>

#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kestrix::host;
using KSX::PixelConversion::Colorspace709;
using KSX::PixelConversion::PixelFormat_BGRA;

constexpr unsigned kWidth = 640;
constexpr unsigned kHeight = 360;
constexpr unsigned kFramesPerSecond = 25;

/// The windowing library, for as long as it lives.
struct Windowing {
    Windowing()
    {
        if (!glfwInit())
            throw std::runtime_error("no display");
    }
    ~Windowing() { glfwTerminate(); }
    Windowing(const Windowing&) = delete;
    Windowing& operator=(const Windowing&) = delete;
};

struct DestroyWindow {
    void operator()(GLFWwindow* window) const { glfwDestroyWindow(window); }
};
using Window = std::unique_ptr<GLFWwindow, DestroyWindow>;

/// Opens a window whose context suits the helper, and makes that current.
Window openWindow(bool openGL3)
{
    glfwWindowHint(GLFW_RESIZABLE, GLFW_FALSE);
    if (openGL3) {
        glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
        glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 2);
        glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
        glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    }
    Window window(glfwCreateWindow(kWidth, kHeight, "old_host", nullptr, nullptr));
    if (!window)
        throw std::runtime_error("no window with an OpenGL context for this helper");
    glfwMakeContextCurrent(window.get());
    glfwSwapInterval(1);
    return window;
}

Owned<OldMemoryFrame> makeFrame(const TestPattern& pattern, std::uint64_t number)
{
    auto frame =
        OldMemoryFrame::create({.width = kWidth, .height = kHeight, .format = PixelFormat_BGRA});
    RowEncoder encoder(PixelFormat_BGRA, Colorspace709, kWidth);
    std::vector<Color> row(kWidth);
    for (unsigned y = 0; y < kHeight; ++y) {
        pattern.fillRow(number, y, row);
        encoder.encode(row, frame->bytes() + y * encoder.rowBytes());
    }
    return frame;
}

void check(HRESULT status, const char* call)
{
    if (status < 0)
        throw std::runtime_error(std::string(call) + " failed");
}

void paint(IKestrixGLScreenPreviewHelper_v14_2_1& helper, GLFWwindow* window)
{
    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    glViewport(0, 0, width, height);
    check(helper.PaintGL(), "PaintGL");
}

/// Writes what was painted and not yet shown.
void savePicture(const char* path, GLFWwindow* window)
{
    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    std::vector<std::uint8_t> rgb(std::size_t{3} * static_cast<unsigned>(width * height));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());

    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(width);
    png.height = static_cast<png_uint_32>(height);
    png.format = PNG_FORMAT_RGB;
    // OpenGL has the bottom row first.
    if (!png_image_write_to_file(&png, path, 0, rgb.data(), -3 * width, nullptr))
        throw std::runtime_error(std::string("can't write ") + path + ": " + png.message);
}

void run(bool openGL3, const char* picture)
{
    const Windowing windowing;
    const Window window = openWindow(openGL3);
    const Owned<IKestrixGLScreenPreviewHelper_v14_2_1> helper(
        openGL3 ? CreateOpenGL3ScreenPreviewHelper_0001() : CreateOpenGLScreenPreviewHelper_0001());
    if (!helper)
        throw std::runtime_error("the library could not make a preview helper");
    check(helper->InitializeGL(), "InitializeGL");

    const TestPattern pattern(kWidth, kHeight, kFramesPerSecond);
    for (std::uint64_t number = 0; !glfwWindowShouldClose(window.get()); ++number) {
        check(helper->SetFrame(makeFrame(pattern, number).get()), "SetFrame");
        paint(*helper, window.get());
        if (picture)
            return savePicture(picture, window.get());
        glfwSwapBuffers(window.get());
        glfwWaitEventsTimeout(1.0 / kFramesPerSecond);
    }
}

} // namespace

int main(int count, char** arguments)
{
    const std::string_view helper = count > 1 ? arguments[1] : "";
    if (count > 3 || (helper != "gl" && helper != "gl3")) {
        std::cerr << "old_host: takes gl or gl3, and a PNG file to write if no window is wanted\n";
        return 2;
    }
    try {
        run(helper == "gl3", count == 3 ? arguments[2] : nullptr);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "old_host: " << error.what() << '\n';
        return 1;
    }
}
