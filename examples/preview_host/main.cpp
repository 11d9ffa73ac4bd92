/// A small host: reads or makes video frames and shows them through a preview helper.
#include "FrameReader.h"
#include "Input.h"
#include "Options.h"
#include "Preview.h"
#include "VirtualDisplay.h"
#include "Window.h"

#include "conversion/PixelFormats.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iomanip>
#include <iostream>
#include <limits>
#include <new>

namespace preview_host {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr Size kPatternSize{1920, 1080};
/// A preview texture takes four bytes of a row as one texel.
constexpr unsigned kTexelBytes = 4;

/// Where an input comes from, its picture already read if it is one.
struct Source {
    std::string path;
    std::optional<Image> picture;
};

Source openSource(const std::string& path)
{
    const bool isPicture = !path.empty() && path != "-" && isPng(path);
    return {path, isPicture ? std::optional(readPng(path)) : std::nullopt};
}

Size frameSize(const Options& options, const Source& source)
{
    if (options.size)
        return *options.size;
    if (source.picture)
        return source.picture->size;
    if (source.path.empty())
        return kPatternSize;
    throw UsageError("raw frames need --size");
}

std::unique_ptr<Input> makeInput(const Source& source, const FrameLayout& layout, double rate)
{
    if (source.path.empty())
        return makePatternInput(layout, rate);
    if (!source.picture)
        return openRawInput(source.path, layout);
    if (source.picture->size != layout.size)
        throw UsageError(source.path + " is not of the frames' size");
    return makePictureInput(source.path, *source.picture, layout);
}

struct Inputs {
    FrameLayout layout;
    std::unique_ptr<Input> left;
    std::unique_ptr<Input> right;
};

Inputs openInputs(const Options& options)
{
    const Source left = openSource(options.input);
    Inputs inputs;
    inputs.layout = makeLayout(options, frameSize(options, left));
    inputs.left = makeInput(left, inputs.layout, options.rate);
    if (!options.rightEye.empty())
        inputs.right = makeInput(openSource(options.rightEye), inputs.layout, options.rate);
    return inputs;
}

/// The size at which the helpers show a frame's pixels one to one.
Size shownSize(const Inputs& inputs, std::uint32_t preview3D)
{
    Size size = inputs.layout.size;
    if (!inputs.right || preview3D == Preview3DLeftOnly || preview3D == Preview3DRightOnly)
        return size;
    (preview3D == Preview3DSideBySide ? size.width : size.height) *= 2;
    return size;
}

/// How many frames to show: by default all there are. Made frames never end, and where no one can
/// close a window a few have to do.
std::uint64_t frameLimit(const Options& options, const Input& input, bool offscreen)
{
    constexpr std::uint64_t kOffscreenFrames = 10;
    const std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
    return options.frames.value_or(offscreen && input.isEndless() ? kOffscreenFrames : all);
}

/// What the run came to.
struct Outcome {
    std::uint64_t frames = 0;
    double seconds = 0; ///< from the first frame to the last
};

/// Shows frames until there are no more, the limit is reached or the window is closed.
Outcome show(FrameReader& reader, Preview& preview, Window& window, Size picture,
             const Options& options, std::uint64_t limit)
{
    const auto paint = [&] {
        window.beginPaint(picture);
        preview.paint();
        window.show();
    };
    window.onRefresh(paint);

    Outcome outcome;
    Clock::time_point start;
    while (outcome.frames < limit && !window.isClosed()) {
        window.handleEvents(0);
        const Read result = reader.next();
        if (result == Read::End)
            break;
        if (result == Read::Pending)
            continue;

        if (outcome.frames == 0)
            start = Clock::now();
        if (options.rate > 0) {
            const Seconds due(static_cast<double>(outcome.frames) / options.rate);
            for (Seconds now = Clock::now() - start; now < due && !window.isClosed();
                 now = Clock::now() - start)
                window.handleEvents((due - now).count());
        }
        outcome.seconds = Seconds(Clock::now() - start).count();
        preview.setFrame(reader.frame());
        paint();
        ++outcome.frames;
    }
    window.onRefresh(nullptr);
    return outcome;
}

void reportStart(const Inputs& inputs, const Options& options, const Window& window)
{
    const FrameLayout& layout = inputs.layout;
    const auto& info = *KSX::PixelConversion::findPixelFormat(layout.format);
    std::cout << "input:       " << inputs.left->description() << '\n';
    if (inputs.right)
        std::cout << "right eye:   " << inputs.right->description() << '\n';
    std::cout << "frames:      " << layout.size.width << 'x' << layout.size.height << ' '
              << formatName(layout.format) << " (" << info.engineName << "), " << layout.rowBytes
              << " bytes a row" << (options.captured ? ", captured" : "")
              << (layout.flip ? ", bottom row first" : "") << '\n';
    std::cout << "colourspace: "
              << (layout.colorspace ? formatName(*layout.colorspace) : "none stated") << '\n';
    std::cout << "helper:      "
              << (options.helper == HelperKind::OpenGL3 ? "OpenGL 3" : "fixed function") << '\n';
    std::cout << "OpenGL:      " << window.version() << std::endl;
}

void reportEnd(const Outcome& outcome, const Preview& preview, double rate)
{
    const auto milliseconds = [](const Stopwatch& time) {
        std::cout << "mean " << time.mean() << " ms, longest " << time.longest() << " ms\n";
    };
    std::cout << std::fixed << std::setprecision(2);
    std::cout << "shown:       " << outcome.frames << (outcome.frames == 1 ? " frame" : " frames");
    if (outcome.frames > 1)
        std::cout << ", " << static_cast<double>(outcome.frames - 1) / outcome.seconds
                  << " a second";
    if (rate > 0)
        std::cout << " (asked for: " << rate << " a second)";
    std::cout << "\nSetFrame:    ";
    milliseconds(preview.setFrameTime());
    std::cout << "PaintGL:     ";
    milliseconds(preview.paintTime());
    std::cout << std::flush;
}

void listFormats()
{
    for (const auto& info : KSX::PixelConversion::kPixelFormats)
        std::cout << formatName(info.code) << "  " << std::left << std::setw(25) << info.engineName
                  << std::right << std::setw(2) << info.groupBytes << " bytes for "
                  << info.groupPixels << (info.groupPixels == 1 ? " pixel\n" : " pixels\n");
}

/// Shows everything; answers the exit status.
int run(const Options& options)
{
    Inputs inputs = openInputs(options);
    const Size picture = shownSize(inputs, options.preview3D);
    const Size windowSize = options.window.value_or(picture);

    std::optional<VirtualDisplay> virtualDisplay;
    if (VirtualDisplay::isNeeded()) {
        virtualDisplay.emplace(windowSize);
        std::cout << "display:     none, using a virtual one, Xvfb " << virtualDisplay->name()
                  << '\n';
    }
    // The order of these three matters: the helper's last Release needs the window's context.
    Window window(windowSize, options.helper, options.rate > 0,
                  "preview_host: " + inputs.left->description());
    reportStart(inputs, options, window);
    if (inputs.layout.rowBytes / kTexelBytes > window.largestTexture())
        throw std::runtime_error("rows of " + std::to_string(inputs.layout.rowBytes) +
                                 " bytes are longer than the textures of this OpenGL");
    const std::uint64_t limit = frameLimit(options, *inputs.left, virtualDisplay.has_value());
    FrameReader reader(inputs.layout, options.captured, std::move(inputs.left),
                       std::move(inputs.right));
    Preview preview(options.helper, options.preview3D);

    const Outcome outcome = show(reader, preview, window, picture, options, limit);
    reportEnd(outcome, preview, options.rate);
    if (!options.screenshot.empty()) {
        // Showing a picture gives its memory away, so it is painted again.
        window.beginPaint(picture);
        preview.paint();
        window.saveScreenshot(options.screenshot);
        std::cout << "screenshot:  " << options.screenshot << std::endl;
    }
    if (!reader.fault().empty())
        throw std::runtime_error(reader.fault());
    return 0;
}

} // namespace
} // namespace preview_host

int main(int argc, char** argv)
{
    constexpr int kUsage = 2;
    constexpr int kFailure = 1;
    // A reader of our report that has gone is no reason to stop.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto options = preview_host::parseOptions(argc, argv);
        if (!options)
            return 0;
        if (options->listFormats) {
            preview_host::listFormats();
            return 0;
        }
        return preview_host::run(*options);
    } catch (const preview_host::UsageError& error) {
        std::cerr << "preview_host: " << error.what() << '\n';
        return kUsage;
    } catch (const std::bad_alloc&) {
        std::cerr << "preview_host: not enough memory for frames of this size\n";
    } catch (const std::exception& error) {
        std::cerr << "preview_host: " << error.what() << '\n';
    }
    return kFailure;
}
