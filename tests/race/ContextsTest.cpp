/// Helpers that share only the library: each has a thread and a context of its own, and all start
/// at once.
#define GL_GLEXT_PROTOTYPES
#include "api/KestrixPreviewAPI.h"
#include "host/MemoryFrame.h"
#include "tests/common/CaseName.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

struct Kind {
    const char* name;
    IKestrixGLScreenPreviewHelper* (*create)();
    EGLint profile;
};

/// A context without a surface. It is current on the thread that constructs it.
class Context {
public:
    Context(EGLDisplay display, EGLint profile) : m_display(display)
    {
        const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                     3,
                                     EGL_CONTEXT_MINOR_VERSION,
                                     2,
                                     EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                     profile,
                                     EGL_NONE};
        eglBindAPI(EGL_OPENGL_API);
        m_context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
        EXPECT_TRUE(eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context));
    }
    ~Context()
    {
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(m_display, m_context);
    }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

private:
    EGLDisplay m_display;
    EGLContext m_context;
};

/// Paints a white frame on the calling thread, in a context made for it, and returns a pixel.
std::array<unsigned char, 4> paintWhite(EGLDisplay display, const Kind& kind, std::barrier<>& start)
{
    const Context context(display, kind.profile);
    GLuint framebuffer = 0;
    GLuint renderbuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 8, 8);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);
    glViewport(0, 0, 8, 8);

    std::vector<unsigned char> bytes(8 * 8 * 4 + 64, 255);
    const auto frame = host::MemoryFrame::create(
        {.width = 8, .height = 8, .format = 0x42475241 /* BGRA */, .bytes = bytes.data()});
    std::array<unsigned char, 4> pixel{};
    start.arrive_and_wait();
    IKestrixGLScreenPreviewHelper* const helper = kind.create();
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    glReadPixels(4, 4, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    helper->Release();
    return pixel;
}

class OwnContexts : public testing::TestWithParam<Kind> {};

TEST_P(OwnContexts, MayStartAtOnce)
{
    constexpr unsigned kThreads = 4;
    const auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        eglGetProcAddress("eglGetPlatformDisplayEXT"));
    ASSERT_NE(getPlatformDisplay, nullptr);
    const EGLDisplay display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
    // The display is never terminated, because drivers that are unloaded leave memory allocated.
    ASSERT_TRUE(eglInitialize(display, nullptr, nullptr));

    std::barrier start(kThreads);
    std::array<std::array<unsigned char, 4>, kThreads> pixels{};
    std::vector<std::thread> threads;
    for (auto& pixel : pixels)
        threads.emplace_back([&] { pixel = paintWhite(display, GetParam(), start); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& pixel : pixels)
        EXPECT_TRUE(std::all_of(pixel.begin(), pixel.begin() + 3,
                                [](unsigned char code) { return code == 255; }));
}

INSTANTIATE_TEST_SUITE_P(Race, OwnContexts,
                         testing::Values(Kind{"OpenGL3", CreateOpenGL3ScreenPreviewHelper_0002,
                                              EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT},
                                         Kind{"FixedFunction", CreateOpenGLScreenPreviewHelper_0002,
                                              EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT}),
                         caseName);

} // namespace
} // namespace kestrix::test
