/// Fast forms of the stages of 8-bit 4:2:2.
#pragma once

#include "conversion/fast/Planes.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of an unpack of 8-bit 4:2:2 and the pack to the other byte order. A byte
/// cannot saturate in the pack, so one byte shuffle gives the same. 8 pixels a step: 16 bytes in,
/// 16 bytes out.
class EXCHANGE_BYTES : public Kernel<8, 8> {
public:
    using Input = Packed<2>;
    using Output = Packed<4, 2>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector order = v16i(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
        return {{shuffleBytes(in[0], order)}};
    }
};

/// Runs in the place of `UNPACK_UYVY_TO_UYVY444v8_T` and `UNPACK_YUY2_TO_UYVY444v8_T`. Unpacks
/// 8-bit 4:2:2 to planes and rebuilds the chroma of odd pixels by the same mean. `CHROMA_BYTE` is
/// the byte of every two that holds chroma. 8 pixels a step: 16 bytes in, 3 vectors out. Looks
/// ahead.
template<int CHROMA_BYTE>
class UNPACK_422_TO_YUVv8 : public Kernel<8, 8> {
public:
    using Input = Packed<2>;
    using Output = YUVv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in, Vector next) const
    {
        return unpack(in[0], combineShiftRightBytes<4>(next, in[0]));
    }

    KSX_INLINE Pixels<Output, 8> lastStep(const Pixels<Input, 8>& in) const
    {
        return unpack(in[0], shuffle32<1, 2, 3, 3>(in[0]));
    }

private:
    /// Averages all bytes, of which only those of chroma are used. The means and the stored bytes
    /// make the chroma of a pixel pair: Cb even, Cb odd, Cr even, Cr odd. Bytes less 128 are the
    /// bytes with their top bit inverted, read as signed; they go to the top of their lanes.
    KSX_INLINE static Pixels<Output, 8> unpack(Vector v, Vector successors)
    {
        const Vector mean = averageU8(v, successors);
        const Vector chroma = CHROMA_BYTE == 0
                                  ? bitOr(bitAnd(v, v8i_0xff), shiftLeft16(mean, 8))
                                  : bitOr(shiftRightU16(v, 8), bitAndNot(v8i_0xff, mean));
        const Vector luma = mulAddPairsU8(v, v8i(CHROMA_BYTE == 0 ? 64 << 8 : 64));
        const Vector around0 = bitXor(chroma, v8i(0x8080));
        const Vector cb = v16i(-1, 0, -1, 1, -1, 4, -1, 5, -1, 8, -1, 9, -1, 12, -1, 13);
        const Vector cr = v16i(-1, 2, -1, 3, -1, 6, -1, 7, -1, 10, -1, 11, -1, 14, -1, 15);
        return {{luma, shuffleBytes(around0, cb), shuffleBytes(around0, cr)}};
    }
};

} // namespace KSX::PixelConversion::fast
