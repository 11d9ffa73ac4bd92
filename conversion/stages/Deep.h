/// Stages of the formats with 16 bits per sample, and of the float layouts that the preview's
/// colour tables are computed in. All are plain.
///
///     b64a        A R G B, big-endian                  16ARGB_BE_FULL
///     L64A, l64a  A R G B, little-endian               16ARGB_LE_FULL, 16ARGB_LE_SMPTE
///     v212, v216  Cb Y0 Cr Y1, little-endian           12YUV422_LE in the top 12 bits, 16YUV422_LE
///     RGB32F      R G B, floats of 32 bits: 0 to 1 is code 0 to code 1023
///     YUV44432F   Y Cb Cr likewise, so neutral chroma is 0.5
///
/// v216 needs no stage: it is `UYVYv8` in memory.
#pragma once

#include "conversion/pipeline/EachVector.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

// --- 64-bit RGB ----------------------------------------------------------------------------------

// Both formats differ from `BGRAv8` only in the order of bytes, so one representation serves both
// sides of a stage, and each stage works in both directions.

namespace details {

class ReverseBytes {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        return shuffleBytes(x, v16i(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8));
    }
};

class ReverseLanes {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        return shuffleBytes(x, v16i(6, 7, 4, 5, 2, 3, 0, 1, 14, 15, 12, 13, 10, 11, 8, 9));
    }
};

} // namespace details

/// Turns BGRAv8 into b64a and b64a into BGRAv8: reverses the 8 bytes of a pixel. 2 pixels a step.
class PACK_BGRAv8_TO_B64A : public EachVector<BGRAv8, 2, details::ReverseBytes> {};

/// Turns L64A or l64a into BGRAv8 and BGRAv8 into them: reverses the 4 lanes of a pixel. 2 pixels a
/// step.
class UNPACK_L64A_TO_BGRAv8 : public EachVector<BGRAv8, 2, details::ReverseLanes> {};

// --- 4:2:2 in 16-bit samples ---------------------------------------------------------------------

/// Unpacks v212 to UYVYv8. 4 pixels a step: 16 bytes in, 1 vector out.
///
///     out = in >> 4
class UNPACK_V212_TO_UYVYv8 : public Kernel<4, 4> {
public:
    using Input = UYVYv8;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{shiftRightU16(in[0], 4)}};
    }
};

// --- Floats --------------------------------------------------------------------------------------

/// The scale between codes of `BITS` bits and floats.
template<int BITS>
inline constexpr float kCodesOfOne = (1 << BITS) - 1;

namespace details {

/// Converts four pixels of three floats to codes, two pixels per vector: lanes of 16 bits a, b, c
/// and one without meaning. Codes are rounded to nearest, ties to even, and saturate as signed
/// values.
template<int BITS>
KSX_INLINE Pixels<BGRAv8, 4> codesOf(const Pixels<Packed<12>, 4>& in)
{
    const auto codes = [](Vector pixel) KSX_INLINE_LAMBDA {
        return toNearest32(mul(floatsOfBits(pixel), v4f(kCodesOfOne<BITS>)));
    };
    // a0 b0 c0 a1 | b1 c1 a2 b2 | c2 a3 b3 c3
    return {{packSaturate32To16(codes(in[0]), codes(combineShiftRightBytes<12>(in[1], in[0]))),
             packSaturate32To16(codes(combineShiftRightBytes<8>(in[2], in[1])),
                                codes(shiftRightBytes<4>(in[2])))}};
}

} // namespace details

/// Unpacks RGB32F to BGRAv8 of `BITS` bits. 4 pixels a step: 48 bytes in, 2 vectors out. Alpha has
/// all bits set.
template<int BITS>
class UNPACK_RGB32F_TO_BGRAv8 : public Kernel<4, 4> {
public:
    using Input = Packed<12>;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto rgb = details::codesOf<BITS>(in);
        return {{bgra(rgb[0]), bgra(rgb[1])}};
    }

private:
    KSX_INLINE static Vector bgra(Vector rgb)
    {
        return bitOr(shuffleHigh16<2, 1, 0, 3>(shuffleLow16<2, 1, 0, 3>(rgb)), v8i_mask_7xxx3xxx);
    }
};

/// Unpacks YUV44432F to UYVY444v8 of `BITS` bits. 4 pixels a step: 48 bytes in, 2 vectors out.
/// Every pixel has its own chroma, and its own luma in both lanes.
template<int BITS>
class UNPACK_YUV44432F_TO_UYVY444v8 : public Kernel<4, 4> {
public:
    using Input = Packed<12>;
    using Output = UYVY444v8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto yuv = details::codesOf<BITS>(in);
        return {{uyvy(yuv[0]), uyvy(yuv[1])}};
    }

private:
    KSX_INLINE static Vector uyvy(Vector yuv)
    {
        return shuffleHigh16<1, 0, 2, 0>(shuffleLow16<1, 0, 2, 0>(yuv));
    }
};

/// Packs RGBv4 of `BITS` bits to RGB32F, limited to 0 and 1. 4 pixels a step: 3 vectors in, 48
/// bytes out. All 32 bits of a lane count.
template<int BITS>
class PACK_RGBv4_TO_RGB32F : public Kernel<4, 4> {
public:
    using Input = RGBv4;
    using Output = Packed<12>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const FloatVector r = floats(in[0]);
        const FloatVector g = floats(in[1]);
        const FloatVector b = floats(in[2]);
        const FloatVector rgLow = interleaveLow32(r, g);   // R0 G0 R1 G1
        const FloatVector rgHigh = interleaveHigh32(r, g); // R2 G2 R3 G3
        const FloatVector b0r1 = shuffle32<0, 0, 2, 2>(b, rgLow);
        const FloatVector g1b1 = shuffle32<3, 3, 1, 1>(rgLow, b);
        const FloatVector b2r3 = shuffle32<2, 2, 2, 2>(b, rgHigh);
        const FloatVector g3b3 = shuffle32<3, 3, 3, 3>(rgHigh, b);
        return {{bitsOf(shuffle32<0, 1, 0, 2>(rgLow, b0r1)),
                 bitsOf(shuffle32<0, 2, 0, 1>(g1b1, rgHigh)),
                 bitsOf(shuffle32<0, 2, 0, 2>(b2r3, g3b3))}};
    }

private:
    KSX_INLINE static FloatVector floats(Vector codes)
    {
        const FloatVector scaled = mul(toFloats(codes), v4f(1 / kCodesOfOne<BITS>));
        return min(max(scaled, v4f(0)), v4f(1));
    }
};

} // namespace KSX::PixelConversion
