/// GL contexts by GLFW, and framebuffer objects.
#define GL_GLEXT_PROTOTYPES
#include "tests/common/GLContext.h"

#include "tests/common/GLRecorder.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GLFW/glfw3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace kestrix::test {
namespace {

#define KESTRIX_DRIVER(name) driverGL<decltype(::name)>(#name)

std::string lastError()
{
    const char* description = nullptr;
    glfwGetError(&description);
    return description ? description : "no reason given";
}

/// GLFW is never terminated, because drivers that are unloaded leave memory allocated. A virtual
/// display starts again after its last client, and refuses new clients for a moment.
bool startGLFW()
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        if (glfwInit())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

} // namespace

GLContext::GLContext(Kind kind, const GLContext* share)
{
    if (!startGLFW()) {
        m_failure = "GLFW can't start, is there a display? " + lastError();
        return;
    }
    glfwDefaultWindowHints();
    glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, kind == Kind::Core32 ? 3 : 2);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, kind == Kind::Core32 ? 2 : 1);
    if (kind == Kind::Core32) {
        glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
        glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    }
    glfwWindowHint(GLFW_OPENGL_DEBUG_CONTEXT, GLFW_TRUE);
    m_window = glfwCreateWindow(64, 64, "test", nullptr, share ? share->m_window : nullptr);
    if (!m_window) {
        m_failure = "no context: " + lastError();
        return;
    }
    glfwMakeContextCurrent(m_window);
    KESTRIX_DRIVER(glEnable)(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    KESTRIX_DRIVER(glDebugMessageCallback)
    (
        [](GLenum, GLenum, GLuint, GLenum, GLsizei, const GLchar* message, const void* messages) {
            *static_cast<std::string*>(const_cast<void*>(messages)) += std::string(message) + '\n';
        },
        &m_messages);
}

GLContext::~GLContext()
{
    if (m_window)
        glfwDestroyWindow(m_window);
}

void GLContext::makeCurrent() const
{
    glfwMakeContextCurrent(m_window);
}

Canvas::Canvas(int width, int height) : m_width(width), m_height(height)
{
    KESTRIX_DRIVER(glGenRenderbuffers)(1, &m_renderbuffer);
    KESTRIX_DRIVER(glBindRenderbuffer)(GL_RENDERBUFFER, m_renderbuffer);
    KESTRIX_DRIVER(glRenderbufferStorage)(GL_RENDERBUFFER, GL_RGBA32F, width, height);
    KESTRIX_DRIVER(glGenFramebuffers)(1, &m_framebuffer);
    KESTRIX_DRIVER(glBindFramebuffer)(GL_FRAMEBUFFER, m_framebuffer);
    KESTRIX_DRIVER(glFramebufferRenderbuffer)
    (GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_renderbuffer);
    if (KESTRIX_DRIVER(glCheckFramebufferStatus)(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        std::fprintf(stderr, "the driver can't draw into floats\n");
        std::abort();
    }
    KESTRIX_DRIVER(glViewport)(0, 0, width, height);
    soil();
}

Canvas::~Canvas()
{
    KESTRIX_DRIVER(glDeleteFramebuffers)(1, &m_framebuffer);
    KESTRIX_DRIVER(glDeleteRenderbuffers)(1, &m_renderbuffer);
}

void Canvas::soil()
{
    const float colour[4] = {0.25f, -3.0f, 7.0f, 0.125f};
    KESTRIX_DRIVER(glClearBufferfv)(GL_COLOR, 0, colour);
}

std::vector<std::array<float, 4>> Canvas::read() const
{
    std::vector<std::array<float, 4>> upward(static_cast<std::size_t>(m_width * m_height));
    KESTRIX_DRIVER(glReadPixels)
    (0, 0, m_width, m_height, GL_RGBA, GL_FLOAT, upward.data());
    std::vector<std::array<float, 4>> pixels;
    for (int y = m_height - 1; y >= 0; --y)
        pixels.insert(pixels.end(), upward.begin() + y * m_width,
                      upward.begin() + (y + 1) * m_width);
    return pixels;
}

int glState(unsigned name)
{
    GLint value = 0;
    KESTRIX_DRIVER(glGetIntegerv)(name, &value);
    return value;
}

} // namespace kestrix::test
