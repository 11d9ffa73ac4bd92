/// Stages of the 8-bit 4:2:2 formats.
///
///     address    0   1   2   3
///     2vuy       Cb  Y0  Cr  Y1      8YUV422
///     YUY2       Y0  Cb  Y1  Cr      8YUY422
///
/// A pair of pixels shares Cb and Cr, which are sited on the even one. A row of an odd width still
/// ends with a whole pair when written.
#pragma once

#include "conversion/colour/Flags.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// Exchanges the bytes of every pair: YUY2 to 2vuy and back.
KSX_INLINE Vector exchangeBytes(Vector v)
{
    return bitOr(shiftLeft16(v, 8), shiftRightU16(v, 8));
}

} // namespace details

// --- 4:2:2 ---------------------------------------------------------------------------------------

/// Unpacks 2vuy to UYVYv8. 8 pixels a step: 16 bytes in, 2 vectors out. Plain.
///
///     out[i] = in[i]
class UNPACK_UYVY_TO_UYVYv8 : public Kernel<8, 8> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<2>;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return {{interleaveLow8(in[0], v0), interleaveHigh8(in[0], v0)}};
    }
};

/// Unpacks YUY2 to UYVYv8. 8 pixels a step: 16 bytes in, 2 vectors out. Plain.
///
///     out[2i] = in[2i + 1]        out[2i + 1] = in[2i]
class UNPACK_YUY2_TO_UYVYv8 : public UNPACK_UYVY_TO_UYVYv8 {
public:
    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return UNPACK_UYVY_TO_UYVYv8::step({{details::exchangeBytes(in[0])}});
    }
};

/// Packs UYVYv8 to 2vuy. 8 pixels a step: 2 vectors in, 16 bytes out. Plain. Lanes saturate as
/// signed values: below 0 gives 0, above 255 gives 255.
class PACK_UYVYv8_TO_UYVY : public Kernel<8, 8> {
public:
    using Input = UYVYv8;
    using Output = Packed<4, 2>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return {{packSaturate16ToU8(in[0], in[1])}};
    }
};

/// Packs UYVYv8 to YUY2, saturating. 8 pixels a step: 2 vectors in, 16 bytes out. Plain.
class PACK_UYVYv8_TO_YUY2 : public PACK_UYVYv8_TO_UYVY {
public:
    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return {{details::exchangeBytes(PACK_UYVYv8_TO_UYVY::step(in)[0])}};
    }
};

// --- 4:4:4 ---------------------------------------------------------------------------------------

namespace details {

/// Unpacks 8-bit 4:2:2 to UYVY444v8. 8 pixels a step: 16 bytes in, 4 vectors out. Looks ahead: an
/// odd pixel's chroma is the mean, rounded up, of the pairs to its left and right.
///
///     C(2k) = stored pair k         C(2k + 1) = (C(2k) + C(2k + 2) + 1) >> 1
///
/// At the end of a row the last pair counts as its own successor. `CHROMA_BYTE` is the byte of
/// every two that holds chroma.
template<int CHROMA_BYTE>
class UNPACK_422_TO_UYVY444v8 : public Kernel<8, 8> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<2>;
    using Output = UYVY444v8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in, Vector next) const
    {
        return unpack(in[0], combineShiftRightBytes<4>(next, in[0]));
    }

    KSX_INLINE Pixels<Output, 8> lastStep(const Pixels<Input, 8>& in) const
    {
        return unpack(in[0], shuffle32<1, 2, 3, 3>(in[0]));
    }

private:
    template<int BYTE>
    KSX_INLINE static Vector field(Vector v)
    {
        return BYTE == 0 ? bitAnd(v, v8i_0xff) : shiftRightU16(v, 8);
    }

    /// `successors` has the next pair for each pair of `v`.
    KSX_INLINE static Pixels<Output, 8> unpack(Vector v, Vector successors)
    {
        const Vector evenChroma = field<CHROMA_BYTE>(v);
        const Vector oddChroma = averageU16(evenChroma, field<CHROMA_BYTE>(successors));
        const Vector luma = field<1 - CHROMA_BYTE>(v);

        const Vector chromaLow = interleaveLow32(evenChroma, oddChroma); // Cb Cr of 0 1 2 3
        const Vector chromaHigh = interleaveHigh32(evenChroma, oddChroma);
        const Vector lumaLow = interleaveLow32(luma, luma); // Y0 Y1 Y0 Y1 Y2 Y3 Y2 Y3
        const Vector lumaHigh = interleaveHigh32(luma, luma);
        return {{interleaveLow16(chromaLow, lumaLow), interleaveHigh16(chromaLow, lumaLow),
                 interleaveLow16(chromaHigh, lumaHigh), interleaveHigh16(chromaHigh, lumaHigh)}};
    }
};

} // namespace details

template<SseFlag>
class UNPACK_UYVY_TO_UYVY444v8_T : public details::UNPACK_422_TO_UYVY444v8<0> {
};

template<SseFlag>
class UNPACK_YUY2_TO_UYVY444v8_T : public details::UNPACK_422_TO_UYVY444v8<1> {
};

} // namespace KSX::PixelConversion
