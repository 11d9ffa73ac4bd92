/// EGL without a surface: paints into a framebuffer object, without a display.
#define GL_GLEXT_PROTOTYPES
#include "BarsFrame.h"
#include "ExampleMain.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glext.h>

namespace {

/// A context of OpenGL 3.2 without any surface, current for as long as this lives.
class SurfacelessContext {
public:
    SurfacelessContext()
    {
        const auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            eglGetProcAddress("eglGetPlatformDisplayEXT"));
        if (getPlatformDisplay)
            m_display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
        // A driver without that platform may still work without a display.
        if (m_display == EGL_NO_DISPLAY)
            m_display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        if (!eglInitialize(m_display, nullptr, nullptr))
            throw std::runtime_error("no EGL display");

        // By default EGL makes OpenGL ES contexts, and the helpers can't paint in these.
        eglBindAPI(EGL_OPENGL_API);
        const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                     3,
                                     EGL_CONTEXT_MINOR_VERSION,
                                     2,
                                     EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                     EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                     EGL_NONE};
        m_context = eglCreateContext(m_display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
        if (m_context == EGL_NO_CONTEXT ||
            !eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context)) {
            eglTerminate(m_display);
            throw std::runtime_error("no context of OpenGL 3.2 without a surface");
        }
    }
    ~SurfacelessContext()
    {
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglTerminate(m_display);
    }
    SurfacelessContext(const SurfacelessContext&) = delete;
    SurfacelessContext& operator=(const SurfacelessContext&) = delete;

private:
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLContext m_context = EGL_NO_CONTEXT;
};

void run(const ExampleOptions& options)
{
    const SurfacelessContext context;

    // Without a surface there is no framebuffer 0, so the host makes its own. The helper paints
    // into the framebuffer that is bound, and never binds another.
    GLuint framebuffer = 0;
    GLuint renderbuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, options.width, options.height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);

    // The helper looks up its entry points with glXGetProcAddress. libglvnd returns entry points
    // that work in every context, also in EGL contexts.
    IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
    if (!helper)
        throw std::runtime_error("no memory for a helper");
    check(helper->InitializeGL(), "InitializeGL");

    // A context that never had a surface starts with a viewport of 0 by 0.
    glViewport(0, 0, options.width, options.height);
    for (int painted = 0; painted == 0 || !options.ends(painted); ++painted) {
        BarsFrame* frame = options.signal() ? new BarsFrame(painted) : nullptr;
        check(helper->SetFrame(frame), "SetFrame");
        if (frame)
            frame->Release(); // the helper has a reference of its own
        check(helper->PaintGL(), "PaintGL");
    }
    makeOpaque(); // an encoder or a compositor may use alpha
    writePng(options, options.width, options.height);

    // The last Release deletes GL objects, so the context is still current here.
    helper->Release();
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteRenderbuffers(1, &renderbuffer);
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("egl_host", count, arguments, run);
}
