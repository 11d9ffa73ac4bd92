/// Stages of the 8-bit RGB formats: bytes to the working representations and back, and moves
/// between those. No arithmetic on colour: a value that enters as 37 leaves as 37, but for the
/// saturation of a pack. All are plain.
///
///     address    0   1   2   3
///     ARGB       A   R   G   B      8ARGB_FULL, 8ARGB_SMPTE
///     BGRA       B   G   R   A      8BGRA_FULL, 8BGRA_SMPTE
///     BGRX       B   G   R   -      8BGRX_FULL
///     RGBA       R   G   B   A      8RGBA_FULL
///     RGB        R   G   B  |R      8RGB_FULL, 16 pixels in 48 bytes
///
/// Alpha survives where a pipeline stays in `BGRAv8` or swaps bytes; `RGBv4` and `RGBv8` have none,
/// and the packs from them write 255.
#pragma once

#include "conversion/ByteOrder.h"
#include "conversion/Pipeline.h"
#include "conversion/VectorConstants.h"

#include <tmmintrin.h>

namespace KSX::PixelConversion {

// --- To BGRAv8 -----------------------------------------------------------------------------------

/// Unpacks BGRA to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out.
///
///     out[i] = in[i]                                B, G, R, A, 0..255
class UNPACK_BGRA_TO_BGRAv8 : public Kernel<4, 4> {
public:
    static constexpr bool kGivesBytes = true;
    using Input = Packed<4>;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{_mm_unpacklo_epi8(in[0], v0), _mm_unpackhi_epi8(in[0], v0)}};
    }
};

namespace details {

/// Shuffles the lanes of both pixels of a `BGRAv8` vector alike.
template<int LANES>
KSX_INLINE __m128i shufflePixels(__m128i bgra)
{
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(bgra, LANES), LANES);
}

constexpr int kReversed = _MM_SHUFFLE(0, 1, 2, 3);
constexpr int kRedAndBlueExchanged = _MM_SHUFFLE(3, 0, 1, 2);

} // namespace details

/// Unpacks ARGB to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out.
///
///     out[4p + c] = in[4p + 3 - c]
class UNPACK_ARGB_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto argb = UNPACK_BGRA_TO_BGRAv8::step(in);
        return {{details::shufflePixels<details::kReversed>(argb[0]),
                 details::shufflePixels<details::kReversed>(argb[1])}};
    }
};

/// Unpacks RGBA to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out. Lanes 0 and 2 of a pixel
/// change places.
class UNPACK_RGBA_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const auto rgba = UNPACK_BGRA_TO_BGRAv8::step(in);
        return {{details::shufflePixels<details::kRedAndBlueExchanged>(rgba[0]),
                 details::shufflePixels<details::kRedAndBlueExchanged>(rgba[1])}};
    }
};

/// Unpacks BGRX to BGRAv8. 4 pixels a step: 16 bytes in, 2 vectors out. Alpha is 255 whatever the
/// fourth byte held.
class UNPACK_BGRX_TO_BGRAv8 : public UNPACK_BGRA_TO_BGRAv8 {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return UNPACK_BGRA_TO_BGRAv8::step({{_mm_or_si128(in[0], v4i_0xff000000)}});
    }
};

// --- To RGBv4 and RGBv8 --------------------------------------------------------------------------

namespace details {

/// Cuts 4-byte pixels into components. `R`, `G` and `B` are the bytes at which they lie in a pixel,
/// read as a little-endian word w:
///
///     out[c][p] = (w[p] >> 8 * byte of c) & 255
template<int R, int G, int B>
class UNPACK_BYTES_TO_RGBv4 : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = RGBv4;
    static constexpr bool kUnpacksBytesToRGBv4 = true;
    static constexpr int kBytes[3] = {R, G, B};

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{component<R>(in[0]), component<G>(in[0]), component<B>(in[0])}};
    }

