/// From 12RGB_LE_SMPTE (R12l): 12-bit RGB, studio range. Groups of 8 pixels in nine little-endian
/// words.
#include "conversion/chains/Primaries.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/Rescale.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

struct From12RGBStudio {
    /// Limited to video levels. Alpha is white, and is stretched with the colour.
    using Unpack = BIND<UNPACK_R12L_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 3760>,
                        BGRAv8_CLAMP_TO_STUDIO<12>>;

    template<class PACK>
    using To8RGB = BIND3<Unpack, BGRAv8_RESCALE<12, false, 8, true, P1>, PACK>;

    template<class PACK>
    using From2020To709 = To8RGB<BIND<PrimariesInBGRAv8<RGB_2020_TO_709>, PACK>>;
};

// To 8-bit RGB in full range, in one step. Block 32.
CONVERSION(Convert_12RGB_LE_SMPTE_To_8BGRA_FULL, From12RGBStudio::To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_LE_SMPTE_To_8RGBA_FULL, From12RGBStudio::To8RGB<PACK_BGRAv8_TO_RGBA>)

// To 16-bit RGB in full range: stretched at 12 bits, zeros in the low bits. Block 32.
CONVERSION(Convert_12RGB_LE_SMPTE_To_16ARGB_BE_FULL,
           BIND4<From12RGBStudio::Unpack, BGRAv8_RESCALE<12, false, 12, true, P1>,
                 BGRAv8_BITDEPTH<4, 12>, PACK_BGRAv8_TO_B64A>)

// To 8-bit RGB of other primaries. Block 32.
CONVERSION(Convert_12RGB_LE_SMPTE_2020_To_8BGRA_FULL_709,
           From12RGBStudio::From2020To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_LE_SMPTE_2020_To_8RGBA_FULL_709,
           From12RGBStudio::From2020To709<PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
