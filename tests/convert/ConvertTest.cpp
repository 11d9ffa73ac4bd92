/// Converts pictures by the C library: every row of the table, at every width, in any place, as a
/// whole, in slices and by threads, and compares them with the scalar reference.
#include "tests/common/CaseName.h"
#include "tests/common/FaultCatcher.h"
#include "tests/convert/CheckedPicture.h"

#include <algorithm>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

enum class By { Whole, Slices, OwnThreads, TheirThreads };

void convert(const kestrix_picture& src, const kestrix_picture& dst, By by, Random& random)
{
    const unsigned height = src.height;
    if (by == By::Whole) {
        EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OK);
        return;
    }
    if (by == By::TheirThreads) {
        EXPECT_EQ(kestrix_convert_by_threads(&src, &dst, 3, 0), KESTRIX_OK);
        return;
    }
    std::vector<std::uint32_t> cuts = {0, height};
    for (int i = 0; i < 3; ++i)
        cuts.push_back(static_cast<std::uint32_t>(random.upTo(height)));
    std::ranges::sort(cuts);
    std::vector<std::thread> threads;
    for (std::size_t i = cuts.size() - 1; i-- != 0;) {
        const auto slice = [&src, &dst, first = cuts[i], end = cuts[i + 1]] {
            EXPECT_EQ(kestrix_convert_rows(&src, &dst, first, end, 0), KESTRIX_OK);
        };
        if (by == By::OwnThreads)
            threads.emplace_back(slice);
        else
            slice();
    }
    for (std::thread& thread : threads)
        thread.join();
}

class Convert : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& conversion = GetParam();
    const RowModel model{conversion};
    FaultCatcher catcher;

    CheckedPicture picture(bool ofSrc, unsigned width, unsigned height, Placing placing) const
    {
        const auto& [srcFormat, srcColorspace, dstFormat, dstColorspace, function] =
            conversion.entry;
        return ofSrc ? CheckedPicture(conversion.src(), srcColorspace, width, height, placing)
                     : CheckedPicture(conversion.dst(), dstColorspace, width, height, placing);
    }

    void fill(CheckedPicture& src, Random& random) const
    {
        random.fill(src.buffer(), kContents[random.upTo(std::size(kContents) - 1)]);
        for (unsigned y = 0; y < src.description().height; ++y)
            conversion.limit(src.row(y));
    }

    void expectConverts(CheckedPicture& src, CheckedPicture& dst, By by, Random& random)
    {
        const unsigned width = src.description().width;
        const unsigned height = src.description().height;
        SCOPED_TRACE(testing::Message()
                     << width << "x" << height << ", way " << static_cast<int>(by));
        std::vector<std::uint8_t> expected(dst.buffer().begin(), dst.buffer().end());
        std::vector<std::vector<std::uint8_t>> rows;
        for (unsigned y = 0; y < height; ++y)
            rows.push_back(model.convert(src.row(y), width, height));
        // In memory order, so that bytes between rows count too.
        for (unsigned y = 0; y < height; ++y)
            std::ranges::copy(rows[y],
                              expected.begin() + (dst.row(y).data() - dst.buffer().data()));
        const std::vector<std::uint8_t> before(src.buffer().begin(), src.buffer().end());

        const bool faulted =
            catcher.faults([&] { convert(src.description(), dst.description(), by, random); });
        ASSERT_FALSE(faulted) << "touched " << catcher.address() << "; source "
                              << src.description().bytes << ", destination "
                              << dst.description().bytes;
        const auto at = std::ranges::mismatch(expected, dst.buffer());
        ASSERT_EQ(at.in1, expected.end())
            << "byte " << at.in1 - expected.begin() << ": expected " << int{*at.in1} << ", got "
            << int{*at.in2} << "; rows are " << dst.description().row_bytes << " bytes apart";
        if (&src != &dst) {
            EXPECT_TRUE(std::ranges::equal(before, src.buffer())) << "the source was written";
        }
    }

    void expectConverts(unsigned width, unsigned height, By by, Random& random)
    {
        CheckedPicture src = picture(true, width, height, anyPlacing(random));
        CheckedPicture dst = picture(false, width, height, anyPlacing(random));
        fill(src, random);
        random.fill(dst.buffer(), Content::Uniform);
        expectConverts(src, dst, by, random);
    }
};