private:
    template<int BYTE>
    KSX_INLINE static __m128i component(__m128i words)
    {
        const __m128i shifted = _mm_srli_epi32(words, 8 * BYTE);
        return BYTE == 3 ? shifted : _mm_and_si128(shifted, v4i_0xff);
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

/// The same to RGBv8. Byte shuffles take R and G of 4 pixels at once, and B of 4 into either half.
template<int R, int G, int B>
class UNPACK_BYTES_TO_RGBv8 : public Kernel<8, 8> {
public:
    static constexpr bool kGivesBytes = true;
    using Input = Packed<4>;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const __m128i redGreen = _mm_setr_epi8(R, -1, R + 4, -1, R + 8, -1, R + 12, -1, //
                                               G, -1, G + 4, -1, G + 8, -1, G + 12, -1);
        const __m128i blueLow = _mm_setr_epi8(B, -1, B + 4, -1, B + 8, -1, B + 12, -1, //
                                              -1, -1, -1, -1, -1, -1, -1, -1);
        const __m128i blueHigh = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, //
                                               B, -1, B + 4, -1, B + 8, -1, B + 12, -1);
        const __m128i first = _mm_shuffle_epi8(in[0], redGreen);
        const __m128i second = _mm_shuffle_epi8(in[1], redGreen);
        return {
            {_mm_unpacklo_epi64(first, second), _mm_unpackhi_epi64(first, second),
             _mm_or_si128(_mm_shuffle_epi8(in[0], blueLow), _mm_shuffle_epi8(in[1], blueHigh))}};
    }
};

} // namespace details

/// Unpacks BGRA to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out. Drops alpha.
class UNPACK_BGRA_TO_RGBv8 : public details::UNPACK_BYTES_TO_RGBv8<2, 1, 0> {};

template<class UNPACK>
requires(UNPACK::kUnpacksBytesToRGBv4) struct Twin<UNPACK> {
    using type =
        details::UNPACK_BYTES_TO_RGBv8<UNPACK::kBytes[0], UNPACK::kBytes[1], UNPACK::kBytes[2]>;
};

// --- Between representations ---------------------------------------------------------------------

/// Regroups BGRAv8 to RGBv4. 4 pixels a step: 2 vectors in, 3 out. Drops alpha.
class BGRAv8_TO_RGBv4 : public Kernel<4, 4> {
public:
    using Input = BGRAv8;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const __m128i evenPixels = _mm_unpacklo_epi16(in[0], in[1]);  // B0 B2 G0 G2 R0 R2 A0 A2
        const __m128i oddPixels = _mm_unpackhi_epi16(in[0], in[1]);   // B1 B3 G1 G3 R1 R3 A1 A3
        const __m128i bg = _mm_unpacklo_epi16(evenPixels, oddPixels); // B0..B3 G0..G3
        const __m128i ra = _mm_unpackhi_epi16(evenPixels, oddPixels); // R0..R3 A0..A3
        return {
            {_mm_unpacklo_epi16(ra, v0), _mm_unpackhi_epi16(bg, v0), _mm_unpacklo_epi16(bg, v0)}};
    }
};

/// Regroups RGBv4 to BGRAv8. 4 pixels a step: 3 vectors in, 2 out. The alpha lane is 65535; stages
/// behind see to it or do not look.
class RGBv4_TO_BGRAv8 : public Kernel<4, 4> {
public:
    using Input = RGBv4;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const __m128i bg = _mm_or_si128(in[2], _mm_slli_epi32(in[1], 16));
        const __m128i ra = _mm_or_si128(in[0], v4i_0xffff0000);
        return {{_mm_unpacklo_epi32(bg, ra), _mm_unpackhi_epi32(bg, ra)}};
    }
};

