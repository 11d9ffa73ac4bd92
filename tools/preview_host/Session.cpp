/// The loop over the frames, and the effects of the keys.
#include "Session.h"

#include "Decision.h"
#include "Interrupt.h"

#include "conversion/PixelFormats.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace preview_host {
namespace {

using Seconds = std::chrono::duration<double>;
using KSX::PixelConversion::findPixelFormat;
using KSX::PixelConversion::kPixelFormats;

/// In a preview texture, four bytes of a row are one texel.
constexpr unsigned kTexelBytes = 4;

/// The interval between two reports of the progress; the first is after a second.
constexpr std::chrono::milliseconds kProgressStep{100};

std::string nameWithEngineName(std::uint32_t format)
{
    const auto* info = findPixelFormat(format);
    return std::string(info->name) + " (" + info->engineName + ")";
}

} // namespace

Session::Session(const Options& options) : m_options(options), m_reader(options)
{
    const Size size = options.window.value_or(pictureSize());
    if (VirtualDisplay::isNeeded())
        m_display.emplace(size);
    m_window.emplace(size, options.helper, options.rate > 0);

    // Nobody can close a window on a virtual display, so an input without end needs a limit there.
    constexpr std::uint64_t kOffscreenFrames = 10;
    m_limit = options.frames;
    if (!m_limit && m_display && m_reader.left().isMade())
        m_limit = std::max<std::uint64_t>(kOffscreenFrames, options.keys.size());

    tellStart();
    if (m_reader.layout().rowBytes / kTexelBytes > m_window->largestTexture())
        throw std::runtime_error("rows of " + std::to_string(m_reader.layout().rowBytes) +
                                 " bytes are longer than the textures of this OpenGL");
    m_preview.emplace(options.helper, options.preview3D);
}

void Session::run()
{
    m_window->onRefresh([this] { paint(); });
    showFrames();
    m_window->onRefresh(nullptr);
    tellOutcome();
    if (!m_options.screenshot.empty() && m_frames > 0) {
        // After the swap the contents of the back buffer are lost, so the picture is painted again.
        m_window->beginPaint(pictureSize());
        m_preview->paint();
        m_window->saveScreenshot(m_options.screenshot);
        tell("screenshot", m_options.screenshot);
    }
    if (!m_reader.fault().empty())
        throw std::runtime_error(m_reader.fault());
    if (!m_notShown.empty())
        throw std::runtime_error("the last frame is not visible: " + m_notShown);
}

void Session::showFrames()
{
    while ((!m_limit || m_frames < *m_limit) && !isEnding()) {
        handleEvents(0);
        const Read result = m_reader.next();
        if (result == Read::End)
            break;
        if (result == Read::Pending)
            continue;

        if (m_frames == 0) {
            m_start = Clock::now();
            m_progressDue = m_start + std::chrono::seconds(1);
            tellDecision();
        }
        waitForNextFrame();
        m_seconds = Seconds(Clock::now() - m_start).count();
        setFrame();
        paint();
        ++m_frames;
        tellProgress();
        if (m_frames <= m_options.keys.size())
            press(m_options.keys[m_frames - 1]);
    }
}

void Session::handleEvents(double seconds)
{
    m_window->handleEvents(seconds);
    for (const char character : m_window->takeKeys())
        press(character);
}

bool Session::isEnding() const
{
    return m_quit || m_window->isClosed() || isInterrupted();
}

void Session::waitForNextFrame()
{
    if (m_options.rate == 0)
        return;
    const Seconds due(static_cast<double>(m_frames) / m_options.rate);
    for (Seconds now = Clock::now() - m_start; now < due && !isEnding();
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
        m_window->beginPaint(pictureSize());
        m_preview->paint();
        m_window->show();
    });
}

Size Session::pictureSize() const
{
    // The size at which the helpers show a frame's pixels one to one.
    Size size = m_reader.layout().size;
    const std::uint32_t mode = m_options.preview3D;
    if (m_reader.right() && mode != Preview3DLeftOnly && mode != Preview3DRightOnly)
        (mode == Preview3DSideBySide ? size.width : size.height) *= 2;
    return size;
}

void Session::press(char character)
{
    const Key* key = findKey(character);
    if (!key)
        return;
    const std::string label = std::string("key ") + character;
    if (key->action == Action::Quit)
        m_quit = true;
    else if (key->action == Action::TellKeys)
        tell(label, std::string("\n").append(keyList()));
    else if (key->action == Action::TellTimes)
        tellTimes();
    else if (const std::string obstacle = change(key->action); !obstacle.empty())
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
        if (canShow(m_options.helper, makeLayout(next, m_reader.layout().size)) &&
            tryLayout(next).empty())
            return {};
    }
    return "the helper shows no other format with rows of " +
           std::to_string(m_reader.layout().rowBytes) + " bytes";
}

