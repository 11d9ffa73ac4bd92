/// RGB to 4:2:2: the matrix of a range family, and the filter that halves the chroma.
///
/// Chroma is sited on the even pixels. RGB is filtered by 1 2 1 before the matrix, which is linear:
///
///     p0' = avg(p0, avg(p-1, p1))           avg(a, b) = (a + b + 1) >> 1, unsigned
///
/// The neighbours are averaged first, so the result is rounded up twice. Odd pixels contribute to
/// chroma only through their even neighbours.
#pragma once

#include "conversion/colour/ClampLanes.h"
#include "conversion/colour/Flags.h"
#include "conversion/colour/RangeMatrices.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// Y of 4 pixels, and Cb and Cr of the even ones, in lanes of 32 bits. The offsets of video levels
/// are added; nothing is clamped.
struct Y4C4 {
    Vector y;      ///< Y0 Y1 Y2 Y3
    Vector chroma; ///< Cb0 Cr0 Cb2 Cr2
};

/// The arithmetic that all stages from RGB to YUV share. `A` is the depth of the RGB, `B` that of
/// the YUV. `RANGE` is the family whose matrix is used; its depth can differ from `A`, and the
/// result then differs too.
///
///     Y  = ((yR R + yG G + yB B + t) >> s) + (16 << (B - 8))
///     Cb = ((bR R + bG G + bB B + t) >> s) + (128 << (B - 8))       Cr likewise
///
/// with coefficients at scale 32768, s = 15 + A - B, and t = 1 << (s - 1) if P is 1, else 0. Sums
/// are signed, of 32 bits. For `StudioRange`, black is first subtracted from all lanes of the RGB
/// without a clamp, so a pixel below black wraps. The sums read the lanes as signed, so its Y is
/// right. The filter reads them as unsigned: next to a normal pixel it gives chroma far out of
/// range, which the pack saturates. The average has to stay unsigned.
template<class RANGE, int A, int B, PrecisionFlag P, PixelCenterFlag C>
class BGRAv8_TO_Y4C4 : public Kernel<4, 4> {
    static_assert(C == C0);
    static constexpr int kShift = 15 + A - B;
    static constexpr int kRounding = P == P1 ? 1 << (kShift - 1) : 0;
    static constexpr int kYOffset = 16 << (B - 8);
    static constexpr int kChromaOffset = 128 << (B - 8);

public:
    using Input = BGRAv8;

protected:
    /// The first group of a row: the pixel to the left of p0 is p0 itself.
    KSX_INLINE Y4C4 firstGroup(const Pixels<Input, 4>& in)
    {
        const Pixels<Input, 4> rgb = withoutBlack(in);
        return convert(rgb, rgb[0]);
    }

    KSX_INLINE Y4C4 group(const Pixels<Input, 4>& in)
    {
        const Pixels<Input, 4> rgb = withoutBlack(in);
        const Vector oddPixels = interleaveHigh64(rgb[0], rgb[1]);
        return convert(rgb, combineShiftRightBytes<8>(oddPixels, m_oddPixels));
    }

private:
    KSX_INLINE static Pixels<Input, 4> withoutBlack(const Pixels<Input, 4>& in)
    {
        if constexpr (kIsStudioRange<RANGE>)
            return {{sub16(in[0], v8i(16 << (A - 8))), sub16(in[1], v8i(16 << (A - 8)))}};
        else
            return in;
    }

    /// `left` holds the left neighbours of p0 and p2: the last pixel of the previous group, and p1.
    KSX_INLINE Y4C4 convert(const Pixels<Input, 4>& rgb, Vector left)
    {
        const Vector evenPixels = interleaveLow64(rgb[0], rgb[1]);
        const Vector oddPixels = interleaveHigh64(rgb[0], rgb[1]);
        m_oddPixels = oddPixels;
        const Vector filtered = averageU16(evenPixels, averageU16(left, oddPixels));

        constexpr Vector yRow = coefficients(0);
        constexpr Vector cbRow = coefficients(1);
        constexpr Vector crRow = coefficients(2);
        const Vector y = addPairs32(mulAddPairs16(rgb[0], yRow), mulAddPairs16(rgb[1], yRow));
        const Vector cbcr =
            addPairs32(mulAddPairs16(filtered, cbRow), mulAddPairs16(filtered, crRow));
        // Cb0 Cb2 Cr0 Cr2 to pairs.
        const Vector chroma = shuffle32<0, 2, 1, 3>(cbcr);
        return {scaled(y, kYOffset), scaled(chroma, kChromaOffset)};
    }

    /// The offset is added before the shift, together with the rounding term: no sum reaches 2^31.
    KSX_INLINE static Vector scaled(Vector sum, int offset)
    {
        const Vector added = v4i(static_cast<std::uint32_t>((offset << kShift) + kRounding));
        return shiftRight32(add32(sum, added), kShift);
    }

