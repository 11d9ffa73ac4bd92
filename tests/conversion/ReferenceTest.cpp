/// The scalar reference on rows worked out by hand.
#include "tests/common/CaseName.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// A row and what it becomes, as bytes in hexadecimal digits.
struct WorkedOutRow {
    std::string name;
    PixelFormat src;
    PixelFormat dst;
    unsigned width;
    std::string in;
    std::string out;
};

void PrintTo(const WorkedOutRow& row, std::ostream* out)
{
    *out << row.name;
}

std::vector<std::uint8_t> bytesOf(const std::string& digits)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

class ScalarReference : public testing::TestWithParam<WorkedOutRow> {};

TEST_P(ScalarReference, GivesWhatWasWorkedOutByHand)
{
    const auto& [name, src, dst, width, in, out] = GetParam();
    const auto* const entry = std::find_if(
        std::begin(conversions), std::end(conversions), [&, src = src, dst = dst](const auto& row) {
            return row.srcFormat == src && row.dstFormat == dst &&
                   row.srcColorspace == row.dstColorspace;
        });
    ASSERT_NE(entry, std::end(conversions));
    auto row = reference::rowConversion(*entry).convert(bytesOf(in).data(), width, 1);
    std::vector<std::uint8_t> expected = bytesOf(out);
    ASSERT_EQ(row.bytes.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        row.bytes[i] &= static_cast<std::uint8_t>(~row.undefined[i]);
        expected[i] &= static_cast<std::uint8_t>(~row.undefined[i]);
    }
    EXPECT_EQ(row.bytes, expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, ScalarReference,
    testing::Values(
        WorkedOutRow{"ReverseKeepsAlpha", PixelFormat_ARGB, PixelFormat_BGRA, 1, "01020304",
                     "04030201"},
        WorkedOutRow{"ReorderingLosesAlpha", PixelFormat_ARGB, PixelFormat_RGBA, 1, "01020304",
                     "020304FF"},
        WorkedOutRow{"RangesKeepAlpha", PixelFormat_BGRA, PixelFormat_BGRv, 1, "00FF0001",
                     "10EB1001"},
        WorkedOutRow{"R10AIsOpaque", PixelFormat_BGRA, PixelFormat_R10A, 1, "0A141E00", "1E0500A3"},
        WorkedOutRow{"SpareBitsOfR210", PixelFormat_R210, PixelFormat_R10B, 1, "C0000000",
                     "00000000"},
        WorkedOutRow{"SpareBitsOfR10L", PixelFormat_R10L, PixelFormat_R210, 1, "03000000",
                     "00000000"},
        WorkedOutRow{"R10BIsR10LReversed", PixelFormat_R10B, PixelFormat_R10L, 1, "1E0500A3",
                     "A000051E"},
        WorkedOutRow{"WhiteIsShifted", PixelFormat_BGRA, PixelFormat_A04L, 1, "FFFFFFFF",
                     "FC03FC03FC03FC03"},
        // (255 - 16) * 4 + 64 for alpha, which has the last of two steps alone.
        WorkedOutRow{"AlphaOfA04l", PixelFormat_BGRA, PixelFormat_A04l, 2, "FFFFFFFF00000000",
                     "AC03AC03AC03FC034000400040004000"},
        // 502 is 511.5 at full range, and 127.5 at 8 bits.
        WorkedOutRow{"RangeOfTenBitsIsCut", PixelFormat_R10l, PixelFormat_R10L, 1, "D8679F7D",
                     "FCF7DF7F"},
        WorkedOutRow{"R10lToBGRAAtOnce", PixelFormat_R10l, PixelFormat_BGRA, 1, "D8679F7D",
                     "7F7F7FFF"},
        WorkedOutRow{"R10lToRGBAByTenBits", PixelFormat_R10l, PixelFormat_RGBA, 1, "D8679F7D",
                     "808080FF"},
        WorkedOutRow{"TwelveBits", PixelFormat_BGRA, PixelFormat_R12L, 1, "C3B2A1FF",
                     "100AB2300C" + std::string(62, '0')},
        WorkedOutRow{"TwelveBitsBigEndian", PixelFormat_BGRA, PixelFormat_R12B, 1, "C3B2A1FF",
                     "30B20A100000000C" + std::string(56, '0')},
        WorkedOutRow{"S12LIsRescaled", PixelFormat_BGRA, PixelFormat_S12L, 2, "FFFFFFFF000000FF",
                     "FF0FFF0FFF0F00000000000000000000"},
        WorkedOutRow{"LowBitsOfB64a", PixelFormat_b64a, PixelFormat_R12L, 1, "FFFFABCD00000000",
                     "CD0B" + std::string(68, '0')},
        WorkedOutRow{"B64aRoundsAndKeepsAlpha", PixelFormat_b64a, PixelFormat_BGRA, 1,
                     "12340080007FFF80", "FF000112"},
        WorkedOutRow{"AlphaOfR12L", PixelFormat_R12L, PixelFormat_L64A, 1,
                     "FFFFFFFFFF" + std::string(62, 'F'), "F0FFF0FFF0FFF0FF"},
        WorkedOutRow{"AlphaOfR12l", PixelFormat_R12l, PixelFormat_b64a, 1,
                     "B00E10B00E" + std::string(62, '0'), "FFF0FFF00000FFF0"},
        WorkedOutRow{"AlphaOfL64a", PixelFormat_r210, PixelFormat_l64a, 1, "3AC00000",
                     "C0FF00EB00000000"},
        WorkedOutRow{"KeyOf4To2To2", PixelFormat_2vuy, PixelFormat_ay10, 1, "80400000",
                     "3FF80100000000000000000000000000"},
        WorkedOutRow{"KeyOfOpaqueBGRA", PixelFormat_BGRA, PixelFormat_ay10, 4,
                     "000000FF000000FF000000FF000000FF", "3A9800403A9800403A9800403A980040"},
        WorkedOutRow{"V210FromV216", PixelFormat_v216, PixelFormat_v210, 2, "C0FF9FFF20001F00",
                     "FFFB1F0000000000" + std::string(16, '0')},
        WorkedOutRow{"V210FromV212", PixelFormat_v212, PixelFormat_v210, 2, "0F00FFFF20001F00",
                     "00FC1F0000000000" + std::string(16, '0')}),
    caseName);

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
