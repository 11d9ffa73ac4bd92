/// Merged forms and twins against the stages in whose place they run.
#include "conversion/pipeline/Transform.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"
#include "conversion/stages/YUVA.h"
#include "tests/support/Difference.h"
#include "tests/support/Random.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using Bytes = std::uint8_t;
using Words = std::uint16_t;
using Longs = std::uint32_t;

/// Steps of every content, then steps with each boundary value in each lane among random ones.
template<class IN>
std::vector<IN> stageInput(std::size_t lanes, const std::vector<IN>& boundaries, IN maximum,
                           std::uint64_t seed)
{
    constexpr std::size_t kStepsOfAContent = 64;
    Random random(seed);
    std::vector<IN> input;
    std::vector<IN> step(lanes);
    for (const Content content : kContents) {
        for (std::size_t i = 0; i < kStepsOfAContent; ++i) {
            random.fill(std::span(step), content, maximum);
            input.insert(input.end(), step.begin(), step.end());
        }
    }
    for (const IN boundary : boundaries) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            random.fill(std::span(step), Content::Uniform, maximum);
            step[lane] = boundary;
            input.insert(input.end(), step.begin(), step.end());
        }
    }
    return input;
}

/// Runs a whole number of a pipeline's blocks that lie one behind the other.
template<class PIPELINE>
void runBlocks(const void* in, void* out, std::size_t blocks)
{
    Transform<PIPELINE, kWholeBlocks, kPrefetchBlocks>::apply(
        in, 0, out, 0, static_cast<unsigned>(blocks * AsPipeline<PIPELINE>::kBlock), 1, nullptr);
}

/// Runs `PIPELINE` with merged forms and stage by stage, and expects the same bytes. `LANE` is what
/// the values of the input lie in, up to `maximum`.
template<class PIPELINE, class LANE>
void expectMergedLikeListed(std::uint64_t seed, const std::vector<LANE>& boundaries, LANE maximum)
{
    using P = AsPipeline<PIPELINE>;
    using Stages = CompositionOf<P>;
    static_assert(
        !std::same_as<typename details::Merged<P, wideBlock<P>()>::type, typename P::Stages>,
        "no form takes the place of any of these stages");

    constexpr std::size_t kLanes = Stages::kInBytes / sizeof(LANE);
    const auto in = stageInput(kLanes, boundaries, maximum, seed);
    const std::size_t blocks = in.size() / kLanes;
    std::vector<std::uint8_t> expected(blocks * Stages::kOutBytes), got(expected.size());
    runBlocks<AsListed<P>>(in.data(), expected.data(), blocks);
    runBlocks<P>(in.data(), got.data(), blocks);
    EXPECT_TRUE(sameLanes(std::span<const std::uint8_t>(expected),
                          std::span<const std::uint8_t>(got), Stages::kOutBytes / P::kBlock, 0,
                          seed));
}

/// From formats of bytes, every byte in every place.
template<class... STAGES>
void expectFromBytes()
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    std::vector<Bytes> all(256);
    std::iota(all.begin(), all.end(), Bytes{0});
    expectMergedLikeListed<BindAll<STAGES...>, Bytes>(1, all, 255);
}

/// From formats of words of 32 bits: every code of each component.
template<class... STAGES>
void expectFromWords()
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    std::vector<Longs> words;
    for (Longs code = 0; code < 1024; ++code)
        words.push_back(code * 0x00400401u ^ code << 10);
    expectMergedLikeListed<BindAll<STAGES...>, Longs>(2, words, 0xffffffff);
}

template<class RANGE>
void expectFrom422()
{
    using Unpack8 = UNPACK_UYVY_TO_UYVY444v8_T<kVectors>;
    using Unpack10 = UNPACK_V210_TO_UYVY444v8_T<kVectors>;
    using To8 = UYVY444v8_TO_RGBv4<RANGE, 8, 8, P1>;
    using To10 = UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>;
    expectFromBytes<Unpack8, To8, RGBv4_RESCALE<8, false, 8, true, P1>, PACK_RGBv4_TO_ARGB>();
    expectFromBytes<Unpack8, To8, RGBv4_RESCALE<8, false, 10, true, P1>, PACK_RGBv4_TO_R10KBE>();
    expectFromBytes<Unpack8, UYVY444v8_TO_RGBv4<RANGE, 8, 10, P1>, PACK_RGBv4_TO_R210>();
    expectFromWords<Unpack10, To10, RGBv4_RESCALE<10, false, 8, true, P1>, PACK_RGBv4_TO_BGRA>();
    expectFromWords<Unpack10, To10, RGBv4_RESCALE<10, false, 10, true, P1>, PACK_RGBv4_TO_R10KLE>();
    expectFromWords<Unpack10, To10, PACK_RGBv4_TO_R210>();
}

