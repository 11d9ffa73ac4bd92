/// Fast forms of YUV to RGB, on planes.
#pragma once

#include "conversion/colour/YUVToRGB.h"
#include "conversion/fast/Planes.h"
#include "conversion/fast/Rescale.h"

namespace KSX::PixelConversion::fast {

/// The arithmetic of `YUV_TO_RGB_BASE`, in conversion/colour/YUVToRGB.h, for `StudioRange` and
/// `P1`, on planes of 16 bits.
///
/// There the coefficient of Y is a gain of exactly 1, so the part of Y is a whole number at the
/// scale of the first shift. No rounding changes it, so even and odd pixels e and o have the same
/// formula:
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
    /// R, G and B minus `BELOW`, not limited.
    template<int BELOW>
    KSX_INLINE static Pixels<RGBv8, 8> convert(const Pixels<YUVv8, 8>& in)
    {
        constexpr FixedRow r = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 0);
        constexpr FixedRow g = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 1);
        constexpr FixedRow b = fixedYUV2RGBRow(RANGE::YUV2RGBMatrix(), 2);
        static_assert(r.at[0] == 1 << 14 && g.at[0] == 1 << 14 && b.at[0] == 1 << 13);

        constexpr int kRounding = 1 << (kShift - 1);
        const Vector y =
            add16(in[0], v8i(static_cast<std::uint16_t>(kRounding - (BELOW << kShift))));
        const Vector red = part<r.at[2]>(in[2]);
        const Vector green = add16(part<g.at[1]>(in[1]), part<g.at[2]>(in[2]));
        // Blue's row is at half the scale.
        const Vector blue = part<2 * b.at[1]>(in[1]);
        return {{shiftRight16(add16(y, red), kShift), shiftRight16(add16(y, green), kShift),
                 shiftRight16(add16(y, blue), kShift)}};
    }

private:
    /// The part of chroma with a coefficient. If the coefficient is even, half of it makes up for
    /// the 16th bit of chroma.
    template<int COEFFICIENT>
    KSX_INLINE static Vector part(Vector chroma)
    {
        if constexpr (COEFFICIENT % 2 == 0)
            return mulRound16(chroma, v8i(static_cast<std::uint16_t>(COEFFICIENT / 2)));
        else
            return mulRound16(shiftRight16(chroma, 1),
                              v8i(static_cast<std::uint16_t>(COEFFICIENT)));
    }
};

/// Runs in the place of `UYVY444v8_TO_RGBv4` for `StudioRange` and `P1`. Converts YUVv8 to RGBv8. 8
/// pixels a step: 3 vectors in, 3 out. Plain.
template<class RANGE, int A, int B>
class YUVv8_TO_RGBv8 : public Kernel<8, 8>, protected YUV_TO_RGB_ON_PLANES<RANGE, A, B> {
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

/// Runs in the place of `YUVv8_TO_RGBv8` and `RGBv8_RESCALE<A, false, B, true, P1>`, before a pack
/// to `B` bits. Converts YUVv8 of `A` bits to RGBv8 of `B` bits in full range. Codes beyond video
/// levels come out below 0 or above the largest code. 8 pixels a step. Plain.
///
///     v = code - black                     y = (v 2^n k + 32768) >> 16
///
/// with n and k of the rescale. The limits to black and white are left to the pack. It gives the
/// same, because y does not fall if v rises. With 2^n k = q 65536 + 2 r, y is q v plus a rounding
/// multiplication by r.
template<class RANGE, int A, int B>
class YUVv8_TO_FULL_RGBv8 : public Kernel<8, 8>, protected YUV_TO_RGB_ON_PLANES<RANGE, A, A> {
public:
    using Input = YUVv8;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        auto rgb = this->template convert<16 << (A - 8)>(in);
        for (Vector& v : rgb.v)
            v = scaleLevels<A, B>(v);
        return rgb;
    }
};

/// Runs in the place of `YUVA_TO_BGRAv8`. The same arithmetic on planes, but RGB is not limited,
/// because the packs after it saturate. 8 pixels a step: 4 vectors in, 4 out. Plain.
///
/// Parts that are rounded separately are multiplications of 16-bit lanes. A part of two products
/// that are rounded together needs sums of 32 bits. These are the products of Y and Cb of even
/// pixels for G and B, and those of Y and Cr of odd pixels for R and G.
template<class RANGE, bool FULLA, PrecisionFlag P>
class YUVAv8_TO_RGBAv8 : public Kernel<8, 8> {
    static constexpr int kShift = P == P1 ? 10 : 16;

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
        // Blue's row is at half the scale, and its coefficient of Cb is too large to be doubled.
        // Its sums can leave 16 bits. They saturate then, far beyond the limits of the pack.
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
        return P == P1 ? mulRound16(shiftLeft16(x, 5), c) : mulHigh16(x, c);
    }

    /// Sums of two products before the shift by `SHIFT`, with the rounding term if P is 1.
    template<int SHIFT>
    KSX_INLINE static Vector jointSums(Vector x, int low, int high)
    {
        const Vector sums = mulAddPairs16(x, v4i(static_cast<std::uint32_t>(high) << 16 |
                                                 (static_cast<std::uint32_t>(low) & 0xffff)));
        return P == P1 ? add32(sums, v4i(1 << (SHIFT - 1))) : sums;
    }

    template<int SHIFT>
    KSX_INLINE static Vector jointPart(Vector x, int low, int high)
    {
        return shiftRight32(jointSums<SHIFT>(x, low, high), SHIFT);
    }

    KSX_INLINE static Vector scaled(Vector x)
    {
        return P == P1 ? shiftRight16(addSaturate16(x, v8i(32)), 6) : x;
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

} // namespace KSX::PixelConversion::fast
