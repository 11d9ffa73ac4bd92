/// Whole conversions against the scalar reference: every row of the table that has a function, and
/// the entries that no row leads to.
#include "tests/common/AllConversions.h"
#include "tests/common/CaseName.h"
#include "tests/common/Difference.h"
#include "tests/common/GuardedPicture.h"
#include "tests/common/Random.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

class ConversionEntries : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& conversion() const { return GetParam(); }

    /// Widths with every tail, up to two of the longest block.
    std::vector<unsigned> widths() const
    {
        const unsigned least = std::max(1u, reference.leastWidth);
        std::vector<unsigned> all(std::max(97u, 2 * least + 9) - least);
        std::iota(all.begin(), all.end(), least);
        return all;
    }

    const reference::RowConversion reference = reference::rowConversion(GetParam().entry);

    void SetUp() override { ASSERT_TRUE(reference.convert) << "no scalar form to compare with"; }

    void fill(GuardedPicture& picture, Content content, std::uint64_t seed) const
    {
        Random random(seed);
        for (unsigned y = 0; y < picture.height(); ++y) {
            random.fill(picture.row(y), content);
            conversion().limit(picture.row(y));
        }
    }

    /// Bytes that are read behind the row that is last in memory.
    std::size_t slack(unsigned width) const
    {
        const std::size_t row = rowBytes(conversion().src(), width);
        return std::max(row, reference.bytesRead(width)) - row;
    }

    /// The rows that `src` should become.
    std::vector<reference::WrittenRow> expectedRows(GuardedPicture& src, unsigned width) const
    {
        const unsigned height = conversion().heightForPrimaries(src.height());
        std::vector<reference::WrittenRow> rows;
        for (unsigned y = 0; y < src.height(); ++y)
            rows.push_back(reference.convert(src.row(y).data(), width, height));
        return rows;
    }

    void convert(GuardedPicture& src, GuardedPicture& dst, unsigned width) const
    {
        conversion().entry.function(width, src.height(), dst.top(), dst.rowStep(), src.top(),
                                    src.rowStep());
    }

    void expectRows(std::vector<reference::WrittenRow> expected, GuardedPicture& dst,
                    std::uint64_t seed) const
    {
        for (unsigned y = 0; y < dst.height(); ++y) {
            auto& [layout, bytes, undefined] = expected[y];
            for (std::size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = static_cast<std::uint8_t>((bytes[i] & ~undefined[i]) |
                                                     (dst.row(y)[i] & undefined[i]));
            ASSERT_TRUE(
                sameLanes<std::uint8_t>(bytes, dst.row(y), conversion().dst().groupBytes, y, seed))
                << "a pixel of the report is a group of " << conversion().dst().groupPixels;
        }
    }

    /// Fills a picture, converts it to another and looks at all that lies there.
    void expectConverts(unsigned width, unsigned height, Content content, std::uint64_t seed) const
    {
        SCOPED_TRACE(testing::Message() << "width " << width << ", height " << height);
        // A copy takes as many bytes as the destination's rows lie apart, so it gets them close.
        const bool apart = !conversion().copies();
        Random random(seed);
        const auto layout = [&](std::size_t slack) -> PictureLayout {
            return {.padding = apart ? random.upTo(17) : 0,
                    .bottomUp = apart && random.upTo(1) == 1,
                    .slack = slack};
        };
        GuardedPicture src(height, rowBytes(conversion().src(), width), layout(slack(width)));
        GuardedPicture dst(height, rowBytes(conversion().dst(), width), layout(0));
        fill(src, content, seed);
        const auto expected = expectedRows(src, width);
        convert(src, dst, width);
        expectRows(expected, dst, seed);
        ASSERT_TRUE(src.guardsIntact());
        ASSERT_TRUE(dst.guardsIntact());
    }
};

TEST_P(ConversionEntries, ConvertAnyPictureAndTouchNothingElse)
{
    std::uint64_t seed = 0;
    for (const unsigned width : widths())
        for (const Content content : kContents) {
            ++seed;
            const unsigned height = (width + seed) % 2 == 0 ? 1 : 3;
            ASSERT_NO_FATAL_FAILURE(expectConverts(width, height, content, seed));
        }
    // Tails far from the start, and the rows of v210 that have loops of their own.
    for (const unsigned width : {720, 1279, 1280, 1281, 1286, 1920, 2048, 4095, 4096})
        ASSERT_NO_FATAL_FAILURE(expectConverts(width, 2, Content::Uniform, ++seed));
}

