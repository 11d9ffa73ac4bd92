#include "benchmarks/Pictures.h"

#include <algorithm>
#include <memory>
#include <unistd.h>
#include <vector>

namespace kestrix::bench {

namespace {

constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kPage = 4096;
/// Stages that look ahead read bytes after the end of a row.
constexpr std::size_t kReadableBehind = 64;
constexpr std::size_t kLeastColdBytes = std::size_t{512} << 20;

/// The block of memory, and where the next cold pair begins.
struct Ring {
    std::vector<unsigned char> bytes;
    unsigned char* begin;
    std::size_t size;
    std::size_t at = 0;
};

Ring makeRing()
{
    Ring ring;
    ring.size = std::max(kLeastColdBytes, 4 * lastCacheBytes());
    ring.bytes.resize(ring.size + kCacheLine);
    for (std::size_t i = 0; i < ring.bytes.size(); ++i)
        ring.bytes[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
    void* begin = ring.bytes.data();
    std::size_t space = ring.bytes.size();
    ring.begin = static_cast<unsigned char*>(std::align(kCacheLine, ring.size, begin, space));
    return ring;
}

std::size_t padded(std::size_t bytes)
{
    return (bytes + kReadableBehind + kCacheLine - 1) / kCacheLine * kCacheLine;
}

} // namespace

std::size_t lastCacheBytes()
{
    const long bytes = std::max(sysconf(_SC_LEVEL3_CACHE_SIZE), sysconf(_SC_LEVEL2_CACHE_SIZE));
    return bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
}

// Half a page apart: a load waits for an earlier store if their addresses are nearly equal modulo a
// page.
Pictures::Pictures(std::size_t srcBytes, std::size_t dstBytes, Temperature temperature)
    : m_dstOffset((padded(srcBytes) + kPage - 1) / kPage * kPage + kPage / 2),
      m_pairBytes(m_dstOffset + padded(dstBytes)),
      m_temperature(temperature)
{
}

Pictures::Pair Pictures::next()
{
    static Ring ring = makeRing();
    if (m_temperature == Temperature::Hot)
        return {ring.begin, ring.begin + m_dstOffset};
    if (ring.at + m_pairBytes > ring.size)
        ring.at = 0;
    unsigned char* const src = ring.begin + ring.at;
    ring.at += m_pairBytes;
    return {src, src + m_dstOffset};
}

} // namespace kestrix::bench
