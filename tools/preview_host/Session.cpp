/// The loop over the frames, and what the keys do to it.
#include "Session.h"

#include "Decision.h"

#include "conversion/PixelFormats.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace preview_host {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using KSX::PixelConversion::findPixelFormat;
using KSX::PixelConversion::kPixelFormats;

/// A preview texture takes four bytes of a row as one texel.
constexpr unsigned kTexelBytes = 4;

/// The size at which the helpers show a frame's pixels one to one.
Size shownSize(const Inputs& inputs, std::uint32_t preview3D)
{
    Size size = inputs.layout.size;
    if (!inputs.right || preview3D == Preview3DLeftOnly || preview3D == Preview3DRightOnly)
        return size;
    (preview3D == Preview3DSideBySide ? size.width : size.height) *= 2;
    return size;
}

Size windowSize(const Options& options, const Inputs& inputs)
{
    return options.window.value_or(shownSize(inputs, options.preview3D));
}

std::unique_ptr<VirtualDisplay> makeDisplay(Size size)
{
    return VirtualDisplay::isNeeded() ? std::make_unique<VirtualDisplay>(size) : nullptr;
}

/// How many frames to show: by default all there are. Made frames never end, and where no one can
/// close a window a few have to do.
std::optional<std::uint64_t> frameLimit(const Options& options, const Input& input, bool offscreen)
{
    constexpr std::uint64_t kOffscreenFrames = 10;
    if (options.frames || !offscreen || !input.isEndless())
        return options.frames;
    return std::max<std::uint64_t>(kOffscreenFrames, options.keys.size());
}

/// How many frames the run takes, where that is known.
std::optional<std::uint64_t> expectedFrames(std::optional<std::uint64_t> limit, const Input& input)
{
    const auto there = input.frames();
    return limit && there ? std::min(*limit, *there) : (limit ? limit : there);
}

std::string nameWithEngineName(std::uint32_t format)
{
    const auto* info = findPixelFormat(format);
    return std::string(info->name) + " (" + info->engineName + ")";
}

std::string inMilliseconds(const FrameTimes& times)
{
    const FrameTimes::Figures figures = times.figures();
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << "median " << figures.median
         << " ms, 99th percentile " << figures.percentile99 << " ms, worst " << figures.worst
         << " ms";
    return text.str();
}

} // namespace

Session::Session(const Options& options)
    : m_options(options),
      m_inputs(openInputs(options)),
      m_display(makeDisplay(windowSize(options, m_inputs))),
      m_window(windowSize(options, m_inputs), options.helper, options.rate > 0),
      m_reader(m_inputs.layout, options.captured, *m_inputs.left, m_inputs.right.get()),
      m_limit(frameLimit(options, *m_inputs.left, m_display != nullptr)),
      m_progress(expectedFrames(m_limit, *m_inputs.left))
{
    tellStart();
    if (m_inputs.layout.rowBytes / kTexelBytes > m_window.largestTexture())
        throw std::runtime_error("rows of " + std::to_string(m_inputs.layout.rowBytes) +
                                 " bytes are longer than the textures of this OpenGL");
    m_preview.emplace(options.helper, options.preview3D);
}

void Session::run()
{
    m_window.onRefresh([this] { paint(); });
    showFrames();
    m_window.onRefresh(nullptr);
    m_progress.clear();
    tellOutcome();
    if (!m_options.screenshot.empty()) {
        // Showing a picture gives its memory away, so it is painted again.
        m_window.beginPaint(pictureSize());
        m_preview->paint();
        m_window.saveScreenshot(m_options.screenshot);
        tell("screenshot", m_options.screenshot);
    }
    if (!m_reader.fault().empty())
        throw std::runtime_error(m_reader.fault());
}

void Session::showFrames()
{
    while ((!m_limit || m_frames < *m_limit) && !m_quit && !m_window.isClosed()) {
        handleEvents(0);
        const Read result = m_reader.next();
        if (result == Read::End)
            break;
        if (result == Read::Pending)
            continue;

        if (m_frames == 0) {
            m_start = Clock::now();
            tellDecision();
        }
        waitForNextFrame();
        m_seconds = Seconds(Clock::now() - m_start).count();
        setFrame();
        paint();
        ++m_frames;
        m_progress.update(m_frames);
        if (m_frames <= m_options.keys.size())
            press(m_options.keys[m_frames - 1]);
    }
}

void Session::handleEvents(double seconds)
{
    m_window.handleEvents(seconds);
    for (const char character : m_window.takeKeys())
        press(character);
}

void Session::waitForNextFrame()
{
    if (m_options.rate == 0)
        return;
    const Seconds due(static_cast<double>(m_frames) / m_options.rate);
    for (Seconds now = Clock::now() - m_start; now < due && !m_quit && !m_window.isClosed();
         now = Clock::now() - m_start)
        handleEvents((due - now).count());
}

void Session::setFrame()
{
    try {
        m_setFrameTimes.time([&] { m_preview->setFrame(m_reader.frame()); });
        m_refusal.clear();
    } catch (const FrameRefused& refused) {
        if (!m_isChanged)
            throw;
        if (m_refusal != refused.what())
            tell("refused", refused.what());
        m_refusal = refused.what();
    }
}

void Session::paint()
{
    m_paintTimes.time([&] {
        m_window.beginPaint(pictureSize());
        m_preview->paint();
        m_window.show();
    });
}

Size Session::pictureSize() const
{
    return shownSize(m_inputs, m_options.preview3D);
}

