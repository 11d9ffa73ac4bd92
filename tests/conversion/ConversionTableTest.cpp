/// The table of conversions and its lookup, and the sizes of the formats in memory.
#include "conversion/KSXPixelConversion.h"
#include "conversion/PixelFormats.h"

#include <algorithm>
#include <ios>
#include <map>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

constexpr Colorspace kColorspaces[] = {Colorspace601, Colorspace709, Colorspace2020,
                                       ColorspaceUnspecified};

using Question = std::tuple<PixelFormat, Colorspace, PixelFormat, Colorspace>;

/// Each question that has an answer, and the row that gives the answer. Every row is expanded to
/// the colourspaces that it serves, and an earlier row is never replaced.
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

TEST(ConversionTable, HoldsWhatEveryRowMustHold)
{
    EXPECT_EQ(std::size(conversions), 364u);
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
        // A frame that needs no conversion gets none. The exception converts 10-bit RGBA to itself.
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
    const struct {
        PixelFormat format;
        std::size_t width, bytes;
    } cases[] = {
        {PixelFormat_2vuy, 15, 32}, {PixelFormat_YUY2, 1, 4},  {PixelFormat_v210, 1280, 3424},
        {PixelFormat_v216, 5, 20},  {PixelFormat_Ay10, 5, 32}, {PixelFormat_RGB3, 5, 15},
        {PixelFormat_ARGB, 5, 20},  {PixelFormat_R10A, 5, 20}, {PixelFormat_A04L, 5, 40},
        {PixelFormat_R12l, 9, 72},  {PixelFormat_b64a, 5, 40}};
    for (const auto& [format, width, bytes] : cases)
        EXPECT_EQ(rowBytes(*findPixelFormat(format), width), bytes) << std::hex << format;
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
