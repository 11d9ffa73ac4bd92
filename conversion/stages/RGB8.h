/// Stages of the 8-bit RGB formats: bytes to the working representations and back, and moves
/// between those. There is no arithmetic on colour: values stay as they are, except that packs
/// saturate. All stages are plain.
///
///     address    0   1   2   3
///     ARGB       A   R   G   B      8ARGB_FULL, 8ARGB_SMPTE
///     BGRA       B   G   R   A      8BGRA_FULL, 8BGRA_SMPTE
///     BGRX       B   G   R   -      8BGRX_FULL
///     RGBA       R   G   B   A      8RGBA_FULL
///     RGB        R   G   B  |R      8RGB_FULL, 16 pixels in 48 bytes
///
/// Alpha is kept if a pipeline stays in `BGRAv8` or swaps bytes; `RGBv4` and `RGBv8` have none, and
/// the packs from them write 255.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

// --- To BGRAv8 -----------------------------------------------------------------------------------

/// Unpacks BGRA to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out.
///
///     out[i] = in[i]                                B, G, R, A, 0..255
class UNPACK_BGRA_TO_BGRAv8 : public Kernel<4, 4> {
public:
    static constexpr int kByteOf[3] = {2, 1, 0}; ///< R, G, B
    static constexpr int kLargestCode = 255;
    static constexpr Range kRange = Range::Given;
    using Input = Packed<4>;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{interleaveLow8(in[0], v0), interleaveHigh8(in[0], v0)}};
    }
};

namespace details {

/// Shuffles the lanes of both pixels of a `BGRAv8` vector in the same way.
template<int A, int B, int C, int D>
KSX_INLINE Vector shufflePixels(Vector bgra)
{
    return shuffleHigh16<A, B, C, D>(shuffleLow16<A, B, C, D>(bgra));
}

} // namespace details

/// Unpacks ARGB to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out.
///
///     out[4p + c] = in[4p + 3 - c]
class UNPACK_ARGB_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    static constexpr int kByteOf[3] = {1, 2, 3};
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto argb = UNPACK_BGRA_TO_BGRAv8::step(in);
        return {{details::shufflePixels<3, 2, 1, 0>(argb[0]),
                 details::shufflePixels<3, 2, 1, 0>(argb[1])}};
    }
};

/// Unpacks RGBA to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out. Lanes 0 and 2 of a pixel
/// change places.
class UNPACK_RGBA_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    static constexpr int kByteOf[3] = {0, 1, 2};
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto rgba = UNPACK_BGRA_TO_BGRAv8::step(in);
        return {{details::shufflePixels<2, 1, 0, 3>(rgba[0]),
                 details::shufflePixels<2, 1, 0, 3>(rgba[1])}};
    }
};

/// Unpacks BGRX to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out. Alpha is 255 whatever the
/// fourth byte holds.
class UNPACK_BGRX_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return UNPACK_BGRA_TO_BGRAv8::step({{bitOr(in[0], v4i_0xff000000)}});
    }
};

// --- To RGBv4 and RGBv8 --------------------------------------------------------------------------

namespace details {

/// Splits 4-byte pixels into components. `R`, `G` and `B` are the bytes of the components in a
/// pixel, which is read as a little-endian word w:
///
///     out[c][p] = (w[p] >> 8 * byte of c) & 255
template<int R, int G, int B>
class UNPACK_BYTES_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr int kByteOf[3] = {R, G, B};
    static constexpr Range kRange = Range::Given;
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{component<R>(in[0]), component<G>(in[0]), component<B>(in[0])}};
    }

private:
    template<int BYTE>
    KSX_INLINE static Vector component(Vector words)
    {
        const Vector shifted = shiftRightU32(words, 8 * BYTE);
        return BYTE == 3 ? shifted : bitAnd(shifted, v4i_0xff);
    }
};

} // namespace details

