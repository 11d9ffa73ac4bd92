/// The memory that the benchmarks read and write.
#pragma once

#include <cstddef>

namespace kestrix::bench {

/// Where pictures are when a conversion reads them.
enum class Temperature {
    Hot,  ///< in the nearest cache that holds them: one pair of pictures again and again
    Cold, ///< in memory: pairs that are together several times as large as the last cache
};

/// Bytes of the processor's last cache.
std::size_t lastCacheBytes();

/// Hands out pairs of a source and a destination in a ring. All benchmarks share one block of
/// memory, which is filled for the first of them.
class Pictures {
public:
    Pictures(std::size_t srcBytes, std::size_t dstBytes, Temperature temperature);

    struct Pair {
        unsigned char* src;
        unsigned char* dst;
    };
    /// The same pair if hot; if cold, the one that was not used for the longest time.
    Pair next();

private:
    std::size_t m_dstOffset;
    std::size_t m_pairBytes;
    Temperature m_temperature;
};

} // namespace kestrix::bench
