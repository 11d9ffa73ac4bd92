/// Fast forms of the stages of 12-bit RGB.
#pragma once

#include "conversion/stages/RGB12.h"

namespace KSX::PixelConversion::fast {

/// Rounds samples at the top of their lanes to 8 bits, alpha to 255. What the rounding carries over
/// the top saturates there, as the pack would have it.
KSX_INLINE Vector roundTo8Bits(Vector lanes)
{
    constexpr Vector half = v8i(128, 128, 128, -256, 128, 128, 128, -256);
    return shiftRightU16(addSaturateU16(lanes, half), 8);
}

/// From BGRA straight to R12L, zeros below. The second sample of a lane falls on whole bytes, the
/// first one is multiplied into its place. 32 pixels a step.
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
    /// Two pixels from byte `B` on.
    template<int B>
    KSX_INLINE static Vector joined(Vector bgra)
    {
        const Vector order = v16i(B + 2, -1, B + 1, -1, B + 0, -1, B + 6, -1, //
                                  B + 5, -1, B + 4, -1, -1, -1, -1, -1);
        return mulLow16(shuffleBytes(bgra, order), v4i(1 << 16 | 16));
    }
};

/// From BGRA straight to R12B.
class BGRA_TO_R12B : public BGRA_TO_R12L {
public:
    KSX_INLINE Pixels<Output, kPart> step(const Pixels<Input, kPart>& in) const
    {
        const auto words = BGRA_TO_R12L::step(in);
        return {{reverseBytes32(words[0]), reverseBytes32(words[1]), reverseBytes32(words[2])}};
    }
};

/// Unpacks R12L to BGRAv8 of 8 bits, opaque.
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

/// Unpacks R12B to BGRAv8 of 8 bits, opaque.
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
