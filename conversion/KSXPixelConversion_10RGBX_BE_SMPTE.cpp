/// From 10RGBX_BE_SMPTE (R10b): 10-bit RGB, studio range. A big-endian word, spare bits at the
/// bottom.
#include "conversion/chains/From10BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From10RGBXBEStudio = From10BitStudioRGB<UNPACK_R10KBE_TO_RGBv4>;

// To 8-bit RGB in full range, in one step. Block 4, 16 to RGB3.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8ARGB_FULL, From10RGBXBEStudio::To8RGB<PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8BGRA_FULL, From10RGBXBEStudio::To8RGB<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8RGBA_FULL, From10RGBXBEStudio::To8RGB<PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8RGB_FULL,
           BIND<From10RGBXBEStudio::To8RGB<PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range: words are repacked. Block 4.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_SMPTE,
           BIND<UNPACK_R10KBE_TO_RGBv4, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_SMPTE,
           BIND<UNPACK_R10KBE_TO_RGBv4, PACK_RGBv4_TO_R10KLE>)

// To 10-bit RGB in full range. Block 4.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_FULL,
           From10RGBXBEStudio::To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_FULL,
           From10RGBXBEStudio::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_BE_FULL,
           From10RGBXBEStudio::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBA_BE_FULL,
           BIND<From10RGBXBEStudio::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: the matrix works at 10 bits. Block 8.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8YUV422_SD, From10RGBXBEStudio::To8YUV422<StudioRange601>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8YUV422_HD, From10RGBXBEStudio::To8YUV422<StudioRange709>)

// To 10-bit 4:2:2. Block 12.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_SD,
           From10RGBXBEStudio::To10YUV422<StudioRange601>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_HD,
           From10RGBXBEStudio::To10YUV422<StudioRange709>)

// To 8-bit RGB of other primaries. Block 4.
CONVERSION(Convert_10RGBX_BE_SMPTE_2020_To_8BGRA_FULL_709,
           From10RGBXBEStudio::From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_2020_To_8RGBA_FULL_709,
           From10RGBXBEStudio::From2020To709<PACK_RGBv4_TO_RGBA>)

} // namespace KSX::PixelConversion
