/// The constants and tables of colour: what conversions do not test, and published values.
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/Primaries.h"
#include "conversion/colour/TransferCharacteristicPQ.h"
#include "conversion/colour/TransferCharacteristicRec709OETF.h"
#include "conversion/fast/Rec709OETF10.h"
#include "tests/reference/Gamut.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numeric>
#include <variant>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

// All other matrices are made of these, and the tests of conversions check every matrix to the last
// bit.
TEST(GamutMatrices, HaveTheseSixPlaces)
{
    struct {
        const std::variant<const float*, const double*> matrix;
        const std::array<long, 9> millionths;
    } const cases[] = {
        {RGB_709_TO_XYZ::get(),
         {412391, 357584, 180481, 212639, 715169, 72192, 19331, 119195, 950532}},
        {RGB_2020_TO_XYZ::get(),
         {636958, 144617, 168881, 262700, 677998, 59302, 0, 28073, 1060985}},
        {RGB_601PAL_TO_XYZ::get(),
         {430554, 341550, 178352, 222004, 706655, 71341, 20182, 129553, 939322}},
        {RGB_601NTSC_TO_XYZ::get(),
         {393521, 365258, 191677, 212376, 701060, 86564, 18739, 111934, 958385}},
        {RGB_2020_TO_709::get(),
         {1660491, -587641, -72850, -124551, 1132900, -8349, -18151, -100579, 1118730}},
        {RGB_709_TO_2020::get(),
         {627404, 329283, 43313, 69097, 919540, 11362, 16391, 88013, 895595}},
    };
    for (const auto& c : cases)
        for (std::size_t i = 0; i < 9; ++i) {
            const double entry = std::visit([&](const auto* m) { return double{m[i]}; }, c.matrix);
            EXPECT_EQ(std::lround(entry * 1e6), c.millionths[i])
                << "entry " << i << " of matrix " << &c - cases;
        }
}

// Products are computed from doubles whose columns, except the first, have been rounded to floats.
TEST(GamutMatrices, OfRec2020HasOneColumnInDoublePrecision)
{
    const double* const matrix = RGB_2020_TO_XYZ::get();
    for (int i = 0; i < 9; ++i) {
        const bool isFloat = static_cast<double>(static_cast<float>(matrix[i])) == matrix[i];
        EXPECT_EQ(isFloat, i % 3 != 0 || matrix[i] == 0) << i;
    }
}

TEST(Primaries, HaveCoordinatesThatAddUpToOne)
{
    for (const Chromaticity& c :
         {kWhiteD65, kPriR601PAL, kPriG601PAL, kPriB601PAL, kPriR601NTSC, kPriG601NTSC,
          kPriB601NTSC, kPriR709, kPriG709, kPriB709, kPriR2020, kPriG2020, kPriB2020, kPriRP3D65,
          kPriGP3D65, kPriBP3D65})
        EXPECT_NEAR(double{c.x} + c.y + c.z, 1, 1e-7) << c.x << ", " << c.y;
}

/// Compares the code of every float in one of four parts of those from 0 to `last`.
template<class GOT, class EXPECTED>
void expectCodesOfEveryFloat(float last, int part, const GOT& got, const EXPECTED& expected)
{
    const auto end = std::bit_cast<std::int32_t>(last) + 1;
    constexpr std::int32_t kLanes = 4 * kUnits;
    for (std::int32_t bits = end / 4 * part; bits < (part == 3 ? end : end / 4 * (part + 1));
         bits += kLanes) {
        std::array<std::int32_t, kLanes> lanes;
        std::iota(lanes.begin(), lanes.end(), bits);
        const auto codes =
            std::bit_cast<std::array<int, kLanes>>(got(std::bit_cast<FloatVector>(lanes)));
        for (std::int32_t i = 0; i < kLanes; ++i) {
            const auto light = std::bit_cast<float>(bits + i);
            ASSERT_EQ(codes[static_cast<std::size_t>(i)], expected(light)) << light;
        }
    }
}

class Rec709OETFForward : public testing::TestWithParam<int> {};

TEST_P(Rec709OETFForward, IsThatOfTheFormulaForEveryFloatAt8Bits)
{
    // Other floats cannot go wrong in the comparison with a table's entry.
    expectCodesOfEveryFloat(
        1, GetParam(),
        [](FloatVector light) { return Rec709OETF<8, V1>::forward<4, 1>({{light}}).v[0]; },
        [](float light) { return reference::roundedCode(reference::encoded8(light)); });
}

