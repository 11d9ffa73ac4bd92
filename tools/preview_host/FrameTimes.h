/// How long the calls of each frame took.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace preview_host {

class FrameTimes {
public:
    /// Makes a call and takes its time; that of a call which throws does not count.
    template<class CALL>
    void time(CALL&& call)
    {
        const auto start = std::chrono::steady_clock::now();
        call();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        add(took.count());
    }

    /// Counts a call of so many milliseconds.
    void add(double milliseconds);

    /// In milliseconds; all 0 before the first call. The median and the 99th percentile are the
    /// nearest-rank ones of the newest 65,536 calls, the worst is that of all.
    struct Figures {
        double median = 0;
        double percentile99 = 0;
        double worst = 0;
    };
    Figures figures() const;

private:
    static constexpr std::size_t kKept = 65536;

    std::vector<double> m_newest;
    std::size_t m_oldest = 0;
    double m_worst = 0;
};

} // namespace preview_host
