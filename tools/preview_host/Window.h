/// A window with an OpenGL context that suits one of the helpers.
#pragma once

#include "Options.h"

#include <GLFW/glfw3.h>

#include <functional>
#include <string>
#include <utility>

namespace preview_host {

/// The one window of the program. Its context is current on the thread that made it for as long as
/// it lives.
class Window {
public:
    /// Opens a window of `size`, or a smaller one of the same aspect ratio if the screen is
    /// smaller, with a context of OpenGL 2.1 or of OpenGL 3.2 core. If not `paced`, `show` does not
    /// wait for the vertical sync. Throws `std::runtime_error`.
    Window(Size size, HelperKind helper, bool paced);
    ~Window();

    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Replaces the window by one with a context for the other helper. Nothing of the old context
    /// is left. If this throws `std::runtime_error`, the old window and its context stay.
    void reopen(HelperKind helper);

    void setTitle(const std::string& title) { glfwSetWindowTitle(m_window, title.c_str()); }

    /// The characters that the user typed since the last call.
    std::string takeKeys() { return std::exchange(m_keys, {}); }

    /// Sets what to do after the system has lost the window's contents.
    void onRefresh(std::function<void()> paint) { m_refresh = std::move(paint); }

    /// Handles the events, and waits for more for this number of seconds.
    void handleEvents(double seconds);

    /// Whether the user has closed the window or pressed Escape.
    bool isClosed() const { return glfwWindowShouldClose(m_window); }

    /// Clears the window and sets the viewport to its largest part with the aspect ratio of
    /// `picture`.
    void beginPaint(Size picture) const;

    /// Shows what was painted.
    void show() const { glfwSwapBuffers(m_window); }

    /// Writes what was painted and not yet shown to a PNG file.
    void saveScreenshot(const std::string& path) const;

    /// The longest side of a texture, in texels.
    unsigned largestTexture() const;

    /// Whether the processor does the work of the GPU: Mesa's software renderers.
    bool isSoftware() const;

    /// The version and the renderer of the context.
    std::string version() const;

private:
    void open(Size size, HelperKind helper);
    Size framebufferSize() const;

    const bool m_paced;
    GLFWwindow* m_window = nullptr;
    std::function<void()> m_refresh;
    std::string m_keys;
};

} // namespace preview_host