/// Unpacks ARGB to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out. Drops alpha.
class UNPACK_ARGB_TO_RGBv4 : public details::UNPACK_BYTES_TO_RGBv4<1, 2, 3> {};

/// Unpacks BGRA to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out. Drops alpha.
class UNPACK_BGRA_TO_RGBv4 : public details::UNPACK_BYTES_TO_RGBv4<2, 1, 0> {};

/// Unpacks RGBA to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out. Drops alpha.
class UNPACK_RGBA_TO_RGBv4 : public details::UNPACK_BYTES_TO_RGBv4<0, 1, 2> {};

namespace details {

/// Unpacks 4-byte pixels to RGBv8. `R`, `G` and `B` are the bytes of the components in a pixel. One
/// byte shuffle takes R and G of 4 pixels. Two others take B of 4 pixels, to the lower or the upper
/// half.
template<int R, int G, int B>
class UNPACK_BYTES_TO_RGBv8 : public Kernel<8, 8> {
public:
    static constexpr int kLargestCode = 255;
    static constexpr Range kRange = Range::Given;
    using Input = Packed<4>;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector redGreen = v16i(R, -1, R + 4, -1, R + 8, -1, R + 12, -1, //
                                     G, -1, G + 4, -1, G + 8, -1, G + 12, -1);
        const Vector blueLow = v16i(B, -1, B + 4, -1, B + 8, -1, B + 12, -1, //
                                    -1, -1, -1, -1, -1, -1, -1, -1);
        const Vector blueHigh = v16i(-1, -1, -1, -1, -1, -1, -1, -1, //
                                     B, -1, B + 4, -1, B + 8, -1, B + 12, -1);
        const Vector first = shuffleBytes(in[0], redGreen);
        const Vector second = shuffleBytes(in[1], redGreen);
        return {{interleaveLow64(first, second), interleaveHigh64(first, second),
                 bitOr(shuffleBytes(in[0], blueLow), shuffleBytes(in[1], blueHigh))}};
    }
};

} // namespace details

/// Unpacks BGRA to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out. Drops alpha.
class UNPACK_BGRA_TO_RGBv8 : public details::UNPACK_BYTES_TO_RGBv8<2, 1, 0> {};

// --- Between representations ---------------------------------------------------------------------

/// Regroups BGRAv8 to RGBv4. 4 pixels a step: 2 vectors in, 3 out. Drops alpha.
class BGRAv8_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Kept;
    using Input = BGRAv8;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector evenPixels = interleaveLow16(in[0], in[1]);   // B0 B2 G0 G2 R0 R2 A0 A2
        const Vector oddPixels = interleaveHigh16(in[0], in[1]);   // B1 B3 G1 G3 R1 R3 A1 A3
        const Vector bg = interleaveLow16(evenPixels, oddPixels);  // B0..B3 G0..G3
        const Vector ra = interleaveHigh16(evenPixels, oddPixels); // R0..R3 A0..A3
        return {{interleaveLow16(ra, v0), interleaveHigh16(bg, v0), interleaveLow16(bg, v0)}};
    }
};

/// Regroups RGBv4 to BGRAv8. 4 pixels a step: 3 vectors in, 2 out. The alpha lane is 65535; the
/// stages after it set it or ignore it.
class RGBv4_TO_BGRAv8 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Kept;
    using Input = RGBv4;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector bg = bitOr(in[2], shiftLeft32(in[1], 16));
        const Vector ra = bitOr(in[0], v4i_0xffff0000);
        return {{interleaveLow32(bg, ra), interleaveHigh32(bg, ra)}};
    }
};

// --- From BGRAv8 ---------------------------------------------------------------------------------

/// Packs BGRAv8 to BGRA. 4 pixels a step: 2 vectors in, 16 bytes out. Lanes saturate as signed
/// values: below 0 gives 0, above 255 gives 255.
class PACK_BGRAv8_TO_BGRA : public Kernel<4, 4> {
public:
    static constexpr int kLargestCode = 255;
    using Input = BGRAv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{packSaturate16ToU8(in[0], in[1])}};
    }
};

