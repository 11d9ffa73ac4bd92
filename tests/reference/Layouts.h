/// Where the samples of each format lie in memory, and how rows of them are read and written.
#pragma once

#include "tests/reference/Levels.h"

#include "conversion/PixelFormats.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrix::test::reference {

/// A row is a stream of bits, from the lowest bit of its first word upward. Every `unitBits` bits
/// hold a sample of `levels.bits` bits at each place in `at`. For RGB these are the places of B, G,
/// R and A of a pixel, -1 if it has none. For 4:2:2 they are consecutive samples in the order Cb Y
/// Cr Y.
struct Layout {
    KSX::PixelConversion::PixelFormat code;
    Levels levels;      ///< for 4:2:2, the range is that of alpha
    unsigned wordBytes; ///< for big-endian words; 1 in a little-endian format
    unsigned unitBits;
    std::vector<int> at;
    int alphaAt = -1; ///< for 4:2:2

    bool is422() const { return at.size() != 4; }
    unsigned maximum() const { return (1u << levels.bits) - 1; }

    /// The first bit of sample `i` of a row. For RGB, `i` is 4x for B of pixel x.
    std::size_t bitOf(std::size_t i) const
    {
        return i / at.size() * unitBits + static_cast<unsigned>(at[i % at.size()]);
    }
    std::size_t bitOfAlpha(std::size_t x) const
    {
        return x * unitBits + static_cast<unsigned>(alphaAt);
    }

    /// Calls `each(byte, shift)` for the bytes of a row that hold bits of a sample.
    template<class EACH>
    void forBytes(std::size_t bit, const EACH& each) const
    {
        for (std::size_t byte = bit / 8; 8 * byte < bit + static_cast<unsigned>(levels.bits);
             ++byte)
            each(byte ^ (wordBytes - 1), static_cast<int>(8 * byte) - static_cast<int>(bit));
    }

    std::uint16_t read(const std::uint8_t* row, std::size_t bit) const
    {
        unsigned value = 0;
        forBytes(bit, [&](std::size_t byte, int shift) {
            value |= shift < 0 ? static_cast<unsigned>(row[byte] >> -shift)
                               : static_cast<unsigned>(row[byte] << shift);
        });
        return static_cast<std::uint16_t>(value & maximum());
    }

    /// Overwrites a sample.
    void write(std::uint8_t* row, std::size_t bit, unsigned value) const
    {
        const auto moved = [](unsigned bits, int shift) {
            return static_cast<std::uint8_t>(shift < 0 ? bits << -shift : bits >> shift);
        };
        forBytes(bit, [&](std::size_t byte, int shift) {
            row[byte] = static_cast<std::uint8_t>((row[byte] & ~moved(maximum(), shift)) |
                                                  moved(value & maximum(), shift));
        });
    }
};

