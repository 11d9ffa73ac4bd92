/// The limit that holds 8-bit RGB within studio range.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/Vector.h"

namespace KSX::PixelConversion {

/// Limits every byte of 4-byte pixels, alpha too, to the studio range of 8 bits, black to white
/// (ITU-R BT.709-6, 3.4). 4 pixels a step: 16 bytes in, 16 bytes out. Plain.
///
///     out[i] = min(max(in[i], 16), 235)
class CLAMP_PACKED_RGB_TO_STUDIO : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        constexpr Vector kBlack = v4i(0x10101010);
        constexpr Vector kWhite = v4i(0xebebebeb);
        return {{minU8(maxU8(in[0], kBlack), kWhite)}};
    }
};

} // namespace KSX::PixelConversion
