/// The window, by GLFW.
#include "Window.h"

#include "PngFile.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace preview_host {
namespace {

std::string lastError()
{
    const char* description = nullptr;
    glfwGetError(&description);
    return description ? description : "unknown error";
}

/// A string of the current context.
std::string text(GLenum name)
{
    const auto* value = reinterpret_cast<const char*>(glGetString(name));
    return value ? value : "unknown";
}

/// The largest size with the aspect ratio of `size` that fits in `room`.
Size fit(Size size, Size room)
{
    const double scale = std::min(static_cast<double>(room.width) / size.width,
                                  static_cast<double>(room.height) / size.height);
    return {std::max(1U, static_cast<unsigned>(size.width * scale + 0.5)),
            std::max(1U, static_cast<unsigned>(size.height * scale + 0.5))};
}

Size screenSize()
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    if (GLFWmonitor* screen = glfwGetPrimaryMonitor())
        glfwGetMonitorWorkarea(screen, &x, &y, &width, &height);
    return {static_cast<unsigned>(width), static_cast<unsigned>(height)};
}

void requestContext(HelperKind helper)
{
    // The fixed-function helper needs the fixed pipeline, the other one a core context.
    const bool modern = helper == HelperKind::OpenGL3;
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, modern ? 3 : 2);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, modern ? 2 : 1);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, modern ? GLFW_TRUE : GLFW_FALSE);
    glfwWindowHint(GLFW_OPENGL_PROFILE,
                   modern ? GLFW_OPENGL_CORE_PROFILE : GLFW_OPENGL_ANY_PROFILE);
}

} // namespace

Window::Window(Size size, HelperKind helper, bool paced) : m_paced(paced)
{
    if (!glfwInit())
        throw std::runtime_error("no display: " + lastError());

    const Size screen = screenSize();
    if (screen.width && screen.height && (size.width > screen.width || size.height > screen.height))
        size = fit(size, screen);
    try {
        open(size, helper);
    } catch (...) {
        glfwTerminate();
        throw;
    }
}

void Window::open(Size size, HelperKind helper)
{
    requestContext(helper);
    GLFWwindow* opened =
        glfwCreateWindow(static_cast<int>(size.width), static_cast<int>(size.height),
                         "preview_host", nullptr, nullptr);
    if (!opened)
        throw std::runtime_error(std::string("no OpenGL ") +
                                 (helper == HelperKind::OpenGL3 ? "3.2 core" : "2.1") +
                                 " context: " + lastError());
    if (m_window)
        glfwDestroyWindow(m_window);
    m_window = opened;
    glfwMakeContextCurrent(m_window);
    glfwSwapInterval(m_paced ? 1 : 0);

    glfwSetWindowUserPointer(m_window, this);
    glfwSetWindowRefreshCallback(m_window, [](GLFWwindow* window) {
        const auto* self = static_cast<Window*>(glfwGetWindowUserPointer(window));
        if (self->m_refresh)
            self->m_refresh();
    });
    glfwSetKeyCallback(m_window, [](GLFWwindow* window, int key, int, int, int) {
        if (key == GLFW_KEY_ESCAPE)
            glfwSetWindowShouldClose(window, GLFW_TRUE);
    });
    glfwSetCharCallback(m_window, [](GLFWwindow* window, unsigned character) {
        if (character < 0x80)
            static_cast<Window*>(glfwGetWindowUserPointer(window))->m_keys +=
                static_cast<char>(character);
    });
}

void Window::reopen(HelperKind helper)
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    glfwGetWindowPos(m_window, &x, &y);
    glfwGetWindowSize(m_window, &width, &height);
    open({static_cast<unsigned>(width), static_cast<unsigned>(height)}, helper);
    glfwSetWindowPos(m_window, x, y);
}

Window::~Window()
{
    glfwDestroyWindow(m_window);
    glfwTerminate();
}

void Window::handleEvents(double seconds)
{
    if (seconds > 0)
        glfwWaitEventsTimeout(seconds);
    else
        glfwPollEvents();
}

Size Window::framebufferSize() const
{
    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(m_window, &width, &height);
    return {static_cast<unsigned>(width), static_cast<unsigned>(height)};
}

void Window::beginPaint(Size picture) const
{
    // The framebuffer's size, not the window's: they differ on high-DPI screens.
    const Size room = framebufferSize();
    const Size view = fit(picture, room);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glViewport(static_cast<int>(room.width - view.width) / 2,
               static_cast<int>(room.height - view.height) / 2, static_cast<int>(view.width),
               static_cast<int>(view.height));
}

void Window::saveScreenshot(const std::string& path) const
{
    const Size size = framebufferSize();
    std::vector<std::uint8_t> rgb(std::size_t{3} * size.width * size.height);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, static_cast<int>(size.width), static_cast<int>(size.height), GL_RGB,
                 GL_UNSIGNED_BYTE, rgb.data());
    writePng(path, size, rgb);
}

unsigned Window::largestTexture() const
{
    int texels = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texels);
    return static_cast<unsigned>(texels);
}

bool Window::isSoftware() const
{
    const std::string renderer = text(GL_RENDERER);
    return renderer.starts_with("llvmpipe") || renderer.starts_with("softpipe") ||
           renderer.starts_with("swrast");
}

std::string Window::version() const
{
    return text(GL_VERSION) + ", " + text(GL_RENDERER);
}

} // namespace preview_host
