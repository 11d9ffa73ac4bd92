/// Fast forms of the stages of 10-bit 4:2:2 with a key.
#pragma once

#include "conversion/fast/Planes.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of `UNPACK_YUVA`. Unpacks ay10 or Ay10 to planes and rebuilds the chroma of
/// odd pixels by the same mean. 8 pixels a step: 32 bytes in, 4 vectors out. Looks ahead. The
/// fields lie in a word as those of R210 do: alpha as R, chroma as G, Y as B.
class UNPACK_YUVA_TO_YUVAv8 : public Kernel<8, 8> {
    using Fields = details::UNPACK_RGB10_TO_RGBv8<0, true>;

public:
    using Input = Packed<16, 4>;
    using Output = YUVAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in, Vector next) const
    {
        return unpack(Fields().step({{in[0], in[1]}}), Fields::greenOf(next));
    }

    KSX_INLINE Pixels<Output, 8> lastStep(const Pixels<Input, 8>& in) const
    {
        const auto fields = Fields().step({{in[0], in[1]}});
        return unpack(fields, shiftRightBytes<12>(fields[1]));
    }

private:
    /// `next` begins with the next chroma pair.
    KSX_INLINE static Pixels<Output, 8> unpack(const Pixels<RGBv8, 8>& fields, Vector next)
    {
        const Vector even = fields[1]; // Cb Cr of each pair
        const Vector odd = averageU16(even, combineShiftRightBytes<4>(next, even));
        return {{fields[2], bitOr(bitAnd(even, v4i_0xffff), shiftLeft32(odd, 16)),
                 bitOr(shiftRightU32(even, 16), bitAndNot(v4i_0xffff, odd)), fields[0]}};
    }
};

} // namespace KSX::PixelConversion::fast
