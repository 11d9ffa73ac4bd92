/// Stages that move code values between video levels and full range, and from one depth to another
/// on the way, without a change of colourspace.
///
/// Every stage, in each lane x of 16 bits:
///
///     x = max(min(x, W) - K, 0)              video levels in only; min signed, the rest unsigned
///     z = x << n
///     y = (z k + 32768) >> 16                (z k) >> 16 if the precision is 0
///     y = min(y + K', 65535)                 video levels out only
///
/// W and K are the input's white and black, K' the output's black, k the gain in 16 fractional
/// bits, and n is a shift that lets k use all 16 bits if the gain is above 1.
#pragma once

#include "conversion/colour/Flags.h"
#include "conversion/pipeline/EachVector.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// The constants of a rescale. A white of 32767 means no limit: a signed minimum with it changes
/// nothing.
struct RescaleConstants {
    int inBits;
    bool inFull;
    int outBits;
    bool outFull;
    std::uint16_t white;    // W
    std::uint16_t black;    // K
    int shift;              // n
    std::uint16_t gain;     // k
    std::uint16_t outBlack; // K'
};

constexpr std::uint16_t kNoLimit = 32767;

// clang-format off
inline constexpr RescaleConstants kRescales[] = {
    // in         out             W   K  n      k   K'
    { 8, false,   8, true,      235,  16, 1, 38155,   0}, // 255/219
    {10, false,  10, true,      940,  64, 1, 38267,   0}, // 1023/876
    {10, false,   8, true,      940,  64, 0, 19077,   0}, // 255/876
    { 8, false,  10, true,      235,  16, 3, 38267,   0}, // 1023/219
    {12, false,  12, true,     3760, 256, 1, 38295,   0}, // 4095/3504
    {12, false,   8, true,     3760, 256, 0,  4769,   0}, // 255/3504
    { 8, true,   10, true, kNoLimit,   0, 3, 32864,   0}, // 1023/255
    { 8, true,   12, true, kNoLimit,   0, 5, 32888,   0}, // 4095/255
    { 8, true,   10, false,kNoLimit,   0, 2, 56284,  64}, // 4 219/255
    { 8, true,   12, false,kNoLimit,   0, 4, 56284, 256}, // 16 219/255
    {10, true,   10, false,kNoLimit,   0, 0, 56119,  64}, // 876/1023
    { 8, true,    8, false,kNoLimit,   0, 0, 56284,  16}, // 219/255
    { 8, false,  10, false,kNoLimit,  16, 3, 32768,  64}, // 4, from 16 upwards without a limit
};
// clang-format on

/// The row of a rescale. A rescale that is not in the table does not compile.
constexpr RescaleConstants rescaleConstants(int inBits, bool inFull, int outBits, bool outFull)
{
    for (const RescaleConstants& row : kRescales)
        if (row.inBits == inBits && row.inFull == inFull && row.outBits == outBits &&
            row.outFull == outFull)
            return row;
    throw "no such rescale";
}

} // namespace details

/// The arithmetic that the stages of all lane arrangements share. `VECTOR` says whether values lie
/// in lanes of 32 bits, whose upper halves stay 0, or of 16.
template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P,
         VectorTypeFlag VECTOR>
class RGB_RESCALE_T {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        constexpr auto k = details::rescaleConstants(IN_BITS, IN_FULL, OUT_BITS, OUT_FULL);
        if constexpr (!IN_FULL) {
            if constexpr (k.white != details::kNoLimit)
                x = min16(x, lanes(k.white));
            x = subSaturateU16(x, lanes(k.black));
        }
        Vector y;
        if constexpr (P == P1 && k.shift == 0 && k.gain < 32768) {
            // One more bit of the product, and an average that rounds it off.
            y = averageU16(mulHighU16(x, lanes(2 * k.gain)), v0);
        } else {
            const Vector z = shiftLeft16(x, k.shift);
            y = mulHighU16(z, lanes(k.gain));
            // Half a unit carries into bit 16 if bit 15 of the product is set.
            if constexpr (P == P1)
                y = add16(y, shiftRightU16(mulLow16(z, lanes(k.gain)), 15));
        }
        if constexpr (!OUT_FULL)
            y = addSaturateU16(y, lanes(k.outBlack));
        return y;
    }