    /// A row of the matrix in the order of the lanes B, G, R, A of two pixels. Alpha has a weight
    /// of 0.
    static constexpr Vector coefficients(int row)
    {
        const FixedRow c = fixedRGB2YUVRow(RANGE::RGB2YUVMatrix(), row);
        return v8i(c.at[2], c.at[1], c.at[0], 0, c.at[2], c.at[1], c.at[0], 0);
    }

    /// p1 and p3 of the previous group.
    Vector m_oddPixels = v0;
};

/// Converts BGRAv8 to UYVYv8. 4 pixels a step: 2 vectors in, 1 out. Looks back.
///
/// Y goes to the upper half of a 32-bit lane, and chroma is ORed to the whole lane without a clamp.
/// So a negative chroma also sets all bits of its Y, which a pack to 8 bits writes as 0.
template<class RANGE, int A, int B, PrecisionFlag P, PixelCenterFlag C>
class BGRAv8_TO_UYVYv8 : public BGRAv8_TO_Y4C4<RANGE, A, B, P, C> {
public:
    /// Full range comes out at video levels. A pixel below black in studio range wraps.
    static constexpr Range kRange = kIsStudioRange<RANGE> ? Range::Any : Range::Kept;
    using Input = BGRAv8;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 4> firstStep(const Pixels<Input, 4>& in)
    {
        return join(this->firstGroup(in));
    }

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) { return join(this->group(in)); }

private:
    KSX_INLINE static Pixels<Output, 4> join(const Y4C4& yuv)
    {
        return {{bitOr(shiftLeft32(yuv.y, 16), yuv.chroma)}};
    }
};

namespace details {

/// Y, chroma and alpha of 4 pixels as `UYVYAv8`, all limited to 10 bits.
KSX_INLINE Pixels<UYVYAv8, 4> joinYUVA(const Y4C4& yuv, Vector alpha)
{
    const Vector y = clampLanes(yuv.y, 0, 1023);
    const Vector chroma = clampLanes(yuv.chroma, 0, 1023);
    return {{bitOr(shiftLeft32(y, 16), chroma), clampLanes(alpha, 0, 1023)}};
}

/// The alpha of `BGRAv8`, one pixel per lane of 32 bits, with its sign.
KSX_INLINE Vector alphaOf(const Pixels<BGRAv8, 4>& in)
{
    const Vector ra = interleaveHigh32(shuffle32<0, 2, 1, 3>(in[0]), shuffle32<0, 2, 1, 3>(in[1]));
    // R A of pixels 0 2 1 3.
    return shiftRight32(shuffle32<0, 2, 1, 3>(ra), 16);
}

} // namespace details

/// Converts 8-bit BGRAv8 to 10-bit YUV with alpha at video levels. 4 pixels a step: 2 vectors in, 2
/// out. Looks back.
///
///     a = min((((A << 2) 56119) >> 16) + 64, 1023)
///
/// The product is truncated, so opaque becomes 937 and not 940.
template<class RANGE, PrecisionFlag P>
class BGRAv8_TO_YUVA : public BGRAv8_TO_Y4C4<RANGE, 8, 10, P, C0> {
public:
    using Input = BGRAv8;
    using Output = UYVYAv8;

    KSX_INLINE Pixels<Output, 4> firstStep(const Pixels<Input, 4>& in)
    {
        return details::joinYUVA(this->firstGroup(in), alphaTo10Bits(in));
    }

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in)
    {
        return details::joinYUVA(this->group(in), alphaTo10Bits(in));
    }

private:
    KSX_INLINE static Vector alphaTo10Bits(const Pixels<Input, 4>& in)
    {
        const Vector shifted = shiftLeft16(details::alphaOf(in), 2);
        return addSaturateU16(mulHighU16(shifted, v4i(56119)), v4i(64));
    }
};

/// Converts BGRAv8 of `A` bits to 10-bit YUV with alpha. Alpha is used as it is. 4 pixels a step: 2
/// vectors in, 2 out. Looks back.
template<class RANGE, int A, PrecisionFlag P>
class BGRAv8_TO_YUVA_FullA : public BGRAv8_TO_Y4C4<RANGE, A, 10, P, C0> {
public:
    using Input = BGRAv8;
    using Output = UYVYAv8;

    KSX_INLINE Pixels<Output, 4> firstStep(const Pixels<Input, 4>& in)
    {
        return details::joinYUVA(this->firstGroup(in), details::alphaOf(in));
    }

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in)
    {
        return details::joinYUVA(this->group(in), details::alphaOf(in));
    }
};

} // namespace KSX::PixelConversion
