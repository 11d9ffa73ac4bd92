/// Encoded bytes of a few pixels, worked out by hand from the layouts and levels of the formats.
#include "host/RowEncoder.h"

#include "conversion/PixelFormats.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace kestrix::host;
using namespace KSX::PixelConversion;

/// Colours by letter: black, white, red, blue; pink, whose 8-bit levels are 255, 0, 153, and 51 of
/// alpha; a half of red; red that can be looked through; and more than there is.
const std::map<char, Color> kColors = {
    {'k', {0, 0, 0}},        {'w', {1, 1, 1}},   {'r', {1, 0, 0}},    {'b', {0, 0, 1}},
    {'p', {1, 0, 0.6, 0.2}}, {'h', {0.5, 0, 0}}, {'c', {1, 0, 0, 0}}, {'x', {1.05, -0.05, 2}}};

/// The row's bytes as digits, a colour a pixel.
std::string encode(std::uint32_t format, const std::string& colors, Colorspace colorspace)
{
    constexpr std::uint8_t kUntouched = 0xdb;
    RowEncoder encoder(format, colorspace, static_cast<unsigned>(colors.size()));
    std::vector<Color> row;
    for (const char color : colors)
        row.push_back(kColors.at(color));
    std::vector<std::uint8_t> bytes(encoder.rowBytes() + 4, kUntouched);
    encoder.encode(row, bytes.data());
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        char two[3];
        std::snprintf(two, sizeof two, "%02x", byte);
        digits += two;
    }
    EXPECT_EQ(digits.substr(digits.size() - 8), "dbdbdbdb") << "wrote too far";
    return digits.substr(0, digits.size() - 8);
}

TEST(RowEncoder, WritesWhatWasWorkedOutByHand)
{
    const struct {
        std::uint32_t format;
        const char* colors;
        const char* begin; // of the row, as digits
        Colorspace colorspace = Colorspace709;
    } cases[] = {
        {PixelFormat_ARGB, "p", "33ff0099"},
        {PixelFormat_BGRA, "p", "9900ff33"},
        {PixelFormat_RGBA, "p", "ff009933"},
        {PixelFormat_BGRX, "p", "9900ff00"},
        {PixelFormat_RGB3, "pb", "ff00990000ff"},
        // 16 + 219 * 0.6 is 147.4. Alpha has no studio range here.
        {PixelFormat_vRGB, "p", "33eb1093"},
        {PixelFormat_BGRv, "p", "9310eb33"},
        // 940 is 0x3ac, 64 is 0x040.
        {PixelFormat_r210, "r", "3ac10040"},
        {PixelFormat_R210, "r", "3ff00000"},
        {PixelFormat_R10l, "r", "000104eb"},
        {PixelFormat_R10b, "r", "eb040100"},
        {PixelFormat_R10L, "b", "fc0f0000"},
        {PixelFormat_R10B, "r", "ffc00000"},
        {PixelFormat_R10A, "r", "ffc00003"},
        {PixelFormat_A04L, "r", "00000000ff03ff03"},
        {PixelFormat_A04l, "r", "40004000ac03ff03"},
        // Overshoot: 64 + 876 * 1.05 is 983.8, 64 - 43.8 is 20.2, and 1019 is video's last code.
        {PixelFormat_A04l, "x", "fb031400d803ff03"},
        {PixelFormat_A04L, "x", "ff030000ff03ff03"},
        // Red is ff f 0 00 0.., blue 0 00 00 0 f ff, in nibbles from the lowest bit up.
        {PixelFormat_R12L, "rbkkkkkk", "ff0f0000000000f0ff000000"},
        {PixelFormat_R12B, "rbkkkkkk", "00000ffff0000000000000ff"},
        // Studio white is 0xeb0, black 0x100.
        {PixelFormat_R12l, "wkkkkkkkk", "b00eebb00e10000110"},
        {PixelFormat_S12L, "r", "00000000ff0f0000"},
        {PixelFormat_b64a, "h", "ffff800000000000"}, // 32767.5, half up
        {PixelFormat_L64A, "h", "ffff008000000000"},
        {PixelFormat_l64a, "r", "c0ff00eb00100010"}, // 1023, 940, 64, 64 on top
        // Y, Cb, Cr of red: 81 90 240 in Rec. 601, 63 102 240 in Rec. 709, 74 97 240 in Rec. 2020.
        {PixelFormat_2vuy, "rr", "5a51f051", Colorspace601},
        {PixelFormat_2vuy, "rr", "663ff03f", Colorspace709},
        {PixelFormat_2vuy, "rr", "614af04a", Colorspace2020},
        {PixelFormat_YUY2, "rr", "515a51f0", Colorspace601},
        {PixelFormat_2vuy, "wk", "80eb8010", Colorspace601},
        // Red between the even pixels 0 and 2 gives each a quarter of its chroma: Cb -38/4, Cr
        // 112/4. The second pair's other pixel repeats the last.
        {PixelFormat_2vuy, "krk", "77109c5177109c10", Colorspace601},
        // On an even pixel it gives that pixel a half, and a neighbouring pair nothing.
        {PixelFormat_2vuy, "kkrk", "801080106d51b810", Colorspace601},
        // Red in Rec. 709 is 250 409 960, 0x0fa 0x199 0x3c0; white 940 512 512.
        {PixelFormat_v210, "rrrrrr", "99e9033cfa64a60fc0eb9319fa00af0f"},
        {PixelFormat_v210, "wwwwwww", "00b20e20ac03c83a00b20e20ac03c83a"},
        // With 12 bits 1001 1637 3840: 0x3e9 0x665 0xf00.
        {PixelFormat_v212, "rr", "5066903e00f0903e"},
        {PixelFormat_v216, "wwk", "008000eb008000eb00800010"},
        {PixelFormat_Ay10, "cc", "000664fa000f00fa"},
        {PixelFormat_ay10, "ww", "3ac803ac"},
        {PixelFormat_Ay10, "ww", "3ff803ac"},
    };
    for (const auto& [format, colors, begin, colorspace] : cases)
        EXPECT_TRUE(encode(format, colors, colorspace).starts_with(begin))
            << colors << ": " << encode(format, colors, colorspace) << ", not " << begin;
    const std::string studio = encode(PixelFormat_R12l, "wkkkkkkkk", Colorspace709);
    EXPECT_TRUE(studio.ends_with("000110")) << "the last group is filled with the last pixel";
}

TEST(RowEncoder, KnowsEveryFormatAtEveryWidth)
{
    for (const PixelFormatInfo& info : kPixelFormats)
        for (unsigned width = 1; width <= 17; ++width)
            EXPECT_EQ(encode(info.code, std::string(width, 'r'), Colorspace709).size(),
                      2 * rowBytes(info, width))
                << info.engineName;
    EXPECT_THROW(RowEncoder(0, Colorspace709, 2), std::invalid_argument);
    EXPECT_THROW(RowEncoder(PixelFormat_BGRA, ColorspaceUnspecified, 2), std::invalid_argument);
}

} // namespace
