/// Compares the scalar reference with rows that were worked out by hand.
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// Bytes in hexadecimal digits, with zeros after them up to `size`.
std::vector<std::uint8_t> bytesOf(const std::string& digits, std::size_t size)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    bytes.resize(size);
    return bytes;
}

TEST(ScalarReference, GivesWhatWasWorkedOutByHand)
{
    const struct {
        PixelFormat src;
        PixelFormat dst;
        unsigned width;
        const char* in;
        const char* out;
    } rows[] = {
        {PixelFormat_ARGB, PixelFormat_BGRA, 1, "01020304", "04030201"}, // reversed, with alpha
        {PixelFormat_ARGB, PixelFormat_RGBA, 1, "01020304", "020304FF"}, // reordered, without alpha
        {PixelFormat_BGRA, PixelFormat_BGRv, 1, "00FF0001", "10EB1001"},
        {PixelFormat_BGRA, PixelFormat_R10A, 1, "0A141E00", "1E0500A3"}, // opaque
        {PixelFormat_R210, PixelFormat_R10B, 1, "C0000000", "00000000"}, // spare bits are lost
        {PixelFormat_R10L, PixelFormat_R210, 1, "03000000", "00000000"},
        {PixelFormat_R10B, PixelFormat_R10L, 1, "1E0500A3", "A000051E"},
        {PixelFormat_BGRA, PixelFormat_A04L, 1, "FFFFFFFF", "FC03FC03FC03FC03"},
        // (255 - 16) * 4 + 64: alpha takes only the second of two steps.
        {PixelFormat_BGRA, PixelFormat_A04l, 2, "FFFFFFFF00000000",
         "AC03AC03AC03FC034000400040004000"},
        {PixelFormat_R10l, PixelFormat_R10L, 1, "D8679F7D", "FCF7DF7F"}, // 511.5 is cut
        {PixelFormat_R10l, PixelFormat_BGRA, 1, "D8679F7D", "7F7F7FFF"}, // and 127.5 at 8 bits
        {PixelFormat_R10l, PixelFormat_RGBA, 1, "D8679F7D", "808080FF"}, // through 10 bits
        {PixelFormat_BGRA, PixelFormat_R12L, 1, "C3B2A1FF", "100AB2300C"},
        {PixelFormat_BGRA, PixelFormat_R12B, 1, "C3B2A1FF", "30B20A100000000C"},
        {PixelFormat_BGRA, PixelFormat_S12L, 2, "FFFFFFFF000000FF",
         "FF0FFF0FFF0F00000000000000000000"},
        {PixelFormat_b64a, PixelFormat_R12L, 1, "FFFFABCD00000000", "CD0B"}, // the low 12 bits
        {PixelFormat_b64a, PixelFormat_BGRA, 1, "12340080007FFF80", "FF000112"},
        {PixelFormat_R12L, PixelFormat_L64A, 1, "FFFFFFFFFF", "F0FFF0FFF0FFF0FF"},
        {PixelFormat_R12l, PixelFormat_b64a, 1, "B00E10B00E", "FFF0FFF00000FFF0"},
        {PixelFormat_r210, PixelFormat_l64a, 1, "3AC00000", "C0FF00EB00000000"},
        // New alpha is 1023; opaque 8-bit alpha becomes 938.
        {PixelFormat_2vuy, PixelFormat_ay10, 1, "80400000", "3FF80100000000000000000000000000"},
        {PixelFormat_BGRA, PixelFormat_ay10, 4, "000000FF000000FF000000FF000000FF",
         "3A9800403A9800403A9800403A980040"},
        {PixelFormat_v216, PixelFormat_v210, 2, "C0FF9FFF20001F00", "FFFB1F0000000000"},
        {PixelFormat_v212, PixelFormat_v210, 2, "0F00FFFF20001F00", "00FC1F0000000000"},
    };
    for (const auto& row : rows) {
        const auto* const entry = std::ranges::find_if(conversions, [&](const auto& it) {
            return it.srcFormat == row.src && it.dstFormat == row.dst &&
                   it.srcColorspace == it.dstColorspace;
        });
        ASSERT_NE(entry, std::end(conversions));
        const auto got =
            reference::rowConversion(*entry).convert(bytesOf(row.in, 64).data(), row.width, 1);
        EXPECT_EQ(got.bytes, got.comparable(bytesOf(row.out, got.bytes.size())))
            << "case " << &row - rows;
    }
}

TEST(ScalarReference, KnowsEveryBitOfRowsOfWholeBlocks)
{
    for (const ConversionEntry& entry : conversions) {
        const std::vector<std::uint8_t> in(192 * 8 + 16);
        const auto row = reference::rowConversion(entry).convert(in.data(), 192, 1);
        EXPECT_EQ(row.undefined, std::vector<std::uint8_t>(row.bytes.size()))
            << "row " << &entry - conversions;
    }
}

} // namespace
} // namespace kestrix::test
