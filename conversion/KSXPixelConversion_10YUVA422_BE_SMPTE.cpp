/// From 10YUVA422_BE_SMPTE (ay10): 10-bit 4:2:2 with alpha, both in studio range. A big-endian word
/// a pixel.
#include "conversion/chains/From422.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

using From10YUVA422 = From422WithKey<false>;

// To 8-bit RGB: alpha is stretched with the colour. Block 4.
CONVERSION(Convert_10YUVA422_BE_SMPTE_SD_To_8BGRA_FULL,
           From10YUVA422::To8RGB<ComputerRange601, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_HD_To_8BGRA_FULL,
           From10YUVA422::To8RGB<ComputerRange709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_10YUVA422_BE_2020_To_8BGRA_FULL,
           From10YUVA422::To8RGB<ComputerRange2020, PACK_BGRAv8_TO_BGRA>)

} // namespace KSX::PixelConversion