std::string Session::tryLayout(const Options& next)
{
    FrameLayout layout;
    try {
        layout = makeLayout(next, m_reader.layout().size);
    } catch (const UsageError& error) {
        return error.what();
    }
    const bool areMade =
        m_reader.left().isMade() && (!m_reader.right() || m_reader.right()->isMade());
    if (!areMade && layout.rowBytes != m_reader.layout().rowBytes)
        return "the input has rows of " + std::to_string(m_reader.layout().rowBytes) + " bytes";
    if (layout.rowBytes / kTexelBytes > m_window->largestTexture())
        return "rows of " + std::to_string(layout.rowBytes) + " bytes are too long for this OpenGL";
    m_options = next;
    m_reader.setLayout(layout);
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
        // This helper is new too, and has no frame yet.
        if (m_frames > 0)
            setFrame();
        return error.what();
    }
}

void Session::openHelper(HelperKind helper)
{
    m_window->reopen(helper);
    m_preview.emplace(helper, m_options.preview3D);
    m_options.helper = helper;
    tellSlowness();
}

void Session::tell(const std::string& label, const std::string& text)
{
    constexpr int kColumn = 13;
    clearProgress();
    std::cout << std::left << std::setw(kColumn) << label + ":" << text << std::endl;
}

void Session::tellStart()
{
    const FrameLayout& layout = m_reader.layout();
    if (m_display)
        tell("display", "none, using a virtual one, Xvfb " + m_display->name());
    tell("input", m_reader.left().description());
    if (m_reader.right())
        tell("right eye", m_reader.right()->description());
    tell("frames", std::to_string(layout.size.width) + "x" + std::to_string(layout.size.height) +
                       " " + nameWithEngineName(layout.format) + ", " +
                       std::to_string(layout.rowBytes) + " bytes per row" +
                       (layout.captured ? ", captured" : "") +
                       (layout.flip ? ", bottom row first" : ""));
    tell("colourspace",
         layout.colorspace ? named(kColorspaces, layout.colorspace).name : "none stated");
    tell("helper", m_options.helper == HelperKind::OpenGL3 ? "OpenGL 3" : "fixed function");
    tell("OpenGL", m_window->version());
    tellSlowness();
}

void Session::tellSlowness()
{
    if (m_isSlownessTold || m_options.helper != HelperKind::OpenGL3 || !m_window->isSoftware())
        return;
    m_isSlownessTold = true;
    tell("note",
         "this OpenGL is a software renderer, which is slow with the helper gl3; --helper gl is "
         "many times faster here, and a smaller --window helps too");
}

void Session::tellDecision()
{
    const auto [isShown, words] = decisionFor(m_options.helper, m_reader.frame());
    tell("decided", words);
    m_window->setTitle(std::string("preview_host: ") + findPixelFormat(m_options.format)->name +
                       ", " + words);
    m_notShown = isShown ? "" : words;
    if (!isShown && !m_isChanged)
        throw FrameRefused(words);
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
    tell("SetFrame", m_setFrameTimes.figures());
    tell("paint+swap", m_paintTimes.figures());
}

void Session::tellOutcome()
{
    std::ostringstream shown;
    shown << std::fixed << std::setprecision(2) << m_frames
          << (m_frames == 1 ? " frame" : " frames");
    if (m_frames > 1)
        shown << ", " << static_cast<double>(m_frames - 1) / m_seconds << " per second";
    if (m_options.rate > 0)
        shown << " (requested: " << m_options.rate << " per second)";
    tell("shown", shown.str());
    tellTimes();
}

void Session::tellProgress()
{
    const auto now = Clock::now();
    if (now < m_progressDue)
        return;
    m_progressDue = now + kProgressStep;
    const std::uint64_t all =
        std::min(m_limit.value_or(UINT64_MAX), m_reader.left().frames().value_or(UINT64_MAX));
    if (all == UINT64_MAX || !isatty(STDERR_FILENO))
        return;
    m_isProgressShown = true;
    std::cerr << "\rframe " << m_frames << " of " << all << std::flush;
}

void Session::clearProgress()
{
    if (m_isProgressShown)
        std::cerr << "\r\033[K" << std::flush;
    m_isProgressShown = false;
}

} // namespace preview_host
