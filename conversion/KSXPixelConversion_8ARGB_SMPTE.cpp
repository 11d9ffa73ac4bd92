/// From 8ARGB_SMPTE (vRGB): 8-bit ARGB, studio range. Bytes A R G B.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB in full range: alpha is kept. Block 4.
template<class PACK>
using To8RGB = BIND3<UNPACK_ARGB_TO_BGRAv8, BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA<8, P1>, PACK>;

CONVERSION(Convert_8ARGB_SMPTE_To_8BGRA_FULL, To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_To_8RGBA_FULL, To8RGB<PACK_BGRAv8_TO_RGBA>)

// The same of other primaries. Block 4.
template<class MATRIX, class PACK>
using ToPrimaries =
    To8RGB<BIND<COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V1>, MATRIX, Rec709OETF<8, V1>>, PACK>>;
template<class PACK>
using From601To709 =
    By601Lines<ToPrimaries<RGB_601PAL_TO_709, PACK>, ToPrimaries<RGB_601NTSC_TO_709, PACK>>;

CONVERSION(Convert_8ARGB_SMPTE_601_To_8BGRA_FULL_709, From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_2020_To_8BGRA_FULL_709,
           ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_601_To_8RGBA_FULL_709, From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8ARGB_SMPTE_2020_To_8RGBA_FULL_709,
           ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
