/// From 8RGB_FULL (RGB3): 8-bit RGB without alpha, full range. Bytes R G B.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From8RGB = From8BitRGB<BIND<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_BGRAv8>,
                             BIND<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4>>;

// To 8-bit RGB with alpha: opaque. Block 16.
CONVERSION(Convert_8RGB_FULL_To_8ARGB_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGB_FULL_To_8BGRA_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGB_FULL_To_8RGBA_FULL, UNPACK_RGB_TO_RGBA_SSSE3)

// To 10-bit RGB in studio range. Block 16.
CONVERSION(Convert_8RGB_FULL_To_10XRGB_BE_SMPTE, From8RGB::To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_LE_SMPTE, From8RGB::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_BE_SMPTE, From8RGB::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros in the low bits. Block 16.
CONVERSION(Convert_8RGB_FULL_To_10XRGB_BE_FULL, From8RGB::To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_LE_FULL, From8RGB::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_BE_FULL, From8RGB::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBA_BE_FULL,
           BIND<From8RGB::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: filter the chroma, apply the matrix, pack. Block 16.
CONVERSION(Convert_8RGB_FULL_To_8YUV422_SD, From8RGB::To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGB_FULL_To_8YUV422_HD, From8RGB::To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 48.
CONVERSION(Convert_8RGB_FULL_To_10YUV422_LE_SD, From8RGB::To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8RGB_FULL_To_10YUV422_LE_HD, From8RGB::To10YUV422<FullRange709<10>>)

} // namespace KSX::PixelConversion
