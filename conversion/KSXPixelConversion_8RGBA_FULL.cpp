/// From 8RGBA_FULL (RGBA): 8-bit RGBA, full range. Bytes R G B A.
#include "conversion/Convert.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB: by way of RGBv4, which has no alpha, so opaque. Block 4, 16 to RGB3.
CONVERSION(Convert_8RGBA_FULL_To_8ARGB_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGBA_FULL_To_8BGRA_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGBA_FULL_To_8RGB_FULL,
           BIND3<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

} // namespace KSX::PixelConversion
