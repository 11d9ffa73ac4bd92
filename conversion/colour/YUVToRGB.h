/// 4:4:4 YUV to RGB by the matrix of a range family.
#pragma once

#include "conversion/colour/ClampLanes.h"
#include "conversion/colour/Flags.h"
#include "conversion/colour/RangeMatrices.h"
#include "conversion/colour/Rescale.h"
#include "conversion/pipeline/Pipeline.h"
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
/// So e and o round at different places, and a pair of equal pixels can come out a code apart.
///
/// | | s1 | t1 | s2 | t2 |
/// |---|---|---|---|---|
/// | P 1 | A | half a unit | 14 - B | half a unit |
/// | P 0 | 14 + A - B | 0 | none | none |
///
/// Blue's row is at half the scale of the others and has s1 - 1 in the place of s1. `StudioRange`
/// leaves Y at its level, since black passes a gain of 1 unchanged, and clamps to black and white
/// of the output; `ComputerRange` takes black off Y and clamps to 0 and 255.
template<class RANGE, int A, int B, PrecisionFlag P>
class YUV_TO_RGB_BASE {
    static constexpr bool kStudio = kIsStudioRange<RANGE>;
    static constexpr int kFirstShift = P == kExact ? A : 14 + A - B;
    static constexpr int kSecondShift = P == kExact ? 14 - B : 0;
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
        if constexpr (P == kExact)
            sums = shiftRight32(add32(sums, v4i(1 << (kSecondShift - 1))), kSecondShift);
        return clampLanes(sums, kLowest, kHighest);
    }

    template<int SHIFT>
    KSX_INLINE static Vector partialSums(Vector sums)
    {
        if constexpr (P == kExact)
            sums = add32(sums, v4i(1 << (SHIFT - 1)));
        return shiftRight32(sums, SHIFT);
    }

    /// A row of the matrix beneath the lanes of a pixel pair.
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
    using Input = UYVY444v8;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return this->convert(in);
    }
};

// --- On planes -----------------------------------------------------------------------------------

namespace details {

/// The arithmetic above for `StudioRange` at P 1, on full lanes of 16 bits.
///
/// There the coefficient of Y is a gain of exactly 1, so that Y's part is a whole number at the
/// scale of the first shift. It passes every rounding unchanged, and with it goes the difference
/// between pixels e and o:
///
///     e = o = (Y << (14 - B') + chroma + t2) >> s2            B' = A, s2 = 14 - B
///
/// A part of chroma, (C c + t1) >> s1, is one rounding multiplication of C << (15 - s1) and c. All
/// sums stay below 2^15.
template<class RANGE, int A, int B>
class YUV_TO_RGB_ON_PLANES {
    static_assert(kIsStudioRange<RANGE>);
    static constexpr int kShift = 14 - B;

protected:
    /// R, G and B less `below`, not limited.
    template<int BELOW>
    KSX_INLINE static Pixels<RGBv8, 8> convert(const Pixels<YUVv8, 8>& in)
    {
        constexpr FixedRow r = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 0);
        constexpr FixedRow g = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 1);
        constexpr FixedRow b = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 2);
        static_assert(r.at[0] == 1 << 14 && g.at[0] == 1 << 14 && b.at[0] == 1 << 13);

        constexpr int kRounding = 1 << (kShift - 1);
        const Vector y = add16(shiftLeft16(in[0], 14 - A),
                               v8i(static_cast<std::uint16_t>(kRounding - (BELOW << kShift))));
        const Vector middle = v8i(128 << 7); // of chroma, at 15 bits
        const Vector cb = sub16(shiftLeft16(in[1], 15 - A), middle);
        const Vector cr = sub16(shiftLeft16(in[2], 15 - A), middle);

        const Vector red = mulRound16(cr, v8i(static_cast<std::uint16_t>(r.at[2])));
        const Vector green = add16(mulRound16(cb, v8i(static_cast<std::uint16_t>(g.at[1]))),
                                   mulRound16(cr, v8i(static_cast<std::uint16_t>(g.at[2]))));
        // Blue's row is at half the scale.
        const Vector blue = mulRound16(add16(cb, cb), v8i(static_cast<std::uint16_t>(b.at[1])));
        return {{shiftRight16(add16(y, red), kShift), shiftRight16(add16(y, green), kShift),
                 shiftRight16(add16(y, blue), kShift)}};
    }
};

} // namespace details

