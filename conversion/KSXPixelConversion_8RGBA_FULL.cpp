/// From 8RGBA_FULL (RGBA): 8-bit RGBA, full range. Bytes R G B A.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

// To 8-bit RGB: by way of RGBv4, which has no alpha, so opaque. Block 4, 16 to RGB3.
CONVERSION(Convert_8RGBA_FULL_To_8ARGB_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8RGBA_FULL_To_8BGRA_FULL, BIND<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8RGBA_FULL_To_8RGB_FULL,
           BIND3<UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 4.
template<class PACK>
using To10RGBStudio = BIND3<UNPACK_RGBA_TO_RGBv4, RGBv4_RESCALE<8, true, 10, false, P1>, PACK>;

CONVERSION(Convert_8RGBA_FULL_To_10XRGB_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_LE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros below. Block 4.
template<class PACK>
using To10RGBFull = BIND3<UNPACK_RGBA_TO_RGBv4, RGBv4_BITDEPTH<2, 16>, PACK>;

CONVERSION(Convert_8RGBA_FULL_To_10XRGB_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_LE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBX_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8RGBA_FULL_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 8.
template<class RANGE>
using To8YUV422 =
    BIND3<UNPACK_RGBA_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8RGBA_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8RGBA_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 12.
template<class RANGE>
using To10YUV422 = BIND4<UNPACK_RGBA_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
                         BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

CONVERSION(Convert_8RGBA_FULL_To_10YUV422_LE_SD, To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUV422_LE_HD, To10YUV422<FullRange709<10>>)

// To 10-bit 4:2:2 with alpha at video levels. Block 4.
template<class RANGE>
using To10YUVA422 = BIND3<UNPACK_RGBA_TO_BGRAv8, BGRAv8_TO_YUVA<RANGE, P0>, PACK_YUVA>;

CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_SD, To10YUVA422<ComputerRange601>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_HD, To10YUVA422<ComputerRange709>)

// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first. Block 4.
template<class RANGE>
using To10YUVA422FullA = BIND4<UNPACK_RGBA_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
                               BGRAv8_TO_YUVA_FullA<RANGE, 10, P1>, PACK_YUVA>;

CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_SD, To10YUVA422FullA<FullRange601<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_HD, To10YUVA422FullA<FullRange709<10>>)
CONVERSION(Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_2020, To10YUVA422FullA<FullRange2020<10>>)

} // namespace KSX::PixelConversion
