/// From 8RGBA_FULL (RGBA): 8-bit RGBA, full range. Bytes R G B A.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From8RGBA = From8BitRGB<UNPACK_RGBA_TO_BGRAv8, UNPACK_RGBA_TO_RGBv4>;

// To 8-bit RGB: through RGBv4, which has no alpha, so the result is opaque. Block 4, 16 to RGB3.
CONVERSION(Convert_8RGBA_FULL_To_8ARGB_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGBA_FULL_To_8BGRA_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGBA_FULL_To_8RGB_FULL,
           BIND3<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 4.
CONVERSION(Convert_8RGBA_FULL_To_10XRGB_BE_SMPTE, From8RGBA::To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_LE_SMPTE, From8RGBA::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_BE_SMPTE, From8RGBA::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros in the low bits. Block 4.
CONVERSION(Convert_8RGBA_FULL_To_10XRGB_BE_FULL, From8RGBA::To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_LE_FULL, From8RGBA::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_BE_FULL, From8RGBA::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBA_BE_FULL,
           BIND<From8RGBA::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: filter the chroma, apply the matrix, pack. Block 8.
CONVERSION(Convert_8RGBA_FULL_To_8YUV422_SD, From8RGBA::To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGBA_FULL_To_8YUV422_HD, From8RGBA::To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 12.
CONVERSION(Convert_8RGBA_FULL_To_10YUV422_LE_SD, From8RGBA::To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUV422_LE_HD, From8RGBA::To10YUV422<FullRange709<10>>)

// To 10-bit 4:2:2 with alpha at video levels. Block 4.
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_SD, From8RGBA::To10YUVA422<ComputerRange601>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_HD, From8RGBA::To10YUVA422<ComputerRange709>)

// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first. Block 4.
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_SD,
           From8RGBA::To10YUVA422FullA<FullRange601<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_HD,
           From8RGBA::To10YUVA422FullA<FullRange709<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_2020,
           From8RGBA::To10YUVA422FullA<FullRange2020<10>>)

} // namespace KSX::PixelConversion