inline const Layout& layoutOf(KSX::PixelConversion::PixelFormat format)
{
    using namespace KSX::PixelConversion;
    // clang-format off
    static const std::vector<Layout> layouts = {
        // code             bits, full    word  unit  Cb Y Cr ...   A
        {PixelFormat_2vuy,  { 8, false},  1,    16,   { 0,  8}},
        {PixelFormat_YUY2,  { 8, false},  1,    16,   { 8,  0}},
        {PixelFormat_v210,  {10, false},  1,    32,   { 0, 10, 20}},
        {PixelFormat_v212,  {12, false},  1,    16,   { 4}},
        {PixelFormat_v216,  {16, false},  1,    16,   { 0}},
        {PixelFormat_ay10,  {10, false},  4,    32,   {10,  0},     20},
        {PixelFormat_Ay10,  {10, true},   4,    32,   {10,  0},     20},

        // code             bits, full    word  unit    B   G   R   A
        {PixelFormat_ARGB,  { 8, true},   1,    32,   {24, 16,  8,  0}},
        {PixelFormat_vRGB,  { 8, false},  1,    32,   {24, 16,  8,  0}},
        {PixelFormat_BGRA,  { 8, true},   1,    32,   { 0,  8, 16, 24}},
        {PixelFormat_BGRv,  { 8, false},  1,    32,   { 0,  8, 16, 24}},
        {PixelFormat_BGRX,  { 8, true},   1,    32,   { 0,  8, 16, -1}},
        {PixelFormat_RGBA,  { 8, true},   1,    32,   {16,  8,  0, 24}},
        {PixelFormat_RGB3,  { 8, true},   1,    24,   {16,  8,  0, -1}},
        {PixelFormat_r210,  {10, false},  4,    32,   { 0, 10, 20, -1}},
        {PixelFormat_R210,  {10, true},   4,    32,   { 0, 10, 20, -1}},
        {PixelFormat_R10l,  {10, false},  1,    32,   { 2, 12, 22, -1}},
        {PixelFormat_R10L,  {10, true},   1,    32,   { 2, 12, 22, -1}},
        {PixelFormat_R10b,  {10, false},  4,    32,   { 2, 12, 22, -1}},
        {PixelFormat_R10B,  {10, true},   4,    32,   { 2, 12, 22, -1}},
        {PixelFormat_R10A,  {10, true},   4,    32,   { 2, 12, 22, -1}},
        {PixelFormat_A04l,  {10, false},  1,    64,   { 0, 16, 32, 48}},
        {PixelFormat_A04L,  {10, true},   1,    64,   { 0, 16, 32, 48}},
        {PixelFormat_R12B,  {12, true},   4,    36,   {24, 12,  0, -1}},
        {PixelFormat_R12L,  {12, true},   1,    36,   {24, 12,  0, -1}},
        {PixelFormat_R12l,  {12, false},  1,    36,   {24, 12,  0, -1}},
        {PixelFormat_S12L,  {12, true},   1,    64,   { 0, 16, 32, -1}},
        {PixelFormat_b64a,  {16, true},   2,    64,   {48, 32, 16,  0}},
        {PixelFormat_L64A,  {16, true},   1,    64,   {48, 32, 16,  0}},
        {PixelFormat_l64a,  {16, false},  1,    64,   {48, 32, 16,  0}},
    };
    // clang-format on
    return *std::find_if(layouts.begin(), layouts.end(),
                         [&](const Layout& layout) { return layout.code == format; });
}

/// A row after a conversion. Bits that are set in `undefined` have no defined value.
struct WrittenRow {
    WrittenRow(const Layout& as, std::size_t width)
        : layout(as),
          bytes(rowBytes(*KSX::PixelConversion::findPixelFormat(as.code), width)),
          undefined(bytes.size())
    {
    }

    const Layout& layout;
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint8_t> undefined;

    /// Packs a lane. Up to 10 bits it is limited as a signed value; above, its upper bits are cut
    /// off.
    void put(std::size_t bit, std::uint16_t lane, bool unknown = false)
    {
        const int limited =
            std::clamp<int>(static_cast<std::int16_t>(lane), 0, static_cast<int>(layout.maximum()));
        layout.write(bytes.data(), bit,
                     layout.levels.bits <= 10 ? static_cast<unsigned>(limited) : lane);
        if (unknown)
            layout.write(undefined.data(), bit, layout.maximum());
    }

    /// `row` with the expected value in each bit without a defined one, so that it can be compared.
    std::vector<std::uint8_t> comparable(std::span<const std::uint8_t> row) const
    {
        std::vector<std::uint8_t> compared = bytes;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            compared[i] ^= (bytes[i] ^ row[i]) & ~undefined[i];
        return compared;
    }
};

struct YCbCr {
    int y;
    int cb;
    int cr;
};

/// Pixel `x` of a row of 4:2:2. Odd pixels have the mean chroma of their neighbours. Only `pixels`
/// pixels count: if the last of them is odd, it has its left neighbour's chroma.
inline YCbCr pixelOf422(const Layout& layout, const std::uint8_t* row, std::size_t x,
                        std::size_t pixels)
{
    const auto sample = [&](std::size_t i) { return layout.read(row, layout.bitOf(i)); };
    const std::size_t left = x / 2 * 4;
    const std::size_t right = x % 2 != 0 && x + 1 < pixels ? left + 4 : left;
    const auto chroma = [&](std::size_t i) {
        return (sample(left + i) + sample(right + i) + 1) >> 1;
    };
    return {sample(2 * x + 1), chroma(0), chroma(2)};
}

} // namespace kestrix::test::reference
