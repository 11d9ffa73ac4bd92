/// Chains from packed 12-bit RGB, which several source formats share.
#pragma once

#include "conversion/chains/Primaries.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

/// Full range. `UNPACK` gives opaque `BGRAv8`.
template<class UNPACK>
struct From12BitRGB {
    /// To 8-bit RGB: rounded, and limited by the pack.
    template<class PACK>
    using To8RGB = BIND3<UNPACK, BGRAv8_BITDEPTH<-4, 16>, PACK>;

    /// To 16-bit RGB: zeros in the low bits.
    using To16RGB = BIND3<UNPACK, BGRAv8_BITDEPTH<4, 16>, UNPACK_L64A_TO_BGRAv8>;

    /// To 8-bit 4:2:2: the matrix works at 12 bits.
    template<class RANGE>
    using To8YUV422 = BIND3<UNPACK, BGRAv8_TO_UYVYv8<RANGE, 12, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

    /// To 10-bit 4:2:2: the matrix works at 12 bits.
    template<class RANGE>
    using To10YUV422 = BIND3<UNPACK, BGRAv8_TO_UYVYv8<RANGE, 12, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

    /// To 8-bit RGB of other primaries: rounded to 8-bit codes, for which the curve has a table.
    template<class PACK>
    using From2020To709 =
        BIND4<UNPACK, BGRAv8_BITDEPTH<-4, 12>, PrimariesInBGRAv8<RGB_2020_TO_709>, PACK>;
};

} // namespace KSX::PixelConversion