TEST_P(Convert, GivesTheRowsOfTheModelAtEveryWidth)
{
    Random random(1);
    for (unsigned width = 1; width < 200 && !HasFatalFailure(); ++width)
        expectConverts(width, 1 + static_cast<unsigned>(random.upTo(4)),
                       width % 2 == 0 ? By::Whole : By::Slices, random);
    for (const unsigned width : {720u, 1279u, 1280u, 1281u, 1366u, 1920u, 2048u, 4095u, 4096u}) {
        if (HasFatalFailure())
            return;
        expectConverts(width, 3, By::Whole, random);
    }
    // More rows of narrow pictures than there is scratch memory for.
    for (const unsigned width : {1u, 7u, 37u})
        if (!HasFatalFailure())
            expectConverts(width, 700, By::Slices, random);
}

TEST_P(Convert, SharesAPictureAmongThreads)
{
    Random random(2);
    expectConverts(1366, 60, By::TheirThreads, random);
    expectConverts(1280, 60, By::TheirThreads, random);
    expectConverts(1366, 9, By::OwnThreads, random);
}

TEST_P(Convert, TellsTheLineStandardByTheHeightOfTheWholePicture)
{
    Random random(3);
    for (const unsigned height : {575u, 576u, 577u, 1152u})
        for (const By by : {By::Whole, By::Slices, By::TheirThreads})
            for (const unsigned width : {24u, 37u})
                if (conversion.changes601() && !HasFatalFailure())
                    expectConverts(width, height, by, random);
    if (!conversion.changes601())
        return;
    // As many rows as 625 lines have, of a higher picture.
    CheckedPicture src = picture(true, 24, 700, {});
    CheckedPicture dst = picture(false, 24, 700, {});
    fill(src, random);
    ASSERT_EQ(kestrix_convert_rows(&src.description(), &dst.description(), 100, 676, 0),
              KESTRIX_OK);
    for (const unsigned y : {100u, 675u})
        EXPECT_TRUE(std::ranges::equal(model.convert(src.row(y), 24, 700), dst.row(y)));
    EXPECT_TRUE(std::ranges::all_of(dst.row(99), [](auto byte) { return byte == 0; }));
    EXPECT_TRUE(std::ranges::all_of(dst.row(676), [](auto byte) { return byte == 0; }));
}

TEST_P(Convert, ConvertsInPlaceIfGroupsKeepTheirSize)
{
    if (conversion.src().groupBytes != conversion.dst().groupBytes ||
        conversion.src().groupPixels != conversion.dst().groupPixels)
        return;
    Random random(4);
    for (unsigned width = 1; width < 60 && !HasFatalFailure(); ++width) {
        CheckedPicture both = picture(true, width, 5, anyPlacing(random));
        fill(both, random);
        kestrix_picture dst = both.description();
        dst.format = conversion.entry.dstFormat;
        dst.colorspace = conversion.entry.dstColorspace;
        std::vector<std::vector<std::uint8_t>> expected;
        for (unsigned y = 0; y < 5; ++y)
            expected.push_back(model.convert(both.row(y), width, 5));
        convert(both.description(), dst, By::Slices, random);
        for (unsigned y = 0; y < 5; ++y)
            ASSERT_TRUE(std::ranges::equal(expected[y], both.row(y))) << width << ", row " << y;
    }
}

std::vector<Conversion> rowsOfTheTable()
{
    std::vector<Conversion> rows = allConversions();
    rows.resize(kConversionCount);
    return rows;
}

INSTANTIATE_TEST_SUITE_P(All, Convert, testing::ValuesIn(rowsOfTheTable()), caseName);

} // namespace
} // namespace kestrix::test
