/// Encoded bytes of a few pixels, worked out by hand from the layouts and levels of the formats.
#include "host/RowEncoder.h"

#include "conversion/PixelFormats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace {

using namespace kestrix::host;
using namespace KSX::PixelConversion;

using Bytes = std::vector<std::uint8_t>;
using Row = std::vector<Color>;

const Color kBlack{0, 0, 0};
const Color kWhite{1, 1, 1};
const Color kRed{1, 0, 0};
const Color kBlue{0, 0, 1};
/// 8-bit levels 255, 0, 153, and 51 of alpha.
const Color kPink{1, 0, 0.6, 0.2};

Bytes encode(std::uint32_t format, const Row& row, Colorspace colorspace = Colorspace709)
{
    constexpr std::uint8_t kUntouched = 0xdb;
    RowEncoder encoder(format, colorspace, static_cast<unsigned>(row.size()));
    Bytes bytes(encoder.rowBytes() + 4, kUntouched);
    encoder.encode(row, bytes.data());
    EXPECT_EQ(Bytes(bytes.end() - 4, bytes.end()), Bytes(4, kUntouched)) << "wrote too far";
    bytes.resize(encoder.rowBytes());
    return bytes;
}

Bytes firstBytes(std::size_t count, Bytes bytes)
{
    bytes.resize(count);
    return bytes;
}

TEST(RowEncoder, Writes8BitRGBInTheOrderOfTheFormat)
{
    EXPECT_EQ(encode(PixelFormat_ARGB, {kPink}), (Bytes{51, 255, 0, 153}));
    EXPECT_EQ(encode(PixelFormat_BGRA, {kPink}), (Bytes{153, 0, 255, 51}));
    EXPECT_EQ(encode(PixelFormat_RGBA, {kPink}), (Bytes{255, 0, 153, 51}));
    EXPECT_EQ(encode(PixelFormat_BGRX, {kPink}), (Bytes{153, 0, 255, 0}));
    EXPECT_EQ(encode(PixelFormat_RGB3, {kPink, kBlue}), (Bytes{255, 0, 153, 0, 0, 255}));
    // Studio: 16 + 219 * 0.6 is 147.4. Alpha has no studio range here.
    EXPECT_EQ(encode(PixelFormat_vRGB, {kPink}), (Bytes{51, 235, 16, 147}));
    EXPECT_EQ(encode(PixelFormat_BGRv, {kPink}), (Bytes{147, 16, 235, 51}));
}

TEST(RowEncoder, Writes10BitRGBWords)
{
    // 940 is 0x3ac, 64 is 0x040.
    EXPECT_EQ(encode(PixelFormat_r210, {kRed}), (Bytes{0x3a, 0xc1, 0x00, 0x40}));
    EXPECT_EQ(encode(PixelFormat_R210, {kRed}), (Bytes{0x3f, 0xf0, 0x00, 0x00}));
    EXPECT_EQ(encode(PixelFormat_R10l, {kRed}), (Bytes{0x00, 0x01, 0x04, 0xeb}));
    EXPECT_EQ(encode(PixelFormat_R10b, {kRed}), (Bytes{0xeb, 0x04, 0x01, 0x00}));
    EXPECT_EQ(encode(PixelFormat_R10L, {kBlue}), (Bytes{0xfc, 0x0f, 0x00, 0x00}));
    EXPECT_EQ(encode(PixelFormat_R10B, {kRed}), (Bytes{0xff, 0xc0, 0x00, 0x00}));
    EXPECT_EQ(encode(PixelFormat_R10A, {kRed}), (Bytes{0xff, 0xc0, 0x00, 0x03}));
    EXPECT_EQ(encode(PixelFormat_A04L, {kRed}), (Bytes{0, 0, 0, 0, 0xff, 0x03, 0xff, 0x03}));
    EXPECT_EQ(encode(PixelFormat_A04l, {kRed}), (Bytes{0x40, 0, 0x40, 0, 0xac, 0x03, 0xff, 0x03}));
}

