/// The stages between RGB and YUV that carry alpha, against their scalar forms.
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/YUVToRGB.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/YUV.h"

#include <algorithm>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::Matrix;
using Words = std::uint16_t;

/// Lanes of a group of 4 pixels: B G R A of each; Cb Y Cr Y of two pairs; alpha of each in 32 bits.
constexpr std::size_t kBGRALanes4 = 16;
constexpr std::size_t kUYVYLanes = 8;

/// Every alpha of `bits`, in pixels whose other lanes cycle through that depth and beyond it.
std::vector<Words> everyAlpha(unsigned bits)
{
    Random random(bits);
    std::vector<Words> in((1u << bits) * 4);
    random.fill(std::span(in), Content::Uniform, static_cast<Words>((2u << bits) - 1));
    for (std::size_t x = 0; x < in.size() / 4; ++x)
        in[4 * x + 3] = static_cast<Words>(x);
    return in;
}

template<class STAGE>
void expectToYUVA(const reference::RGBToYUV& c, const std::function<int(int)>& alphaOf)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    const auto limited = [](int value) { return static_cast<Words>(std::clamp(value, 0, 1023)); };
    expectRows<STAGE, Words, Words>(
        [&](const Words* in, Words* out, std::size_t pixels) {
            reference::toYUV(c, in, pixels, [&](std::size_t x, int y, int chroma) {
                Words* const group = out + x / 4 * 16;
                group[x % 4 * 2] = limited(chroma);
                group[x % 4 * 2 + 1] = limited(y);
                group[kUYVYLanes + x % 4 * 2] = limited(alphaOf(in[4 * x + 3]));
                group[kUYVYLanes + x % 4 * 2 + 1] = 0;
            });
        },
        everyAlpha(static_cast<unsigned>(c.rgbBits)), 0);
}

TEST(RGBToYUVA, EqualsItsScalarForm)
{
    using namespace reference;
    EXPECT_EQ(alphaToStudio(0), 64);
    EXPECT_EQ(alphaToStudio(128), 502);
    EXPECT_EQ(alphaToStudio(255), 937);
    expectToYUVA<BGRAv8_TO_YUVA<ComputerRange601, P0>>({kFull8_601ToYUV, 8, 10, false, false},
                                                       alphaToStudio);
    expectToYUVA<BGRAv8_TO_YUVA<ComputerRange709, P0>>({kFull8_709ToYUV, 8, 10, false, false},
                                                       alphaToStudio);
    expectToYUVA<BGRAv8_TO_YUVA<ComputerRange2020, P0>>({kFull8_2020ToYUV, 8, 10, false, false},
                                                        alphaToStudio);
    const auto sameAlpha = [](int a) { return a; };
    expectToYUVA<BGRAv8_TO_YUVA_FullA<FullRange601<10>, 10, P1>>({kFull10_601ToYUV, 10, 10},
                                                                 sameAlpha);
    expectToYUVA<BGRAv8_TO_YUVA_FullA<FullRange709<10>, 10, P1>>({kFull10_709ToYUV, 10, 10},
                                                                 sameAlpha);
    expectToYUVA<BGRAv8_TO_YUVA_FullA<FullRange2020<10>, 10, P1>>({kFull10_2020ToYUV, 10, 10},
                                                                  sameAlpha);
}

template<class STAGE>
void expectFromYUVA(const reference::YUVToRGB& c, const std::function<int(int)>& alphaOf)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    constexpr std::size_t kInLanes = 24;
    Random random(1);
    std::vector<Words> in(1024 / 4 * kInLanes);
    random.fill(std::span(in), Content::Uniform, Words{1023});
    for (std::size_t x = 0; x < 1024; ++x) {
        Words* const alpha = in.data() + x / 4 * kInLanes + 2 * kUYVYLanes + x % 4 * 2;
        alpha[0] = static_cast<Words>(x);
        alpha[1] = 0;
    }
    expectSteps<Words, Words>(
        runBlocks<STAGE>,
        [&](const Words* group, Words* out) {
            for (std::size_t x = 0; x < 4; ++x) {
                const Words* const chroma = group + 4 * x;
                const auto [r, g, b] =
                    reference::toRGB(c, {chroma[1 + x % 2 * 2], chroma[0], chroma[2]}, x % 2 != 0);
                const int a = alphaOf(group[2 * kUYVYLanes + 2 * x]);
                const int pixel[] = {b, g, r, a};
                std::copy(std::begin(pixel), std::end(pixel), out + 4 * x);
            }
        },
        in, kInLanes, kBGRALanes4, 1);
}

TEST(YUVAToRGB, EqualsItsScalarForm)
{
    using namespace reference;
    EXPECT_EQ(alphaFromStudio(937), 254);
    EXPECT_EQ(alphaFromStudio(940), 255);
    EXPECT_EQ(alphaFromStudio(512), 130);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange601, true, P1, C0>>(
        {kYUVToFull601, 10, 8, false, true}, alphaFromFull);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange709, true, P1, C0>>(
        {kYUVToFull709, 10, 8, false, true}, alphaFromFull);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange2020, true, P1, C0>>(
        {kYUVToFull2020, 10, 8, false, true}, alphaFromFull);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange601, false, P0, C0>>(
        {kYUVToFull601, 10, 8, false, false}, alphaFromStudio);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange709, false, P0, C0>>(
        {kYUVToFull709, 10, 8, false, false}, alphaFromStudio);
    expectFromYUVA<YUVA_TO_BGRAv8<ComputerRange2020, false, P0, C0>>(
        {kYUVToFull2020, 10, 8, false, false}, alphaFromStudio);
}

} // namespace
} // namespace kestrix::test
