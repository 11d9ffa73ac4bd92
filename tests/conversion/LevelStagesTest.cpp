/// The stages that change range and depth, over all values of a lane.
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/Rescale.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/Levels.h"

#include <algorithm>
#include <type_traits>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::Levels;
using reference::Rescale;

using Scalar = std::function<std::uint32_t(std::uint16_t)>;

/// Puts every value up to `last` through colour and alpha lanes.
template<class STAGE>
void expectLanes(const Scalar& colour, const Scalar& alpha, std::uint32_t last = 0xffff)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    using Lane = std::conditional_t<std::is_same_v<typename STAGE::Input, RGBv4>, std::uint32_t,
                                    std::uint16_t>;
    constexpr std::size_t kLanes = InputOf<STAGE>::kBytes / sizeof(Lane);
    std::vector<Lane> in;
    for (std::uint32_t shift = 0; shift < 4; ++shift)
        for (std::uint32_t x = 0; x <= last; ++x)
            in.push_back(static_cast<Lane>((x + shift) & last));
    const auto step = [&](const Lane* from, Lane* to) {
        for (std::size_t i = 0; i < kLanes; ++i) {
            const auto x = static_cast<std::uint16_t>(from[i]);
            to[i] = static_cast<Lane>(i % 4 == 3 ? alpha(x) : colour(x));
        }
    };
    expectSteps<Lane, Lane>(runBlocks<STAGE>, step, in, kLanes, kLanes, 0);
}

template<class STAGE>
void expectRescale(Levels in, Levels out, bool rounds = true)
{
    const Rescale rescale(in, out, rounds);
    expectLanes<STAGE>(rescale, rescale);
}

template<class STAGE>
void expectRescaleKeepsAlpha(Levels in, Levels out)
{
    expectLanes<STAGE>(Rescale(in, out), [](std::uint16_t alpha) { return alpha; });
}

constexpr Levels kStudio8{8, false}, kStudio10{10, false}, kStudio12{12, false};
constexpr Levels kFull8{8, true}, kFull10{10, true}, kFull12{12, true};

TEST(Rescale, FromStudioRange)
{
    expectRescale<RGBv4_RESCALE<8, false, 8, true, P1>>(kStudio8, kFull8);
    expectRescaleKeepsAlpha<BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA<8, P1>>(kStudio8, kFull8);
    expectRescale<RGBv4_RESCALE<10, false, 10, true, P1>>(kStudio10, kFull10);
    expectRescale<BGRAv8_RESCALE<10, false, 10, true, P1>>(kStudio10, kFull10);
    expectRescale<RGBv4_STUDIO_TO_COMPUTER<10, P0>>(kStudio10, kFull10, false);
    expectRescale<RGBv8_STUDIO_TO_COMPUTER<10, P0>>(kStudio10, kFull10, false);
    expectRescale<RGBv4_RESCALE<10, false, 8, true, P1>>(kStudio10, kFull8);
    expectRescale<RGBv8_RESCALE<10, false, 8, true, P1>>(kStudio10, kFull8);
    expectRescale<BGRAv8_RESCALE<10, false, 8, true, P1>>(kStudio10, kFull8);
    expectRescale<RGBv4_RESCALE<8, false, 10, true, P1>>(kStudio8, kFull10);
    expectRescale<BGRAv8_RESCALE<12, false, 12, true, P1>>(kStudio12, kFull12);
    expectRescale<BGRAv8_RESCALE<12, false, 8, true, P1>>(kStudio12, kFull8);
    expectRescale<BGRAv8_RESCALE<8, false, 10, false, P1>>(kStudio8, kStudio10);
}