TEST(RowEncoder, Writes12BitRGBAsOneStream)
{
    // Red is ff f 0 00 0.., blue 0 00 00 0 f ff, in nibbles from the lowest bit up.
    const Row row = {kRed, kBlue, kBlack, kBlack, kBlack, kBlack, kBlack, kBlack};
    const Bytes little = encode(PixelFormat_R12L, row);
    ASSERT_EQ(little.size(), 36U);
    EXPECT_EQ(firstBytes(12, little), (Bytes{0xff, 0x0f, 0, 0, 0, 0, 0, 0xf0, 0xff, 0, 0, 0}));
    EXPECT_EQ(firstBytes(12, encode(PixelFormat_R12B, row)),
              (Bytes{0, 0, 0x0f, 0xff, 0xf0, 0, 0, 0, 0, 0, 0, 0xff}));

    // Studio white is 0xeb0, black 0x100. A row of 9 ends with a whole group of its last pixel.
    Row nine(9, kBlack);
    nine[0] = kWhite;
    const Bytes studio = encode(PixelFormat_R12l, nine);
    ASSERT_EQ(studio.size(), 72U);
    EXPECT_EQ(firstBytes(9, studio), (Bytes{0xb0, 0x0e, 0xeb, 0xb0, 0x0e, 0x10, 0x00, 0x01, 0x10}));
    EXPECT_EQ(Bytes(studio.end() - 3, studio.end()), (Bytes{0x00, 0x01, 0x10}));

    EXPECT_EQ(encode(PixelFormat_S12L, {kRed}), (Bytes{0, 0, 0, 0, 0xff, 0x0f, 0, 0}));
}

TEST(RowEncoder, Writes16BitRGBWords)
{
    const Color halfRed{0.5, 0, 0}; // 32767.5, half up
    EXPECT_EQ(encode(PixelFormat_b64a, {halfRed}), (Bytes{0xff, 0xff, 0x80, 0x00, 0, 0, 0, 0}));
    EXPECT_EQ(encode(PixelFormat_L64A, {halfRed}), (Bytes{0xff, 0xff, 0x00, 0x80, 0, 0, 0, 0}));
    // Codes of 10 bits on top: 1023, 940, 64, 64.
    EXPECT_EQ(encode(PixelFormat_l64a, {kRed}),
              (Bytes{0xc0, 0xff, 0x00, 0xeb, 0x00, 0x10, 0x00, 0x10}));
}

TEST(RowEncoder, Writes8BitYUVWithTheWeightsOfTheColorspace)
{
    // Y, Cb, Cr of red: 81 90 240 in Rec. 601, 63 102 240 in Rec. 709, 74 97 240 in Rec. 2020.
    EXPECT_EQ(encode(PixelFormat_2vuy, {kRed, kRed}, Colorspace601), (Bytes{90, 81, 240, 81}));
    EXPECT_EQ(encode(PixelFormat_2vuy, {kRed, kRed}, Colorspace709), (Bytes{102, 63, 240, 63}));
    EXPECT_EQ(encode(PixelFormat_2vuy, {kRed, kRed}, Colorspace2020), (Bytes{97, 74, 240, 74}));
    EXPECT_EQ(encode(PixelFormat_YUY2, {kRed, kRed}, Colorspace601), (Bytes{81, 90, 81, 240}));
    EXPECT_EQ(encode(PixelFormat_2vuy, {kWhite, kBlack}, Colorspace601),
              (Bytes{128, 235, 128, 16}));
}

TEST(RowEncoder, FiltersChromaAroundTheEvenPixel)
{
    // Red between the even pixels 0 and 2 gives each a quarter of its chroma: Cb -38/4, Cr 112/4.
    // The second pair's other pixel repeats the last.
    EXPECT_EQ(encode(PixelFormat_2vuy, {kBlack, kRed, kBlack}, Colorspace601),
              (Bytes{119, 16, 156, 81, 119, 16, 156, 16}));
    // On an even pixel it gives that pixel a half, and a neighbouring pair nothing.
    EXPECT_EQ(encode(PixelFormat_2vuy, {kBlack, kBlack, kRed, kBlack}, Colorspace601),
              (Bytes{128, 16, 128, 16, 109, 81, 184, 16}));
}

