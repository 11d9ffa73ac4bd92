/// The test pattern: where its bands lie, and what moves.
#include "host/TestPattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace kestrix::host;
using Row = std::vector<Color>;

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 160;
constexpr unsigned kRate = 25;
constexpr Color kNothing{-1, -1, -1, -1};

Row rowOf(std::uint64_t frame, unsigned y)
{
    Row row(kWidth, kNothing);
    TestPattern(kWidth, kHeight, kRate).fillRow(frame, y, row);
    return row;
}

TEST(TestPattern, HasBarsRampsAndAZonePlate)
{
    const Row bars75 = rowOf(0, 0);
    const Row bars100 = rowOf(0, 60);
    const Row grey = rowOf(0, 80);
    // White, yellow, cyan, green, magenta, red, blue, black, 40 pixels each.
    const double bars[8][3] = {{1, 1, 1}, {1, 1, 0}, {0, 1, 1}, {0, 1, 0},
                               {1, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}};
    for (unsigned x = 0; x < kWidth; ++x) {
        const auto [r, g, b] = bars[x / 40];
        const double level = x < 40 ? 1 : 0.75;
        EXPECT_EQ(bars75[x], (Color{level * r, level * g, level * b})) << x;
        EXPECT_EQ(bars100[x], (Color{r, g, b})) << x;
        EXPECT_NEAR(grey[x].r, x / 319.0, 1e-12) << x;
    }
    EXPECT_EQ(rowOf(0, 99).back(), (Color{0, 0, 1}));

    // From rest to half the sampling rate: at the edge a cycle takes two pixels.
    const Row zone = rowOf(0, 120);
    EXPECT_EQ(zone[160].g, 1);
    EXPECT_NEAR(zone[161].g, 1, 0.01);
    EXPECT_GT(std::abs(zone[0].g - zone[1].g), 0.8);
    EXPECT_GT(std::abs(zone[2].g - zone[1].g), 0.8);
    EXPECT_EQ(zone[10], zone[kWidth - 10]);
}

TEST(TestPattern, MovesInTheRowsThatItNamesAlone)
{
    const unsigned first = TestPattern(kWidth, kHeight, kRate).firstMovingRow();
    EXPECT_EQ(first, 140U);
    for (unsigned y = 0; y < first; ++y)
        ASSERT_EQ(rowOf(0, y), rowOf(777, y)) << y;

    const auto clockAt = [](std::uint64_t frame) {
        std::vector<Row> rows;
        for (unsigned y = 140; y < 157; ++y)
            rows.push_back(rowOf(frame, y));
        return rows;
    };
    for (const std::uint64_t later : {1U, kRate, 60 * kRate}) // a frame, a second, a minute on
        EXPECT_NE(clockAt(0), clockAt(later)) << later;
    EXPECT_EQ(clockAt(1), clockAt(24ULL * 3600 * kRate + 1)) << "a day on";

    // The marker crosses in two seconds.
    const auto markerAt = [](std::uint64_t frame) {
        const Row row = rowOf(frame, kHeight - 1);
        return std::ranges::find(row, 1, &Color::g) - row.begin();
    };
    EXPECT_EQ(markerAt(0), 0);
    EXPECT_EQ(markerAt(kRate), kWidth / 2);
    EXPECT_EQ(markerAt(2 * kRate - 1), kWidth * 49 / 50);
    EXPECT_EQ(markerAt(2 * kRate), 0);
}

TEST(TestPattern, FillsEveryRowOfTinyPictures)
{
    for (unsigned width = 1; width < 12; ++width)
        for (unsigned height = 1; height < 20; ++height)
            for (unsigned y = 0; y < height; ++y) {
                Row row(width, kNothing);
                TestPattern(width, height, 1).fillRow(3, y, row);
                for (const Color& color : row)
                    ASSERT_GE(color.r, 0) << width << "x" << height << " row " << y;
            }
}

} // namespace
