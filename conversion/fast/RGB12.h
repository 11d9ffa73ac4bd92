/// Fast forms of the stages of 12-bit RGB.
#pragma once

#include "conversion/stages/RGB12.h"

namespace KSX::PixelConversion::fast {

/// Rounds samples at the top of their lanes to 8 bits, and sets alpha to 255. A sum that would
/// carry over the top saturates and gives 255, as the pack after the listed stages does.
KSX_INLINE Vector roundTo8Bits(Vector lanes)
{
    constexpr Vector half = v8i(128, 128, 128, -256, 128, 128, 128, -256);
    return shiftRightU16(addSaturateU16(lanes, half), 8);
}

/// Runs in the place of `UNPACK_BGRA_TO_BGRAv8`, `BGRAv8_BITDEPTH<4, 16>` and
/// `PACK_BGRAv8_TO_R12L_SSSE3_T`. Converts BGRA to R12L; the low four bits of each sample are 0. 32
/// pixels a step.
///
/// A lane of 32 bits holds two samples. The second falls on whole bytes; a multiplication moves the
/// first to its place.
class BGRA_TO_R12L : public Kernel<32, 32> {
public:
    static constexpr unsigned kPart = 8;
    using Input = Packed<4>;
    using Output = Packed<36, 8>;

    KSX_INLINE Pixels<Output, kPart> step(const Pixels<Input, kPart>& in) const
    {
        return details::groupOf(joined<0>(in[0]), joined<8>(in[0]), joined<0>(in[1]),
                                joined<8>(in[1]));
    }

private:
    /// Joins the samples of two pixels, from byte `B` on.
    template<int B>
    KSX_INLINE static Vector joined(Vector bgra)
    {
        const Vector order = v16i(B + 2, -1, B + 1, -1, B + 0, -1, B + 6, -1, //
                                  B + 5, -1, B + 4, -1, -1, -1, -1, -1);
        return mulLow16(shuffleBytes(bgra, order), v4i(1 << 16 | 16));
    }
};

/// Runs in the place of `UNPACK_BGRA_TO_BGRAv8`, `BGRAv8_BITDEPTH<4, 16>` and
/// `PACK_BGRAv8_TO_R12B_SSSE3_T`. R12B is R12L with the bytes of each word reversed.
class BGRA_TO_R12B : public BGRA_TO_R12L {
public:
    KSX_INLINE Pixels<Output, kPart> step(const Pixels<Input, kPart>& in) const
    {
        const auto words = BGRA_TO_R12L::step(in);
        return {{reverseBytes32(words[0]), reverseBytes32(words[1]), reverseBytes32(words[2])}};
    }
};

/// Runs before a pack to bytes, in the place of `UNPACK_R12L_TO_BGRAv8_SSSE3_T` and
/// `BGRAv8_BITDEPTH<-4, 16>`. Unpacks R12L to BGRAv8 of 8 bits, opaque. Samples are rounded while
/// they are at the top of their lanes, so they need no shift to 12 bits.
template<class ORDER, std::uint16_t ALPHA>
class UNPACK_R12L_TO_8BIT_BGRAv8 : public UNPACK_R12L_TO_BGRAv8_SSSE3_T<ORDER, ALPHA> {
public:
    KSX_INLINE Pixels<BGRAv8, 8> step(const Pixels<Packed<36, 8>, 8>& in) const
    {
        auto pairs = this->pairsAtTop(in);
        for (Vector& lanes : pairs.v)
            lanes = roundTo8Bits(lanes);
        return pairs;
    }
};

/// Runs before a pack to bytes, in the place of `UNPACK_R12B_TO_BGRAv8_SSSE3_T` and
/// `BGRAv8_BITDEPTH<-4, 16>`. R12B is R12L with the bytes of each word reversed.
template<class ORDER, std::uint16_t ALPHA>
class UNPACK_R12B_TO_8BIT_BGRAv8 : public UNPACK_R12L_TO_8BIT_BGRAv8<ORDER, ALPHA> {
public:
    KSX_INLINE Pixels<BGRAv8, 8> step(const Pixels<Packed<36, 8>, 8>& in) const
    {
        return UNPACK_R12L_TO_8BIT_BGRAv8<ORDER, ALPHA>::step(
            {{reverseBytes32(in[0]), reverseBytes32(in[1]), reverseBytes32(in[2])}});
    }
};

} // namespace KSX::PixelConversion::fast