TEST_P(ConversionEntries, ConvertEveryCodeOfEachSample)
{
    // Twice beside itself, so that in 4:2:2 both kinds of chroma have them all.
    const reference::Layout& layout = reference::layoutOf(conversion().entry.srcFormat);
    const unsigned width = 2 * (layout.maximum() + 1) + 6;
    const std::size_t samples = layout.is422() ? 2 : 4;
    for (std::size_t i = 0; i < samples + (layout.alphaAt < 0 ? 0 : 1); ++i) {
        GuardedPicture src(1, rowBytes(conversion().src(), width), {.slack = slack(width)});
        GuardedPicture dst(1, conversion().copies() ? src.row(0).size()
                                                    : rowBytes(conversion().dst(), width));
        fill(src, Content::Uniform, i);
        for (unsigned x = 0; x < width; ++x) {
            if (i == samples)
                layout.write(src.top(), layout.bitOfAlpha(x), x / 2);
            else if (layout.at[i % layout.at.size()] >= 0)
                layout.write(src.top(), layout.bitOf(samples * x + i), x / 2);
        }
        const auto expected = expectedRows(src, width);
        convert(src, dst, width);
        ASSERT_NO_FATAL_FAILURE(expectRows(expected, dst, i));
    }
}

class ConversionsOfOnePixelSize : public ConversionEntries {};

TEST_P(ConversionsOfOnePixelSize, ConvertInPlace)
{
    for (const unsigned width : widths()) {
        SCOPED_TRACE(testing::Message() << "width " << width);
        GuardedPicture picture(3, rowBytes(conversion().src(), width),
                               {.padding = 6, .slack = slack(width)});
        fill(picture, Content::Uniform, width);
        const auto expected = expectedRows(picture, width);
        convert(picture, picture, width);
        ASSERT_NO_FATAL_FAILURE(expectRows(expected, picture, width));
        ASSERT_TRUE(picture.guardsIntact());
    }
}

TEST_P(ConversionEntries, LeaveEmptyPicturesAlone)
{
    for (const unsigned height : {0u, 0x80000000u, 0xffffffffu})
        for (const unsigned width : {1u, 5u, 96u})
            conversion().entry.function(width, height, nullptr, 384, nullptr, 384);
    if (!conversion().copies() && reference.leastWidth == 0)
        conversion().entry.function(0, 3, nullptr, 16, nullptr, 16);
}

class ConversionsOfRec601 : public ConversionEntries {};

TEST_P(ConversionsOfRec601, TellTheLineStandardByTheHeight)
{
    for (const unsigned height : {575u, 576u, 577u})
        ASSERT_NO_FATAL_FAILURE(expectConverts(26, height, Content::Uniform, height));
}

std::vector<Conversion> conversionsOfOnePixelSize()
{
    std::vector<Conversion> all = allConversions();
    std::erase_if(all, [](const Conversion& conversion) {
        return conversion.copies() || conversion.src().groupBytes != conversion.dst().groupBytes ||
               conversion.src().groupPixels != conversion.dst().groupPixels;
    });
    return all;
}

std::vector<Conversion> conversionsOfRec601()
{
    std::vector<Conversion> all = allConversions();
    std::erase_if(all, [](const Conversion& conversion) { return !conversion.changes601(); });
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, ConversionEntries, testing::ValuesIn(allConversions()), caseName);
INSTANTIATE_TEST_SUITE_P(All, ConversionsOfOnePixelSize,
                         testing::ValuesIn(conversionsOfOnePixelSize()), caseName);
INSTANTIATE_TEST_SUITE_P(All, ConversionsOfRec601, testing::ValuesIn(conversionsOfRec601()),
                         caseName);

TEST(CopyWithoutConversion, CopiesAsManyBytesAsTheDestinationsRowsLieApart)
{
    const std::vector<std::uint8_t> src = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto copied = [&](unsigned dstRowBytes, unsigned srcRowBytes, std::size_t first) {
        std::vector<std::uint8_t> dst(9, 0);
        CopyWithoutConversion(1000, 2, dst.data(), dstRowBytes,
                              const_cast<std::uint8_t*>(src.data() + first), srcRowBytes);
        return dst;
    };
    EXPECT_EQ(copied(2, 5, 0), (std::vector<std::uint8_t>{1, 2, 6, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(copied(4, 3, 0), (std::vector<std::uint8_t>{1, 2, 3, 4, 4, 5, 6, 7, 0}))
        << "a row reaches into the next one of the source";
    EXPECT_EQ(copied(2, 0u - 4u, 4), (std::vector<std::uint8_t>{5, 6, 1, 2, 0, 0, 0, 0, 0}))
        << "a source from the bottom up";
}

} // namespace
} // namespace kestrix::test
