/// Starts threads that take rows of a picture until none is left.
#include "convert/Threads.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

#include <pthread.h>
#include <signal.h>

namespace kestrix {

namespace {

/// More threads than this don't make the conversion of one picture faster.
constexpr unsigned kMostThreads = 256;

/// A thread takes longer to start than this many pixels take to convert.
constexpr std::uint64_t kLeastPixelsOfThread = 16384;

/// Each thread takes rows this often on average, so that none waits long for one that was
/// interrupted.
constexpr unsigned kSharesOfThread = 8;

struct Work {
    const RowConverter& converter;
    const Pictures& pictures;
    const unsigned rowsAtATime;
    std::atomic<std::uint64_t> next = 0;

    void run()
    {
        for (;;) {
            const std::uint64_t first = next.fetch_add(rowsAtATime, std::memory_order_relaxed);
            if (first >= pictures.height)
                return;
            const auto end = std::min<std::uint64_t>(first + rowsAtATime, pictures.height);
            converter.convert(pictures.src, pictures.dst, static_cast<unsigned>(first),
                              static_cast<unsigned>(end));
        }
    }
};

void* runWork(void* work)
{
    static_cast<Work*>(work)->run();
    return nullptr;
}

} // namespace

void convertByThreads(const RowConverter& converter, const Pictures& pictures, unsigned threads)
{
    const std::uint64_t pixels = std::uint64_t{pictures.width} * pictures.height;
    const auto useful = std::min<std::uint64_t>(
        {threads, kMostThreads, pictures.height, pixels / kLeastPixelsOfThread + 1});
    const auto count = static_cast<unsigned>(useful);
    Work work{converter, pictures, std::max(1u, pictures.height / (count * kSharesOfThread))};

    // A signal that the caller handles must find the caller's threads.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t started[kMostThreads];
    unsigned running = 0;
    while (running + 1 < count && pthread_create(&started[running], nullptr, runWork, &work) == 0)
        ++running;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);

    work.run();
    for (unsigned i = 0; i < running; ++i)
        pthread_join(started[i], nullptr);
}

} // namespace kestrix
