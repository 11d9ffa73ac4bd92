/// From 12RGB_BE_FULL (R12B): 12-bit RGB, full range. Groups of 8 pixels in nine big-endian words.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// Opaque.
using UnpackToBGRAv8 = UNPACK_R12B_TO_BGRAv8_SSSE3_T<R12KComponentOrderRGB, 4095>;

// To 8-bit RGB: rounded, and limited by the pack. Block 32.
template<class PACK>
using To8RGB = BIND3<UnpackToBGRAv8, BGRAv8_BITDEPTH<-4, 16>, PACK>;

CONVERSION(Convert_12RGB_BE_FULL_To_8ARGB_FULL,
           BIND<To8RGB<PACK_BGRAv8_TO_BGRA>, ENDIAN_SWAP_PACKED_RGB>)
CONVERSION(Convert_12RGB_BE_FULL_To_8BGRA_FULL, To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_BE_FULL_To_8RGBA_FULL, To8RGB<PACK_BGRAv8_TO_RGBA>)

// To 16-bit RGB: zeros below. Block 32.
CONVERSION(Convert_12RGB_BE_FULL_To_16ARGB_LE_FULL,
           BIND3<UnpackToBGRAv8, BGRAv8_BITDEPTH<4, 16>, UNPACK_L64A_TO_BGRAv8>)

// To 8-bit 4:2:2: weigh at 12 bits. Block 32.
template<class RANGE>
using To8YUV422 =
    BIND3<UnpackToBGRAv8, BGRAv8_TO_UYVYv8<RANGE, 12, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_12RGB_BE_FULL_To_8YUV422_SD, To8YUV422<FullRange601<12>>)
CONVERSION(Convert_12RGB_BE_FULL_To_8YUV422_HD, To8YUV422<FullRange709<12>>)

// To 10-bit 4:2:2: weigh at 12 bits. Block 96.
template<class RANGE>
using To10YUV422 =
    BIND3<UnpackToBGRAv8, BGRAv8_TO_UYVYv8<RANGE, 12, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

CONVERSION(Convert_12RGB_BE_FULL_To_10YUV422_LE_SD, To10YUV422<FullRange601<12>>)
CONVERSION(Convert_12RGB_BE_FULL_To_10YUV422_LE_HD, To10YUV422<FullRange709<12>>)

// To 8-bit RGB of other primaries: rounded to codes that the curve's table has. Block 32.
template<class PACK>
using From2020To709 =
    BIND4<UnpackToBGRAv8, BGRAv8_BITDEPTH<-4, 12>,
          COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V1>, RGB_2020_TO_709, Rec709OETF<8, V1>>, PACK>;

CONVERSION(Convert_12RGB_BE_FULL_2020_To_8BGRA_FULL_709, From2020To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_12RGB_BE_FULL_2020_To_8RGBA_FULL_709, From2020To709<PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