TEST(MergedForms, From422ToRGB)
{
    expectFrom422<StudioRange601>();
    expectFrom422<StudioRange709>();
    expectFrom422<StudioRange2020>();
    expectFromWords<UNPACK_V210_TO_UYVY444v8_T<kVectors>,
                    UYVY444v8_TO_RGBv4<StudioRange709, 10, 10, P1>,
                    RGBv4_RESCALE<10, false, 8, true, P1>, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>();
}

template<class RANGE>
void expectFromYUVA()
{
    expectFromWords<UNPACK_YUVA<C0>, YUVA_TO_BGRAv8<RANGE, true, P1, C0>, PACK_BGRAv8_TO_RGBA>();
    expectFromWords<UNPACK_YUVA<C0>, YUVA_TO_BGRAv8<RANGE, false, P0, C0>, PACK_BGRAv8_TO_BGRA>();
}

TEST(MergedForms, FromYUVA)
{
    expectFromYUVA<ComputerRange601>();
    expectFromYUVA<ComputerRange709>();
    expectFromYUVA<ComputerRange2020>();
}

TEST(MergedForms, Between422)
{
    expectFromBytes<UNPACK_UYVY_TO_UYVYv8, PACK_UYVYv8_TO_YUY2>();
    expectFromBytes<UNPACK_YUY2_TO_UYVYv8, PACK_UYVYv8_TO_UYVY>();
    expectFromWords<UNPACK_V210_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_UYVY>();
    expectFromBytes<UNPACK_UYVY_TO_UYVYv8, UYVYv8_BITDEPTH<2, 16>, PACK_UYVYv8_TO_V210>();
    expectFromWords<UNPACK_YUVA_TO_UYVYv8, PACK_UYVYv8_TO_V210>();
}

template<class UNPACK>
void expectFromRGB8()
{
    expectFromBytes<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK_RGBv4_TO_R210>();
    expectFromBytes<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK_RGBv4_TO_R10KLE>();
    expectFromBytes<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK_RGBv4_TO_R10KBE>();
    expectFromBytes<UNPACK, RGBv4_RESCALE<8, true, 10, false, P1>, PACK_RGBv4_TO_R10KBE>();
    expectFromBytes<UNPACK, PACK_RGBv4_TO_ARGB>();
    expectFromBytes<UNPACK, PACK_RGBv4_TO_BGRA>();
    expectFromBytes<UNPACK, PACK_RGBv4_TO_RGBA>();
    expectFromBytes<UNPACK, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>();
}

TEST(MergedForms, From8BitRGB)
{
    expectFromRGB8<UNPACK_ARGB_TO_RGBv4>();
    expectFromRGB8<UNPACK_BGRA_TO_RGBv4>();
    expectFromRGB8<UNPACK_RGBA_TO_RGBv4>();
    expectFromBytes<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>();
    expectFromBytes<UNPACK_BGRA_TO_RGBv8, RGBv8_BITDEPTH<2, 16>, PACK_RGBv8_TO_R210>();
    expectFromBytes<UNPACK_BGRA_TO_RGBv8, RGBv8_RESCALE<8, true, 10, false, P1>,
                    PACK_RGBv8_TO_R210>();
    using Order = R12KPackingOrderRGB;
    expectFromBytes<UNPACK_BGRA_TO_BGRAv8, BGRAv8_BITDEPTH<4, 16>,
                    PACK_BGRAv8_TO_R12L_SSSE3_T<Order>>();
    expectFromBytes<UNPACK_BGRA_TO_BGRAv8, BGRAv8_BITDEPTH<4, 16>,
                    PACK_BGRAv8_TO_R12B_SSSE3_T<Order>>();
    expectFromBytes<UNPACK_BGRA_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>>();
    expectFromBytes<UNPACK_BGRX_TO_BGRAv8, BGRAv8_RESCALE<8, true, 12, true, P1>>();
    expectFromBytes<UNPACK_ARGB_TO_BGRAv8, BGRAv8_RESCALE<8, true, 12, false, P1>>();
    expectFromBytes<UNPACK_RGBA_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
                    BGRAv8_TO_UYVYv8<FullRange2020<10>, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>();
}

template<class UNPACK>
void expectFromRGB10()
{
    expectFromWords<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK_RGBv4_TO_ARGB>();
    expectFromWords<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK_RGBv4_TO_BGRA>();
    expectFromWords<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK_RGBv4_TO_RGBA>();
    expectFromWords<UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK_RGBv4_TO_ARGB>();
    expectFromWords<UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK_RGBv4_TO_BGRA>();
    expectFromWords<UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK_RGBv4_TO_RGBA>();
    expectFromWords<UNPACK, RGBv4_STUDIO_TO_COMPUTER<10, P0>, PACK_RGBv4_TO_R10KBE>();
    expectFromWords<UNPACK, RGBv4_COMPUTER_TO_STUDIO<10, P0>, PACK_RGBv4_TO_R210>();
    expectFromWords<UNPACK, PACK_RGBv4_TO_R10KLE>();
    expectFromWords<UNPACK, RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<FullRange709<10>, 10, 8, P1, C0>,
                    PACK_UYVYv8_TO_UYVY>();
}