/// Regroups BGRAv8 to RGBAv8. 8 pixels a step: 4 vectors in, 4 out.
class BGRAv8_TO_RGBAv8 : public Kernel<8, 8> {
public:
    using Input = BGRAv8;
    using Output = RGBAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const __m128i even0 = _mm_unpacklo_epi16(in[0], in[1]); // B0 B2 G0 G2 R0 R2 A0 A2
        const __m128i odd0 = _mm_unpackhi_epi16(in[0], in[1]);  // B1 B3 G1 G3 R1 R3 A1 A3
        const __m128i even4 = _mm_unpacklo_epi16(in[2], in[3]);
        const __m128i odd4 = _mm_unpackhi_epi16(in[2], in[3]);
        const __m128i bg0 = _mm_unpacklo_epi16(even0, odd0); // B0..B3 G0..G3
        const __m128i bg4 = _mm_unpacklo_epi16(even4, odd4);
        const __m128i ra0 = _mm_unpackhi_epi16(even0, odd0); // R0..R3 A0..A3
        const __m128i ra4 = _mm_unpackhi_epi16(even4, odd4);
        return {{_mm_unpacklo_epi64(ra0, ra4), _mm_unpackhi_epi64(bg0, bg4),
                 _mm_unpacklo_epi64(bg0, bg4), _mm_unpackhi_epi64(ra0, ra4)}};
    }
};

/// Regroups RGBAv8 to BGRAv8. 8 pixels a step: 4 vectors in, 4 out.
class RGBAv8_TO_BGRAv8 : public Kernel<8, 8> {
public:
    using Input = RGBAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const __m128i bgLow = _mm_unpacklo_epi16(in[2], in[1]);
        const __m128i bgHigh = _mm_unpackhi_epi16(in[2], in[1]);
        const __m128i raLow = _mm_unpacklo_epi16(in[0], in[3]);
        const __m128i raHigh = _mm_unpackhi_epi16(in[0], in[3]);
        return {{_mm_unpacklo_epi32(bgLow, raLow), _mm_unpackhi_epi32(bgLow, raLow),
                 _mm_unpacklo_epi32(bgHigh, raHigh), _mm_unpackhi_epi32(bgHigh, raHigh)}};
    }
};

/// Regroups RGBv8 to BGRAv8. 8 pixels a step: 3 vectors in, 4 out. The alpha lane is 65535.
class RGBv8_TO_BGRAv8 : public Kernel<8, 8> {
public:
    using Input = RGBv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return RGBAv8_TO_BGRAv8().step({{in[0], in[1], in[2], vAllSet}});
    }
};

template<>
struct Twin<RGBv4_TO_BGRAv8> {
    using type = RGBv8_TO_BGRAv8;
};

// --- From BGRAv8 ---------------------------------------------------------------------------------

/// Packs BGRAv8 to BGRA. 4 pixels a step: 2 vectors in, 16 bytes out. Lanes saturate as signed
/// values: below 0 gives 0, above 255 gives 255.
class PACK_BGRAv8_TO_BGRA : public Kernel<4, 4> {
public:
    static constexpr bool kSaturatesTo8Bits = true;
    using Input = BGRAv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{_mm_packus_epi16(in[0], in[1])}};
    }
};

/// Packs BGRAv8 to RGBA, saturating. 4 pixels a step: 2 vectors in, 16 bytes out.
class PACK_BGRAv8_TO_RGBA : public PACK_BGRAv8_TO_BGRA {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return PACK_BGRAv8_TO_BGRA::step(
            {{details::shufflePixels<details::kRedAndBlueExchanged>(in[0]),
              details::shufflePixels<details::kRedAndBlueExchanged>(in[1])}});
    }
};

/// Packs BGRAv8 to ARGB, saturating. 4 pixels a step: 2 vectors in, 16 bytes out. One byte shuffle
/// behind the narrowing is cheaper than four lane shuffles before it.
class PACK_BGRAv8_TO_ARGB : public PACK_BGRAv8_TO_BGRA {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{swapWords(PACK_BGRAv8_TO_BGRA::step(in)[0])}};
    }
};

