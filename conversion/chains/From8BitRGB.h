/// Chains from 8-bit RGB, which several source formats share.
#pragma once

#include "conversion/chains/Primaries.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

/// Full range, unpacked to `RGBv4`, which has no alpha.
template<class UNPACK>
struct From8BitRGBv4 {
    /// To 10-bit RGB in studio range.
    template<class PACK>
    using To10RGBStudio = BIND3<UNPACK, RGBv4_RESCALE<8, true, 10, false, P1>, PACK>;

    /// To 10-bit RGB in full range: zeros in the low bits.
    template<class PACK>
    using To10RGBFull = BIND3<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK>;
};

/// Full range, unpacked to `BGRAv8`.
template<class UNPACK>
struct From8BitBGRAv8 {
    /// To 8-bit 4:2:2: filter the chroma, apply the matrix, pack.
    template<class RANGE>
    using To8YUV422 = BIND3<UNPACK, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

    /// To 10-bit 4:2:2: stretched to 10 bits first.
    template<class RANGE>
    using To10YUV422 = BIND4<UNPACK, BGRAv8_RESCALE<8, true, 10, true, P1>,
                             BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

    /// To 10-bit 4:2:2 with alpha at video levels.
    template<class RANGE>
    using To10YUVA422 = BIND3<UNPACK, BGRAv8_TO_YUVA<RANGE, P0>, PACK_YUVA>;

    /// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first.
    template<class RANGE>
    using To10YUVA422FullA = BIND4<UNPACK, BGRAv8_RESCALE<8, true, 10, true, P1>,
                                   BGRAv8_TO_YUVA_FullA<RANGE, 10, P1>, PACK_YUVA>;

    /// To 8-bit RGB of other primaries: alpha is kept.
    template<class MATRIX, class PACK>
    using ToPrimaries = BIND3<UNPACK, PrimariesInBGRAv8<MATRIX>, PACK>;
    template<class PACK>
    using From601To709 =
        By601Lines<ToPrimaries<RGB_601PAL_TO_709, PACK>, ToPrimaries<RGB_601NTSC_TO_709, PACK>>;
};

/// Full range. The first argument unpacks to `BGRAv8`, the second to `RGBv4`.
template<class TO_BGRAv8, class TO_RGBv4>
struct From8BitRGB : From8BitBGRAv8<TO_BGRAv8>, From8BitRGBv4<TO_RGBv4> {
};

/// Studio range, converted to full range first. Alpha is kept.
template<class UNPACK>
struct From8BitStudioRGB {
    template<class PACK>
    using To8RGB = BIND3<UNPACK, BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA<8, P1>, PACK>;

    template<class MATRIX, class PACK>
    using ToPrimaries = To8RGB<BIND<PrimariesInBGRAv8<MATRIX>, PACK>>;
    template<class PACK>
    using From601To709 =
        By601Lines<ToPrimaries<RGB_601PAL_TO_709, PACK>, ToPrimaries<RGB_601NTSC_TO_709, PACK>>;
};

} // namespace KSX::PixelConversion