TEST(RowEncoder, Writes10BitYUVGroups)
{
    // Red in Rec. 709 is 250 409 960: 0x0fa 0x199 0x3c0.
    EXPECT_EQ(encode(PixelFormat_v210, Row(6, kRed)),
              (Bytes{0x99, 0xe9, 0x03, 0x3c, 0xfa, 0x64, 0xa6, 0x0f, //
                     0xc0, 0xeb, 0x93, 0x19, 0xfa, 0x00, 0xaf, 0x0f}));
    // White is 940 512 512: 0x3ac 0x200 0x200.
    const Bytes white = encode(PixelFormat_v210, Row(7, kWhite));
    ASSERT_EQ(white.size(), 32U);
    for (std::size_t i = 0; i < white.size(); i += 8)
        EXPECT_EQ(Bytes(white.begin() + i, white.begin() + i + 8),
                  (Bytes{0x00, 0xb2, 0x0e, 0x20, 0xac, 0x03, 0xc8, 0x3a}));
}

TEST(RowEncoder, WritesDeepYUVWords)
{
    // Red in Rec. 709 is 1001 1637 3840 of 12 bits: 0x3e9 0x665 0xf00.
    EXPECT_EQ(encode(PixelFormat_v212, {kRed, kRed}),
              (Bytes{0x50, 0x66, 0x90, 0x3e, 0x00, 0xf0, 0x90, 0x3e}));
    EXPECT_EQ(encode(PixelFormat_v216, {kWhite, kWhite, kBlack}),
              (Bytes{0x00, 0x80, 0x00, 0xeb, 0x00, 0x80, 0x00, 0xeb, 0x00, 0x80, 0x00, 0x10}));
}

TEST(RowEncoder, WritesYUVAWithAlphaInItsRange)
{
    const Color clearRed{1, 0, 0, 0};
    EXPECT_EQ(firstBytes(8, encode(PixelFormat_Ay10, {clearRed, clearRed})),
              (Bytes{0x00, 0x06, 0x64, 0xfa, 0x00, 0x0f, 0x00, 0xfa}));
    EXPECT_EQ(firstBytes(4, encode(PixelFormat_ay10, {kWhite, kWhite})),
              (Bytes{0x3a, 0xc8, 0x03, 0xac}));
    EXPECT_EQ(firstBytes(4, encode(PixelFormat_Ay10, {kWhite, kWhite})),
              (Bytes{0x3f, 0xf8, 0x03, 0xac}));
    EXPECT_EQ(encode(PixelFormat_ay10, Row(5, kBlack)).size(), 32U);
}

TEST(RowEncoder, KeepsOvershootInStudioRangeOnly)
{
    const Row row = {{1.05, -0.05, 2}};
    // 64 + 876 * 1.05 is 983.8, 64 - 43.8 is 20.2, and 1019 is the last code of video.
    EXPECT_EQ(encode(PixelFormat_A04l, row),
              (Bytes{0xfb, 0x03, 0x14, 0x00, 0xd8, 0x03, 0xff, 0x03}));
    EXPECT_EQ(encode(PixelFormat_A04L, row), (Bytes{0xff, 0x03, 0, 0, 0xff, 0x03, 0xff, 0x03}));
}

TEST(RowEncoder, KnowsEveryFormatAtEveryWidth)
{
    for (const PixelFormatInfo& info : kPixelFormats)
        for (unsigned width = 1; width <= 17; ++width)
            EXPECT_EQ(encode(info.code, Row(width, kRed)).size(), rowBytes(info, width))
                << info.engineName;
}

TEST(RowEncoder, RefusesUnknownFormatsAndColorspaces)
{
    EXPECT_THROW(RowEncoder(0, Colorspace709, 2), std::invalid_argument);
    EXPECT_THROW(RowEncoder(PixelFormat_BGRA, ColorspaceUnspecified, 2), std::invalid_argument);
}

} // namespace