/// Packs BGRAv8 to RGBA, saturating. 4 pixels a step: 2 vectors in, 16 bytes out.
class PACK_BGRAv8_TO_RGBA : public PACK_BGRAv8_TO_BGRA {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return PACK_BGRAv8_TO_BGRA::step({{details::shufflePixels<2, 1, 0, 3>(in[0]),
                                           details::shufflePixels<2, 1, 0, 3>(in[1])}});
    }
};

/// Packs BGRAv8 to ARGB, saturating. 4 pixels a step: 2 vectors in, 16 bytes out. One byte shuffle
/// after the narrowing is cheaper than four lane shuffles before it.
class PACK_BGRAv8_TO_ARGB : public PACK_BGRAv8_TO_BGRA {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(PACK_BGRAv8_TO_BGRA::step(in)[0])}};
    }
};

// --- From RGBv4 and RGBv8 ------------------------------------------------------------------------

namespace details {

/// Joins components to 4-byte pixels, saturating, with an alpha of 255. `R`, `G`, `B` and `A` are
/// the bytes of the components in a pixel.
///
/// Only the low 16 bits of each lane count. They become four lanes of 16 bits per pixel, in the
/// order of the bytes, and are narrowed as signed values. Alpha starts as 0x3fff and saturates to
/// 255.
template<int R, int G, int B, int A>
class PACK_RGBv4_TO_BYTES : public Kernel<4, 4> {
public:
    static constexpr int kByteOf[4] = {R, G, B, A};
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector first = join(lane<0>(in), lane<1>(in));
        const Vector second = join(lane<2>(in), lane<3>(in));
        return {
            {packSaturate16ToU8(interleaveLow32(first, second), interleaveHigh32(first, second))}};
    }

private:
    /// The component that lies at `BYTE` of a pixel.
    template<int BYTE>
    KSX_INLINE static Vector lane(const Pixels<Input, 4>& in)
    {
        return BYTE == R ? in[0] : BYTE == G ? in[1] : BYTE == B ? in[2] : v4i_0x3fff;
    }

    KSX_INLINE static Vector join(Vector low, Vector high)
    {
        return bitOr(bitAnd(low, v4i_0xffff), shiftLeft32(high, 16));
    }
};

} // namespace details

/// Packs RGBv4 to BGRA. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_BGRA : public details::PACK_RGBv4_TO_BYTES<2, 1, 0, 3> {};

/// Packs RGBv4 to ARGB. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_ARGB : public details::PACK_RGBv4_TO_BYTES<1, 2, 3, 0> {};

/// Packs RGBv4 to RGBA. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_RGBA : public details::PACK_RGBv4_TO_BYTES<0, 1, 2, 3> {};

namespace details {

/// Packs planes of 8 pixels to 4-byte pixels, saturating. Lanes are narrowed first, two components
/// per vector, then interleaved twice. `R`, `G`, `B` and `A` are the bytes of the components in a
/// pixel.
template<int R, int G, int B, int A>
KSX_INLINE Pixels<Packed<4>, 8> interleaveBytes(Vector r, Vector g, Vector b, Vector a)
{
    const auto at = [&](int byte) KSX_INLINE_LAMBDA {
        return byte == R ? r : byte == G ? g : byte == B ? b : a;
    };
    const Vector c02 = packSaturate16ToU8(at(0), at(2));
    const Vector c13 = packSaturate16ToU8(at(1), at(3));
    const Vector c01 = interleaveLow8(c02, c13);
    const Vector c23 = interleaveHigh8(c02, c13);
    return {{interleaveLow16(c01, c23), interleaveHigh16(c01, c23)}};
}

/// Packs RGBv8 to 4-byte pixels, saturating, with an alpha of 255. `R`, `G`, `B` and `A` are the
/// bytes of the components in a pixel.
template<int R, int G, int B, int A>
class PACK_RGBv8_TO_BYTES : public Kernel<8, 8> {
public:
    static constexpr int kLargestCode = 255;
    using Input = RGBv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return interleaveBytes<R, G, B, A>(in[0], in[1], in[2], v8i_0xff);
    }
};

} // namespace details

