/// From 8YUV422 (2vuy): 8-bit 4:2:2, studio range. Bytes Cb Y Cr Y.
///
/// Where chroma is rebuilt, that of the pair behind a whole block is read from up to 14 bytes
/// behind the row.
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

// To the other byte order of 4:2:2. Block 8.
CONVERSION(Convert_8YUV422_To_8YUY422, BIND<UNPACK_UYVY_TO_UYVYv8, PACK_UYVYv8_TO_YUY2>)

// To 10-bit 4:2:2: zeros below. Block 24.
CONVERSION(Convert_8YUV422_To_10YUV422_LE,
           BIND3<UNPACK_UYVY_TO_UYVYv8, UYVYv8_BITDEPTH<2, 16>, PACK_UYVYv8_TO_V210>)

// To 10-bit 4:2:2 with a key: zeros below, opaque. Block 8. Where alpha has video levels its 1023
// lies above white, and reads as opaque all the same.
using To10YUVA422 = BIND4<UNPACK_UYVY_TO_UYVYv8, UYVYv8_BITDEPTH<2, 16>, UYVYv8_TO_YUVA, PACK_YUVA>;

CONVERSION(Convert_8YUV422_TO_10YUVA422_BE, To10YUVA422)
CONVERSION(Convert_8YUV422_TO_10YUVA422_BE_FullA, To10YUVA422)

// To 8-bit RGB: rebuild chroma, multiply, stretch to full range. Block 8, 16 to RGB3.
template<class RANGE, class PACK>
using To8RGB = BIND4<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 8, 8, P1>,
                     RGBv4_RESCALE<8, false, 8, true, P1>, PACK>;

CONVERSION(Convert_8YUV422_SD_To_8ARGB_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8YUV422_HD_To_8ARGB_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8YUV422_SD_To_8BGRA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_HD_To_8BGRA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_2020_To_8BGRA_FULL, To8RGB<StudioRange2020, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_SD_To_8RGBA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8YUV422_HD_To_8RGBA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8YUV422_SD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)
CONVERSION(Convert_8YUV422_HD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range: the matrix gives the two bits more. Block 8.
template<class RANGE, class PACK>
using To10RGBStudio =
    BIND3<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 8, 10, P1>, PACK>;

CONVERSION(Convert_8YUV422_SD_To_10XRGB_BE_SMPTE, To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8YUV422_HD_To_10XRGB_BE_SMPTE, To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8YUV422_2020_To_10XRGB_BE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8YUV422_SD_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_HD_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_2020_To_10RGBX_LE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_SD_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange601, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8YUV422_HD_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange709, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8YUV422_2020_To_10RGBX_BE_SMPTE,
           To10RGBStudio<StudioRange2020, PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: multiply at 8 bits, stretch. Block 8.
template<class RANGE, class PACK>
using To10RGBFull = BIND4<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 8, 8, P1>,
                          RGBv4_RESCALE<8, false, 10, true, P1>, PACK>;

CONVERSION(Convert_8YUV422_SD_To_10XRGB_BE_FULL, To10RGBFull<StudioRange601, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8YUV422_HD_To_10XRGB_BE_FULL, To10RGBFull<StudioRange709, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8YUV422_SD_To_10RGBX_LE_FULL, To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_HD_To_10RGBX_LE_FULL, To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_2020_To_10RGBX_LE_FULL,
           To10RGBFull<StudioRange2020, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8YUV422_SD_To_10RGBX_BE_FULL, To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8YUV422_HD_To_10RGBX_BE_FULL, To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8YUV422_2020_To_10RGBX_BE_FULL,
           To10RGBFull<StudioRange2020, PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8YUV422_SD_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<StudioRange601, PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)
CONVERSION(Convert_8YUV422_HD_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<StudioRange709, PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit RGB of other primaries. Block 8.
template<class RANGE, class MATRIX, class PACK>
using ToPrimaries =
    To8RGB<RANGE, BIND<COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, MATRIX, Rec709OETF<8, V0>>, PACK>>;
template<class PACK>
using From601To709 = By601Lines<ToPrimaries<StudioRange601, RGB_601PAL_TO_709, PACK>,
                                ToPrimaries<StudioRange601, RGB_601NTSC_TO_709, PACK>>;
template<class PACK>
using From2020To709 = ToPrimaries<StudioRange2020, RGB_2020_TO_709, PACK>;

CONVERSION(Convert_8YUV422_601_To_8BGRA_FULL_709, From601To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_2020_To_8BGRA_FULL_709, From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_601_To_8RGBA_FULL_709, From601To709<PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8YUV422_2020_To_8RGBA_FULL_709, From2020To709<PACK_RGBv4_TO_RGBA>)

// To 4:2:2 of other primaries: by way of 8-bit RGB in full range. Block 8.
template<class RANGE, class PACK>
using To422 = BIND3<RGBv4_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK>;
template<class MATRIX, class PACK>
using From601To709As422 = ToPrimaries<StudioRange601, MATRIX, To422<FullRange709<8>, PACK>>;
template<class MATRIX, class PACK>
using From709To601As422 = ToPrimaries<StudioRange709, MATRIX, To422<FullRange601<8>, PACK>>;

CONVERSION(Convert_8YUV422_HD_To_8YUY422_SD,
           By601Lines<From709To601As422<RGB_709_TO_601PAL, PACK_UYVYv8_TO_YUY2>,
                      From709To601As422<RGB_709_TO_601NTSC, PACK_UYVYv8_TO_YUY2>>)
CONVERSION(Convert_8YUV422_PAL601_To_8YUV422_709,
           From601To709As422<RGB_601PAL_TO_709, PACK_UYVYv8_TO_UYVY>)
CONVERSION(Convert_8YUV422_NTSC601_To_8YUV422_709,
           From601To709As422<RGB_601NTSC_TO_709, PACK_UYVYv8_TO_UYVY>)
CONVERSION(Convert_8YUV422_709_To_8YUV422_PAL601,
           From709To601As422<RGB_709_TO_601PAL, PACK_UYVYv8_TO_UYVY>)
CONVERSION(Convert_8YUV422_709_To_8YUV422_NTSC601,
           From709To601As422<RGB_709_TO_601NTSC, PACK_UYVYv8_TO_UYVY>)

void Convert_8YUV422_601_To_8YUV422_709(unsigned width, unsigned height, void* dst,
                                        unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    const auto convert = height == kPALHeight ? Convert_8YUV422_PAL601_To_8YUV422_709
                                              : Convert_8YUV422_NTSC601_To_8YUV422_709;
    convert(width, height, dst, dstRowBytes, src, srcRowBytes);
}

void Convert_8YUV422_709_To_8YUV422_601(unsigned width, unsigned height, void* dst,
                                        unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    const auto convert = height == kPALHeight ? Convert_8YUV422_709_To_8YUV422_PAL601
                                              : Convert_8YUV422_709_To_8YUV422_NTSC601;
    convert(width, height, dst, dstRowBytes, src, srcRowBytes);
}

} // namespace KSX::PixelConversion
