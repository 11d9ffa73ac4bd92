/// Constant vectors that stages share. Their names spell their contents: `v4i_0xff` is 255 in each
/// of 4 lanes of 32 bits, `v8i_0xff` in each of 8 lanes of 16 bits. In the name of a mask the lanes
/// run from the top one down, so `v4i_mask_x210` has lane 3 clear and the others set.
#pragma once

#include <cstdint>
#include <emmintrin.h>

namespace KSX::PixelConversion {

/// A vector with `lane` in each of 4 lanes of 32 bits.
constexpr __m128i v4i(std::uint32_t lane)
{
    const auto pair = static_cast<long long>(std::uint64_t{lane} << 32 | lane);
    return __m128i{pair, pair};
}

/// A vector with `lane` in each of 8 lanes of 16 bits.
constexpr __m128i v8i(std::uint16_t lane)
{
    return v4i(std::uint32_t{lane} << 16 | lane);
}

/// A vector with these lanes of 16 bits, from the low end.
constexpr __m128i v8i(std::int16_t a, std::int16_t b, std::int16_t c, std::int16_t d,
                      std::int16_t e, std::int16_t f, std::int16_t g, std::int16_t h)
{
    const auto half = [](std::uint16_t p, std::uint16_t q, std::uint16_t r, std::uint16_t s) {
        return static_cast<long long>(std::uint64_t{s} << 48 | std::uint64_t{r} << 32 |
                                      std::uint64_t{q} << 16 | p);
    };
    return __m128i{half(a, b, c, d), half(e, f, g, h)};
}

inline constexpr __m128i v0 = v4i(0);
inline constexpr __m128i vAllSet = v4i(0xffffffff);

inline constexpr __m128i v4i_0xff = v4i(0xff);
inline constexpr __m128i v4i_0xffff = v4i(0xffff);
inline constexpr __m128i v4i_0xff000000 = v4i(0xff000000);
inline constexpr __m128i v4i_0xffff0000 = v4i(0xffff0000);
inline constexpr __m128i v4i_0x3fff = v4i(0x3fff);
inline constexpr __m128i v4i_0x3ff = v4i(0x3ff);
inline constexpr __m128i v4i_0x3ff0000 = v4i(0x3ff0000);

inline constexpr __m128i v8i_1 = v8i(1);
inline constexpr __m128i v8i_0xff = v8i(0xff);
inline constexpr __m128i v8i_0x3ff = v8i(0x3ff);
inline constexpr __m128i v8i_0xfff = v8i(0xfff);

/// The alpha lanes of `BGRAv8`, and its colour lanes.
inline constexpr __m128i v8i_mask_7xxx3xxx =
    __m128i{static_cast<long long>(0xffff000000000000), static_cast<long long>(0xffff000000000000)};
inline constexpr __m128i v8i_mask_x654x210 = __m128i{0x0000ffffffffffff, 0x0000ffffffffffff};

} // namespace KSX::PixelConversion
