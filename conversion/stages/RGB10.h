/// Stages of 10-bit RGB in one word of 32 bits a pixel.
///
///     bits       31 30   29..20   19..10   9..0
///     R210       spare   R        G        B        10XRGB: r210, R210
///
///     bits       31..22   21..12   11..2   1 0
///     R10K       R        G        B       spare    10RGBX: R10l, R10L, R10b, R10B, R10A
///
/// Words of R210 are big-endian, those of R10K as the format's name says. Spare bits are ignored
/// when read and 0 when written; in R10A, where they stand for alpha, a stage behind the pack sets
/// them. Nothing here looks at the range of the values. All stages are plain.
///
/// A04l and A04L need no stage: they are `BGRAv8` as it lies in memory.
#pragma once

#include "conversion/ByteOrder.h"
#include "conversion/Kernel.h"
#include "conversion/VectorConstants.h"

#include <emmintrin.h>

namespace KSX::PixelConversion {

namespace details {

/// Cuts words into components of 10 bits; `B` is the lowest bit of the lowest one.
template<int B>
KSX_INLINE Pixels<RGBv4, 4> splitRGB10(__m128i words)
{
    const auto field = [&]<int BIT>() KSX_INLINE_LAMBDA {
        const __m128i shifted = _mm_srli_epi32(words, BIT);
        return BIT == 22 ? shifted : _mm_and_si128(shifted, v4i_0x3ff);
    };
    return {{field.template operator()<B + 20>(), field.template operator()<B + 10>(),
             field.template operator()<B>()}};
}

/// Joins components to words, each limited to 0 and 1023. Of a lane the low 16 bits count, as a
/// signed value.
template<int B>
KSX_INLINE __m128i joinRGB10(const Pixels<RGBv4, 4>& in)
{
    // Upper halves of a limit are 0, and so are those of what two limits leave.
    const auto field = [](__m128i x, int bit) KSX_INLINE_LAMBDA {
        return _mm_slli_epi32(_mm_max_epi16(_mm_min_epi16(x, v4i_0x3ff), v0), bit);
    };
    return _mm_or_si128(_mm_or_si128(field(in[0], B + 20), field(in[1], B + 10)), field(in[2], B));
}

} // namespace details

// --- R210 ----------------------------------------------------------------------------------------

/// Unpacks R210 to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv4 : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return details::splitRGB10<0>(swapWords(in[0]));
    }
};

/// Unpacks R210 to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv8 : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const UNPACK_R210_TO_RGBv4 unpack;
        const auto first = unpack.step({{in[0]}});
        const auto second = unpack.step({{in[1]}});
        return {{_mm_packs_epi32(first[0], second[0]), _mm_packs_epi32(first[1], second[1]),
                 _mm_packs_epi32(first[2], second[2])}};
    }
};

/// Packs RGBv4 to R210. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R210 : public Kernel<4, 4> {
public:
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{swapWords(details::joinRGB10<0>(in))}};
    }
};

/// Packs RGBv8 to R210, each component limited to 0 and 1023 as a signed value. 8 pixels a step: 3
/// vectors in, 32 bytes out.
class PACK_RGBv8_TO_R210 : public Kernel<8, 8> {
public:
    using Input = RGBv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const __m128i r = limited(in[0]), g = limited(in[1]), b = limited(in[2]);
        return {{words(_mm_unpacklo_epi16(b, g), _mm_unpacklo_epi16(v0, r)),
                 words(_mm_unpackhi_epi16(b, g), _mm_unpackhi_epi16(v0, r))}};
    }

private:
    KSX_INLINE static __m128i limited(__m128i x)
    {
        return _mm_max_epi16(_mm_min_epi16(x, v8i_0x3ff), v0);
    }

    /// B and G by a multiply-and-add, R from the upper half of its lane.
    KSX_INLINE static __m128i words(__m128i bg, __m128i r)
    {
        constexpr __m128i weights = v4i(1024 << 16 | 1);
        return swapWords(_mm_or_si128(_mm_madd_epi16(bg, weights), _mm_slli_epi32(r, 4)));
    }
};

// --- R10K ----------------------------------------------------------------------------------------

/// Unpacks little-endian R10K to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R10KLE_TO_RGBv4 : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return details::splitRGB10<2>(in[0]);
    }
};

/// Unpacks big-endian R10K to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R10KBE_TO_RGBv4 : public UNPACK_R10KLE_TO_RGBv4 {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return UNPACK_R10KLE_TO_RGBv4::step({{swapWords(in[0])}});
    }
};

/// Packs RGBv4 to little-endian R10K. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R10KLE : public Kernel<4, 4> {
public:
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{details::joinRGB10<2>(in)}};
    }
};

/// Packs RGBv4 to big-endian R10K. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R10KBE : public PACK_RGBv4_TO_R10KLE {
public:
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{swapWords(PACK_RGBv4_TO_R10KLE::step(in)[0])}};
    }
};

namespace details {

inline constexpr __m128i v4i_r10kpaddingbe = v4i(0x03000000);

} // namespace details

/// Sets the spare bits of packed big-endian R10K, which makes it R10A: alpha 3, opaque. 4 pixels a
/// step: 16 bytes in, 16 bytes out.
class PAD_R10KBE_WITH_1 : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{_mm_or_si128(in[0], details::v4i_r10kpaddingbe)}};
    }
};

} // namespace KSX::PixelConversion
