/// Memory that the benchmarks read from and write to.
#pragma once

#include <cstddef>

namespace kestrix::bench {

/// Where pictures are when a conversion gets to them.
enum class Temperature {
    Hot,  ///< as near as their size allows: one pair of pictures, again and again
    Cold, ///< in memory: pairs that are together several times what the last cache holds
};

/// Bytes of the processor's last cache.
std::size_t lastCacheBytes();

/// Goes round pairs of a source and a destination. All benchmarks share one block of memory, which
/// is filled when the first of them asks.
class Pictures {
public:
    Pictures(std::size_t srcBytes, std::size_t dstBytes, Temperature temperature);

    struct Pair {
        unsigned char* src;
        unsigned char* dst;
    };
    /// Where it is cold, the memory that was left alone for longest.
    Pair next();

private:
    std::size_t m_dstOffset;
    std::size_t m_pairBytes;
    Temperature m_temperature;
};

} // namespace kestrix::bench
