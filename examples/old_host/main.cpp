/// A host of interface revision 14.2.1: its frames have `GetBytes`, and it does not know the later
/// interfaces. It uses the OpenGL 3 helper, or the fixed-function helper if there is no OpenGL 3.2.
/// The window is from GLFW.
#include "ExampleMain.h"

#include <KestrixPreviewAPI_v14_2_1.h>

#include <GLFW/glfw3.h>

#include <atomic>
#include <cstdint>

namespace {

/// The bars of the other examples in 8-bit BGRA. Made by `new`, deleted by the last `Release`.
class OldBarsFrame final : public IKestrixVideoFrame_v14_2_1 {
public:
    static const int kWidth = 1920;
    static const int kHeight = 1080;

    /// Bars that have moved to the left by `shift` times 6 pixels.
    explicit OldBarsFrame(int shift) : m_pixels(kWidth * kHeight)
    {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const int bar = (x + 6 * shift) % kWidth * 8 / kWidth;
                m_pixels[static_cast<std::size_t>(y * kWidth + x)] =
                    color(y < kHeight * 3 / 4 ? bar : 7 - bar);
            }
    }

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (!out)
            return E_POINTER;
        const bool known = id == IID_IUnknown || id == IID_IKestrixVideoFrame_v14_2_1;
        *out = known ? static_cast<IKestrixVideoFrame_v14_2_1*>(this) : nullptr;
        if (!known)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() override { return ++m_references; }
    std::uint32_t Release() override
    {
        const std::uint32_t left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

    std::int64_t GetWidth() override { return kWidth; }
    std::int64_t GetHeight() override { return kHeight; }
    std::int64_t GetRowBytes() override { return kWidth * 4; }
    std::uint32_t GetPixelFormat() override { return 0x42475241; } // "BGRA"
    std::uint32_t GetFlags() override { return FrameFlagDefault; }
    HRESULT GetTimecode(std::uint32_t, IKestrixTimecode**) override { return E_NOTIMPL; }
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary**) override { return E_NOTIMPL; }
    HRESULT GetBytes(void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = m_pixels.data();
        return S_OK;
    }

private:
    ~OldBarsFrame() override = default;

    /// White, yellow, cyan, green, magenta, red, blue, black; components are 75 % or 25 %.
    static std::uint32_t color(int bar)
    {
        const auto level = [bar](int bit) { return (7 - bar) & bit ? 0xBFu : 0x40u; };
        return 0xFF000000 | level(2) << 16 | level(4) << 8 | level(1);
    }

    std::atomic<std::uint32_t> m_references{1};
    std::vector<std::uint32_t> m_pixels;
};

void run(const ExampleOptions& options)
{
    if (!glfwInit())
        throw std::runtime_error("GLFW finds no display");
    const auto open = [&options] {
        // Without alpha, so that a compositor does not show what is behind the window.
        glfwWindowHint(GLFW_ALPHA_BITS, 0);
        return glfwCreateWindow(options.width, options.height, "old_host", nullptr, nullptr);
    };
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 2);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    GLFWwindow* window = open();
    const bool modern = window != nullptr;
    if (!modern) {
        glfwDefaultWindowHints();
        window = open();
    }
    if (!window)
        throw std::runtime_error("GLFW makes no window with OpenGL");
    glfwMakeContextCurrent(window);

    IKestrixGLScreenPreviewHelper_v14_2_1* helper =
        modern ? CreateOpenGL3ScreenPreviewHelper_0001() : CreateOpenGLScreenPreviewHelper_0001();
    if (!helper)
        throw std::runtime_error("no memory for a helper");
    check(helper->InitializeGL(), "InitializeGL");

    for (int painted = 0; !glfwWindowShouldClose(window);) {
        OldBarsFrame* frame = options.signal() ? new OldBarsFrame(painted) : nullptr;
        check(helper->SetFrame(frame), "SetFrame");
        if (frame)
            frame->Release(); // the helper has a reference of its own if it needs one

        int width = 0;
        int height = 0;
        glfwGetFramebufferSize(window, &width, &height);
        glViewport(0, 0, width, height);
        check(helper->PaintGL(), "PaintGL");
        ++painted;
        if (options.ends(painted)) {
            writePng(options, width, height);
            break;
        }
        glfwSwapBuffers(window);
        glfwPollEvents();
    }

    // The last Release deletes GL objects, so the context is still current here.
    helper->Release();
    glfwDestroyWindow(window);
    glfwTerminate();
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("old_host", count, arguments, run);
}
