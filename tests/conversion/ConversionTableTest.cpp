/// The table of conversions and its lookup, and the formats as memory.
#include "conversion/KSXPixelConversion.h"
#include "conversion/PixelFormats.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

constexpr Colorspace kColorspaces[] = {Colorspace601, Colorspace709, Colorspace2020,
                                       ColorspaceUnspecified};

using Question = std::tuple<PixelFormat, Colorspace, PixelFormat, Colorspace>;

/// Each question that has an answer, and the row that gives it: every row spelled out for the
/// colourspaces that it serves, where an earlier row is never displaced.
std::map<Question, std::size_t> answers()
{
    std::map<Question, std::size_t> rows;
    for (std::size_t i = 0; i < std::size(conversions); ++i) {
        const ConversionEntry& row = conversions[i];
        if (row.srcColorspace != ColorspaceUnspecified) {
            rows.try_emplace({row.srcFormat, row.srcColorspace, row.dstFormat, row.dstColorspace},
                             i);
            continue;
        }
        for (const Colorspace any : kColorspaces)
            rows.try_emplace({row.srcFormat, any, row.dstFormat, any}, i);
    }
    return rows;
}

TEST(ConversionTable, IsInGroupsOfASource)
{
    // Every row where the source changes. A row lost or doubled moves all that follow.
    const std::vector<std::pair<std::size_t, PixelFormat>> starts = {
        {0, PixelFormat_2vuy},   {1, PixelFormat_YUY2},   {2, PixelFormat_2vuy},
        {3, PixelFormat_YUY2},   {4, PixelFormat_2vuy},   {42, PixelFormat_v210},
        {79, PixelFormat_v212},  {81, PixelFormat_v216},  {83, PixelFormat_ay10},
        {86, PixelFormat_Ay10},  {98, PixelFormat_ARGB},  {115, PixelFormat_BGRA},
        {158, PixelFormat_BGRX}, {164, PixelFormat_vRGB}, {170, PixelFormat_BGRv},
        {178, PixelFormat_r210}, {196, PixelFormat_R210}, {211, PixelFormat_RGBA},
        {230, PixelFormat_RGB3}, {244, PixelFormat_R10l}, {260, PixelFormat_r210},
        {261, PixelFormat_R10b}, {277, PixelFormat_R10L}, {293, PixelFormat_R10B},
        {309, PixelFormat_R10A}, {325, PixelFormat_A04l}, {329, PixelFormat_A04L},
        {331, PixelFormat_R12B}, {340, PixelFormat_R12L}, {349, PixelFormat_b64a},
        {350, PixelFormat_2vuy}, {352, PixelFormat_v210}, {354, PixelFormat_BGRA},
        {355, PixelFormat_R12B}, {356, PixelFormat_R12L}, {357, PixelFormat_R12l},
        {362, PixelFormat_b64a}};
    std::vector<std::pair<std::size_t, PixelFormat>> got;
    for (std::size_t i = 0; i < std::size(conversions); ++i)
        if (i == 0 || conversions[i].srcFormat != conversions[i - 1].srcFormat)
            got.emplace_back(i, conversions[i].srcFormat);
    EXPECT_EQ(got, starts);
    EXPECT_EQ(std::size(conversions), 364u);
}

TEST(ConversionTable, HoldsWhatEveryRowMustHold)
{
    for (std::size_t i = 0; i < std::size(conversions); ++i) {
        SCOPED_TRACE(testing::Message() << "row " << i);
        const ConversionEntry& row = conversions[i];
        EXPECT_NE(row.function, nullptr);
        EXPECT_NE(findPixelFormat(row.srcFormat), nullptr);
        EXPECT_NE(findPixelFormat(row.dstFormat), nullptr);
        for (const Colorspace colorspace : {row.srcColorspace, row.dstColorspace})
            EXPECT_EQ(std::count(std::begin(kColorspaces), std::end(kColorspaces), colorspace), 1);
        EXPECT_EQ(row.srcColorspace == ColorspaceUnspecified,
                  row.dstColorspace == ColorspaceUnspecified);
        // A frame that needs no conversion gets none. 10-bit RGBA is written through once more.
        const bool changes =
            row.srcFormat != row.dstFormat || row.srcColorspace != row.dstColorspace;
        EXPECT_EQ(changes, i != 324);
    }
}

TEST(ConversionTable, HasTenRowsThatEarlierOnesHide)
{
    std::set<std::size_t> hidden;
    for (std::size_t i = 0; i < std::size(conversions); ++i)
        hidden.insert(i);
    for (const auto& [question, row] : answers())
        hidden.erase(row);
    EXPECT_EQ(hidden, (std::set<std::size_t>{7, 8, 9, 44, 45, 46, 87, 88, 89, 209}));
}

TEST(ConversionLookup, AnswersEveryQuestionByTheFirstRowThatServesIt)
{
    const auto expected = answers();
    for (const PixelFormatInfo& src : kPixelFormats)
        for (const PixelFormatInfo& dst : kPixelFormats)
            for (const Colorspace from : kColorspaces)
                for (const Colorspace to : kColorspaces) {
                    const Colorspace target = to == ColorspaceUnspecified ? from : to;
                    const auto row = expected.find({src.code, from, dst.code, target});
                    const ConversionFunction function =
                        row == expected.end() ? nullptr : conversions[row->second].function;
                    ASSERT_EQ(GetConversionFunction(src.code, dst.code, from, to), function)
                        << src.engineName << " to " << dst.engineName << ", " << from << " to "
                        << to;
                }
}

TEST(PixelFormats, RowsEndInWholeGroups)
{
    const auto bytes = [](PixelFormat format, std::size_t width) {
        return rowBytes(*findPixelFormat(format), width);
    };
    EXPECT_EQ(bytes(PixelFormat_2vuy, 15), 32u);
    EXPECT_EQ(bytes(PixelFormat_YUY2, 1), 4u);
    EXPECT_EQ(bytes(PixelFormat_v210, 1280), 3424u);
    EXPECT_EQ(bytes(PixelFormat_v216, 5), 20u);
    EXPECT_EQ(bytes(PixelFormat_Ay10, 5), 32u);
    EXPECT_EQ(bytes(PixelFormat_RGB3, 5), 15u);
    EXPECT_EQ(bytes(PixelFormat_ARGB, 5), 20u);
    EXPECT_EQ(bytes(PixelFormat_R10A, 5), 20u);
    EXPECT_EQ(bytes(PixelFormat_A04L, 5), 40u);
    EXPECT_EQ(bytes(PixelFormat_R12l, 9), 72u);
    EXPECT_EQ(bytes(PixelFormat_b64a, 5), 40u);
    EXPECT_EQ(PixelFormat_ARGB, 32u);
    EXPECT_EQ(PixelFormat_BGRA, 0x42475241u);

    std::set<std::uint32_t> codes;
    for (const PixelFormatInfo& format : kPixelFormats)
        codes.insert(format.code);
    EXPECT_EQ(codes.size(), 30u);
    EXPECT_EQ(findPixelFormat(0), nullptr);
}

} // namespace
} // namespace kestrix::test
