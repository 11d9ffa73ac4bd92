/// The stages that unpack and pack formats of more than 8 bits, over every code of every sample.
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUVA.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/Layouts.h"
#include "tests/support/GuardedBytes.h"

#include <algorithm>
#include <type_traits>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::Layout;
using Bytes = std::uint8_t;
using Words = std::uint16_t;
using Longs = std::uint32_t;

template<class REPRESENTATION>
using LaneOf = std::conditional_t<std::is_same_v<REPRESENTATION, RGBv4>, Longs, Words>;

/// The lane that holds sample `i` of a step of `pixels` pixels.
template<class REPRESENTATION>
std::size_t laneOf(std::size_t i, std::size_t pixels)
{
    if constexpr (std::is_same_v<REPRESENTATION, RGBv4> || std::is_same_v<REPRESENTATION, RGBv8>)
        return (2 - i % 4) * pixels + i / 4;
    else
        return i;
}

/// Steps of a packed format in which each sample has every code once. What lies between samples is
/// random.
std::vector<Bytes> everyCode(const Layout& layout, std::size_t stepBytes, std::size_t stepPixels)
{
    const std::size_t samples = stepPixels * (layout.is422() ? 2 : 4);
    std::vector<Bytes> in((layout.maximum() + 1) * stepBytes);
    Random(1).fill(std::span(in), Content::Uniform);
    for (unsigned code = 0; code <= layout.maximum(); ++code) {
        Bytes* const step = in.data() + code * stepBytes;
        for (std::size_t i = 0; i < samples; ++i)
            if (layout.at[i % layout.at.size()] >= 0)
                layout.write(step, layout.bitOf(i), static_cast<unsigned>(code + 617 * i));
        if (layout.alphaAt >= 0)
            for (std::size_t x = 0; x < stepPixels; ++x)
                layout.write(step, layout.bitOfAlpha(x), static_cast<unsigned>(code + 401 * x));
    }
    return in;
}

/// Steps in which each lane has every value of 16 bits once.
template<class LANE>
std::vector<LANE> everyValue(std::size_t lanes)
{
    std::vector<LANE> in(lanes << 16);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = static_cast<LANE>(i / lanes + 617 * i);
    return in;
}

/// Where the format has no alpha the lane for it, if there is one, has `alpha`.
template<class STAGE>
void expectUnpacks(PixelFormat format, Words alpha = 0)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    using Lane = LaneOf<typename STAGE::Output>;
    const Layout& layout = reference::layoutOf(format);
    constexpr std::size_t kBytes = STAGE::kIn * STAGE::Input::kBytes / STAGE::Input::kPixels;
    constexpr std::size_t kLanes = STAGE::kOut * STAGE::Output::kBytes / sizeof(Lane);
    const std::size_t samples = STAGE::kIn * (layout.is422() ? 2u : 4u);
    expectSteps<Bytes, Lane>(
        [](const void* in, void* out, std::size_t steps) { runBlocks<STAGE>(in, out, steps); },
        [&](const Bytes* in, Lane* out) {
            for (std::size_t i = 0; i < samples; ++i)
                if (const auto lane = laneOf<typename STAGE::Output>(i, STAGE::kIn); lane < kLanes)
                    out[lane] = layout.at[i % layout.at.size()] < 0
                                    ? alpha
                                    : layout.read(in, layout.bitOf(i));
        },
        everyCode(layout, kBytes, STAGE::kIn), kBytes, kLanes, 1);
}

template<class STAGE>
void expectPacks(PixelFormat format)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    using Lane = LaneOf<typename STAGE::Input>;
    const Layout& layout = reference::layoutOf(format);
    constexpr std::size_t kBytes = STAGE::kOut * STAGE::Output::kBytes / STAGE::Output::kPixels;
    constexpr std::size_t kLanes = STAGE::kIn * STAGE::Input::kBytes / sizeof(Lane);
    const std::size_t samples = STAGE::kIn * (layout.is422() ? 2u : 4u);
    expectSteps<Lane, Bytes>(
        [](const void* in, void* out, std::size_t steps) { runBlocks<STAGE>(in, out, steps); },
        [&](const Lane* in, Bytes* out) {
            reference::WrittenRow row(layout, STAGE::kIn);
            for (std::size_t i = 0; i < samples; ++i)
                if (layout.at[i % layout.at.size()] >= 0)
                    row.put(layout.bitOf(i),
                            static_cast<Words>(in[laneOf<typename STAGE::Input>(i, STAGE::kIn)]));
            std::copy(row.bytes.begin(), row.bytes.end(), out);
        },
        everyValue<Lane>(kLanes), kLanes, kBytes, 1);
}