void Session::press(char character)
{
    const auto action = actionOf(character);
    if (!action)
        return;
    const std::string label = std::string("key ") + character;
    if (*action == Action::Quit)
        m_quit = true;
    else if (*action == Action::TellKeys)
        tell(label, std::string("\n").append(keyList()));
    else if (*action == Action::TellTimes)
        tellTimes();
    else if (const std::string obstacle = change(*action); !obstacle.empty())
        tell(label, obstacle);
    else
        showChange(label);
}

std::string Session::change(Action action)
{
    Options next = m_options;
    switch (action) {
    case Action::NextFormat:
        return stepFormat(1);
    case Action::PreviousFormat:
        return stepFormat(std::size(kPixelFormats) - 1);
    case Action::OtherRange:
        if (const auto format = otherRange(m_options.format)) {
            next.format = *format;
            return tryLayout(next);
        }
        return findPixelFormat(m_options.format)->name + std::string(" has one range only");
    case Action::NextColorspace:
        next.colorspace = nextValue(kColorspaces, m_options.colorspace);
        return tryLayout(next);
    case Action::OtherCapture:
        next.captured = !m_options.captured;
        return tryLayout(next);
    case Action::Next3D:
        m_options.preview3D = nextValue(kPreview3DModes, m_options.preview3D);
        m_preview->set3DMode(m_options.preview3D);
        return {};
    default:
        return switchHelper();
    }
}

std::string Session::stepFormat(std::size_t step)
{
    const std::size_t formats = std::size(kPixelFormats);
    const auto now = static_cast<std::size_t>(findPixelFormat(m_options.format) - kPixelFormats);
    Options next = m_options;
    for (std::size_t at = (now + step) % formats; at != now; at = (at + step) % formats) {
        next.format = kPixelFormats[at].code;
        if (tryLayout(next).empty())
            return {};
    }
    return "no other format has rows of " + std::to_string(m_inputs.layout.rowBytes) + " bytes";
}

std::string Session::tryLayout(const Options& next)
{
    FrameLayout layout;
    try {
        layout = makeLayout(next, m_inputs.layout.size);
    } catch (const UsageError& error) {
        return error.what();
    }
    const bool areMade =
        m_inputs.left->isEndless() && (!m_inputs.right || m_inputs.right->isEndless());
    if (!areMade && layout.rowBytes != m_inputs.layout.rowBytes)
        return "the input has rows of " + std::to_string(m_inputs.layout.rowBytes) + " bytes";
    if (layout.rowBytes / kTexelBytes > m_window.largestTexture())
        return "rows of " + std::to_string(layout.rowBytes) + " bytes are too long for this OpenGL";
    m_options = next;
    m_inputs.layout = layout;
    m_reader.setLayout(layout, next.captured);
    return {};
}

std::string Session::switchHelper()
{
    const HelperKind old = m_options.helper;
    tellTimes();
    m_preview.reset();
    m_setFrameTimes = {};
    m_paintTimes = {};
    try {
        openHelper(nextValue(kHelpers, old));
        return {};
    } catch (const std::runtime_error& error) {
        openHelper(old);
        // The helper is a new one all the same.
        if (m_frames > 0)
            setFrame();
        return error.what();
    }
}

void Session::openHelper(HelperKind helper)
{
    m_window.reopen(helper);
    m_preview.emplace(helper, m_options.preview3D);
    m_options.helper = helper;
}

void Session::tell(const std::string& label, const std::string& text)
{
    constexpr int kColumn = 13;
    m_progress.clear();
    std::cout << std::left << std::setw(kColumn) << label + ":" << text << std::endl;
}

void Session::tellStart()
{
    const FrameLayout& layout = m_inputs.layout;
    if (m_display)
        tell("display", "none, using a virtual one, Xvfb " + m_display->name());
    tell("input", m_inputs.left->description());
    if (m_inputs.right)
        tell("right eye", m_inputs.right->description());
    tell("frames", std::to_string(layout.size.width) + "x" + std::to_string(layout.size.height) +
                       " " + nameWithEngineName(layout.format) + ", " +
                       std::to_string(layout.rowBytes) + " bytes a row" +
                       (m_options.captured ? ", captured" : "") +
                       (layout.flip ? ", bottom row first" : ""));
    tell("colourspace",
         layout.colorspace ? named(kColorspaces, layout.colorspace).name : "none stated");
    tell("helper", m_options.helper == HelperKind::OpenGL3 ? "OpenGL 3" : "fixed function");
    tell("OpenGL", m_window.version());
}

void Session::tellDecision()
{
    const std::string decision = decisionFor(m_options.helper, m_reader.frame());
    tell("decided", decision);
    m_window.setTitle(std::string("preview_host: ") + findPixelFormat(m_options.format)->name +
                      ", " + decision);
}

void Session::showChange(const std::string& label)
{
    tell(label, nameWithEngineName(m_options.format) + ", states " +
                    named(kColorspaces, m_options.colorspace).name + ", 3D " +
                    named(kPreview3DModes, m_options.preview3D).name + ", helper " +
                    named(kHelpers, m_options.helper).name +
                    (m_options.captured ? ", captured" : ""));
    if (m_frames == 0)
        return;
    m_isChanged = true;
    m_refusal.clear();
    tellDecision();
    setFrame();
    paint();
}

void Session::tellTimes()
{
    tell("SetFrame", inMilliseconds(m_setFrameTimes));
    tell("paint+swap", inMilliseconds(m_paintTimes));
}

void Session::tellOutcome()
{
    std::ostringstream shown;
    shown << std::fixed << std::setprecision(2) << m_frames
          << (m_frames == 1 ? " frame" : " frames");
    if (m_frames > 1)
        shown << ", " << static_cast<double>(m_frames - 1) / m_seconds << " a second";
    if (m_options.rate > 0)
        shown << " (asked for: " << m_options.rate << " a second)";
    tell("shown", shown.str());
    tellTimes();
}

} // namespace preview_host
