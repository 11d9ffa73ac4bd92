/// Changes of primaries at 8 bits for every colour: tables of products against the listed stages.
#include "conversion/chains/Primaries.h"
#include "conversion/fast/Rules.h"
#include "conversion/pipeline/Transform.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

template<class PIPELINE>
std::vector<std::uint32_t> converted(const std::vector<std::uint32_t>& pixels)
{
    std::vector<std::uint32_t> result(pixels.size());
    Transform<PIPELINE, kWholeBlocks, kPrefetchBlocks>::apply(
        pixels.data(), 0, result.data(), 0, static_cast<unsigned>(pixels.size()), 1, nullptr);
    return result;
}

template<class PIPELINE>
void expectSameForEveryColour()
{
    std::vector<std::uint32_t> pixels(1 << 20);
    for (std::uint32_t first = 0; first < 1 << 24; first += 1 << 20) {
        // Alpha is the sum of the bytes above it, so that it takes all values.
        std::iota(pixels.begin(), pixels.end(), first);
        for (std::uint32_t& pixel : pixels)
            pixel |= (pixel + (pixel >> 8) + (pixel >> 16)) << 24;
        ASSERT_EQ(converted<PIPELINE>(pixels), converted<AsListed<PIPELINE>>(pixels)) << first;
    }
}

template<class MATRIX>
class PrimariesOfBytes : public testing::Test {
};

using Matrices =
    testing::Types<RGB_2020_TO_709, RGB_2020_TO_601PAL, RGB_2020_TO_601NTSC, RGB_709_TO_2020,
                   RGB_601PAL_TO_2020, RGB_601NTSC_TO_2020, RGB_601PAL_TO_709, RGB_601NTSC_TO_709,
                   RGB_709_TO_601PAL, RGB_709_TO_601NTSC>;
TYPED_TEST_SUITE(PrimariesOfBytes, Matrices);

TYPED_TEST(PrimariesOfBytes, AreThoseOfTheListedStagesForEveryColour)
{
    expectSameForEveryColour<
        BIND3<UNPACK_BGRA_TO_BGRAv8, PrimariesInBGRAv8<TypeParam>, PACK_BGRAv8_TO_RGBA>>();
    expectSameForEveryColour<
        BIND3<UNPACK_BGRA_TO_RGBv4, PrimariesInRGBv4<TypeParam>, PACK_RGBv4_TO_BGRA>>();
}

TEST(PrimariesOf10Bits, TakeSamplesAboveTheLargestCodeAsThatCode)
{
    using Convert = BIND<PrimariesIn10BitBGRAv8<RGB_709_TO_2020>, BGRAv8_TO_RGBv4>;
    constexpr std::size_t kPixels = 1 << 14;
    std::vector<std::uint16_t> samples(4 * kPixels), limited(samples.size());
    std::iota(samples.begin(), samples.end(), 0);
    std::ranges::transform(samples, limited.begin(),
                           [](std::uint16_t x) { return std::min<std::uint16_t>(x, 1023); });
    const auto convert = [](const std::vector<std::uint16_t>& src) {
        std::vector<std::uint32_t> dst(3 * kPixels);
        Transform<Convert, kWholeBlocks, kPrefetchBlocks>::apply(src.data(), 0, dst.data(), 0,
                                                                 kPixels, 1, nullptr);
        return dst;
    };
    EXPECT_EQ(convert(samples), convert(limited));
}

} // namespace
} // namespace kestrix::test
