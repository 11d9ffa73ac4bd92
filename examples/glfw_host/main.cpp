/// GLFW: frames that come from another thread, as from a capture card.
#include "BarsFrame.h"
#include "ExampleMain.h"
#include "FrameSlot.h"

#include <GLFW/glfw3.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

/// Acts as a capture device: 25 frames per second, until it is stopped or has no more.
class Capture {
public:
    /// `count` frames; no limit if negative.
    Capture(FrameSlot& slot, int count) : m_slot(slot), m_thread([this, count] { run(count); }) {}
    ~Capture()
    {
        m_stop = true;
        m_thread.join();
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// Whether the last frame is in the slot.
    bool ended() const { return m_ended; }

private:
    void run(int count)
    {
        for (int i = 0; i != count && !m_stop; ++i) {
            BarsFrame* frame = new BarsFrame(i);
            m_slot.put(frame);
            frame->Release(); // the slot has a reference of its own
            m_ended = i + 1 == count;
            glfwPostEmptyEvent(); // wakes the thread that paints
            std::this_thread::sleep_for(std::chrono::milliseconds(40));
        }
    }

    FrameSlot& m_slot;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_ended{false};
    std::thread m_thread; // the last member, so that the others exist when it starts
};

/// Paints the newest frame. It may be the previous frame again, after the window was uncovered.
void paint(GLFWwindow* window, IKestrixGLScreenPreviewHelper* helper, FrameSlot& slot,
           std::uint64_t& shown)
{
    check(slot.handTo(helper, shown), "SetFrame");

    // The framebuffer's size, which differs from glfwGetWindowSize on a high-DPI display.
    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    glViewport(0, 0, width, height);
    check(helper->PaintGL(), "PaintGL");
    makeOpaque();
}

void run(const ExampleOptions& options)
{
    if (!glfwInit())
        throw std::runtime_error("GLFW finds no display");
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 2);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    GLFWwindow* window =
        glfwCreateWindow(options.width, options.height, "glfw_host", nullptr, nullptr);
    if (!window)
        throw std::runtime_error("GLFW makes no window with OpenGL 3.2");
    glfwMakeContextCurrent(window);

    IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
    if (!helper)
        throw std::runtime_error("no memory for a helper");
    check(helper->InitializeGL(), "InitializeGL");

    FrameSlot slot;
    std::uint64_t shown = 0; // no frame by this helper yet
    {
        const Capture capture(slot, options.frames);
        bool last = !options.signal();
        while (!glfwWindowShouldClose(window)) {
            last = last || capture.ended(); // before the paint, which then shows the last frame
            paint(window, helper, slot, shown);
            if (last && options.frames >= 0)
                break;
            glfwSwapBuffers(window);
            glfwWaitEvents();
        }
    } // the capture has stopped

    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    writePng(options, width, height);

    // The context still exists, and is current.
    helper->Release();
    glfwDestroyWindow(window);
    glfwTerminate();
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("glfw_host", count, arguments, run);
}
