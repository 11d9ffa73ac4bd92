/// Transfer curves, the stages that change primaries, and those of the float layouts.
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/TransferCharacteristicPQ.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB8.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/Gamut.h"
#include "tests/support/GuardedBytes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>
#include <type_traits>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::changeGamut;
using reference::GamutStep;
using reference::gamutStep;

// --- Curves --------------------------------------------------------------------------------------

TEST(Rec709OETF, ScalarFormOnValuesWorkedOutByHand)
{
    EXPECT_NEAR(reference::toLinear8(1), 0.00087146, 5e-9);
    EXPECT_NEAR(reference::fromLinear8(1), 0.8971853, 1e-6);
    EXPECT_NEAR(reference::fromLinear8(23), 20.635262, 8e-6);

    const float entries[] = {reference::fromLinear8(2), reference::fromLinear8(3),
                             reference::fromLinear8(4)};
    EXPECT_EQ(reference::betweenEntries8(2.4f), entries[0]) << "no slope below the middle";
    EXPECT_EQ(reference::betweenEntries8(2.5f), entries[0]) << "the tie goes to the even entry";
    EXPECT_NEAR(reference::betweenEntries8(2.6f), 0.4 * entries[0] + 0.6 * entries[1], 1e-6);
    EXPECT_NEAR(reference::betweenEntries8(3.5f), 0.5 * entries[1] + 0.5 * entries[2], 1e-6);
    EXPECT_EQ(reference::encoded8(1.5f), 255);
    EXPECT_EQ(reference::encoded8(-1.0f), 0);

    EXPECT_NEAR(reference::decoded10(1023), 1.0000493, 5e-8);
    EXPECT_NEAR(reference::encoded10(1), 1023.108, 5e-4);
    EXPECT_NEAR(reference::encoded10(1.05), 1294, 0.5);
    EXPECT_NEAR(reference::encoded10(0.0181), 83.3396, 5e-5);
    EXPECT_NEAR(1023 * static_cast<double>(reference::fromLinear(0.0181L)), 83.3232, 5e-5);
    for (int i = 0; i < 1024; ++i) {
        const double linear = static_cast<double>(reference::toLinear(i / 1023.0L));
        EXPECT_NEAR(reference::decoded10(i), linear, 5e-5) << i;
        EXPECT_NEAR(reference::encoded10(linear), i, 0.11) << i;
    }
}

TEST(Rec709OETF, TablesHoldTheCurve)
{
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(kRec709OETFToLinear8[i], reference::toLinear8(i)) << i;
    for (int i = 0; i < 1280; ++i)
        EXPECT_EQ(kRec709OETFFromLinear8[i], reference::fromLinear8(i)) << i;
}

/// Every code through the curve, and light from below 0 to above 1 back.
template<unsigned BITS, VectorTypeFlag V>
void expectCurve(float (*decoded)(int), double (*encoded)(float))
{
    using Curve = Rec709OETF<BITS, V>;
    for (int i = 0; i < 1 << BITS; ++i) {
        const __m128i code = _mm_set1_epi32(i);
        const Light<2> light = Curve::template inverse<4, 2>({{code, code}});
        for (const float got : std::bit_cast<std::array<float, 8>>(light))
            ASSERT_EQ(got, decoded(i)) << i;
    }
    std::vector<float> lights{-1.0f, -0.0f, 0.0181f, 1.0f, 1.05f, 1.47f, 1.5f, 2.0f};
    for (int i = -500; i < 10000; ++i)
        lights.push_back(static_cast<float>(i / (8 * 1279.0)));
    // Lanes that take the straight part of the curve stand beside lanes that do not.
    for (std::size_t i = 0; i < lights.size(); ++i) {
        const std::array<float, 4> in{lights[i], 1.0f, lights[lights.size() - 1 - i], -0.1f};
        const __m128 light = _mm_setr_ps(in[0], in[1], in[2], in[3]);
        const Codes<2> codes = Curve::template forward<4, 2>({{light, light}});
        const auto got = std::bit_cast<std::array<int, 8>>(codes);
        for (std::size_t lane = 0; lane < 8; ++lane)
            ASSERT_EQ(got[lane], reference::roundedCode(encoded(in[lane % 4]))) << in[lane % 4];
    }
}