/// Packs RGBv8 to BGRA, saturating, with an alpha of 255. 8 pixels a step: 3 vectors in, 32 bytes
/// out.
class PACK_RGBv8_TO_BGRA : public details::PACK_RGBv8_TO_BYTES<2, 1, 0, 3> {};

// --- Bytes to bytes ------------------------------------------------------------------------------

/// Widens RGB to RGBA with an alpha of 255. 16 pixels a step: 48 bytes in, 64 bytes out.
///
/// Pieces of 12 bytes, taken at 0, 12, 24 and 36 across the boundaries of vectors, hold 4 pixels
/// each. One byte shuffle opens the gaps for alpha.
class UNPACK_RGB_TO_RGBA_SSSE3 : public Kernel<16, 16> {
public:
    using Input = Packed<3>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 16> step(const Pixels<Input, 16>& in) const
    {
        return {{widen(in[0]), widen(combineShiftRightBytes<12>(in[1], in[0])),
                 widen(combineShiftRightBytes<8>(in[2], in[1])), widen(shiftRightBytes<4>(in[2]))}};
    }

private:
    KSX_INLINE static Vector widen(Vector rgb)
    {
        const Vector gaps = v16i(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
        return bitOr(shuffleBytes(rgb, gaps), v4i_0xff000000);
    }
};

namespace details {

/// Narrows 4-byte pixels to RGB. `R`, `G` and `B` are the bytes of the components in a pixel. 16
/// pixels a step: 64 bytes in, 48 bytes out.
///
/// One byte shuffle closes the gaps of each vector. It puts the 12 bytes that remain where the
/// outputs need them, some in two places. Each output is 16 bytes taken across two such vectors.
template<int R, int G, int B>
class PACK_BYTES_TO_RGB : public Kernel<16, 16> {
public:
    using Input = Packed<4>;
    using Output = Packed<3>;

    KSX_INLINE Pixels<Output, 16> step(const Pixels<Input, 16>& in) const
    {
        const Vector q0 = closed<0>(in[0]);
        const Vector q1 = closed<4>(in[1]);
        const Vector q2 = closed<8>(in[2]);
        const Vector q3 = closed<12>(in[3]);
        return {{combineShiftRightBytes<4>(q1, q0), combineShiftRightBytes<8>(q2, q1),
                 combineShiftRightBytes<12>(q3, q2)}};
    }

private:
    /// The bytes of 4 pixels without gaps: byte i of them goes to byte i of the result if i is
    /// below `SPLIT`, and to byte i + 4 if i + 4 is at least `SPLIT`.
    template<int SPLIT>
    KSX_INLINE static Vector closed(Vector pixels)
    {
        constexpr auto at = [](int byte) {
            const int i = byte < SPLIT ? byte : byte - 4;
            const int component = i % 3 == 0 ? R : i % 3 == 1 ? G : B;
            return static_cast<char>(i < 0 ? -1 : i / 3 * 4 + component);
        };
        return shuffleBytes(pixels,
                            v16i(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8),
                                 at(9), at(10), at(11), at(12), at(13), at(14), at(15)));
    }
};

} // namespace details

/// Narrows RGBA to RGB, dropping alpha. 16 pixels a step: 64 bytes in, 48 bytes out.
class PACK_RGBA_TO_RGB : public details::PACK_BYTES_TO_RGB<0, 1, 2> {};

/// Reverses the 4 bytes of every pixel: ARGB to BGRA and back, alpha too. 4 pixels a step: 16 bytes
/// in, 16 bytes out.
class ENDIAN_SWAP_PACKED_RGB : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(in[0])}};
    }
};

} // namespace KSX::PixelConversion
