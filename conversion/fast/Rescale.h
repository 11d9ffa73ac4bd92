/// Fast forms of rescales.
#pragma once

#include "conversion/colour/Rescale.h"

#include <bit>

namespace KSX::PixelConversion::fast {

/// The multiplication of the rescale from video levels of `IN_BITS` to full range of `OUT_BITS`, in
/// signed lanes: (v 2^n k + 32768) >> 16.
template<int IN_BITS, int OUT_BITS>
KSX_INLINE Vector scaleLevels(Vector v)
{
    constexpr details::RescaleConstants k =
        details::rescaleConstants(IN_BITS, false, OUT_BITS, true);
    constexpr unsigned kGain = unsigned{k.gain} << k.shift;
    constexpr unsigned kWhole = kGain >> 16;
    constexpr unsigned kPart = kGain & 0xffff;
    if constexpr (kPart % 2 == 0) {
        static_assert(kWhole == 1 || kWhole == 4);
        const Vector whole = kWhole == 1 ? v : shiftLeft16(v, 2);
        return add16(whole, mulRound16(v, v8i(kPart / 2)));
    } else {
        static_assert(kWhole == 0 && kPart < 32768);
        return add16(mulHigh16(v, v8i(kPart)), shiftRightU16(mulLow16(v, v8i(kPart)), 15));
    }
}

/// The arithmetic of `RGB_RESCALE_T` for full-range codes of 8 bits, as one rounding
/// multiplication. It is the same if 2^n k is a power of two times a factor that fits a signed
/// lane:
///
///     (2^n k x + 32768) >> 16 = (2^s x m + 16384) >> 15          2^n k = 2^(s + 1) m
template<int OUT_BITS, bool OUT_FULL>
class RescaleBytes {
    static constexpr details::RescaleConstants k =
        details::rescaleConstants(8, true, OUT_BITS, OUT_FULL);
    static constexpr unsigned kGain = unsigned{k.gain} << k.shift;
    static constexpr int s = std::countr_zero(kGain) - 1;
    static constexpr unsigned m = kGain >> (s + 1);

public:
    static constexpr bool kFits = s >= 0 && m < 32768 && (255u << s) < 32768;

protected:
    static constexpr int kBlack = k.outBlack;

    /// The scaled codes, before black is added for video levels.
    KSX_INLINE static Vector scaled(Vector x) { return mulRound16(shiftLeft16(x, s), v8i(m)); }
    KSX_INLINE static Vector apply(Vector x)
    {
        return OUT_FULL ? scaled(x) : add16(scaled(x), v8i(kBlack));
    }
};

/// Runs in the place of `BGRAv8_RESCALE<8, true, OUT_BITS, OUT_FULL, P1>` after a stage that gives
/// bytes. 2 pixels a step. Plain.
template<int OUT_BITS, bool OUT_FULL>
class BGRAv8_RESCALE_BYTES : public EachVector<BGRAv8, 2, RescaleBytes<OUT_BITS, OUT_FULL>> {
public:
    static constexpr Range kRange = Range::Kept;
};

} // namespace KSX::PixelConversion::fast
