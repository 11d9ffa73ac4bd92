/// Conversions between RGB and YUV, a pixel at a time, with the coefficients as integers.
#pragma once

#include "tests/reference/Layouts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrix::test::reference {

using Matrix = std::array<std::array<int, 3>, 3>;

// clang-format off

/// Rows Y, Cb, Cr and columns R, G, B, in units of 1/32768.
inline constexpr Matrix
    kStudio601ToYUV   {{{9798, 19235, 3736}, {-5655, -11101, 16758}, {16758, -14030, -2725}}},
    kStudio709ToYUV   {{{6966, 23436, 2366}, {-3839, -12916, 16758}, {16758, -15220, -1536}}},
    kStudio2020ToYUV  {{{8608, 22217, 1943}, {-4679, -12077, 16758}, {16758, -15409, -1347}}},
    kFull8_601ToYUV   {{{8414, 16519, 3208}, {-4856,  -9533, 14392}, {14392, -12049, -2340}}},
    kFull8_709ToYUV   {{{5983, 20127, 2032}, {-3297, -11093, 14392}, {14392, -13072, -1319}}},
    kFull8_2020ToYUV  {{{7393, 19080, 1669}, {-4018, -10372, 14392}, {14392, -13234, -1157}}},
    kFull10_601ToYUV  {{{8390, 16471, 3199}, {-4842,  -9506, 14350}, {14350, -12014, -2334}}},
    kFull10_709ToYUV  {{{5965, 20068, 2026}, {-3288, -11060, 14350}, {14350, -13033, -1315}}},
    kFull10_2020ToYUV {{{7371, 19024, 1664}, {-4006, -10342, 14350}, {14350, -13195, -1153}}},
    kFull12_601ToYUV  {{{8384, 16459, 3196}, {-4839,  -9499, 14339}, {14339, -12005, -2332}}},
    kFull12_709ToYUV  {{{5961, 20053, 2024}, {-3285, -11052, 14339}, {14340, -13024, -1314}}};

/// Rows R, G, B and columns Y, Cb, Cr. R and G are in units of 1/16384, B in units of 1/8192.
inline constexpr Matrix
    kYUVToStudio601   {{{16384, 0, 22459}, {16384, -5513, -11439}, {8192, 14192, 0}}},
    kYUVToStudio709   {{{16384, 0, 25226}, {16384, -3001,  -7498}, {8192, 14861, 0}}},
    kYUVToStudio2020  {{{16384, 0, 23620}, {16384, -2635,  -9152}, {8192, 15068, 0}}},
    kYUVToFull601     {{{19077, 0, 26151}, {19077, -6419, -13319}, {9538, 16525, 0}}},
    kYUVToFull709     {{{19077, 0, 29373}, {19077, -3494,  -8731}, {9538, 17304, 0}}},
    kYUVToFull2020    {{{19077, 0, 27503}, {19077, -3069, -10656}, {9538, 17545, 0}}};

// clang-format on

struct RGBToYUV {
    Matrix matrix;
    int rgbBits;
    int yuvBits;
    bool studio = false;
    bool rounds = true;
};

/// Calls `sink(x, y, chroma)` for every pixel of a row of B, G, R, A. `chroma` is Cb for even
/// pixels and Cr for odd ones. The count of pixels is even.
template<class SINK>
void toYUV(const RGBToYUV& c, const std::uint16_t* bgra, std::size_t pixels, const SINK& sink)
{
    const int shift = 15 + c.rgbBits - c.yuvBits;
    const int half = c.rounds ? 1 << (shift - 1) : 0;
    const int black = c.studio ? 16 << (c.rgbBits - 8) : 0;

    const auto lane = [&](std::size_t x, int i) {
        return static_cast<std::uint16_t>(bgra[4 * x + i] - black);
    };
    const auto mean = [](std::uint32_t a, std::uint32_t b) { return (a + b + 1) / 2; };
    const auto filtered = [&](std::size_t x, int i) {
        const auto beside = mean(lane(x == 0 ? 0 : x - 1, i), lane(x + 1, i));
        return static_cast<std::uint16_t>(mean(lane(x, i), beside));
    };
    const auto weighed = [&](const std::array<int, 3>& row, std::size_t x, const auto& lanes) {
        int sum = half;
        for (int i = 0; i < 3; ++i)
            sum += row[i] * static_cast<std::int16_t>(lanes(x, 2 - i));
        return sum >> shift;
    };
    for (std::size_t x = 0; x < pixels; ++x) {
        const int y = weighed(c.matrix[0], x, lane) + (16 << (c.yuvBits - 8));
        const int chroma =
            weighed(c.matrix[1 + x % 2], x / 2 * 2, filtered) + (128 << (c.yuvBits - 8));
        sink(x, y, chroma);
    }
}

struct YUVToRGB {
    Matrix matrix;
    int yuvBits;
    int rgbBits;
    bool studio = true;
    bool rounds = true;
};

/// R, G, B of a pixel. In an even pixel Y and Cb are rounded together and Cr separately; in an odd
/// pixel Y and Cr are rounded together and Cb separately.
inline std::array<int, 3> toRGB(const YUVToRGB& c, YCbCr in, bool odd)
{
    const auto without = [](int lane, int offset) {
        return static_cast<std::int16_t>(lane - offset);
    };
    const int y = without(in.y, c.studio ? 0 : 16 << (c.yuvBits - 8));
    const int cb = without(in.cb, 128 << (c.yuvBits - 8));
    const int cr = without(in.cr, 128 << (c.yuvBits - 8));
    const int lowest = c.studio ? 16 << (c.rgbBits - 8) : 0;
    const int highest = c.studio ? 235 << (c.rgbBits - 8) : 255;

    const auto shifted = [&](int sum, int shift) {
        return c.rounds ? (sum + (1 << (shift - 1))) >> shift : sum >> shift;
    };
    std::array<int, 3> rgb;
    for (int i = 0; i < 3; ++i) {
        const auto [forY, forCb, forCr] = c.matrix[i];
        const int shift = (c.rounds ? c.yuvBits : 14 + c.yuvBits - c.rgbBits) - (i == 2 ? 1 : 0);
        const auto part = [&](int sum) { return std::clamp(shifted(sum, shift), -32768, 32767); };
        int sum = odd ? part(forCb * cb) + part(forCr * cr + forY * y)
                      : part(forCb * cb + forY * y) + part(forCr * cr);
        if (c.rounds)
            sum = shifted(sum, 14 - c.rgbBits);
        rgb[i] = std::clamp(sum, lowest, highest);
    }
    return rgb;
}

/// 8-bit alpha as 10-bit alpha at video levels. The highest result is below 940.
inline int alphaToStudio(int a)
{
    return (4 * a * 56119 >> 16) + 64;
}

/// 10-bit alpha at video levels as 8 bits, cut twice.
inline int alphaFromStudio(int a)
{
    return (std::clamp(a - 64, 0, 876) * 2 * 38267 >> 16) / 4;
}

/// 10-bit alpha as 8 bits: 255/1023, rounded to nearest for every code.
inline int alphaFromFull(int a)
{
    return (a * 255 * 2 + 1023) / (2 * 1023);
}

} // namespace kestrix::test::reference