/// Converts YUVv8 to RGBv8, studio range. 8 pixels a step: 3 vectors in, 3 out. Plain.
template<class RANGE, int A, int B>
class YUVv8_TO_RGBv8 : public Kernel<8, 8>, protected details::YUV_TO_RGB_ON_PLANES<RANGE, A, B> {
public:
    using Input = YUVv8;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        auto rgb = this->template convert<0>(in);
        for (Vector& lanes : rgb.v)
            lanes = max16(min16(lanes, v8i(235 << (B - 8))), v8i(16 << (B - 8)));
        return rgb;
    }
};

template<class RANGE, int A, int B>
requires(kIsStudioRange<RANGE>) struct Twin<UYVY444v8_TO_RGBv4<RANGE, A, B, P1>> {
    using type = YUVv8_TO_RGBv8<RANGE, A, B>;
};

/// Converts YUVv8 of `A` bits to RGBv8 of `B` bits in full range, for a pack to `B` bits behind it:
/// what lies beyond the levels of video comes out below 0 or above the largest code. 8 pixels a
/// step. Plain.
///
///     v = code - black                     y = (v 2^n k + 32768) >> 16
///
/// with n and k of the rescale. Both limits that the rescale sets are left to the pack, since y
/// does not fall while v rises. With 2^n k = q 65536 + 2 r, y is q v and a rounding multiplication
/// by r.
template<class RANGE, int A, int B>
class YUVv8_TO_FULL_RGBv8 : public Kernel<8, 8>,
                            protected details::YUV_TO_RGB_ON_PLANES<RANGE, A, A> {
public:
    using Input = YUVv8;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        auto rgb = this->template convert<16 << (A - 8)>(in);
        for (Vector& v : rgb.v)
            v = details::scaleLevels<A, B>(v);
        return rgb;
    }
};

template<class RANGE, int A, int B, class PACK>
requires(PACK::kLargestCode ==
         (1 << B) - 1) struct MergedForm<YUVv8_TO_RGBv8<RANGE, A, A>,
                                         RGBv8_RESCALE<A, false, B, true, P1>, PACK> {
    using type = StageList<YUVv8_TO_FULL_RGBv8<RANGE, A, B>, PACK>;
};

// --- With alpha ----------------------------------------------------------------------------------

