/// From 8BGRA_FULL (BGRA): 8-bit BGRA, full range. Bytes B G R A.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB12.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

struct From8BGRA : From8BitRGB<UNPACK_BGRA_TO_BGRAv8, UNPACK_BGRA_TO_RGBv4> {
    template<class RESCALE, class PACK>
    using To12RGB = BIND3<UNPACK_BGRA_TO_BGRAv8, RESCALE, PACK>;

    template<class PACK>
    using From601To2020 =
        By601Lines<ToPrimaries<RGB_601PAL_TO_2020, PACK>, ToPrimaries<RGB_601NTSC_TO_2020, PACK>>;
    template<class PACK>
    using From709To601 =
        By601Lines<ToPrimaries<RGB_709_TO_601PAL, PACK>, ToPrimaries<RGB_709_TO_601NTSC, PACK>>;
    template<class PACK>
    using From709To2020 = ToPrimaries<RGB_709_TO_2020, PACK>;
    template<class PACK>
    using From2020To601 =
        By601Lines<ToPrimaries<RGB_2020_TO_601PAL, PACK>, ToPrimaries<RGB_2020_TO_601NTSC, PACK>>;
    template<class PACK>
    using From2020To709 = ToPrimaries<RGB_2020_TO_709, PACK>;

    /// The stages to 8-bit 4:2:2 that follow a change of primaries.
    template<class RANGE>
    using As8YUV422 = BIND<BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;
};

// To 8ARGB_FULL: the bytes of a pixel reversed, alpha too. The conversion is its own inverse. Block
// 4.
CONVERSION(Convert_8BGRA_FULL_To_8ARGB_FULL, ENDIAN_SWAP_PACKED_RGB)

void Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar(unsigned width, unsigned height, void* dst,
                                             unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar(width, height, dst, dstRowBytes, src, srcRowBytes);
}

// To 8-bit RGB in other orders: through RGBv4, which has no alpha, so the result is opaque. Block
// 4, 16 to RGB3.
CONVERSION(Convert_8BGRA_FULL_To_8RGBA_FULL, BIND<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8BGRA_FULL_To_8RGB_FULL,
           BIND3<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 8-bit RGB in studio range: alpha is kept. Block 4.
CONVERSION(
    Convert_8BGRA_FULL_To_8ARGB_SMPTE,
    BIND3<UNPACK_BGRA_TO_BGRAv8, BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_ARGB>)
CONVERSION(
    Convert_8BGRA_FULL_To_8BGRA_SMPTE,
    BIND3<UNPACK_BGRA_TO_BGRAv8, BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_BGRA>)

// To 10-bit RGB in studio range. Block 4, 8 to r210, whose words are put together from lanes of 16
// bits.
CONVERSION(Convert_8BGRA_FULL_To_10XRGB_BE_SMPTE,
           BIND3<UNPACK_BGRA_TO_RGBv8, RGBv8_RESCALE<8, true, 10, false, P1>, PACK_RGBv8_TO_R210>)
CONVERSION(Convert_8BGRA_FULL_To_10RGBX_LE_SMPTE, From8BGRA::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8BGRA_FULL_To_10RGBX_BE_SMPTE, From8BGRA::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros in the low bits. Blocks as for studio range.
CONVERSION(Convert_8BGRA_FULL_To_10XRGB_BE_FULL,
           BIND3<UNPACK_BGRA_TO_RGBv8, RGBv8_BITDEPTH<2, 16>, PACK_RGBv8_TO_R210>)
CONVERSION(Convert_8BGRA_FULL_To_10RGBX_LE_FULL, From8BGRA::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8BGRA_FULL_To_10RGBX_BE_FULL, From8BGRA::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8BGRA_FULL_To_10RGBA_BE_FULL,
           BIND<From8BGRA::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 10 bits in 16, with alpha: for studio range, the first stage leaves alpha as it is and the
// second rescales it like a colour. Block 4.
CONVERSION(Convert_8BGRA_FULL_To_10BGRA_LE_SMPTE,
           BIND3<UNPACK_BGRA_TO_BGRAv8, BGRAv8_RESCALE_KEEPALPHA<8, true, 8, false>,
                 BGRAv8_RESCALE<8, false, 10, false, P1>>)
CONVERSION(Convert_8BGRA_FULL_To_10BGRA_LE_FULL,
           BIND<UNPACK_BGRA_TO_BGRAv8, BGRAv8_BITDEPTH<2, 16>>)

// To 12-bit RGB: zeros in the low bits in full range. Block 32, 4 to S12L.
CONVERSION(
    Convert_8BGRA_FULL_To_12RGBX_LE_FULL,
    From8BGRA::To12RGB<BGRAv8_BITDEPTH<4, 16>, PACK_BGRAv8_TO_R12L_SSSE3_T<R12KPackingOrderRGB>>)
CONVERSION(
    Convert_8BGRA_FULL_To_12RGBX_BE_FULL,
    From8BGRA::To12RGB<BGRAv8_BITDEPTH<4, 16>, PACK_BGRAv8_TO_R12B_SSSE3_T<R12KPackingOrderRGB>>)
CONVERSION(Convert_8BGRA_FULL_To_12RGBX_LE_SMPTE,
           From8BGRA::To12RGB<BGRAv8_RESCALE<8, true, 12, false, P1>,
                              PACK_BGRAv8_TO_R12L_SSSE3_T<R12KPackingOrderRGB>>)
CONVERSION(Convert_8BGRA_FULL_To_S12L,
           From8BGRA::To12RGB<BGRAv8_RESCALE<8, true, 12, true, P1>, PACK_BGRAv8_TO_S12L<true>>)

// To 8-bit 4:2:2: filter the chroma, apply the matrix, pack. Block 8.
CONVERSION(Convert_8BGRA_FULL_To_8YUV422_SD, From8BGRA::To8YUV422<ComputerRange601>)
CONVERSION(Convert_8BGRA_FULL_To_8YUV422_HD, From8BGRA::To8YUV422<ComputerRange709>)
CONVERSION(Convert_8BGRA_FULL_To_8YUV422_2020, From8BGRA::To8YUV422<ComputerRange2020>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 12.
CONVERSION(Convert_8BGRA_FULL_To_10YUV422_LE_SD, From8BGRA::To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8BGRA_FULL_To_10YUV422_LE_HD, From8BGRA::To10YUV422<FullRange709<10>>)
CONVERSION(Convert_8BGRA_FULL_To_10YUV422_LE_2020, From8BGRA::To10YUV422<FullRange2020<10>>)

// To 10-bit 4:2:2 with alpha at video levels. Block 4.
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_SD, From8BGRA::To10YUVA422<ComputerRange601>)
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_HD, From8BGRA::To10YUVA422<ComputerRange709>)
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_2020, From8BGRA::To10YUVA422<ComputerRange2020>)

// To 10-bit 4:2:2 with alpha in full range: stretched to 10 bits first. Block 4.
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_SD,
           From8BGRA::To10YUVA422FullA<FullRange601<10>>)
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_HD,
           From8BGRA::To10YUVA422FullA<FullRange709<10>>)
