/// From 8RGB_FULL (RGB3): 8-bit RGB without alpha, full range. Bytes R G B.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB with alpha: opaque. Block 16.
CONVERSION(Convert_8RGB_FULL_To_8ARGB_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGB_FULL_To_8BGRA_FULL,
           BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGB_FULL_To_8RGBA_FULL, UNPACK_RGB_TO_RGBA_SSSE3)

// To 10-bit RGB in studio range. Block 16.
template<class PACK>
using To10RGBStudio = BIND4<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4,
                            RGBv4_RESCALE<8, true, 10, false, P1>, PACK>;

CONVERSION(Convert_8RGB_FULL_To_10XRGB_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_LE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros below. Block 16.
template<class PACK>
using To10RGBFull =
    BIND4<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, RGBv4_BITDEPTH<2, 16>, PACK>;

CONVERSION(Convert_8RGB_FULL_To_10XRGB_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_LE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBX_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8RGB_FULL_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 16.
template<class RANGE>
using To8YUV422 = BIND4<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_BGRAv8,
                        BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8RGB_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGB_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 48.
template<class RANGE>
using To10YUV422 =
    BIND5<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
          BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

CONVERSION(Convert_8RGB_FULL_To_10YUV422_LE_SD, To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8RGB_FULL_To_10YUV422_LE_HD, To10YUV422<FullRange709<10>>)

} // namespace KSX::PixelConversion
