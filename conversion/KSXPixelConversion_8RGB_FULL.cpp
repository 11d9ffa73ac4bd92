/// From 8RGB_FULL (RGB3): 8-bit RGB without alpha, full range. Bytes R G B.
#include "conversion/Convert.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB with alpha: opaque. Block 16.
CONVERSION(Convert_8RGB_FULL_To_8ARGB_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGB_FULL_To_8BGRA_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGB_FULL_To_8RGBA_FULL, UNPACK_RGB_TO_RGBA_SSSE3)

} // namespace KSX::PixelConversion
