/// Percentiles of call times.
#include "FrameTimes.h"

#include <algorithm>

namespace preview_host {

void FrameTimes::add(double milliseconds)
{
    m_worst = std::max(m_worst, milliseconds);
    if (m_newest.size() < kKept) {
        m_newest.push_back(milliseconds);
        return;
    }
    m_newest[m_oldest] = milliseconds;
    m_oldest = (m_oldest + 1) % kKept;
}

FrameTimes::Figures FrameTimes::figures() const
{
    if (m_newest.empty())
        return {};
    std::vector<double> sorted = m_newest;
    std::sort(sorted.begin(), sorted.end());
    const auto percentile = [&](std::size_t percent) {
        return sorted[(sorted.size() * percent + 99) / 100 - 1];
    };
    return {percentile(50), percentile(99), m_worst};
}

} // namespace preview_host
