/// Chains from 4:2:2, which several source formats share.
#pragma once

#include "conversion/chains/Primaries.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

/// `UNPACK` rebuilds the chroma and gives `UYVY444v8` of `BITS` bits.
template<class UNPACK, int BITS>
struct From422 {
    /// To 8-bit RGB: apply the matrix, stretch to full range.
    template<class RANGE, class PACK>
    using To8RGB = BIND4<UNPACK, UYVY444v8_TO_RGBv4<RANGE, BITS, BITS, P1>,
                         RGBv4_RESCALE<BITS, false, 8, true, P1>, PACK>;

    /// To 10-bit RGB in studio range: from 8 bits, the matrix gives two more bits.
    template<class RANGE, class PACK>
    using To10RGBStudio = BIND3<UNPACK, UYVY444v8_TO_RGBv4<RANGE, BITS, 10, P1>, PACK>;

    /// To 10-bit RGB in full range: apply the matrix at the source's depth, stretch.
    template<class RANGE, class PACK>
    using To10RGBFull = BIND4<UNPACK, UYVY444v8_TO_RGBv4<RANGE, BITS, BITS, P1>,
                              RGBv4_RESCALE<BITS, false, 10, true, P1>, PACK>;

    /// To 8-bit RGB of other primaries.
    template<class RANGE, class MATRIX, class PACK>
    using ToPrimaries = To8RGB<RANGE, BIND<PrimariesInRGBv4<MATRIX>, PACK>>;
    template<class PACK>
    using From601To709 = By601Lines<ToPrimaries<StudioRange601, RGB_601PAL_TO_709, PACK>,
                                    ToPrimaries<StudioRange601, RGB_601NTSC_TO_709, PACK>>;
    template<class PACK>
    using From2020To709 = ToPrimaries<StudioRange2020, RGB_2020_TO_709, PACK>;

    /// To 4:2:2 of other primaries and the same depth, through 8-bit RGB in full range. The second
    /// matrix goes from there to the depth.
    template<class FROM, class MATRIX, class TO, class PACK>
    using To422 = ToPrimaries<FROM, MATRIX,
                              BIND3<RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<TO, 8, BITS, P1, C0>, PACK>>;
    template<class MATRIX, class PACK>
    using From601To709In422 = To422<StudioRange601, MATRIX, FullRange709<BITS>, PACK>;
    template<class MATRIX, class PACK>
    using From709To601In422 = To422<StudioRange709, MATRIX, FullRange601<BITS>, PACK>;
};

/// From 10-bit 4:2:2 with a key: alpha is kept. If alpha has video levels, results are truncated
/// (`P0`), else rounded.
template<bool FULLA>
struct From422WithKey {
    template<class RANGE, class PACK>
    using To8RGB = BIND3<UNPACK_YUVA<C0>, YUVA_TO_BGRAv8<RANGE, FULLA, FULLA ? P1 : P0, C0>, PACK>;
};

} // namespace KSX::PixelConversion
