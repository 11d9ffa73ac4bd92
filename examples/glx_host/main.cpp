/// Plain Xlib and GLX, with the fixed-function helper.
#include "BarsFrame.h"
#include "ExampleMain.h"

#include <GL/glx.h>

namespace {

/// A double-buffered window and its context, which is current for as long as this lives.
class View {
public:
    View(int width, int height) : m_width(width), m_height(height)
    {
        m_display = XOpenDisplay(nullptr);
        if (!m_display)
            throw std::runtime_error("no display");
        // Without alpha, because a compositor shows what is behind a window in places where its
        // alpha is less than 1.
        int attributes[] = {
            GLX_RGBA, GLX_DOUBLEBUFFER, GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, None};
        XVisualInfo* visual = glXChooseVisual(m_display, DefaultScreen(m_display), attributes);
        // The oldest function that makes a context makes one with the fixed pipeline.
        m_context = visual ? glXCreateContext(m_display, visual, nullptr, True) : nullptr;
        if (!m_context)
            throw std::runtime_error("no OpenGL on this display");

        const Window root = RootWindow(m_display, visual->screen);
        XSetWindowAttributes settings = {};
        settings.colormap = XCreateColormap(m_display, root, visual->visual, AllocNone);
        settings.event_mask = StructureNotifyMask;
        m_window = XCreateWindow(m_display, root, 0, 0, static_cast<unsigned>(width),
                                 static_cast<unsigned>(height), 0, visual->depth, InputOutput,
                                 visual->visual, CWColormap | CWEventMask, &settings);
        XFree(visual);
        m_close = XInternAtom(m_display, "WM_DELETE_WINDOW", False);
        XSetWMProtocols(m_display, m_window, &m_close, 1);
        XStoreName(m_display, m_window, "glx_host");
        XMapWindow(m_display, m_window);
        glXMakeCurrent(m_display, m_window, m_context);
    }
    ~View()
    {
        glXMakeCurrent(m_display, None, nullptr);
        glXDestroyContext(m_display, m_context);
        XCloseDisplay(m_display);
    }
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    /// Handles the events; false after the window was closed.
    bool handleEvents()
    {
        bool open = true;
        while (XPending(m_display)) {
            XEvent event;
            XNextEvent(m_display, &event);
            if (event.type == ConfigureNotify) {
                m_width = event.xconfigure.width;
                m_height = event.xconfigure.height;
            } else if (event.type == ClientMessage &&
                       static_cast<Atom>(event.xclient.data.l[0]) == m_close) {
                open = false;
            }
        }
        return open;
    }

    /// In pixels, the only unit of X.
    int width() const { return m_width; }
    int height() const { return m_height; }

    void show() { glXSwapBuffers(m_display, m_window); }

private:
    int m_width;
    int m_height;
    Display* m_display = nullptr;
    GLXContext m_context = nullptr;
    Window m_window = 0;
    Atom m_close = 0;
};

void run(const ExampleOptions& options)
{
    View view(options.width, options.height);
    IKestrixGLScreenPreviewHelper* helper = CreateOpenGLScreenPreviewHelper_0002();
    if (!helper)
        throw std::runtime_error("no memory for a helper");
    check(helper->InitializeGL(), "InitializeGL");

    // Until the first ConfigureNotify, the size is the requested one.
    for (int painted = 0; view.handleEvents();) {
        // This helper converts the frame in SetFrame, and keeps no reference. It has no lock, so
        // all calls are made on one thread.
        BarsFrame* frame = options.signal() ? new BarsFrame(painted) : nullptr;
        const HRESULT status = helper->SetFrame(frame);
        if (frame)
            frame->Release();
        check(status, "SetFrame");

        // Viewport and matrices at every paint: the window may have been resized, and the helper's
        // quad goes from -1 to 1 in both directions.
        glViewport(0, 0, view.width(), view.height());
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        // The alpha of the picture is that of the current colour.
        glColor4f(1, 1, 1, 1);
        check(helper->PaintGL(), "PaintGL");

        ++painted;
        if (options.ends(painted)) {
            writePng(options, view.width(), view.height());
            break;
        }
        view.show();
    }
    // The last Release deletes GL objects, so the context is still current here.
    helper->Release();
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("glx_host", count, arguments, run);
}
