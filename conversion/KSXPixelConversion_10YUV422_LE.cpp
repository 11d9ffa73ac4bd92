/// From 10YUV422_LE (v210): 10-bit 4:2:2, studio range. Groups of 6 pixels in four little-endian
/// words.
///
/// Pipelines that rebuild chroma have forms of their own for rows of 4096, 2048 and 1280 pixels,
/// common widths that end inside a block.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/BitDepth.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

// To 8-bit 4:2:2: rounded. Block 24.
CONVERSION(Convert_10YUV422_LE_To_8YUV422,
           BIND3<UNPACK_V210_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_UYVY>)

// To 10-bit 4:2:2 with a key: opaque. Block 12.
CONVERSION(Convert_10YUV422_LE_TO_10YUVA422_BE_FullA,
           BIND3<UNPACK_V210_TO_UYVYv8, UYVYv8_TO_YUVA, PACK_YUVA>)

// To 8-bit RGB: rebuild chroma, multiply, stretch to full range. Block 12, 48 to RGB3.
template<class RANGE, class PACK>
using To8RGB = BIND4<UNPACK_V210_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>,
                     RGBv4_RESCALE<10, false, 8, true, P1>, PACK>;

CONVERSION(Convert_10YUV422_LE_SD_To_8ARGB_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10YUV422_LE_HD_To_8ARGB_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10YUV422_LE_SD_To_8BGRA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10YUV422_LE_HD_To_8BGRA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10YUV422_LE_2020_To_8BGRA_FULL, To8RGB<StudioRange2020, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10YUV422_LE_SD_To_8RGBA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10YUV422_LE_HD_To_8RGBA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10YUV422_LE_SD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)
CONVERSION(Convert_10YUV422_LE_HD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 12.
template<class RANGE, class PACK>
using To10RGBStudio =
    BIND3<UNPACK_V210_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>, PACK>;

CONVERSION(Convert_10YUV422_LE_SD_To_10XRGB_BE_SMPTE,
           To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10YUV422_LE_HD_To_10XRGB_BE_SMPTE,
           To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10YUV422_LE_2020_To_10XRGB_BE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10YUV422_LE_SD_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_HD_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_2020_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_SD_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10YUV422_LE_HD_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10YUV422_LE_2020_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: stretched. Block 12.
template<class RANGE, class PACK>
using To10RGBFull = To10RGBStudio<RANGE, BIND<RGBv4_RESCALE<10, false, 10, true, P1>, PACK>>;

CONVERSION(Convert_10YUV422_LE_SD_To_10XRGB_BE_FULL,
           To10RGBFull<StudioRange601, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10YUV422_LE_HD_To_10XRGB_BE_FULL,
           To10RGBFull<StudioRange709, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10YUV422_LE_SD_To_10RGBX_LE_FULL,
           To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_HD_To_10RGBX_LE_FULL,
           To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_2020_To_10RGBX_LE_FULL,
           To10RGBFull<StudioRange2020, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10YUV422_LE_SD_To_10RGBX_BE_FULL,
           To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10YUV422_LE_HD_To_10RGBX_BE_FULL,
           To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10YUV422_LE_2020_To_10RGBX_BE_FULL,
           To10RGBFull<StudioRange2020, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10YUV422_LE_SD_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)
CONVERSION(Convert_10YUV422_LE_HD_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit RGB of other primaries. Block 12.
template<class RANGE, class MATRIX, class PACK>
using ToPrimaries =
    To8RGB<RANGE, BIND<COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, MATRIX, Rec709OETF<8, V0>>, PACK>>;
template<class PACK>
using From601To709 = By601Lines<ToPrimaries<StudioRange601, RGB_601PAL_TO_709, PACK>,
                                ToPrimaries<StudioRange601, RGB_601NTSC_TO_709, PACK>>;
template<class PACK>
using From2020To709 = ToPrimaries<StudioRange2020, RGB_2020_TO_709, PACK>;

CONVERSION(Convert_10YUV422_LE_601_To_8BGRA_FULL_709, From601To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10YUV422_LE_2020_To_8BGRA_FULL_709, From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10YUV422_LE_601_To_8RGBA_FULL_709, From601To709<PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10YUV422_LE_2020_To_8RGBA_FULL_709, From2020To709<PACK_RGBv4_TO_RGBA>)

// To 10-bit 4:2:2 of other primaries: by way of 8-bit RGB in full range, which the matrix of 10-bit
// RGB takes back to 10 bits. Block 12.
template<class RANGE>
using To422 = BIND3<RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 10, P1, C0>, PACK_UYVYv8_TO_V210>;
template<class MATRIX>
using From601To709As422 = ToPrimaries<StudioRange601, MATRIX, To422<FullRange709<10>>>;
template<class MATRIX>
using From709To601As422 = ToPrimaries<StudioRange709, MATRIX, To422<FullRange601<10>>>;

CONVERSION(Convert_10YUV422_LE_PAL601_To_10YUV422_LE_709, From601To709As422<RGB_601PAL_TO_709>)
CONVERSION(Convert_10YUV422_LE_NTSC601_To_10YUV422_LE_709, From601To709As422<RGB_601NTSC_TO_709>)
CONVERSION(Convert_10YUV422_LE_709_To_10YUV422_LE_PAL601, From709To601As422<RGB_709_TO_601PAL>)
CONVERSION(Convert_10YUV422_LE_709_To_10YUV422_LE_NTSC601, From709To601As422<RGB_709_TO_601NTSC>)

void Convert_10YUV422_LE_601_To_10YUV422_LE_709(unsigned width, unsigned height, void* dst,
                                                unsigned dstRowBytes, void* src,
                                                unsigned srcRowBytes)
{
    const auto convert = height == kPALHeight ? Convert_10YUV422_LE_PAL601_To_10YUV422_LE_709
                                              : Convert_10YUV422_LE_NTSC601_To_10YUV422_LE_709;
    convert(width, height, dst, dstRowBytes, src, srcRowBytes);
}

void Convert_10YUV422_LE_709_To_10YUV422_LE_601(unsigned width, unsigned height, void* dst,
                                                unsigned dstRowBytes, void* src,
                                                unsigned srcRowBytes)
{
    const auto convert = height == kPALHeight ? Convert_10YUV422_LE_709_To_10YUV422_LE_PAL601
                                              : Convert_10YUV422_LE_709_To_10YUV422_LE_NTSC601;
    convert(width, height, dst, dstRowBytes, src, srcRowBytes);
}

} // namespace KSX::PixelConversion
