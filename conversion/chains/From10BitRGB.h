/// Chains from 10-bit RGB in one word a pixel, which several source formats share. `UNPACK` gives
/// `RGBv4`.
#pragma once

#include "conversion/chains/Primaries.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

/// Chains that both ranges share.
template<class UNPACK>
struct From10BitRGB {
    /// To 8-bit 4:2:2: the matrix works at 10 bits.
    template<class RANGE>
    using To8YUV422 =
        BIND4<UNPACK, RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 10, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

    /// To 10-bit 4:2:2.
    template<class RANGE>
    using To10YUV422 = BIND4<UNPACK, RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>,
                             PACK_UYVYv8_TO_V210>;
};

template<class UNPACK>
struct From10BitFullRGB : From10BitRGB<UNPACK> {
    /// To 8-bit RGB: rounded, and limited by the pack.
    template<class PACK>
    using To8RGB = BIND3<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK>;

    template<class PACK>
    using To10RGBStudio = BIND3<UNPACK, RGBv4_COMPUTER_TO_STUDIO<10, P0>, PACK>;

    /// To 8-bit RGB of other primaries: rounded to 8-bit codes, for which the curve has a table.
    template<class PACK>
    using From2020To709 =
        BIND4<UNPACK, RGBv4_BITDEPTH<-2, 10>, PrimariesInRGBv4<RGB_2020_TO_709>, PACK>;
};

template<class UNPACK>
struct From10BitStudioRGB : From10BitRGB<UNPACK> {
    /// To 8-bit RGB in full range, in one step.
    template<class PACK>
    using To8RGB = BIND3<UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK>;

    template<class PACK>
    using To10RGBFull = BIND3<UNPACK, RGBv4_STUDIO_TO_COMPUTER<10, P0>, PACK>;

    /// To 8-bit RGB through 10 bits in full range, which truncates before it rounds.
    template<class PACK>
    using To8RGBBy10BitFull = To10RGBFull<BIND<RGBv4_BITDEPTH<-2, 16>, PACK>>;

    /// To 8-bit RGB of other primaries.
    template<class PACK>
    using From2020To709 = To8RGB<BIND<PrimariesInRGBv4<RGB_2020_TO_709>, PACK>>;
};

} // namespace KSX::PixelConversion
