/// 4:4:4 YUV to RGB by the matrix of a range family.
#pragma once

#include "conversion/colour/ClampLanes.h"
#include "conversion/colour/Flags.h"
#include "conversion/colour/RangeMatrices.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// The arithmetic from `UYVY444v8` to RGB. `A` is the depth of the YUV, `B` that of the RGB.
///
/// From lanes w0 to w7 of a pixel pair e, o and a row of the matrix with the coefficients cY, cB,
/// cR, laid out as cB, cY, cR, 0, cB, 0, cR, cY:
///
///     w  = w - (cO yO cO yO cO yO cO yO)              offsets, 16 bits, wrapping
///     d0 = sat16((w0 cB + w1 cY + t1) >> s1)          d1 = sat16((w2 cR + t1) >> s1)
///     d2 = sat16((w4 cB + t1) >> s1)                  d3 = sat16((w6 cR + w7 cY + t1) >> s1)
///     e  = clamp((d0 + d1 + t2) >> s2)                o  = clamp((d2 + d3 + t2) >> s2)
///
/// So e and o round at different points, and two equal pixels of a pair can differ by one code.
///
/// | | s1 | t1 | s2 | t2 |
/// |---|---|---|---|---|
/// | P 1 | A | half a unit | 14 - B | half a unit |
/// | P 0 | 14 + A - B | 0 | none | none |
///
/// Blue's row is at half the scale of the others and has s1 - 1 instead of s1. `StudioRange` leaves
/// Y at its level, because a gain of 1 does not change black, and clamps to black and white of the
/// output. `ComputerRange` subtracts black from Y and clamps to 0 and 255.
template<class RANGE, int A, int B, PrecisionFlag P>
class YUV_TO_RGB_BASE {
    static constexpr bool kStudio = kIsStudioRange<RANGE>;
    static constexpr int kFirstShift = P == P1 ? A : 14 + A - B;
    static constexpr int kSecondShift = P == P1 ? 14 - B : 0;
    static constexpr std::uint16_t kYOffset = kStudio ? 0 : 16 << (A - 8);
    static constexpr std::uint16_t kChromaOffset = 128 << (A - 8);
    static constexpr std::uint32_t kLowest = kStudio ? 16 << (B - 8) : 0;
    static constexpr std::uint32_t kHighest = kStudio ? 235 << (B - 8) : 255;

protected:
    KSX_INLINE Pixels<RGBv4, 4> convert(const Pixels<UYVY444v8, 4>& in) const
    {
        constexpr Vector offsets = v4i(std::uint32_t{kYOffset} << 16 | kChromaOffset);
        const Vector first = sub16(in[0], offsets);
        const Vector second = sub16(in[1], offsets);
        constexpr Vector rRow = coefficients(0);
        constexpr Vector gRow = coefficients(1);
        constexpr Vector bRow = coefficients(2);
        return {{component<kFirstShift>(first, second, rRow),
                 component<kFirstShift>(first, second, gRow),
                 component<kFirstShift - 1>(first, second, bRow)}};
    }

private:
    template<int SHIFT>
    KSX_INLINE static Vector component(Vector first, Vector second, Vector row)
    {
        const Vector parts = packSaturate32To16(partialSums<SHIFT>(mulAddPairs16(first, row)),
                                                partialSums<SHIFT>(mulAddPairs16(second, row)));
        Vector sums = mulAddPairs16(parts, v8i_1);
        if constexpr (P == P1)
            sums = shiftRight32(add32(sums, v4i(1 << (kSecondShift - 1))), kSecondShift);
        return clampLanes(sums, kLowest, kHighest);
    }

    template<int SHIFT>
    KSX_INLINE static Vector partialSums(Vector sums)
    {
        if constexpr (P == P1)
            sums = add32(sums, v4i(1 << (SHIFT - 1)));
        return shiftRight32(sums, SHIFT);
    }

    /// A row of the matrix in the order of the lanes of a pixel pair.
    static constexpr Vector coefficients(int row)
    {
        const FixedRow c = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), row);
        return v8i(c.at[1], c.at[0], c.at[2], 0, c.at[1], 0, c.at[2], c.at[0]);
    }
};

/// Converts UYVY444v8 to RGBv4. 4 pixels a step: 2 vectors in, 3 out. Plain.
template<class RANGE, int A, int B, PrecisionFlag P>
class UYVY444v8_TO_RGBv4 : public Kernel<4, 4>, protected YUV_TO_RGB_BASE<RANGE, A, B, P> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = UYVY444v8;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return this->convert(in);
    }
};

// --- With alpha ----------------------------------------------------------------------------------

/// Converts 10-bit 4:4:4 YUV with alpha to BGRAv8 of 8 bits. 4 pixels a step: 3 vectors in, 2 out.
/// Plain.
///
///     A = (a 16336 + 32768) >> 16                                           alpha in full range
///     A = ((2 max(min(a, 940) - 64, 0) 38267) >> 16) >> 2                   at video levels
///
/// The second formula truncates twice. `BGRAv8_TO_YUVA` turns an opaque alpha into 937, which comes
/// back as 254.
template<class RANGE, bool FULLA, PrecisionFlag P, PixelCenterFlag C>
class YUVA_TO_BGRAv8 : public Kernel<4, 4>, protected YUV_TO_RGB_BASE<RANGE, 10, 8, P> {
    static_assert(C == C0 && FULLA == (P == P1), "the two forms that there are");

public:
    using Input = UYVY444Av8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto rgb = this->convert({{in[0], in[1]}});
        const Vector bg = bitOr(rgb[2], shiftLeft32(rgb[1], 16));
        const Vector ra = bitOr(rgb[0], shiftLeft32(alphaTo8Bits(in[2]), 16));
        return {{interleaveLow32(bg, ra), interleaveHigh32(bg, ra)}};
    }

private:
    KSX_INLINE static Vector alphaTo8Bits(Vector alpha)
    {
        if constexpr (FULLA) {
            const Vector rounding = shiftRightU16(mulLow16(alpha, v4i(16336)), 15);
            return add16(mulHighU16(alpha, v4i(16336)), rounding);
        } else {
            const Vector above = subSaturateU16(min16(alpha, v4i(940)), v4i(64));
            return shiftRightU16(mulHighU16(shiftLeft16(above, 1), v4i(38267)), 2);
        }
    }
};

} // namespace KSX::PixelConversion
