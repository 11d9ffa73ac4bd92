/// From 8RGBA_FULL (RGBA): 8-bit RGBA, full range. Bytes R G B A.
#include "conversion/Convert.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB: by way of RGBv4, which has no alpha, so opaque. Block 4, 16 to RGB3.
CONVERSION(Convert_8RGBA_FULL_To_8ARGB_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGBA_FULL_To_8BGRA_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGBA_FULL_To_8RGB_FULL,
           BIND3<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 8.
template<class RANGE>
using To8YUV422 =
    BIND3<UNPACK_RGBA_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8RGBA_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGBA_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

} // namespace KSX::PixelConversion
