/// From 8BGRX_FULL (BGRX): 8-bit BGR with an ignored fourth byte, full range. Bytes B G R -. Reads
/// as opaque.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

// To 10-bit 4:2:2 with alpha at video levels. Block 4.
template<class RANGE>
using To10YUVA422 = BIND3<UNPACK_BGRX_TO_BGRAv8, BGRAv8_TO_YUVA<RANGE, P0>, PACK_YUVA>;

CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_SD, To10YUVA422<ComputerRange601>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_HD, To10YUVA422<ComputerRange709>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_2020, To10YUVA422<ComputerRange2020>)

// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first. Block 4.
template<class RANGE>
using To10YUVA422FullA = BIND4<UNPACK_BGRX_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
                               BGRAv8_TO_YUVA_FullA<RANGE, 10, P1>, PACK_YUVA>;

CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_SD, To10YUVA422FullA<FullRange601<10>>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_HD, To10YUVA422FullA<FullRange709<10>>)
CONVERSION(Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_2020, To10YUVA422FullA<FullRange2020<10>>)

} // namespace KSX::PixelConversion
