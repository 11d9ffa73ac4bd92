/// From 10XRGB_BE_SMPTE (r210): 10-bit RGB, studio range. A big-endian word, spare bits on top.
#include "conversion/chains/From10BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

struct From10XRGBStudio : From10BitStudioRGB<UNPACK_R210_TO_RGBv4> {
    template<class MATRIX>
    using From601To709 =
        BIND5<UNPACK_R210_TO_RGBv4, RGBv4_TO_BGRAv8, BGRAv8_RESCALE<10, false, 8, true, P1>,
              PrimariesInBGRAv8<MATRIX>, PACK_BGRAv8_TO_BGRA>;
};

// To 8-bit RGB in full range, in one step. Block 4, 8 to BGRA.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8ARGB_FULL, From10XRGBStudio::To8RGB<PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8BGRA_FULL,
           BIND3<UNPACK_R210_TO_RGBv8, RGBv8_RESCALE<10, false, 8, true, P1>, PACK_RGBv8_TO_BGRA>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8RGBA_FULL, From10XRGBStudio::To8RGB<PACK_RGBv4_TO_RGBA>)

// To 10-bit RGB in studio range: words are repacked. Block 4.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10RGBX_LE_SMPTE,
           BIND<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10RGBX_BE_SMPTE,
           BIND<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range. Block 4, 8 to R210.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10XRGB_BE_FULL,
           BIND3<UNPACK_R210_TO_RGBv8, RGBv8_STUDIO_TO_COMPUTER<10, P0>, PACK_RGBv8_TO_R210>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10RGBX_LE_FULL,
           From10XRGBStudio::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10RGBX_BE_FULL,
           From10XRGBStudio::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10RGBA_BE_FULL,
           BIND<From10XRGBStudio::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To RGB3: unlike the other 8-bit formats through 10 bits in full range, which truncates before it
// rounds. Block 16.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8RGB_FULL,
           From10XRGBStudio::To8RGBBy10BitFull<BIND<PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>>)

// To 16-bit RGB in studio range: zeros in the low bits, opaque. Block 4.
CONVERSION(
    Convert_10XRGB_BE_SMPTE_To_16ARGB_LE_SMPTE,
    BIND4<UNPACK_R210_TO_RGBv4, RGBv4_TO_BGRAv8, BGRAv8_BITDEPTH<6, 16>, UNPACK_L64A_TO_BGRAv8>)

// To 8-bit 4:2:2: the matrix works at 10 bits. Block 8.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8YUV422_SD, From10XRGBStudio::To8YUV422<StudioRange601>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_8YUV422_HD, From10XRGBStudio::To8YUV422<StudioRange709>)

// To 10-bit 4:2:2. Block 12.
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_SD, From10XRGBStudio::To10YUV422<StudioRange601>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_HD, From10XRGBStudio::To10YUV422<StudioRange709>)
CONVERSION(Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_2020,
           From10XRGBStudio::To10YUV422<StudioRange2020>)

// To 8-bit RGB of other primaries. Block 4. From Rec. 601 in BGRAv8: its sums are in another order.
CONVERSION(Convert_10XRGB_BE_SMPTE_601_To_8BGRA_FULL_709,
           By601Lines<From10XRGBStudio::From601To709<RGB_601PAL_TO_709>,
                      From10XRGBStudio::From601To709<RGB_601NTSC_TO_709>>)
CONVERSION(Convert_10XRGB_BE_SMPTE_2020_To_8BGRA_FULL_709,
           From10XRGBStudio::From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10XRGB_BE_SMPTE_2020_To_8RGBA_FULL_709,
           From10XRGBStudio::From2020To709<PACK_RGBv4_TO_RGBA>)

} // namespace KSX::PixelConversion
