/// The test pattern: where its bands lie, and what moves.
#include "host/TestPattern.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace kestrix::host;
using Row = std::vector<Color>;

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 160;
constexpr unsigned kRate = 25;

Row rowOf(std::uint64_t frame, unsigned y)
{
    Row row(kWidth, Color{-1, -1, -1, -1});
    TestPattern(kWidth, kHeight, kRate).fillRow(frame, y, row);
    return row;
}

/// The first white pixel of the marker.
unsigned markerAt(std::uint64_t frame)
{
    const Row row = rowOf(frame, kHeight - 1);
    unsigned x = 0;
    while (x < kWidth && row[x].g != 1)
        ++x;
    return x;
}

/// The clock's picture, all its rows.
std::vector<Row> clockAt(std::uint64_t frame)
{
    std::vector<Row> rows;
    for (unsigned y = 140; y < 157; ++y)
        rows.push_back(rowOf(frame, y));
    return rows;
}

TEST(TestPattern, HasBarsOf75And100Percent)
{
    const Row bars75 = rowOf(0, 0);
    const Row bars100 = rowOf(0, 60);
    // White, yellow, cyan, green, magenta, red, blue, black, 40 pixels each.
    const double expected[8][3] = {{1, 1, 1}, {1, 1, 0}, {0, 1, 1}, {0, 1, 0},
                                   {1, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}};
    for (unsigned x = 0; x < kWidth; ++x) {
        const double* bar = expected[x / 40];
        const double level = x < 40 ? 1 : 0.75;
        EXPECT_EQ(bars75[x], (Color{level * bar[0], level * bar[1], level * bar[2]})) << x;
        EXPECT_EQ(bars100[x], (Color{bar[0], bar[1], bar[2]})) << x;
    }
}

TEST(TestPattern, HasRampsFromBlackToFull)
{
    const Row grey = rowOf(0, 80);
    const Row blue = rowOf(0, 99);
    EXPECT_EQ(grey.front(), (Color{0, 0, 0}));
    EXPECT_EQ(grey.back(), (Color{1, 1, 1}));
    EXPECT_EQ(blue.back(), (Color{0, 0, 1}));
    for (unsigned x = 1; x < kWidth; ++x)
        EXPECT_NEAR(grey[x].r - grey[x - 1].r, 1.0 / 319, 1e-12) << x;
}

TEST(TestPattern, ZonePlateGoesFromRestToHalfTheSamplingRate)
{
    const Row row = rowOf(0, 120);
    EXPECT_EQ(row[160].g, 1);
    EXPECT_NEAR(row[161].g, 1, 0.01);
    // At the edge a cycle takes two pixels.
    EXPECT_GT(std::abs(row[0].g - row[1].g), 0.8);
    EXPECT_GT(std::abs(row[2].g - row[1].g), 0.8);
    EXPECT_EQ(row[10], row[kWidth - 10]);
}

TEST(TestPattern, OnlyTheRowsThatItNamesMove)
{
    const unsigned first = TestPattern(kWidth, kHeight, kRate).firstMovingRow();
    EXPECT_EQ(first, 140U);
    for (unsigned y = 0; y < first; ++y)
        ASSERT_EQ(rowOf(0, y), rowOf(777, y)) << y;
}

TEST(TestPattern, ClockTellsFramesApartAndGoesRound)
{
    EXPECT_NE(clockAt(0), clockAt(1));
    EXPECT_NE(clockAt(0), clockAt(kRate)) << "a second on";
    EXPECT_NE(clockAt(0), clockAt(60 * kRate)) << "a minute on";
    EXPECT_EQ(clockAt(1), clockAt(24ULL * 3600 * kRate + 1)) << "a day on";
}

TEST(TestPattern, MarkerCrossesInTwoSeconds)
{
    EXPECT_EQ(markerAt(0), 0U);
    EXPECT_EQ(markerAt(kRate), kWidth / 2);
    EXPECT_EQ(markerAt(2 * kRate - 1), kWidth * 49 / 50);
    EXPECT_EQ(markerAt(2 * kRate), 0U);
}

TEST(TestPattern, FillsEveryRowOfTinyPictures)
{
    for (unsigned width = 1; width < 12; ++width)
        for (unsigned height = 1; height < 20; ++height)
            for (unsigned y = 0; y < height; ++y) {
                Row row(width, Color{-1, -1, -1, -1});
                TestPattern(width, height, 1).fillRow(3, y, row);
                for (const Color& color : row)
                    ASSERT_GE(color.r, 0) << width << "x" << height << " row " << y;
            }
}

} // namespace
