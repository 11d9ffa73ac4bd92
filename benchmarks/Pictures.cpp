#include "benchmarks/Pictures.h"

#include <algorithm>
#include <memory>
#include <unistd.h>

namespace kestrix::bench {

namespace {

constexpr std::size_t kCacheLine = 64;
/// Stages that look ahead read behind a row.
constexpr std::size_t kReadableBehind = 64;
constexpr std::size_t kLeastColdBytes = std::size_t{512} << 20;

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

std::vector<unsigned char>& Pictures::memory()
{
    static std::vector<unsigned char> block = [] {
        std::vector<unsigned char> bytes(std::max(kLeastColdBytes, 4 * lastCacheBytes()) +
                                         kCacheLine);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
        return bytes;
    }();
    return block;
}

Pictures::Pictures(std::size_t srcBytes, std::size_t dstBytes, Temperature temperature)
    : m_dstOffset(padded(srcBytes)),
      m_pairBytes(m_dstOffset + padded(dstBytes)),
      m_count(temperature == Temperature::Hot
                  ? 1
                  : std::max<std::size_t>((memory().size() - kCacheLine) / m_pairBytes, 1))
{
}

Pictures::Pair Pictures::next()
{
    m_at = (m_at + 1) % m_count;
    void* begin = memory().data();
    std::size_t space = memory().size();
    std::align(kCacheLine, m_pairBytes, begin, space);
    auto* const src = static_cast<unsigned char*>(begin) + m_at * m_pairBytes;
    return {src, src + m_dstOffset};
}

} // namespace kestrix::bench
