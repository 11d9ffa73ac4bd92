/// Fast forms of RGB to 4:2:2.
#pragma once

#include "conversion/colour/RGBToYUV.h"
#include "conversion/pipeline/Representations.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of an unpack of bytes to `BGRAv8`, `BGRAv8_TO_UYVYv8` from full range to 8
/// bits, and the pack to 8-bit 4:2:2. The same sums and the same filter, but the filter runs on
/// bytes, and even and odd pixels are apart, so that the sums of a component are in the lanes of
/// their pixel pairs. No sum leaves video levels, so nothing has to be limited. `CHROMA_BYTE` is
/// the byte of every two that holds chroma. 8 pixels a step: 32 bytes in, 16 bytes out. Looks back.
template<class RANGE, class UNPACK, int CHROMA_BYTE>
class BYTES_TO_422 : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = Packed<4, 2>;

    KSX_INLINE Pixels<Output, 8> firstStep(const Pixels<Input, 8>& in)
    {
        m_oddPixels = shuffle32<0, 0, 0, 0>(in[0]);
        return step(in);
    }

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in)
    {
        const FloatVector low = floatsOfBits(in[0]), high = floatsOfBits(in[1]);
        const Vector even = bitsOf(shuffle32<0, 2, 0, 2>(low, high));
        const Vector odd = bitsOf(shuffle32<1, 3, 1, 3>(low, high));
        const Vector left = combineShiftRightBytes<12>(odd, m_oddPixels);
        m_oddPixels = odd;
        const Vector filtered = averageU8(even, averageU8(left, odd));

        const Vector y = joined(sums<0, 16>(even), sums<0, 16>(odd));
        const Vector chroma = joined(sums<1, 128>(filtered), sums<2, 128>(filtered));
        return {{CHROMA_BYTE == 0 ? bitOr(chroma, shiftLeft16(y, 8))
                                  : bitOr(y, shiftLeft16(chroma, 8))}};
    }

private:
    static constexpr int kScale = 15; // of the coefficients

    /// Sums for row `ROW` of the matrix, with `OFFSET` and the rounding term.
    template<int ROW, int OFFSET>
    KSX_INLINE static Vector sums(Vector pixels)
    {
        constexpr Vector evenBytes = coefficients(ROW, 0);
        constexpr Vector oddBytes = coefficients(ROW, 1);
        const Vector sum = add32(mulAddPairs16(bitAnd(pixels, v8i_0xff), evenBytes),
                                 mulAddPairs16(shiftRightU16(pixels, 8), oddBytes));
        return add32(sum, v4i((OFFSET << kScale) + (1 << (kScale - 1))));
    }

    /// The results of two sums: a lane of 16 bits of each, alternating.
    KSX_INLINE static Vector joined(Vector first, Vector second)
    {
        return bitOr(shiftRightU32(first, kScale),
                     bitAnd(shiftLeft32(second, 16 - kScale), v4i_0xffff0000));
    }

    /// The coefficients of bytes `byte` and `byte` + 2 of a pixel. Alpha has a weight of 0.
    static constexpr Vector coefficients(int row, int byte)
    {
        const FixedRow c = fixedRGB2YUVRow(RANGE::RGB2YUVMatrix(), row);
        std::int32_t ofByte[4] = {};
        for (int component = 0; component < 3; ++component)
            ofByte[UNPACK::kByteOf[component]] = c.at[component];
        return v4i(static_cast<std::uint32_t>(ofByte[byte + 2]) << 16 |
                   (static_cast<std::uint32_t>(ofByte[byte]) & 0xffff));
    }

    /// p1, p3, p5 and p7 of the previous step.
    Vector m_oddPixels = v0;
};

} // namespace KSX::PixelConversion::fast
