/// Times what hosts wait for: loading, the first helper, and the calls of the helpers for each
/// frame. These calls need a display.
#include "api/KestrixPreviewAPI.h"
#include "conversion/PixelFormats.h"
#include "host/MemoryFrame.h"

#include <GLFW/glfw3.h>
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using kestrix::host::MemoryFrame;
using kestrix::host::MemoryFrameOptions;
using kestrix::host::Owned;

// --- Loading -------------------------------------------------------------------------------------

/// Bytes of the mappings of `file` that no other process shares.
double privateBytes(const std::string& file)
{
    std::ifstream maps("/proc/self/smaps");
    double bytes = 0;
    bool counts = false;
    for (std::string line; std::getline(maps, line);) {
        std::istringstream words(line);
        std::string key;
        double kilobytes = 0;
        words >> key >> kilobytes;
        if (key.find('-') != std::string::npos && key.back() != ':')
            counts = line.find(file) != std::string::npos;
        else if (counts && key == "Private_Dirty:")
            bytes += 1024 * kilobytes;
    }
    return bytes;
}

/// This program needs the same libraries as the library, so they are loaded before.
void load(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        void* const library = dlopen(KESTRIX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
        if (!library) {
            state.SkipWithError(dlerror());
            return;
        }
        bytes = privateBytes(std::filesystem::canonical(KESTRIX_LIBRARY).string());
        dlclose(library);
    }
    state.counters["private_bytes"] = bytes;
    state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(KESTRIX_LIBRARY));
}

/// Seconds that the first OpenGL 3 helper of a process takes, most of them for the colour tables.
/// Runs in a process of its own. Negative if that fails.
double timeFirstHelper()
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const pid_t child = fork();
    if (child == 0) {
        const auto begin = std::chrono::steady_clock::now();
        IKestrixGLScreenPreviewHelper* const helper = CreateOpenGL3ScreenPreviewHelper_0002();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        const double seconds = helper ? taken.count() : -1;
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    close(ends[1]);
    double seconds = -1;
    if (child < 0 || read(ends[0], &seconds, sizeof seconds) != sizeof seconds)
        seconds = -1;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return seconds;
}

/// Reports `seconds`, which were measured before a benchmark made a helper in this process.
void firstHelper(benchmark::State& state, const std::vector<double>& seconds)
{
    std::size_t i = 0;
    for (auto _ : state) {
        state.SetIterationTime(seconds[i++ % seconds.size()]);
        if (seconds.front() < 0)
            state.SkipWithError("no helper was made");
    }
}

// --- Frames --------------------------------------------------------------------------------------

struct Format {
    const char* name;
    KSX::PixelConversion::PixelFormat code;
};
constexpr Format kFormats[] = {{"2vuy", KSX::PixelConversion::PixelFormat_2vuy},
                               {"v210", KSX::PixelConversion::PixelFormat_v210},
                               {"r210", KSX::PixelConversion::PixelFormat_r210},
                               {"R12L", KSX::PixelConversion::PixelFormat_R12L}};

struct Size {
    const char* name;
    int width;
    int height;
};
constexpr Size kSizes[] = {{"1080p", 1920, 1080}, {"2160p", 3840, 2160}, {"4320p", 7680, 4320}};

Owned<MemoryFrame> noise(const Format& format, const Size& size)
{
    MemoryFrameOptions options;
    options.width = size.width;
    options.height = size.height;
    options.format = format.code;
    options.colorspace = ColorspaceCodeRec709;
    Owned<MemoryFrame> frame = MemoryFrame::create(options);
    std::minstd_rand random(1);
    for (std::size_t i = 0; i < frame->size(); ++i)
        frame->bytes()[i] = static_cast<std::uint8_t>(random() >> 8);
    return frame;
}

enum class Helper { FixedFunction, OpenGL3 };

/// An initialized helper, and the context that is current while it lives.
class Preview {
public:
    explicit Preview(Helper kind)
    {
        glfwInit();
        glfwDefaultWindowHints();
        glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
        if (kind == Helper::OpenGL3) {
            glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
            glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 2);
            glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
        }
        m_window = glfwCreateWindow(1920, 1080, "benchmark", nullptr, nullptr);
        if (!m_window)
            return;
        glfwMakeContextCurrent(m_window);
        m_helper.reset(kind == Helper::OpenGL3 ? CreateOpenGL3ScreenPreviewHelper_0002()
                                               : CreateOpenGLScreenPreviewHelper_0002());
        if (m_helper && m_helper->InitializeGL() < 0)
            m_helper.reset();
    }
    ~Preview()
    {
        m_helper.reset();
        if (m_window)
            glfwDestroyWindow(m_window);
    }

    IKestrixGLScreenPreviewHelper* get() const { return m_helper.get(); }

private:
    GLFWwindow* m_window = nullptr;
    Owned<IKestrixGLScreenPreviewHelper> m_helper;
};

enum class Call { SetFrame, PaintGL };

void callFor(benchmark::State& state, Helper helper, Call call, const Format& format,
             const Size& size)
{
    const Preview preview(helper);
    if (!preview.get()) {
        state.SkipWithError("no context of OpenGL here");
        return;
    }
    const auto frame = noise(format, size);
    for (auto _ : state) {
        if (call == Call::PaintGL)
            state.PauseTiming();
        preview.get()->SetFrame(frame.get());
        if (call == Call::PaintGL) {
            state.ResumeTiming();
            preview.get()->PaintGL();
            glFinish();
        }
    }
}

void registerCalls(const Format& format, const Size& size)
{
    const auto add = [&](const char* name, Helper helper, Call call) {
        const std::string title = std::string(name) + "/" + format.name + "/" + size.name;
        benchmark::RegisterBenchmark(title.c_str(), [=](benchmark::State& state) {
            callFor(state, helper, call, format, size);
        })->Unit(benchmark::kMillisecond);
    };
    add("fixed-function SetFrame", Helper::FixedFunction, Call::SetFrame);
    if (size.height > 2160)
        return;
    add("OpenGL 3 SetFrame", Helper::OpenGL3, Call::SetFrame);
    add("OpenGL 3 PaintGL", Helper::OpenGL3, Call::PaintGL);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    std::vector<double> firsts(5);
    std::generate(firsts.begin(), firsts.end(), timeFirstHelper);

    benchmark::RegisterBenchmark("load", load)->UseManualTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("first OpenGL 3 helper",
                                 [&](benchmark::State& state) { firstHelper(state, firsts); })
        ->UseManualTime()
        ->Iterations(static_cast<std::int64_t>(firsts.size()))
        ->Unit(benchmark::kMillisecond);
    for (const Format& format : kFormats)
        for (const Size& size : kSizes)
            registerCalls(format, size);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    glfwTerminate();
}