namespace details {

/// The same from planes with alpha. Narrowed first, two components a vector, then interleaved
/// twice. `R`, `G`, `B` and `A` are the bytes at which components lie in a pixel. 8 pixels a step:
/// 4 vectors in, 32 bytes out.
template<int R, int G, int B, int A>
class PACK_RGBAv8_TO_BYTES : public Kernel<8, 8> {
public:
    using Input = RGBAv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const __m128i c02 = _mm_packus_epi16(in[plane(0)], in[plane(2)]);
        const __m128i c13 = _mm_packus_epi16(in[plane(1)], in[plane(3)]);
        const __m128i c01 = _mm_unpacklo_epi8(c02, c13);
        const __m128i c23 = _mm_unpackhi_epi8(c02, c13);
        return {{_mm_unpacklo_epi16(c01, c23), _mm_unpackhi_epi16(c01, c23)}};
    }

private:
    static constexpr unsigned plane(int byte)
    {
        return byte == R ? 0 : byte == G ? 1 : byte == B ? 2 : 3;
    }
};

} // namespace details

template<>
struct Twin<PACK_BGRAv8_TO_BGRA> {
    using type = details::PACK_RGBAv8_TO_BYTES<2, 1, 0, 3>;
};
template<>
struct Twin<PACK_BGRAv8_TO_RGBA> {
    using type = details::PACK_RGBAv8_TO_BYTES<0, 1, 2, 3>;
};

// --- From RGBv4 and RGBv8 ------------------------------------------------------------------------

namespace details {

/// Joins components to 4-byte pixels, saturating, with an alpha of 255. `R`, `G`, `B` and `A` are
/// the bytes at which they lie in a pixel.
///
/// Of each lane the low 16 bits count. They become four lanes of 16 bits a pixel in the order of
/// the bytes, and are narrowed as signed values. Alpha goes in as 0x3fff and saturates to 255.
template<int R, int G, int B, int A>
class PACK_RGBv4_TO_BYTES : public Kernel<4, 4> {
public:
    using Input = RGBv4;
    using Output = Packed<4>;
    static constexpr bool kPacksRGBv4ToBytes = true;
    static constexpr int kBytes[4] = {R, G, B, A};

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const __m128i first = join(lane<0>(in), lane<1>(in));
        const __m128i second = join(lane<2>(in), lane<3>(in));
        return {{_mm_packus_epi16(_mm_unpacklo_epi32(first, second),
                                  _mm_unpackhi_epi32(first, second))}};
    }

private:
    /// The component that lies at `BYTE` of a pixel.
    template<int BYTE>
    KSX_INLINE static __m128i lane(const Pixels<Input, 4>& in)
    {
        return BYTE == R ? in[0] : BYTE == G ? in[1] : BYTE == B ? in[2] : v4i_0x3fff;
    }

    KSX_INLINE static __m128i join(__m128i low, __m128i high)
    {
        return _mm_or_si128(_mm_and_si128(low, v4i_0xffff), _mm_slli_epi32(high, 16));
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

/// The same from RGBv8.
template<int R, int G, int B, int A>
class PACK_RGBv8_TO_BYTES : public Kernel<8, 8> {
public:
    static constexpr int kLargestCode = 255;
    using Input = RGBv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const PACK_RGBAv8_TO_BYTES<R, G, B, A> pack;
        return pack.step({{in[0], in[1], in[2], v8i_0xff}});
    }
};

} // namespace details

/// Packs RGBv8 to BGRA, saturating, with an alpha of 255. 8 pixels a step: 3 vectors in, 32 bytes
/// out.
class PACK_RGBv8_TO_BGRA : public details::PACK_RGBv8_TO_BYTES<2, 1, 0, 3> {};

template<class PACK>
requires(PACK::kPacksRGBv4ToBytes) struct Twin<PACK> {
    using type = details::PACK_RGBv8_TO_BYTES<PACK::kBytes[0], PACK::kBytes[1], PACK::kBytes[2],
                                              PACK::kBytes[3]>;
};

