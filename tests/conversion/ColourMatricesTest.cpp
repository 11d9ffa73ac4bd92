/// Compares primaries and the matrices between them with published values.
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/Primaries.h"

#include <array>
#include <cmath>
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

TEST(Primaries, HaveCoordinatesThatAddUpToOne)
{
    for (const Chromaticity& c :
         {kWhiteD65, kPriR601PAL, kPriG601PAL, kPriB601PAL, kPriR601NTSC, kPriG601NTSC,
          kPriB601NTSC, kPriR709, kPriG709, kPriB709, kPriR2020, kPriG2020, kPriB2020, kPriRP3D65,
          kPriGP3D65, kPriBP3D65})
        EXPECT_NEAR(double{c.x} + c.y + c.z, 1, 1e-7) << c.x << ", " << c.y;
}

} // namespace
} // namespace kestrix::test