TEST(Rec709OETF, TakesCodesToLightAndBack)
{
    const auto encoded8 = [](float light) { return double{reference::encoded8(light)}; };
    expectCurve<8, V0>(reference::decoded8, encoded8);
    expectCurve<8, V1>(reference::decoded8, encoded8);
    expectCurve<10, V1>([](int i) { return static_cast<float>(reference::decoded10(i)); },
                        [](float light) { return reference::encoded10(light); });
}

/// A quarter of all floats from 0 to 1, which are all that the comparison with a table's entry can
/// go wrong for.
class Rec709OETFForward : public testing::TestWithParam<std::int32_t> {};

TEST_P(Rec709OETFForward, IsThatOfTheFormulaForEveryFloat)
{
    constexpr auto kOne = std::bit_cast<std::int32_t>(1.0f);
    constexpr std::int32_t kQuarter = kOne / 4;
    for (std::int32_t bits = GetParam() * kQuarter; bits < (GetParam() + 1) * kQuarter; bits += 4) {
        const __m128i lanes = _mm_add_epi32(_mm_set1_epi32(bits), _mm_setr_epi32(0, 1, 2, 3));
        const Codes<1> codes = Rec709OETF<8, V1>::forward<4, 1>({{_mm_castsi128_ps(lanes)}});
        const auto got = std::bit_cast<std::array<int, 4>>(codes);
        for (std::int32_t i = 0; i < 4; ++i) {
            const auto light = std::bit_cast<float>(bits + i);
            ASSERT_EQ(got[static_cast<std::size_t>(i)],
                      reference::roundedCode(reference::encoded8(light)))
                << light;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Quarters, Rec709OETFForward, testing::Range(0, 4));

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

// --- Gamuts --------------------------------------------------------------------------------------

using Triple = std::array<int, 3>;

/// Every code of each component beside black, beside white and beside random ones, greys, and
/// random triples.
std::vector<Triple> colours(int bits)
{
    const int last = (1 << bits) - 1;
    Random random(1);
    const auto any = [&] { return static_cast<int>(random.upTo(static_cast<unsigned>(last))); };
    std::vector<Triple> all;
    for (int code = 0; code <= last; ++code) {
        all.push_back({code, code, code});
        for (std::size_t c = 0; c < 3; ++c)
            for (Triple triple :
                 {Triple{}, Triple{last, last, last}, Triple{any(), any(), any()}}) {
                triple[c] = code;
                all.push_back(triple);
            }
    }
    while (all.size() < 100000 || all.size() % 4 != 0)
        all.push_back({any(), any(), any()});
    return all;
}

template<unsigned BITS, class MATRIX>
void expectGamut(Colorspace from, Colorspace to, unsigned height = 576)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    const GamutStep step = gamutStep(from, to, height);
    for (std::size_t i = 0; i < 9; ++i)
        ASSERT_EQ(MATRIX::get()[i], step.matrix[i]) << "entry " << i;

    const std::vector<Triple> all = colours(BITS);
    std::vector<std::uint16_t> bgra;
    for (const Triple& rgb : all) {
        for (const std::size_t c : {2, 1, 0})
            bgra.push_back(static_cast<std::uint16_t>(rgb[c]));
        bgra.push_back(static_cast<std::uint16_t>(bgra.size() % 3 * 0x7fff));
    }
    const auto bgraPixel = [&](const std::uint16_t* in, std::uint16_t* out) {
        const auto rgb = changeGamut({step, BITS, false}, {in[2], in[1], in[0]});
        for (std::size_t i = 0; i < 4; ++i)
            out[i] = i == 3 ? in[3] : static_cast<std::uint16_t>(rgb[2 - i]);
    };
    using Curve = Rec709OETF<BITS, V1>;
    const auto twoPixels = [&](const std::uint16_t* in, std::uint16_t* out) {
        bgraPixel(in, out);
        bgraPixel(in + 4, out + 4);
    };
    // At 10 bits there is but one pair for which what comes out fits the lanes.
    if constexpr (BITS == 8 || std::is_same_v<MATRIX, RGB_709_TO_2020>)
        expectSteps<std::uint16_t, std::uint16_t>(
            runBlocks<COLOURSPACE_CONV_BGRAv8<Curve, MATRIX, Curve>>, twoPixels, bgra, 8, 8, 1);

    std::vector<std::uint32_t> planes(3 * all.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            planes[i / 4 * 12 + 4 * c + i % 4] = static_cast<std::uint32_t>(all[i][c]);
    const auto fourPixels = [&](const std::uint32_t* in, std::uint32_t* out) {
        for (std::size_t i = 0; i < 4; ++i) {
            const Triple rgb = changeGamut({step, BITS, true},
                                           {static_cast<int>(in[i]), static_cast<int>(in[4 + i]),
                                            static_cast<int>(in[8 + i])});
            for (std::size_t c = 0; c < 3; ++c)
                out[4 * c + i] = static_cast<std::uint32_t>(rgb[c]);
        }
    };
    using PlanarCurve = Rec709OETF<BITS, BITS == 8 ? V0 : V1>;
    expectSteps<std::uint32_t, std::uint32_t>(
        runBlocks<COLOURSPACE_CONV_RGBv4<PlanarCurve, MATRIX, PlanarCurve>>, fourPixels, planes, 12,
        12, 1);
}

TEST(GamutStages, EightBits)
{
    expectGamut<8, RGB_2020_TO_709>(Colorspace2020, Colorspace709);
    expectGamut<8, RGB_2020_TO_601PAL>(Colorspace2020, Colorspace601);
    expectGamut<8, RGB_2020_TO_601NTSC>(Colorspace2020, Colorspace601, 486);
    expectGamut<8, RGB_601PAL_TO_2020>(Colorspace601, Colorspace2020);
    expectGamut<8, RGB_601NTSC_TO_2020>(Colorspace601, Colorspace2020, 575);
    expectGamut<8, RGB_601PAL_TO_709>(Colorspace601, Colorspace709);
    expectGamut<8, RGB_601NTSC_TO_709>(Colorspace601, Colorspace709, 577);
    expectGamut<8, RGB_709_TO_2020>(Colorspace709, Colorspace2020);
    expectGamut<8, RGB_709_TO_601PAL>(Colorspace709, Colorspace601);
    expectGamut<8, RGB_709_TO_601NTSC>(Colorspace709, Colorspace601, 1080);
}

TEST(GamutStages, TenBits)
{
    expectGamut<10, RGB_709_TO_2020>(Colorspace709, Colorspace2020);
    expectGamut<10, RGB_2020_TO_709>(Colorspace2020, Colorspace709);
    expectGamut<10, RGB_601PAL_TO_709>(Colorspace601, Colorspace709);
    expectGamut<10, RGB_601NTSC_TO_709>(Colorspace601, Colorspace709, 480);
}

TEST(GamutStages, ScalarFormOnValuesWorkedOutByHand)
{
    const GamutStep pal = gamutStep(Colorspace601, Colorspace709, 576);
    EXPECT_EQ(changeGamut({pal, 8, true}, {255, 255, 255}), (Triple{255, 255, 255}));
    EXPECT_NEAR(changeGamut({pal, 10, true}, {1023, 0, 0})[0], 1195, 1) << "no limit";
    EXPECT_NEAR(changeGamut({pal, 10, true}, {0, 1023, 0})[0], -203, 1) << "nor below";
    const GamutStep from2020 = gamutStep(Colorspace2020, Colorspace709, 1080);
    EXPECT_EQ(changeGamut({from2020, 10, true}, {1023, 0, 0}), (Triple{1023, 0, 0}));
    for (int grey = 0; grey < 256; ++grey)
        for (const int code : changeGamut({from2020, 8, false}, {grey, grey, grey}))
            EXPECT_NEAR(code, grey, 1);
}

// --- Floats --------------------------------------------------------------------------------------

/// All codes, what lies around the middle between two, and what is out of range.
std::vector<float> floats()
{
    std::vector<float> all{-0.0f, -0.5f, 1.5f, 32.0f, 33.0f, -32.0f, -33.0f, 1000.0f, -1000.0f};
    for (int i = 0; i < 1024; ++i)
        for (const double half : {0.0, 0.5}) {
            const auto x = static_cast<float>((i + half) / 1023);
            all.insert(all.end(), {x, std::nextafter(x, 0.0f), std::nextafter(x, 2.0f)});
        }
    all.push_back(0.5f);
    std::shuffle(all.begin(), all.end(), std::mt19937(1));
    all.resize(all.size() / 12 * 12);
    return all;
}

/// `lanes` says which of a pixel's three components goes into each of its four lanes, -1 for ones.
template<class STAGE>
void expectFromFloats(const std::array<int, 4>& lanes)
{
    const auto step = [&](const float* in, std::uint16_t* out) {
        for (std::size_t i = 0; i < 16; ++i) {
            const int component = lanes[i % 4];
            if (component < 0) {
                out[i] = 0xffff;
                continue;
            }
            const float scaled = in[i / 4 * 3 + static_cast<std::size_t>(component)] * 1023.0f;
            const float code = std::clamp(std::nearbyint(scaled), -32768.0f, 32767.0f);
            out[i] = static_cast<std::uint16_t>(static_cast<int>(code));
        }
    };
    expectSteps<float, std::uint16_t>(runBlocks<STAGE>, step, floats(), 12, 16, 1);
}

TEST(FloatStages, UnpackToCodes)
{
    expectFromFloats<UNPACK_RGB32F_TO_BGRAv8<10>>({2, 1, 0, -1});
    expectFromFloats<UNPACK_YUV44432F_TO_UYVY444v8<10>>({1, 0, 2, 0});
}

TEST(FloatStages, PackLimitsToZeroAndOne)
{
    std::vector<std::uint32_t> codes{0x80000000u, 0x7fffffffu, 0xffffffffu, 0xffff0000u};
    for (int code = -300; code < 1424; ++code)
        codes.push_back(static_cast<std::uint32_t>(code));
    codes.resize(codes.size() / 12 * 12);
    const auto step = [](const std::uint32_t* in, std::uint32_t* out) {
        for (std::size_t i = 0; i < 12; ++i) {
            const auto code = static_cast<float>(static_cast<std::int32_t>(in[i % 3 * 4 + i / 3]));
            out[i] = std::bit_cast<std::uint32_t>(
                std::min(std::max(code * std::bit_cast<float>(0x3a802008), 0.0f), 1.0f));
        }
    };
    expectSteps<std::uint32_t, std::uint32_t>(runBlocks<PACK_RGBv4_TO_RGB32F<10>>, step, codes, 12,
                                              12, 1);
}

TEST(FloatStages, TouchNothingBehindALine)
{
    using P = BindAll<UNPACK_RGB32F_TO_BGRAv8<10>, BGRAv8_TO_RGBv4,
                      RGBv4_RESCALE<10, false, 10, true, P1>, PACK_RGBv4_TO_RGB32F<10>>;
    constexpr float kLine[] = {0.25f, 0.5f, 0.75f, 1.5f, -0.5f, 0.0625f, 1.0f, 0.0f, 0.5f};
    constexpr double kExpected[] = {0.21896, 0.51124, 0.80254, 1, 1, 0, 1, 0, 0.51124};
    for (unsigned width = 1; width < 10; ++width) {
        const std::size_t bytes = 12 * width;
        GuardedBytes in(bytes), out(bytes);
        for (std::size_t i = 0; i < 3 * width; ++i)
            std::memcpy(in.begin() + 4 * i, kLine + i % 9, 4);
        Transform<P, kAnyWidth, kPrefetchBlocks>::apply(in.begin(), 0, out.begin(), 0, width, 1,
                                                        nullptr);
        for (std::size_t i = 0; i < 3 * width; ++i) {
            float got;
            std::memcpy(&got, out.begin() + 4 * i, 4);
            EXPECT_NEAR(got, kExpected[i % 9], 1e-5) << "width " << width << ", float " << i;
        }
    }
}

} // namespace
} // namespace kestrix::test
