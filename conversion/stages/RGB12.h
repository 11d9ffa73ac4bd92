/// Stages of packed 12-bit RGB, 8 pixels in 36 bytes, and of S12L.
///
/// Samples in the order R0 G0 B0 R1 ... fill a stream of bits from the least significant one up:
/// sample k of a group has bits 12 k to 12 k + 11. The stream is nine words of 32 bits,
/// little-endian in R12L and R12l (12RGB_LE_FULL, 12RGB_LE_SMPTE) and big-endian in R12B
/// (12RGB_BE_FULL). So 2 pixels are 9 bytes of it:
///
///     byte    0   1       2   3   4       5   6   7       8
///             R0  R0 G0   G0  B0  B0 R1   R1  G1  G1 B1   B1      low nibble first
///
/// A row consists of whole groups. Pixels of the last group that are beyond the row's width have no
/// defined value. S12L is `BGRAv8` of 12 bits with 0 in the place of alpha. All stages are plain.
///
/// A step is 32 pixels, the smallest number that is a whole number of groups and of vectors. Stages
/// do a step in parts of one group, with vectors of its bytes 0 to 15, 16 to 31 and 20 to 35.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// The order of components in the stream. There is only one.
struct R12KComponentOrderRGB {};
struct R12KPackingOrderRGB {};

// --- Unpack --------------------------------------------------------------------------------------

/// Unpacks R12L or R12l to BGRAv8, with `ALPHA` in the alpha lanes. 32 pixels a step: 144 bytes in,
/// 16 vectors out.
template<class ORDER, std::uint16_t ALPHA>
class UNPACK_R12L_TO_BGRAv8_SSSE3_T : public Kernel<32, 32> {
public:
    static constexpr Range kRange = Range::Given;
    static constexpr unsigned kPart = 8;
    using Input = Packed<36, 8>;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, kPart> step(const Pixels<Input, kPart>& in) const
    {
        constexpr Vector alpha = v8i(0, 0, 0, ALPHA, 0, 0, 0, ALPHA);
        auto pairs = pairsAtTop(in);
        for (Vector& lanes : pairs.v)
            lanes = bitOr(shiftRightU16(lanes, 4), alpha);
        return pairs;
    }

protected:
    /// Two pixels from the 9 bytes that begin at byte `B`, samples at the top of their lanes. A
    /// sample begins at bit 0 or 4 of two bytes. The multiplication moves it to bit 4 in both cases
    /// and drops the bits above it.
    template<int B>
    KSX_INLINE static Vector pairAtTop(Vector stream)
    {
        const Vector bytes = v16i(B + 3, B + 4, B + 1, B + 2, B + 0, B + 1, -1, -1, //
                                  B + 7, B + 8, B + 6, B + 7, B + 4, B + 5, -1, -1);
        constexpr Vector factors = v8i(16, 1, 16, 0, 1, 16, 1, 0);
        return mulLow16(shuffleBytes(stream, bytes), factors);
    }

    KSX_INLINE static Pixels<Output, kPart> pairsAtTop(const Pixels<Input, kPart>& in)
    {
        return {{pairAtTop<0>(in[0]), pairAtTop<0>(combineShiftRightBytes<9>(in[1], in[0])),
                 pairAtTop<2>(in[1]), pairAtTop<7>(in[2])}};
    }
};

/// Unpacks R12B to BGRAv8, with `ALPHA` in the alpha lanes. 32 pixels a step: 144 bytes in, 16
/// vectors out.
template<class ORDER, std::uint16_t ALPHA>
class UNPACK_R12B_TO_BGRAv8_SSSE3_T : public UNPACK_R12L_TO_BGRAv8_SSSE3_T<ORDER, ALPHA> {
    using Base = UNPACK_R12L_TO_BGRAv8_SSSE3_T<ORDER, ALPHA>;

public:
    KSX_INLINE Pixels<BGRAv8, 8> step(const Pixels<Packed<36, 8>, 8>& in) const
    {
        return Base::step({{reverseBytes32(in[0]), reverseBytes32(in[1]), reverseBytes32(in[2])}});
    }
};

// --- Pack ----------------------------------------------------------------------------------------

namespace details {

/// Moves the 9 bytes of two pixels to byte `AT` of a vector and on, and drops those outside it. The
/// samples of `joined` lie two by two in the low 24 bits of three lanes.
template<int AT>
KSX_INLINE Vector placed(Vector joined)
{
    constexpr auto byte = [](int i) {
        const int from = i - AT;
        return static_cast<char>(from < 0 || from >= 9 ? -1 : from / 3 * 4 + from % 3);
    };
    return shuffleBytes(joined, v16i(byte(0), byte(1), byte(2), byte(3), byte(4), byte(5), byte(6),
                                     byte(7), byte(8), byte(9), byte(10), byte(11), byte(12),
                                     byte(13), byte(14), byte(15)));
}

/// Joins four pixel pairs to a group.
KSX_INLINE Pixels<Packed<36, 8>, 8> groupOf(Vector q0, Vector q1, Vector q2, Vector q3)
{
    return {{bitOr(placed<0>(q0), placed<9>(q1)),
             bitOr(bitOr(placed<-7>(q1), placed<2>(q2)), placed<11>(q3)),
             bitOr(placed<-2>(q2), placed<7>(q3))}};
}

} // namespace details

/// Packs BGRAv8 to R12L or R12l. 32 pixels a step: 16 vectors in, 144 bytes out. The low 12 bits of
/// each lane go into the stream. Nothing is limited, so 4096 becomes 0. Alpha is dropped.
template<class ORDER>
class PACK_BGRAv8_TO_R12L_SSSE3_T : public Kernel<32, 32> {
public:
    static constexpr unsigned kPart = 8;
    using Input = BGRAv8;
    using Output = Packed<36, 8>;

    KSX_INLINE Pixels<Output, kPart> step(const Pixels<Input, kPart>& in) const
    {
        return details::groupOf(joined(in[0]), joined(in[1]), joined(in[2]), joined(in[3]));
    }

private:
    /// Two samples in the low 24 bits of each of three lanes: R0 G0, B0 R1, G1 B1.
    KSX_INLINE static Vector joined(Vector bgra)
    {
        const Vector order = v16i(4, 5, 2, 3, 0, 1, 12, 13, 10, 11, 8, 9, -1, -1, -1, -1);
        constexpr Vector weights = v4i(4096 << 16 | 1);
        return mulAddPairs16(shuffleBytes(bitAnd(bgra, v8i_0xfff), order), weights);
    }
};

/// Packs BGRAv8 to R12B. 32 pixels a step: 16 vectors in, 144 bytes out.
template<class ORDER>
class PACK_BGRAv8_TO_R12B_SSSE3_T : public PACK_BGRAv8_TO_R12L_SSSE3_T<ORDER> {
public:
    KSX_INLINE Pixels<Packed<36, 8>, 8> step(const Pixels<BGRAv8, 8>& in) const
    {
        const auto words = PACK_BGRAv8_TO_R12L_SSSE3_T<ORDER>::step(in);
        return {{reverseBytes32(words[0]), reverseBytes32(words[1]), reverseBytes32(words[2])}};
    }
};

/// Packs BGRAv8 to S12L, whose colour lanes are the same and whose alpha is 0. 4 pixels a step: 2
/// vectors in, 32 bytes out.
template<bool>
class PACK_BGRAv8_TO_S12L : public Kernel<4, 4> {
public:
    using Input = BGRAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{bitAnd(in[0], v8i_mask_x654x210), bitAnd(in[1], v8i_mask_x654x210)}};
    }
};

} // namespace KSX::PixelConversion