TEST(PackedStages, UnpackEveryCode)
{
    expectUnpacks<UNPACK_V210_TO_UYVYv8>(PixelFormat_v210);
    expectUnpacks<UNPACK_V212_TO_UYVYv8>(PixelFormat_v212);
    expectUnpacks<UNPACK_YUVA_TO_UYVYv8>(PixelFormat_Ay10);
    expectUnpacks<UNPACK_R210_TO_RGBv4>(PixelFormat_R210);
    expectUnpacks<UNPACK_R210_TO_RGBv8>(PixelFormat_R210);
    expectUnpacks<UNPACK_R10KLE_TO_RGBv4>(PixelFormat_R10L);
    expectUnpacks<UNPACK_R10KBE_TO_RGBv4>(PixelFormat_R10B);
    expectUnpacks<UNPACK_R12L_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>>(PixelFormat_R12L,
                                                                              4095);
    expectUnpacks<UNPACK_R12L_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 3760>>(PixelFormat_R12l,
                                                                              3760);
    expectUnpacks<UNPACK_R12B_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>>(PixelFormat_R12B,
                                                                              4095);
}

TEST(PackedStages, PackEveryLane)
{
    expectPacks<PACK_UYVYv8_TO_V210>(PixelFormat_v210);
    expectPacks<PACK_RGBv4_TO_R210>(PixelFormat_R210);
    expectPacks<PACK_RGBv8_TO_R210>(PixelFormat_R210);
    expectPacks<PACK_RGBv4_TO_R10KLE>(PixelFormat_R10L);
    expectPacks<PACK_RGBv4_TO_R10KBE>(PixelFormat_R10B);
    expectPacks<PACK_BGRAv8_TO_R12L_SSSE3_T<R12KPackingOrderRGB>>(PixelFormat_R12L);
    expectPacks<PACK_BGRAv8_TO_R12B_SSSE3_T<R12KPackingOrderRGB>>(PixelFormat_R12B);
    expectPacks<PACK_BGRAv8_TO_B64A>(PixelFormat_b64a);
    expectPacks<UNPACK_L64A_TO_BGRAv8>(PixelFormat_L64A);
}

TEST(PackedStages, PadR10AAndClearAlphaOfS12L)
{
    expectSteps<Bytes, Bytes>(
        runBlocks<PAD_R10KBE_WITH_1>,
        [](const Bytes* in, Bytes* out) {
            for (std::size_t i = 0; i < 16; ++i)
                out[i] = static_cast<Bytes>(i % 4 == 3 ? in[i] | 3 : in[i]);
        },
        stageInput<Bytes>(16, {}, 255, 1), 16, 16, 1);
    expectSteps<Words, Words>(
        runBlocks<PACK_BGRAv8_TO_S12L<true>>,
        [](const Words* in, Words* out) {
            for (std::size_t i = 0; i < 16; ++i)
                out[i] = i % 4 == 3 ? 0 : in[i];
        },
        stageInput<Words>(16, {}, 0xffff, 1), 16, 16, 1);
}

// --- Alpha beside 4:2:2 --------------------------------------------------------------------------

/// Lanes of a group of 4 pixels: Cb Y Cr Y of two pairs, then alpha of each pixel in 32 bits.
constexpr std::size_t kUYVYLanes = 8, kUYVYALanes = 16;

TEST(YUVAStages, AddOpaqueAlphaAndPackEveryLane)
{
    const auto addsAlpha = [](const Words* in, Words* out) {
        std::copy_n(in, kUYVYLanes, out);
        for (std::size_t x = 0; x < 4; ++x)
            out[kUYVYLanes + 2 * x] = 1023, out[kUYVYLanes + 2 * x + 1] = 0;
    };
    expectSteps<Words, Words>(runBlocks<UYVYv8_TO_YUVA>, addsAlpha,
                              stageInput<Words>(kUYVYLanes, {}, 0xffff, 1), kUYVYLanes, kUYVYALanes,
                              1);

    auto lanes = everyValue<Words>(kUYVYALanes);
    for (std::size_t i = 0; i < lanes.size(); ++i)
        if (i % kUYVYALanes > kUYVYLanes && i % 2 == 1)
            lanes[i] = 0;
    const Layout& layout = reference::layoutOf(PixelFormat_Ay10);
    expectSteps<Words, Bytes>(
        runBlocks<PACK_YUVA>,
        [&](const Words* in, Bytes* out) {
            reference::WrittenRow row(layout, 4);
            for (std::size_t i = 0; i < kUYVYLanes; ++i)
                row.put(layout.bitOf(i), in[i]);
            for (std::size_t x = 0; x < 4; ++x)
                row.put(layout.bitOfAlpha(x), in[kUYVYLanes + 2 * x]);
            std::copy(row.bytes.begin(), row.bytes.end(), out);
        },
        lanes, kUYVYALanes, 16, 1);
}

