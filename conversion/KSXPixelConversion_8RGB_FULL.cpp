/// From 8RGB_FULL (RGB3): 8-bit RGB without alpha, full range. Bytes R G B.
#include "conversion/Convert.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB with alpha: opaque. Block 16.
CONVERSION(Convert_8RGB_FULL_To_8ARGB_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGB_FULL_To_8BGRA_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGB_FULL_To_8RGBA_FULL, UNPACK_RGB_TO_RGBA_SSSE3)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 16.
template<class RANGE>
using To8YUV422 = BIND4<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_BGRAv8,
                        BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8RGB_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGB_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

} // namespace KSX::PixelConversion