TEST(MergedForms, From10BitRGB)
{
    expectFromRGB10<UNPACK_R210_TO_RGBv4>();
    expectFromRGB10<UNPACK_R10KLE_TO_RGBv4>();
    expectFromRGB10<UNPACK_R10KBE_TO_RGBv4>();
    expectFromWords<UNPACK_R210_TO_RGBv8, RGBv8_BITDEPTH<-2, 16>, PACK_RGBv8_TO_BGRA>();
}

/// Planes and pixels, with the sums of each in its own order.
template<class MATRIX>
void expectGamut()
{
    using Planes = COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, MATRIX, Rec709OETF<8, V0>>;
    using Pixels = COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V1>, MATRIX, Rec709OETF<8, V1>>;
    expectFromWords<UNPACK_R210_TO_RGBv4, RGBv4_BITDEPTH<-2, 10>, Planes, PACK_RGBv4_TO_RGBA>();
    expectFromBytes<UNPACK_BGRA_TO_BGRAv8, Pixels, PACK_BGRAv8_TO_BGRA>();
    expectFromBytes<UNPACK_ARGB_TO_BGRAv8, Pixels, PACK_BGRAv8_TO_RGBA>();
    expectFromBytes<UNPACK_BGRA_TO_BGRAv8, Pixels, PACK_BGRAv8_TO_ARGB>();
}

TEST(MergedForms, OtherPrimaries)
{
    expectGamut<RGB_2020_TO_709>();
    expectGamut<RGB_601NTSC_TO_709>();
}

TEST(MergedForms, FromDeepFormats)
{
    // Around every place where rounding to 8 or to 10 bits turns over.
    std::vector<Words> turns;
    for (Longs code = 0; code < 65536; code += 32)
        turns.insert(turns.end(), {static_cast<Words>(code), static_cast<Words>(code + 31)});
    using From16 = BIND3<PACK_BGRAv8_TO_B64A, BGRAv8_BITDEPTH<-8, 16>, PACK_BGRAv8_TO_BGRA>;
    expectMergedLikeListed<From16, Words>(3, turns, 0xffff);
    using From212 = BIND3<UNPACK_V212_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_V210>;
    using From216 = BIND<UYVYv8_BITDEPTH<-6, 16>, PACK_UYVYv8_TO_V210>;
    expectMergedLikeListed<From212, Words>(4, turns, 0xffff);
    expectMergedLikeListed<From216, Words>(5, turns, 0xffff);
    expectFromBytes<UNPACK_R12L_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>,
                    BGRAv8_BITDEPTH<-4, 16>, PACK_BGRAv8_TO_BGRA>();
    expectFromBytes<UNPACK_R12B_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>,
                    BGRAv8_BITDEPTH<-4, 16>, PACK_BGRAv8_TO_RGBA>();
}

/// Rows of one Cb and one Cr: all lumas beside all chromas, and each of them against its opposite
/// and itself, which is every sum that R and B can have, and every part of those of G.
template<class RANGE, class RESCALE, class PACK>
void expectEveryLumaAndChroma()
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    using P = BIND4<UNPACK_V210_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>,
                    RESCALE, PACK>;
    constexpr unsigned kWidth = 1032;
    std::vector<Longs> row(kWidth / 6 * 4), expected(kWidth), got(kWidth);
    for (Longs cb = 0; cb < 1024; ++cb) {
        for (const Longs cr : {cb, 1023 - cb}) {
            const auto luma = [](Longs i) { return i % 1024; };
            for (Longs group = 0; group < kWidth / 6; ++group) {
                const Longs y = 6 * group;
                Longs* const word = &row[4 * group];
                word[0] = cb | luma(y) << 10 | cr << 20;
                word[1] = luma(y + 1) | cb << 10 | luma(y + 2) << 20;
                word[2] = cr | luma(y + 3) << 10 | cb << 20;
                word[3] = luma(y + 4) | cr << 10 | luma(y + 5) << 20;
            }
            Transform<AsListed<P>, kWholeBlocks, kPrefetchBlocks>::apply(
                row.data(), 0, expected.data(), 0, kWidth, 1, nullptr);
            Transform<P, kWholeBlocks, kPrefetchBlocks>::apply(row.data(), 0, got.data(), 0, kWidth,
                                                               1, nullptr);
            ASSERT_EQ(expected, got) << "Cb " << cb << ", Cr " << cr;
        }
    }
}

TEST(MergedForms, EveryLumaBesideEveryChroma)
{
    using To8 = RGBv4_RESCALE<10, false, 8, true, P1>;
    using To10 = RGBv4_RESCALE<10, false, 10, true, P1>;
    expectEveryLumaAndChroma<StudioRange601, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange709, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange2020, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange601, To10, PACK_RGBv4_TO_R210>();
    expectEveryLumaAndChroma<StudioRange709, To10, PACK_RGBv4_TO_R210>();
    expectEveryLumaAndChroma<StudioRange2020, To10, PACK_RGBv4_TO_R210>();
}

} // namespace
} // namespace kestrix::test
