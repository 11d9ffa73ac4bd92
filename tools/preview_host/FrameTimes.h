/// The duration of calls.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace preview_host {

/// The times of a call that is made for every frame.
class FrameTimes {
public:
    /// Makes the call and stores its time; a call that throws is not counted.
    template<class CALL>
    void time(CALL&& call)
    {
        const auto start = std::chrono::steady_clock::now();
        call();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        m_newest.push_back(took.count());
        if (m_newest.size() > kKept)
            m_newest.pop_front();
        m_worst = std::max(m_worst, took.count());
    }

    /// The nearest-rank median and 99th percentile of the newest 65,536 calls, and the worst of all
    /// calls, in milliseconds; 0 before the first call.
    std::string figures() const
    {
        std::vector<double> sorted(m_newest.begin(), m_newest.end());
        std::sort(sorted.begin(), sorted.end());
        const auto percentile = [&](std::size_t percent) {
            return sorted.empty() ? 0 : sorted[(sorted.size() * percent + 99) / 100 - 1];
        };
        std::ostringstream text;
        text << std::fixed << std::setprecision(3) << "median " << percentile(50)
             << " ms, 99th percentile " << percentile(99) << " ms, worst " << m_worst << " ms";
        return text.str();
    }

private:
    static constexpr std::size_t kKept = 65536;

    std::deque<double> m_newest;
    double m_worst = 0;
};

} // namespace preview_host
