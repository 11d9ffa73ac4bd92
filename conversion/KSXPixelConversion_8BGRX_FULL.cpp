/// From 8BGRX_FULL (BGRX): 8-bit BGR with an ignored fourth byte, full range. Bytes B G R -. Pixels
/// read as opaque.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From8BGRX = From8BitBGRAv8<UNPACK_BGRX_TO_BGRAv8>;

// To 10-bit 4:2:2 with alpha at video levels. Block 4.
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_SD, From8BGRX::To10YUVA422<ComputerRange601>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_HD, From8BGRX::To10YUVA422<ComputerRange709>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_2020, From8BGRX::To10YUVA422<ComputerRange2020>)

// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first. Block 4.
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_SD,
           From8BGRX::To10YUVA422FullA<FullRange601<10>>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_HD,
           From8BGRX::To10YUVA422FullA<FullRange709<10>>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_2020,
           From8BGRX::To10YUVA422FullA<FullRange2020<10>>)

} // namespace KSX::PixelConversion