// --- Bytes to bytes ------------------------------------------------------------------------------

/// Widens RGB to RGBA with an alpha of 255. 16 pixels a step: 48 bytes in, 64 bytes out.
///
/// Pieces of 12 bytes, cut at 0, 12, 24 and 36 across the vectors' boundaries, hold 4 pixels each;
/// one byte shuffle opens the gaps for alpha.
class UNPACK_RGB_TO_RGBA_SSSE3 : public Kernel<16, 16> {
public:
    using Input = Packed<3>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 16> step(const Pixels<Input, 16>& in) const
    {
        return {{widen(in[0]), widen(_mm_alignr_epi8(in[1], in[0], 12)),
                 widen(_mm_alignr_epi8(in[2], in[1], 8)), widen(_mm_srli_si128(in[2], 4))}};
    }

private:
    KSX_INLINE static __m128i widen(__m128i rgb)
    {
        const __m128i gaps = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
        return _mm_or_si128(_mm_shuffle_epi8(rgb, gaps), v4i_0xff000000);
    }
};

namespace details {

/// Narrows 4-byte pixels to RGB. `R`, `G` and `B` are the bytes at which components lie in a pixel.
/// 16 pixels a step: 64 bytes in, 48 bytes out.
///
/// One byte shuffle closes the gaps of each vector. The 12 bytes that are left lie in it where its
/// neighbours need them, some in two places: each output is cut from two such vectors side by side.
template<int R, int G, int B>
class PACK_BYTES_TO_RGB : public Kernel<16, 16> {
public:
    using Input = Packed<4>;
    using Output = Packed<3>;

    KSX_INLINE Pixels<Output, 16> step(const Pixels<Input, 16>& in) const
    {
        const __m128i q0 = closed<0>(in[0]);
        const __m128i q1 = closed<4>(in[1]);
        const __m128i q2 = closed<8>(in[2]);
        const __m128i q3 = closed<12>(in[3]);
        return {
            {_mm_alignr_epi8(q1, q0, 4), _mm_alignr_epi8(q2, q1, 8), _mm_alignr_epi8(q3, q2, 12)}};
    }

private:
    /// The bytes of 4 pixels without gaps, from byte 0 on below byte `SPLIT` and from byte 4 on
    /// above.
    template<int SPLIT>
    KSX_INLINE static __m128i closed(__m128i pixels)
    {
        constexpr auto at = [](int byte) {
            const int i = byte < SPLIT ? byte : byte - 4;
            const int component = i % 3 == 0 ? R : i % 3 == 1 ? G : B;
            return static_cast<char>(i < 0 ? -1 : i / 3 * 4 + component);
        };
        return _mm_shuffle_epi8(pixels, _mm_setr_epi8(at(0), at(1), at(2), at(3), at(4), at(5),
                                                      at(6), at(7), at(8), at(9), at(10), at(11),
                                                      at(12), at(13), at(14), at(15)));
    }
};

} // namespace details

/// Narrows RGBA to RGB, dropping alpha. 16 pixels a step: 64 bytes in, 48 bytes out.
class PACK_RGBA_TO_RGB : public details::PACK_BYTES_TO_RGB<0, 1, 2> {};

/// Reverses the 4 bytes of every pixel: ARGB to BGRA and back, alpha and all. 4 pixels a step: 16
/// bytes in, 16 bytes out.
class ENDIAN_SWAP_PACKED_RGB : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{swapWords(in[0])}};
    }
};

// --- Merged forms --------------------------------------------------------------------------------

