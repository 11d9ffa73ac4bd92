/// From 16ARGB_BE_FULL (b64a): 16-bit ARGB, full range. Big-endian samples A R G B.
#include "conversion/colour/BitDepth.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// The stage that packs also unpacks: it reverses bytes.

// To 8-bit RGB: rounded; alpha is kept. Block 4.
CONVERSION(Convert_16ARGB_BE_FULL_To_8BGRA_FULL,
           BIND3<PACK_BGRAv8_TO_B64A, BGRAv8_BITDEPTH<-8, 16>, PACK_BGRAv8_TO_BGRA>)

// To 12-bit RGB: the low 12 bits of each sample, so the source has to hold 12-bit codes there.
// Block 32.
CONVERSION(Convert_16ARGB_BE_FULL_To_12RGB_BE_FULL,
           BIND<PACK_BGRAv8_TO_B64A, PACK_BGRAv8_TO_R12B_SSSE3_T<R12KPackingOrderRGB>>)
CONVERSION(Convert_16ARGB_BE_FULL_To_12RGB_LE_FULL,
           BIND<PACK_BGRAv8_TO_B64A, PACK_BGRAv8_TO_R12L_SSSE3_T<R12KPackingOrderRGB>>)

} // namespace KSX::PixelConversion
