/// From 10YUVA422_BE_SMPTE (ay10): 10-bit 4:2:2 with alpha, both in studio range. A big-endian word
/// a pixel.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

// To 8-bit RGB: alpha is stretched with the colour. Block 4.
template<class RANGE>
using To8BGRA = BIND3<UNPACK_YUVA<C0>, YUVA_TO_BGRAv8<RANGE, false, P0, C0>, PACK_BGRAv8_TO_BGRA>;

CONVERSION(Convert_10YUVA422_BE_SMPTE_SD_To_8BGRA_FULL, To8BGRA<ComputerRange601>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_HD_To_8BGRA_FULL, To8BGRA<ComputerRange709>)
CONVERSION(Convert_10YUVA422_BE_2020_To_8BGRA_FULL, To8BGRA<ComputerRange2020>)

} // namespace KSX::PixelConversion