namespace details {

/// Unpacks 4-byte pixels straight to planes with alpha. Components lie in a pixel as in BGRA, or in
/// ARGB, which is the `REVERSED` order. 8 pixels a step: 32 bytes in, 4 vectors out.
template<bool REVERSED>
class UNPACK_BYTES_TO_RGBAv8 : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = RGBAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        constexpr int R = REVERSED ? 1 : 2, G = 3 - R, B = REVERSED ? 3 : 0, A = 3 - B;
        const __m128i redBlue = _mm_setr_epi8(R, -1, R + 4, -1, R + 8, -1, R + 12, -1, //
                                              B, -1, B + 4, -1, B + 8, -1, B + 12, -1);
        const __m128i greenAlpha = _mm_setr_epi8(G, -1, G + 4, -1, G + 8, -1, G + 12, -1, //
                                                 A, -1, A + 4, -1, A + 8, -1, A + 12, -1);
        const __m128i rb0 = _mm_shuffle_epi8(in[0], redBlue);
        const __m128i rb4 = _mm_shuffle_epi8(in[1], redBlue);
        const __m128i ga0 = _mm_shuffle_epi8(in[0], greenAlpha);
        const __m128i ga4 = _mm_shuffle_epi8(in[1], greenAlpha);
        return {{_mm_unpacklo_epi64(rb0, rb4), _mm_unpacklo_epi64(ga0, ga4),
                 _mm_unpackhi_epi64(rb0, rb4), _mm_unpackhi_epi64(ga0, ga4)}};
    }
};

} // namespace details

template<>
struct MergedForm<UNPACK_BGRA_TO_BGRAv8, BGRAv8_TO_RGBAv8> {
    using type = StageList<details::UNPACK_BYTES_TO_RGBAv8<false>>;
};
template<>
struct MergedForm<UNPACK_ARGB_TO_BGRAv8, BGRAv8_TO_RGBAv8> {
    using type = StageList<details::UNPACK_BYTES_TO_RGBAv8<true>>;
};
template<class PACK>
requires(std::same_as<typename Twin<PACK>::type::Input, RGBAv8>) struct MergedForm<RGBAv8_TO_BGRAv8,
                                                                                   PACK> {
    using type = StageList<typename Twin<PACK>::type>;
};

/// From one order of bytes straight to another, with an alpha of 255. A byte can't saturate, so one
/// byte shuffle and an OR stand for the cut and the join. 4 pixels a step: 16 bytes in, 16 bytes
/// out.
template<class UNPACK, class PACK>
class REORDER_OPAQUE_BYTES : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{_mm_or_si128(_mm_shuffle_epi8(in[0], vector(kOrder)), vector(kOpaque))}};
    }

private:
    struct Bytes {
        std::int8_t at[16];
    };

    static constexpr Bytes order()
    {
        Bytes from{};
        for (int pixel = 0; pixel < 16; pixel += 4) {
            for (int c = 0; c < 3; ++c)
                from.at[pixel + PACK::kBytes[c]] =
                    static_cast<std::int8_t>(pixel + UNPACK::kBytes[c]);
            from.at[pixel + PACK::kBytes[3]] = -1; // a zero byte
        }
        return from;
    }

    static constexpr Bytes opaque()
    {
        Bytes alpha{};
        for (int pixel = 0; pixel < 16; pixel += 4)
            alpha.at[pixel + PACK::kBytes[3]] = -1;
        return alpha;
    }

    KSX_INLINE static __m128i vector(const Bytes& bytes)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.at));
    }

    alignas(16) static constexpr Bytes kOrder = order();
    alignas(16) static constexpr Bytes kOpaque = opaque();
};

template<class UNPACK, class PACK>
requires(UNPACK::kUnpacksBytesToRGBv4&& PACK::kPacksRGBv4ToBytes) struct MergedForm<UNPACK, PACK> {
    using type = StageList<REORDER_OPAQUE_BYTES<UNPACK, PACK>>;
};

// Straight to 3 bytes: the alpha that is added on the way is dropped again.
template<class UNPACK>
requires(
    UNPACK::kUnpacksBytesToRGBv4) struct MergedForm<UNPACK, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB> {
    using type = StageList<
        details::PACK_BYTES_TO_RGB<UNPACK::kBytes[0], UNPACK::kBytes[1], UNPACK::kBytes[2]>>;
};

} // namespace KSX::PixelConversion
