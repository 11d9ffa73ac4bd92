/// From 12RGB_LE_FULL (R12L): 12-bit RGB, full range. Groups of 8 pixels in nine little-endian
/// words.
#include "conversion/chains/From12BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From12RGBLE = From12BitRGB<UNPACK_R12L_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>>;

// To 8-bit RGB: rounded, and limited by the pack. Block 32.
CONVERSION(Convert_12RGB_LE_FULL_To_8ARGB_FULL,
           BIND<From12RGBLE::To8RGB<PACK_BGRAv8_TO_BGRA>, ENDIAN_SWAP_PACKED_RGB>)
CONVERSION(Convert_12RGB_LE_FULL_To_8BGRA_FULL, From12RGBLE::To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_LE_FULL_To_8RGBA_FULL, From12RGBLE::To8RGB<PACK_BGRAv8_TO_RGBA>)

// To 16-bit RGB: zeros in the low bits. Block 32.
CONVERSION(Convert_12RGB_LE_FULL_To_16ARGB_LE_FULL, From12RGBLE::To16RGB)

// To 8-bit 4:2:2: the matrix works at 12 bits. Block 32.
CONVERSION(Convert_12RGB_LE_FULL_To_8YUV422_SD, From12RGBLE::To8YUV422<FullRange601<12>>)
CONVERSION(Convert_12RGB_LE_FULL_To_8YUV422_HD, From12RGBLE::To8YUV422<FullRange709<12>>)

// To 10-bit 4:2:2: the matrix works at 12 bits. Block 96.
CONVERSION(Convert_12RGB_LE_FULL_To_10YUV422_LE_SD, From12RGBLE::To10YUV422<FullRange601<12>>)
CONVERSION(Convert_12RGB_LE_FULL_To_10YUV422_LE_HD, From12RGBLE::To10YUV422<FullRange709<12>>)

// To 8-bit RGB of other primaries: rounded to 8-bit codes, for which the curve has a table. Block
// 32.
CONVERSION(Convert_12RGB_LE_FULL_2020_To_8BGRA_FULL_709,
           From12RGBLE::From2020To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_LE_FULL_2020_To_8RGBA_FULL_709,
           From12RGBLE::From2020To709<PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