/// Converts 10-bit 4:4:4 YUV with alpha to BGRAv8 of 8 bits. 4 pixels a step: 3 vectors in, 2 out.
/// Plain.
///
///     A = (a 16336 + 32768) >> 16                                           alpha in full range
///     A = ((2 max(min(a, 940) - 64, 0) 38267) >> 16) >> 2                   at video levels
///
/// The second cuts twice, so the 937 that an opaque pixel becomes on the way there comes back as
/// 254.
template<class RANGE, bool FULLA, PrecisionFlag P, PixelCenterFlag C>
class YUVA_TO_BGRAv8 : public Kernel<4, 4>, protected YUV_TO_RGB_BASE<RANGE, 10, 8, P> {
    static_assert(C == kCoSited && FULLA == (P == kExact), "the two forms that there are");

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

namespace details {

/// The same on planes, RGB not limited: the twins of the packs behind it saturate. 8 pixels a step:
/// 4 vectors in, 4 out. Plain.
///
/// Parts that are rounded by themselves are multiplications of 16-bit lanes. A part of two products
/// that are rounded together goes through sums of 32 bits: of Y and Cb of even pixels for G and B,
/// of Y and Cr of odd pixels for R and G.
template<class RANGE, bool FULLA, PrecisionFlag P>
class YUVAv8_TO_RGBAv8 : public Kernel<8, 8> {
    static constexpr int kShift = P == kExact ? 10 : 16;

public:
    using Input = YUVAv8;
    using Output = RGBAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        constexpr FixedRow r = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 0);
        constexpr FixedRow g = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 1);
        constexpr FixedRow b = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 2);

        const Vector y = sub16(in[0], v8i(64));
        const Vector cb = sub16(in[1], v8i(512));
        const Vector cr = sub16(in[2], v8i(512));
        const Vector evenCbY = evenLanes(cb, shiftLeft32(y, 16));
        const Vector oddCrY = evenLanes(shiftRightU32(cr, 16), y);

        const Vector red =
            evenLanes(add16(part(y, r.at[0]), part(cr, r.at[2])),
                      shiftLeft32(jointSums<kShift>(oddCrY, r.at[2], r.at[0]), 16 - kShift));
        const Vector green =
            add16(evenLanes(jointPart<kShift>(evenCbY, g.at[1], g.at[0]),
                            shiftLeft32(jointSums<kShift>(oddCrY, g.at[2], g.at[0]), 16 - kShift)),
                  evenLanes(part(cr, g.at[2]), part(cb, g.at[1])));
        // Blue's row is at half the scale, and its coefficient of Cb leaves no bit to double it.
        // Its sums can leave 16 bits, where they saturate, far beyond what the pack lets through.
        const Vector evenBlue = jointPart<kShift - 1>(evenCbY, b.at[1], b.at[0]);
        const Vector oddBlue = addSaturate16(part(y, 2 * b.at[0]), part(add16(cb, cb), b.at[1]));
        const Vector blues = packSaturate32To16(evenBlue, shiftRight32(oddBlue, 16));
        const Vector blue = interleaveLow16(blues, interleaveHigh64(blues, blues));
        return {{scaled(red), scaled(green), scaled(blue), alphaTo8Bits(in[3])}};
    }

private:
    /// The lower halves of 32-bit lanes from `even`, the upper ones from `odd`.
    KSX_INLINE static Vector evenLanes(Vector even, Vector odd)
    {
        return bitOr(bitAnd(even, v4i_0xffff), bitAndNot(v4i_0xffff, odd));
    }

    KSX_INLINE static Vector part(Vector x, int coefficient)
    {
        const Vector c = v8i(static_cast<std::uint16_t>(coefficient));
        return P == kExact ? mulRound16(shiftLeft16(x, 5), c) : mulHigh16(x, c);
    }

    /// To be cut off at bit `SHIFT`.
    template<int SHIFT>
    KSX_INLINE static Vector jointSums(Vector x, int low, int high)
    {
        const Vector sums = mulAddPairs16(x, v4i(static_cast<std::uint32_t>(high) << 16 |
                                                 (static_cast<std::uint32_t>(low) & 0xffff)));
        return P == kExact ? add32(sums, v4i(1 << (SHIFT - 1))) : sums;
    }

    template<int SHIFT>
    KSX_INLINE static Vector jointPart(Vector x, int low, int high)
    {
        return shiftRight32(jointSums<SHIFT>(x, low, high), SHIFT);
    }

    KSX_INLINE static Vector scaled(Vector x)
    {
        return P == kExact ? shiftRight16(addSaturate16(x, v8i(32)), 6) : x;
    }

    KSX_INLINE static Vector alphaTo8Bits(Vector alpha)
    {
        if constexpr (FULLA) {
            return mulRound16(alpha, v8i(16336 / 2));
        } else {
            const Vector above = subSaturateU16(min16(alpha, v8i(940)), v8i(64));
            return shiftRightU16(mulHighU16(shiftLeft16(above, 1), v8i(38267)), 2);
        }
    }
};

} // namespace details

template<class RANGE, bool FULLA, PrecisionFlag P, PixelCenterFlag C>
struct Twin<YUVA_TO_BGRAv8<RANGE, FULLA, P, C>> {
    using type = details::YUVAv8_TO_RGBAv8<RANGE, FULLA, P>;
};

} // namespace KSX::PixelConversion