CONVERSION(Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_2020,
           From8BGRA::To10YUVA422FullA<FullRange2020<10>>)

// To 8-bit RGB of other primaries: alpha is kept. Block 4.
CONVERSION(Convert_8BGRA_FULL_601_To_8BGRA_FULL_709, From8BGRA::From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_601_To_8BGRA_FULL_2020, From8BGRA::From601To2020<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_709_To_8BGRA_FULL_601, From8BGRA::From709To601<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_709_To_8BGRA_FULL_2020, From8BGRA::From709To2020<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_2020_To_8BGRA_FULL_601, From8BGRA::From2020To601<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_2020_To_8BGRA_FULL_709, From8BGRA::From2020To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_FULL_601_To_8RGBA_FULL_709, From8BGRA::From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8BGRA_FULL_2020_To_8RGBA_FULL_709, From8BGRA::From2020To709<PACK_BGRAv8_TO_RGBA>)

// To 8-bit RGB in studio range of other primaries. Block 4.
CONVERSION(
    Convert_8BGRA_FULL_709_To_8BGRA_SMPTE_2020,
    From8BGRA::From709To2020<BIND<BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_BGRA>>)

// To 8-bit 4:2:2 of other primaries. Block 8.
CONVERSION(Convert_8BGRA_FULL_601_To_8YUV422_HD,
           From8BGRA::From601To709<From8BGRA::As8YUV422<ComputerRange709>>)
CONVERSION(Convert_8BGRA_FULL_601_To_8YUV422_2020,
           From8BGRA::From601To2020<From8BGRA::As8YUV422<ComputerRange2020>>)
CONVERSION(Convert_8BGRA_FULL_709_To_8YUV422_SD,
           From8BGRA::From709To601<From8BGRA::As8YUV422<ComputerRange601>>)
CONVERSION(Convert_8BGRA_FULL_709_To_8YUV422_2020,
           From8BGRA::From709To2020<From8BGRA::As8YUV422<ComputerRange2020>>)
CONVERSION(Convert_8BGRA_FULL_2020_To_8YUV422_SD,
           From8BGRA::From2020To601<From8BGRA::As8YUV422<ComputerRange601>>)
CONVERSION(Convert_8BGRA_FULL_2020_To_8YUV422_HD,
           From8BGRA::From2020To709<From8BGRA::As8YUV422<ComputerRange709>>)

} // namespace KSX::PixelConversion
