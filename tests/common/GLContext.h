/// A GL context without a window to be seen, and pictures to paint into.
///
/// The calls here are not recorded.
#pragma once

#include <array>
#include <string>
#include <vector>

struct GLFWwindow;

namespace kestrix::test {

/// A debug context that is current on the calling thread for as long as it lives.
class GLContext {
public:
    enum class Kind {
        Legacy, ///< OpenGL 2.1 or what is compatible with it
        Core32, ///< OpenGL 3.2 or later, core profile, forward compatible
    };

    /// With `share`, the two contexts share their objects.
    explicit GLContext(Kind kind, const GLContext* share = nullptr);
    ~GLContext();
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    /// Makes it current again, after another context was.
    void makeCurrent() const;

    /// Why there is no context. Empty if there is one.
    const std::string& failure() const { return m_failure; }

    /// What the driver had to say so far, a line each: errors, misuse, slow paths.
    const std::string& messages() const { return m_messages; }

    /// Forgets them, after a misuse on purpose.
    void forgetMessages() { m_messages.clear(); }

private:
    GLFWwindow* m_window = nullptr;
    std::string m_failure;
    std::string m_messages;
};

/// A framebuffer of floats, bound for drawing with the viewport over all of it. Needs a context for
/// as long as it lives.
class Canvas {
public:
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// Fills it with a colour that no test paints.
    void soil();

    /// R, G, B, A of the pixels as painted, the top line first.
    std::vector<std::array<float, 4>> read() const;

private:
    int m_width;
    int m_height;
    unsigned m_framebuffer = 0;
    unsigned m_renderbuffer = 0;
};

/// An integer of the context's state.
int glState(unsigned name);

} // namespace kestrix::test