private:
    static constexpr Vector lanes(std::uint16_t value)
    {
        return VECTOR == V0 ? v4i(value) : v8i(value);
    }
};

/// Rescales `RGBv4`. 4 pixels a step. Plain.
template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
class RGBvX_RESCALE_T
    : public EachVector<RGBv4, 4, RGB_RESCALE_T<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P, V0>> {
public:
    static constexpr Range kRange = Range::Kept;
};

/// Rescales `RGBv8`. 8 pixels a step. Plain.
template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
class RGBv8_RESCALE
    : public EachVector<RGBv8, 8, RGB_RESCALE_T<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P, V1>> {
public:
    static constexpr Range kRange = Range::Kept;
};

template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
class RGBv4_RESCALE : public RGBvX_RESCALE_T<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P> {
};

/// Rescales all lanes of `BGRAv8`, alpha like a colour. 2 pixels a step. Plain.
template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
class BGRAv8_RESCALE_T
    : public EachVector<BGRAv8, 2, RGB_RESCALE_T<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P, V1>> {
public:
    static constexpr Range kRange = Range::Kept;
};

template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
class BGRAv8_RESCALE : public BGRAv8_RESCALE_T<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P> {
};

/// Rescales the colour lanes of `BGRAv8`; alpha passes. 2 pixels a step. Plain.
template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P = P1>
class BGRAv8_RESCALE_KEEPALPHA : public BGRAv8_RESCALE<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P> {
public:
    KSX_INLINE Pixels<BGRAv8, 2> step(const Pixels<BGRAv8, 2>& in) const
    {
        return {{bitOr(bitAnd(in[0], v8i_mask_7xxx3xxx),
                       bitAnd(this->apply(in[0]), v8i_mask_x654x210))}};
    }
};

// Rescales with the same depth on both sides.
template<int BITS, PrecisionFlag P>
class RGBv4_STUDIO_TO_COMPUTER : public RGBv4_RESCALE<BITS, false, BITS, true, P> {
};
template<int BITS, PrecisionFlag P>
class RGBv4_COMPUTER_TO_STUDIO : public RGBv4_RESCALE<BITS, true, BITS, false, P> {
};
template<int BITS, PrecisionFlag P>
class RGBv8_STUDIO_TO_COMPUTER : public RGBv8_RESCALE<BITS, false, BITS, true, P> {
};
template<int BITS, PrecisionFlag P>
class RGBv8_COMPUTER_TO_STUDIO : public RGBv8_RESCALE<BITS, true, BITS, false, P> {
};
template<int BITS, PrecisionFlag P>
class BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA
    : public BGRAv8_RESCALE_KEEPALPHA<BITS, false, BITS, true, P> {
};
template<int BITS, PrecisionFlag P>
class BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA
    : public BGRAv8_RESCALE_KEEPALPHA<BITS, true, BITS, false, P> {
};

namespace details {

template<int BITS>
class ClampToStudio {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        return max16(min16(x, v8i(235 << (BITS - 8))), v8i(16 << (BITS - 8)));
    }
};

} // namespace details

/// Limits all lanes of `BGRAv8`, alpha too, to video levels, as signed values. 2 pixels a step.
/// Plain.
///
///     out = max(min(in, 235 << (BITS - 8)), 16 << (BITS - 8))
template<int BITS>
class BGRAv8_CLAMP_TO_STUDIO : public EachVector<BGRAv8, 2, details::ClampToStudio<BITS>> {
};

} // namespace KSX::PixelConversion
