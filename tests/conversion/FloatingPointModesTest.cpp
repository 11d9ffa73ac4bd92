/// Conversions in the floating-point modes that a host may have set: the directions of rounding,
/// and denormal numbers taken as zero.
#include "tests/common/AllConversions.h"
#include "tests/common/Random.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

constexpr unsigned kFlushToZero = 0x8000;
constexpr unsigned kDenormalsAreZero = 0x0040;

/// A change of primaries computes linear light in floating point. All other conversions compute
/// integers.
bool changesPrimaries(const Conversion& conversion)
{
    return conversion.entry.srcColorspace != conversion.entry.dstColorspace;
}

std::vector<std::uint8_t> convert(const Conversion& conversion, std::vector<std::uint8_t> src,
                                  unsigned width, unsigned mode)
{
    std::vector<std::uint8_t> dst(rowBytes(conversion.dst(), width));
    const unsigned before = _mm_getcsr();
    _mm_setcsr(before | mode);
    conversion.entry.function(width, 1, dst.data(), static_cast<unsigned>(dst.size()), src.data(),
                              0);
    _mm_setcsr(before);
    return dst;
}

TEST(FloatingPointModes, ChangeNothingButPrimaries)
{
    constexpr unsigned kWidth = 9600;
    for (const Conversion& conversion : allConversions()) {
        if (conversion.copies())
            continue;
        std::vector<std::uint8_t> src(rowBytes(conversion.src(), kWidth) + 64);
        Random(1).fill(src, Content::Uniform);
        conversion.limit(src);
        const std::vector<std::uint8_t> expected = convert(conversion, src, kWidth, 0);
        for (const unsigned rounding :
             {_MM_ROUND_NEAREST, _MM_ROUND_DOWN, _MM_ROUND_UP, _MM_ROUND_TOWARD_ZERO})
            for (const unsigned flush : {0u, kFlushToZero, kDenormalsAreZero}) {
                // The chroma of the last pixel may not be defined.
                const std::size_t compared = rowBytes(conversion.dst(), kWidth - 48);
                const auto got = convert(conversion, src, kWidth, rounding | flush);
                if (std::memcmp(got.data(), expected.data(), compared) == 0)
                    continue;
                EXPECT_TRUE(changesPrimaries(conversion)) << conversion.name;
                EXPECT_NE(rounding, _MM_ROUND_NEAREST) << conversion.name;
            }
    }
}

} // namespace
} // namespace kestrix::test
