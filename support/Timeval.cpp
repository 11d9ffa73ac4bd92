/// Differences and sums of times.
#include "support/Timeval.h"

namespace {

constexpr int kMicrosecondsPerMillisecond = 1000;
constexpr int kMillisecondsPerSecond = 1000;
constexpr int kMicrosecondsPerSecond = 1000000;

} // namespace

std::int32_t TimevalDiffMS(timeval a, timeval b)
{
    return static_cast<std::int32_t>((a.tv_sec - b.tv_sec) * kMillisecondsPerSecond +
                                     (a.tv_usec - b.tv_usec) / kMicrosecondsPerMillisecond);
}

std::int32_t TimevalDiffUS(timeval a, timeval b)
{
    return static_cast<std::int32_t>((a.tv_sec - b.tv_sec) * kMicrosecondsPerSecond +
                                     (a.tv_usec - b.tv_usec));
}

void TimevalAddMS(timeval& result, timeval base, int milliseconds)
{
    const int added = milliseconds * kMicrosecondsPerMillisecond;
    const auto microseconds = base.tv_usec + added;
    result.tv_sec = base.tv_sec + microseconds / kMicrosecondsPerSecond;
    result.tv_usec = microseconds % kMicrosecondsPerSecond;
}
