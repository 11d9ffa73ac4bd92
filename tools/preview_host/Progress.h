/// A bar that tells how far a long run has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace preview_host {

/// Draws on standard error, only where that is a terminal and only where the run takes longer than
/// a second.
class Progress {
public:
    /// For a run of `total` frames; without a number there is no bar.
    explicit Progress(std::optional<std::uint64_t> total);
    ~Progress() { clear(); }

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells that so many frames are done.
    void update(std::uint64_t done);

    /// Takes the bar away, so that something else can be printed.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    const std::uint64_t m_total;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_next;
    bool m_isDrawn = false;
};

} // namespace preview_host
