/// A run of the program: frames go from the inputs to a helper, and keys change how they are shown.
#pragma once

#include "FrameReader.h"
#include "FrameTimes.h"
#include "Keys.h"
#include "Preview.h"
#include "VirtualDisplay.h"
#include "Window.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace preview_host {

/// The loop from the first frame to the last, on one thread.
class Session {
public:
    /// Opens inputs, window and helper and reports them on standard output. Throws `UsageError` and
    /// `std::runtime_error`, like all operations of this class.
    explicit Session(const Options& options);
    ~Session() { clearProgress(); }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Shows frames until there are no more, the limit is reached or the user quits; then reports
    /// the outcome and writes the screenshot.
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void showFrames();
    void handleEvents(double seconds);
    bool isEnding() const;
    void waitForNextFrame();
    void setFrame();
    void paint();

    void press(char character);
    /// Each of these changes something, or returns the reason if it can't.
    std::string change(Action action);
    std::string stepFormat(std::size_t step);
    std::string tryLayout(const Options& next);
    std::string switchHelper();

    void openHelper(HelperKind helper);
    Size pictureSize() const;

    void tell(const std::string& label, const std::string& text);
    void tellStart();
    /// Says once that the OpenGL 3 helper is slow on a software renderer.
    void tellSlowness();
    /// Reports the decision about the frame. Throws `FrameRefused` if the helper does not show the
    /// frames that the user asked for, and no key has changed anything.
    void tellDecision();
    void showChange(const std::string& label);
    void tellTimes();
    void tellOutcome();
    void tellProgress();
    void clearProgress();

    Options m_options;
    FrameReader m_reader;
    std::optional<VirtualDisplay> m_display;
    // The order of these is necessary: the helper's last Release needs the window's context.
    std::optional<Window> m_window;
    std::optional<Preview> m_preview;
    /// The number of frames to show; all if not given.
    std::optional<std::uint64_t> m_limit;

    FrameTimes m_setFrameTimes;
    FrameTimes m_paintTimes;
    Clock::time_point m_start;
    std::uint64_t m_frames = 0;
    /// From the first frame to the last.
    double m_seconds = 0;
    /// When to report the progress again.
    Clock::time_point m_progressDue;
    bool m_isProgressShown = false;
    /// Why the last frame is not shown; empty if it is.
    std::string m_notShown;
    bool m_isSlownessTold = false;
    /// Why the helper refused the last frame; empty if it accepted the frame.
    std::string m_refusal;
    /// The user has changed something: the run no longer ends if the helper refuses a frame.
    bool m_isChanged = false;
    bool m_quit = false;
};

} // namespace preview_host
