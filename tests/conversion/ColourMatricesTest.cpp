/// Primaries, and the matrices between them.
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/Primaries.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using Nine = std::array<long, 9>;

/// Expects a matrix to be `expected`, in millionths, when rounded. Of the entries named in `near`,
/// single precision leaves the last place open by one.
template<class MATRIX>
void expectSixPlaces(const Nine& expected, std::initializer_list<int> near = {})
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    const auto* const matrix = MATRIX::get();
    for (int i = 0; i < 9; ++i) {
        const auto difference = std::abs(std::lround(matrix[i] * 1e6) - expected[i]);
        const bool isNear = std::find(near.begin(), near.end(), i) != near.end();
        EXPECT_LE(difference, isNear ? 1 : 0) << "entry " << i << " is " << matrix[i];
    }
}

TEST(GamutMatrices, HaveTheseSixPlaces)
{
    expectSixPlaces<RGB_709_TO_XYZ>(
        {412391, 357584, 180481, 212639, 715169, 72192, 19331, 119195, 950532});
    expectSixPlaces<RGB_2020_TO_XYZ>(
        {636958, 144617, 168881, 262700, 677998, 59302, 0, 28073, 1060985});
    expectSixPlaces<RGB_601PAL_TO_XYZ>(
        {430554, 341550, 178352, 222004, 706655, 71341, 20182, 129553, 939322});
    expectSixPlaces<RGB_601NTSC_TO_XYZ>(
        {393521, 365258, 191677, 212376, 701060, 86564, 18739, 111934, 958385});
    expectSixPlaces<XYZ_TO_RGB_709>(
        {3240970, -1537383, -498611, -969244, 1875968, 41555, 55630, -203977, 1056971});
    expectSixPlaces<XYZ_TO_RGB_2020>(
        {1716651, -355671, -253366, -666684, 1616481, 15769, 17640, -42771, 942103});
    expectSixPlaces<XYZ_TO_RGB_601PAL>(
        {3063361, -1393390, -475824, -969244, 1875968, 41555, 67861, -228799, 1069090});
    expectSixPlaces<XYZ_TO_RGB_601NTSC>(
        {3506003, -1739790, -544058, -1069048, 1977779, 35171, 56307, -196976, 1049952}, {0});
    expectSixPlaces<RGB_2020_TO_709>(
        {1660491, -587641, -72850, -124551, 1132900, -8349, -18151, -100579, 1118730});
    expectSixPlaces<RGB_709_TO_2020>(
        {627404, 329283, 43313, 69097, 919540, 11362, 16391, 88013, 895595});
    expectSixPlaces<RGB_601PAL_TO_2020>(
        {655037, 302161, 42802, 72141, 916631, 11228, 17113, 97853, 885033});
    expectSixPlaces<RGB_601NTSC_TO_2020>(
        {595254, 349314, 55432, 81244, 891503, 27253, 15512, 81912, 902576});
    expectSixPlaces<RGB_2020_TO_601PAL>(
        {1585188, -515060, -70129, -124551, 1132900, -8349, -16881, -115299, 1132180}, {0, 3});
    expectSixPlaces<RGB_2020_TO_601NTSC>(
        {1776134, -687820, -88313, -161376, 1187315, -25940, -15881, -95931, 1111812}, {0});
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