// --- Looking ahead -------------------------------------------------------------------------------

/// A row of `width` pixels, whose last one has its left neighbour's chroma if the row's end `ends`
/// it, and otherwise the mean with what lies behind. Nothing is read behind whole steps.
template<class STAGE, unsigned FLAGS>
void expectRebuildsChroma(PixelFormat format, unsigned width, bool ends)
{
    SCOPED_TRACE(testing::Message() << __PRETTY_FUNCTION__ << ", width " << width);
    using Out = typename STAGE::Output;
    constexpr bool kAlpha = std::is_same_v<Out, UYVY444Av8>;
    constexpr unsigned kPixels = kAlpha ? 4 : 2; // that lie together
    constexpr std::size_t kLanes = kPixels * Out::kBytes / sizeof(Words);
    const Layout& layout = reference::layoutOf(format);
    GuardedBytes in((width + STAGE::kIn - 1) / STAGE::kIn *
                    Pixels<typename STAGE::Input, STAGE::kIn>::kBytes);
    Random(width).fill(std::span(in.begin(), in.end()), Content::Uniform);

    const std::size_t groups = width / kPixels;
    std::vector<Words> expected(groups * kLanes), got(expected.size());
    for (std::size_t x = 0; x < groups * kPixels; ++x) {
        const auto pixel = reference::pixelOf422(layout, in.begin(), x, ends ? width : width + 1);
        const auto left = static_cast<Words>(layout.read(in.begin(), layout.bitOf(x / 2 * 4 + 1)));
        const auto right = static_cast<Words>(layout.read(in.begin(), layout.bitOf(x / 2 * 4 + 3)));
        const Words half[] = {static_cast<Words>(pixel.cb), left, static_cast<Words>(pixel.cr),
                              right};
        Words* const group = expected.data() + x / kPixels * kLanes;
        std::copy_n(half, 4, group + x % kPixels * 4);
        if (kAlpha)
            group[kPixels * 4 + x % kPixels * 2] = layout.read(in.begin(), layout.bitOfAlpha(x));
    }
    Transform<STAGE, FLAGS, kPrefetchBlocks>::apply(in.begin(), 0, got.data(), 0, width, 1,
                                                    nullptr);
    EXPECT_TRUE(
        sameLanes(std::span<const Words>(expected), std::span<const Words>(got), kLanes, 0, width));
}

TEST(V210Stages, RebuildChromaAndEndRowsByTheirWidth)
{
    constexpr auto v210 = PixelFormat_v210;
    using AnyLine = UNPACK_V210_TO_UYVY444v8_T<kVectors, 0>;
    for (const unsigned width : {24u, 36u, 192u, 1920u})
        expectRebuildsChroma<AnyLine, kWholeBlocks>(v210, width, true);
    for (const unsigned width : {14u, 18u, 22u, 26u, 30u, 1286u, 2560u})
        expectRebuildsChroma<AnyLine, kAnyWidth>(v210, width, false);
    expectRebuildsChroma<UNPACK_V210_TO_UYVY444v8_T<kVectors, 1280>, kAnyWidth>(v210, 1280, true);
    expectRebuildsChroma<UNPACK_V210_TO_UYVY444v8_T<kVectors, 2048>, kAnyWidth>(v210, 2048, true);
    expectRebuildsChroma<UNPACK_V210_TO_UYVY444v8_T<kVectors, 4096>, kAnyWidth>(v210, 4096, true);
}

TEST(YUVAStages, RebuildChromaAndCarryAlpha)
{
    for (const unsigned width : {8u, 12u, 720u, 1280u})
        expectRebuildsChroma<UNPACK_YUVA<C0>, kWholeBlocks>(PixelFormat_Ay10, width, true);
}

} // namespace
} // namespace kestrix::test
