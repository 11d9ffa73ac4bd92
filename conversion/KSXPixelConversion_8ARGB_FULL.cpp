/// From 8ARGB_FULL (32): 8-bit ARGB, full range. Bytes A R G B.
#include "conversion/ByteSwap.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8BGRA_FULL: a byte swap, which keeps alpha.
void Convert_8ARGB_FULL_To_8BGRA_FULL(unsigned width, unsigned height, void* dst,
                                      unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    swapPackedRGB(width, height, dst, dstRowBytes, src, srcRowBytes);
}

void Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar(unsigned width, unsigned height, void* dst,
                                             unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    swapPackedRGBScalar(width, height, dst, dstRowBytes, src, srcRowBytes);
}

// To 8-bit RGB in other orders: by way of RGBv4, which has no alpha, so opaque. Block 4, 16 to
// RGB3.
CONVERSION(Convert_8ARGB_FULL_To_8RGBA_FULL, BIND<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8ARGB_FULL_To_8RGB_FULL,
           BIND3<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 4.
template<class PACK>
using To10RGBStudio = BIND3<UNPACK_ARGB_TO_RGBv4, RGBv4_RESCALE<8, true, 10, false, P1>, PACK>;

CONVERSION(Convert_8ARGB_FULL_To_10XRGB_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_LE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_BE_SMPTE, To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros below. Block 4.
template<class PACK>
using To10RGBFull = BIND3<UNPACK_ARGB_TO_RGBv4, RGBv4_BITDEPTH<2, 16>, PACK>;

CONVERSION(Convert_8ARGB_FULL_To_10XRGB_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_LE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 8.
template<class RANGE>
using To8YUV422 =
    BIND3<UNPACK_ARGB_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8ARGB_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8ARGB_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 12.
template<class RANGE>
using To10YUV422 = BIND4<UNPACK_ARGB_TO_BGRAv8, BGRAv8_RESCALE<8, true, 10, true, P1>,
                         BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

CONVERSION(Convert_8ARGB_FULL_To_10YUV422_LE_SD, To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8ARGB_FULL_To_10YUV422_LE_HD, To10YUV422<FullRange709<10>>)

// To 8-bit RGB of other primaries: alpha is kept. Block 4.
template<class MATRIX, class PACK>
using ToPrimaries =
    BIND3<UNPACK_ARGB_TO_BGRAv8,
          COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V1>, MATRIX, Rec709OETF<8, V1>>, PACK>;
template<class PACK>
using From601To709 =
    By601Lines<ToPrimaries<RGB_601PAL_TO_709, PACK>, ToPrimaries<RGB_601NTSC_TO_709, PACK>>;

CONVERSION(Convert_8ARGB_FULL_601_To_8BGRA_FULL_709, From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_FULL_2020_To_8BGRA_FULL_709,
           ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_FULL_601_To_8RGBA_FULL_709, From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8ARGB_FULL_2020_To_8RGBA_FULL_709,
           ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
