/// Drawing the bar.
#include "Progress.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace preview_host {
namespace {

constexpr std::chrono::seconds kLong{1};
constexpr std::chrono::milliseconds kBetweenDrawings{100};
constexpr std::uint64_t kBarWidth = 40;

} // namespace

Progress::Progress(std::optional<std::uint64_t> total)
    : m_total(isatty(STDERR_FILENO) ? total.value_or(0) : 0),
      m_next(m_start + kLong)
{
}

void Progress::update(std::uint64_t done)
{
    const auto now = Clock::now();
    if (m_total == 0 || done == 0 || now < m_next)
        return;
    m_next = now + kBetweenDrawings;
    m_isDrawn = true;

    const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(m_total));
    const std::chrono::duration<double> passed = now - m_start;
    std::string bar(static_cast<std::size_t>(part * kBarWidth), '#');
    bar.resize(kBarWidth, '-');
    std::fprintf(stderr, "\r[%s] %3.0f %%, frame %llu of %llu, %.0f s left\033[K", bar.c_str(),
                 100 * part, static_cast<unsigned long long>(done),
                 static_cast<unsigned long long>(m_total), passed.count() / part * (1 - part));
}

void Progress::clear()
{
    if (m_isDrawn)
        std::fputs("\r\033[K", stderr);
    m_isDrawn = false;
}

} // namespace preview_host