/// The tables of 10 bits have no place for these floats, which come out one code too high.
constexpr float kTooHigh[] = {0x1.fc9314p-1f, 0x1.fe884ep-1f, 0x1.ff756cp-1f};

TEST_P(Rec709OETFForward, IsThatOfTheFormulaForEveryFloatAt10Bits)
{
    expectCodesOfEveryFloat(1.00005f, GetParam(), fast::Rec709OETF10::forward<4>, [](float light) {
        return reference::roundedCode(reference::encoded10(light)) +
               static_cast<int>(std::ranges::count(kTooHigh, light));
    });
}

INSTANTIATE_TEST_SUITE_P(Quarters, Rec709OETFForward, testing::Range(0, 4));

TEST(Rec709OETF10, IsWrongForNoLightThatColoursHave)
{
    std::array<float, 1024> light;
    for (std::size_t code = 0; code < light.size(); ++code) {
        light[code] = static_cast<float>(reference::decoded10(static_cast<double>(code)));
        EXPECT_EQ(fast::kRec709OETFToLinear10[code], light[code]) << code;
    }
    int sums = 0;
    for (int row = 0; row < 3; ++row) {
        const float* m = RGB_709_TO_2020::get() + 3 * row;
        // From the brightest colour down, as long as the light can be that of `kTooHigh`.
        const auto brightEnough = [&](std::size_t r, std::size_t g, std::size_t b) {
            return (light[g] * m[1] + light[r] * m[0]) + light[b] * m[2] >= kTooHigh[0];
        };
        for (std::size_t r = 1023; brightEnough(r, 1023, 1023); --r)
            for (std::size_t g = 1023; brightEnough(r, g, 1023); --g)
                for (std::size_t b = 1023; brightEnough(r, g, b); --b, ++sums) {
                    const float sum = (light[g] * m[1] + light[r] * m[0]) + light[b] * m[2];
                    EXPECT_EQ(std::ranges::count(kTooHigh, sum), 0) << r << ' ' << g << ' ' << b;
                }
    }
    EXPECT_GT(sums, 1000);
}

TEST(PQ, TablesHoldTheCurve)
{
    std::array<double, 4096> luminance;
    for (std::size_t i = 0; i < luminance.size(); ++i) {
        luminance[i] = std::max(reference::luminanceOfPQ(static_cast<double>(i) / 4095), 0.0001);
        EXPECT_NEAR(kPQOETFToLinear12Bit[i], luminance[i], 1e-12 * luminance[i]) << i;
    }
    EXPECT_NEAR(kPQOETFToLinear12Bit[7], 0.00010434054, 5e-12);
    EXPECT_NEAR(kPQOETFToLinear12Bit[1000], 4.747455141132, 5e-13);
    EXPECT_NEAR(kPQOETFToLinear12Bit[2000], 82.08474372284, 5e-12);
    EXPECT_EQ(kPQOETFToLinear12Bit[4095], 10000);
    EXPECT_NEAR(kPQOETFFromLinear12BitLoLUTMax, luminance[1015], 1e-12);
    EXPECT_NEAR(kPQOETFFromLinear12BitHiLUTMin, luminance[1016], 1e-12);

    EXPECT_EQ(kPQOETFFromLinear12Bit[0], 7 / 4095.0);
    EXPECT_EQ(kPQOETFFromLinear12Bit[kPQOETFFromLinear12BitIdxMax], 1);
    for (int i = 1; i <= kPQOETFFromLinear12BitIdxMax; ++i) {
        const bool upper = i > kHalvedLUTIdxMax;
        const double first = upper ? kPQOETFFromLinear12BitHiLUTMin : 0.0001;
        const double last = upper ? 10000 : kPQOETFFromLinear12BitLoLUTMax;
        const double l = first + (last - first) * (i % (kHalvedLUTIdxMax + 1)) / kHalvedLUTIdxMax;
        const auto above = std::ranges::upper_bound(luminance, l * (1 - 1e-12));
        const auto next = std::clamp<std::ptrdiff_t>(above - luminance.begin(), 7, 4095);
        const double below = luminance[static_cast<std::size_t>(next - 1)];
        const double share = (l - below) / (luminance[static_cast<std::size_t>(next)] - below);
        const double signal = (static_cast<double>(next) - 1 + share) / 4095;
        EXPECT_NEAR(kPQOETFFromLinear12Bit[i], signal, 1e-12) << i;
    }
}

} // namespace
} // namespace kestrix::test
