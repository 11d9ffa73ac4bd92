/// From 10XRGB_BE_FULL (R210): 10-bit RGB, full range. A big-endian word, spare bits on top.
#include "conversion/chains/From10BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From10XRGBFull = From10BitFullRGB<UNPACK_R210_TO_RGBv4>;

// To 8-bit RGB: rounded, and limited by the pack. Block 4, 8 to BGRA, 16 to RGB3.
CONVERSION(Convert_10XRGB_BE_FULL_To_8ARGB_FULL, From10XRGBFull::To8RGB<PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10XRGB_BE_FULL_To_8BGRA_FULL,
           BIND3<UNPACK_R210_TO_RGBv8, RGBv8_BITDEPTH<-2, 16>, PACK_RGBv8_TO_BGRA>)
CONVERSION(Convert_10XRGB_BE_FULL_To_8RGBA_FULL, From10XRGBFull::To8RGB<PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10XRGB_BE_FULL_To_8RGB_FULL,
           BIND<From10XRGBFull::To8RGB<PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 4, 8 to r210.
CONVERSION(Convert_10XRGB_BE_FULL_To_10XRGB_BE_SMPTE,
           BIND3<UNPACK_R210_TO_RGBv8, RGBv8_COMPUTER_TO_STUDIO<10, P0>, PACK_RGBv8_TO_R210>)
CONVERSION(Convert_10XRGB_BE_FULL_To_10RGBX_LE_SMPTE,
           From10XRGBFull::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10XRGB_BE_FULL_To_10RGBX_BE_SMPTE,
           From10XRGBFull::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: words are repacked. Block 4.
CONVERSION(Convert_10XRGB_BE_FULL_To_10RGBX_LE_FULL,
           BIND<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10XRGB_BE_FULL_To_10RGBX_BE_FULL,
           BIND<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10XRGB_BE_FULL_To_10RGBA_BE_FULL,
           BIND3<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_R10KBE, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: the matrix works at 10 bits. Block 8.
CONVERSION(Convert_10XRGB_BE_FULL_To_8YUV422_SD, From10XRGBFull::To8YUV422<FullRange601<10>>)
CONVERSION(Convert_10XRGB_BE_FULL_To_8YUV422_HD, From10XRGBFull::To8YUV422<FullRange709<10>>)

// To 10-bit 4:2:2. Block 12.
CONVERSION(Convert_10XRGB_BE_FULL_To_10YUV422_LE_SD, From10XRGBFull::To10YUV422<FullRange601<10>>)
CONVERSION(Convert_10XRGB_BE_FULL_To_10YUV422_LE_HD, From10XRGBFull::To10YUV422<FullRange709<10>>)

// To 8-bit RGB of other primaries: rounded to 8-bit codes, for which the curve has a table. Block
// 4.
CONVERSION(Convert_10XRGB_BE_FULL_2020_To_8BGRA_FULL_709,
           From10XRGBFull::From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10XRGB_BE_FULL_2020_To_8RGBA_FULL_709,
           From10XRGBFull::From2020To709<PACK_RGBv4_TO_RGBA>)

} // namespace KSX::PixelConversion
