/// The stages that change range and depth, for every code: every row of their table, both
/// precisions.
#include "conversion/fast/Rescale.h"
#include "conversion/pipeline/Transform.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// The scalar form of the arithmetic in conversion/colour/Rescale.h, in 64 bits.
constexpr std::int64_t rescaled(const details::RescaleConstants& k, PrecisionFlag precision,
                                std::int64_t x)
{
    if (!k.inFull)
        x = std::max<std::int64_t>(std::min<std::int64_t>(x, k.white) - k.black, 0);
    const std::int64_t product = (x << k.shift) * k.gain;
    const std::int64_t y = (product + (precision == P1 ? 32768 : 0)) >> 16;
    return k.outFull ? y : std::min<std::int64_t>(y + k.outBlack, 65535);
}

template<std::size_t ROW, PrecisionFlag P>
void expectRescales()
{
    constexpr details::RescaleConstants k = details::kRescales[ROW];
    const RGBv4_RESCALE<k.inBits, k.inFull, k.outBits, k.outFull, P> stage;
    for (std::int32_t code = 0; code < 1 << k.inBits; ++code) {
        Pixels<RGBv4, 4> in;
        std::array<std::int32_t, sizeof(in) / 4> lanes;
        lanes.fill(code);
        static_assert(sizeof(in) == sizeof(lanes));
        std::memcpy(&in, lanes.data(), sizeof(in));
        const Pixels<RGBv4, 4> out = stage.step(in);
        std::memcpy(lanes.data(), &out, sizeof(out));
        for (const std::int32_t lane : lanes)
            ASSERT_EQ(lane, rescaled(k, P, code)) << "row " << ROW << ", code " << code;
    }
}

TEST(Rescales, AreTheArithmeticOfTheirTableForEveryCode)
{
    []<std::size_t... ROWS>(std::index_sequence<ROWS...>)
    {
        (expectRescales<ROWS, P0>(), ...);
        (expectRescales<ROWS, P1>(), ...);
    }
    (std::make_index_sequence<std::size(details::kRescales)>());
}

/// Whether the form with one rounding multiplication in signed lanes gives every code.
template<int OUT_BITS, bool OUT_FULL>
constexpr bool bytesFit()
{
    constexpr details::RescaleConstants k = details::rescaleConstants(8, true, OUT_BITS, OUT_FULL);
    constexpr unsigned kGain = unsigned{k.gain} << k.shift;
    constexpr int kShift = std::countr_zero(kGain) - 1;
    if (kShift < 0)
        return false;
    for (int x = 0; x < 256; ++x) {
        const auto lane = static_cast<std::int16_t>(x << kShift);
        const auto factor = static_cast<std::int16_t>(kGain >> (kShift + 1));
        const auto scaled = static_cast<std::int16_t>((lane * factor + 16384) >> 15);
        if (scaled != ((static_cast<std::int64_t>(x) * kGain + 32768) >> 16))
            return false;
    }
    return true;
}

static_assert(fast::RescaleBytes<10, true>::kFits == bytesFit<10, true>());
static_assert(fast::RescaleBytes<12, true>::kFits == bytesFit<12, true>());
static_assert(fast::RescaleBytes<10, false>::kFits == bytesFit<10, false>());
static_assert(fast::RescaleBytes<12, false>::kFits == bytesFit<12, false>());
static_assert(fast::RescaleBytes<8, false>::kFits == bytesFit<8, false>());

} // namespace
} // namespace kestrix::test