TEST(Rescale, FromFullRange)
{
    expectRescale<BGRAv8_RESCALE<8, true, 10, true, P1>>(kFull8, kFull10);
    expectRescale<BGRAv8_RESCALE<8, true, 12, true, P1>>(kFull8, kFull12);
    expectRescale<RGBv4_RESCALE<8, true, 10, false, P1>>(kFull8, kStudio10);
    expectRescale<RGBv8_RESCALE<8, true, 10, false, P1>>(kFull8, kStudio10);
    expectRescale<BGRAv8_RESCALE<8, true, 12, false, P1>>(kFull8, kStudio12);
    expectRescale<BGRAv8_RESCALE<10, true, 10, false, P1>>(kFull10, kStudio10);
    expectRescale<RGBv4_COMPUTER_TO_STUDIO<10, P0>>(kFull10, kStudio10, false);
    expectRescale<RGBv8_COMPUTER_TO_STUDIO<10, P0>>(kFull10, kStudio10, false);
    expectRescaleKeepsAlpha<BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA<8, P1>>(kFull8, kStudio8);
    expectRescaleKeepsAlpha<BGRAv8_RESCALE_KEEPALPHA<8, true, 8, false>>(kFull8, kStudio8);
}

TEST(Rescale, ScalarFormOnValuesWorkedOutByHand)
{
    const Rescale toFull(kStudio10, kFull10), toFullFast(kStudio10, kFull10, false);
    const Rescale toStudio(kFull10, kStudio10), toStudioFast(kFull10, kStudio10, false);
    EXPECT_EQ(toFull(63), 0);
    EXPECT_EQ(toFull(939), 1022);
    EXPECT_EQ(toFull(941), 1023);
    EXPECT_EQ(toFull(502), 512);
    EXPECT_EQ(toFullFast(502), 511);
    EXPECT_EQ(toFullFast(940), 1023);
    EXPECT_EQ(toStudio(1), 65);
    EXPECT_EQ(toStudioFast(1), 64);
    EXPECT_EQ(toStudioFast(1023), 940);
    EXPECT_EQ(Rescale(kStudio10, kFull8)(65535), 19058) << "a signed limit lets -1 pass";
    EXPECT_EQ(Rescale(kStudio8, kStudio10)(255), 1020) << "no limit above";
}

TEST(ClampToStudio, LimitsAllLanesAsSignedValues)
{
    EXPECT_EQ(reference::limited(0xffff, kStudio12), 256);
    EXPECT_EQ(reference::limited(3761, kStudio12), 3760);
    const auto clamp = [](std::uint16_t x) { return reference::limited(x, kStudio12); };
    expectLanes<BGRAv8_CLAMP_TO_STUDIO<12>>(clamp, clamp);
}

template<class STAGE>
void expectDepth(int shift, int width, std::uint32_t last = 0xffff)
{
    const auto scalar = [=](std::uint16_t x) { return reference::atDepth(x, shift, width); };
    expectLanes<STAGE>(scalar, scalar, last);
}

TEST(BitDepth, Upwards)
{
    expectDepth<RGBv4_BITDEPTH<2, 16>>(2, 16, 0x3fff);
    expectDepth<RGBv8_BITDEPTH<2, 16>>(2, 16);
    expectDepth<BGRAv8_BITDEPTH<2, 16>>(2, 16);
    expectDepth<UYVYv8_BITDEPTH<2, 16>>(2, 16);
    expectDepth<BGRAv8_BITDEPTH<4, 16>>(4, 16);
    expectDepth<BGRAv8_BITDEPTH<4, 12>>(4, 12);
    expectDepth<BGRAv8_BITDEPTH<6, 16>>(6, 16);
}

TEST(BitDepth, Downwards)
{
    expectDepth<RGBv4_BITDEPTH<-2, 10>>(-2, 10);
    expectDepth<RGBv4_BITDEPTH<-2, 16>>(-2, 16);
    expectDepth<RGBv8_BITDEPTH<-2, 16>>(-2, 16);
    expectDepth<UYVYv8_BITDEPTH<-2, 16>>(-2, 16);
    expectDepth<BGRAv8_BITDEPTH<-4, 16>>(-4, 16);
    expectDepth<BGRAv8_BITDEPTH<-4, 12>>(-4, 12, 0x7fff);
    expectDepth<UYVYv8_BITDEPTH<-6, 16>>(-6, 16);
    expectDepth<BGRAv8_BITDEPTH<-8, 16>>(-8, 16);
    // Only where a table is to be looked up does the limit cut what rounding carries over the top.
    EXPECT_EQ(reference::atDepth(1023, -2, 10), 255u);
    EXPECT_EQ(reference::atDepth(1023, -2, 16), 256u);
}

} // namespace
} // namespace kestrix::test
