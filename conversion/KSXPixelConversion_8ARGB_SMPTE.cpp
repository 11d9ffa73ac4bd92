/// From 8ARGB_SMPTE (vRGB): 8-bit ARGB, studio range. Bytes A R G B.
#include "conversion/Convert.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB in full range: alpha is kept. Block 4.
CONVERSION(
    Convert_8ARGB_SMPTE_To_8BGRA_FULL,
    BIND3<UNPACK_ARGB_TO_BGRAv8, BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_BGRA>)
CONVERSION(
    Convert_8ARGB_SMPTE_To_8RGBA_FULL,
    BIND3<UNPACK_ARGB_TO_BGRAv8, BGRAv8_STUDIO_TO_COMPUTER_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
