/// From 8ARGB_FULL (32): 8-bit ARGB, full range. Bytes A R G B.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

#include <cstring>

namespace KSX::PixelConversion {

using From8ARGB = From8BitRGB<UNPACK_ARGB_TO_BGRAv8, UNPACK_ARGB_TO_RGBv4>;

// To 8BGRA_FULL: the bytes of a pixel reversed, alpha too. Block 4.
CONVERSION(Convert_8ARGB_FULL_To_8BGRA_FULL, ENDIAN_SWAP_PACKED_RGB)

// A plain scalar form of the conversion above, one pixel at a time, to compare the vectors with.
void Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar(unsigned width, unsigned height, void* dst,
                                             unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    const auto* srcRow = static_cast<const std::byte*>(src);
    auto* dstRow = static_cast<std::byte*>(dst);
    for (int row = 0; row < static_cast<int>(height); ++row) {
        for (std::size_t x = 0; x < width; ++x) {
            __builtin_prefetch(srcRow + 4 * x + 32);
            std::uint32_t pixel;
            std::memcpy(&pixel, srcRow + 4 * x, sizeof(pixel));
            pixel = __builtin_bswap32(pixel);
            std::memcpy(dstRow + 4 * x, &pixel, sizeof(pixel));
        }
        srcRow += static_cast<int>(srcRowBytes);
        dstRow += static_cast<int>(dstRowBytes);
    }
}

// To 8-bit RGB in other orders: through RGBv4, which has no alpha, so the result is opaque. Block
// 4, 16 to RGB3.
CONVERSION(Convert_8ARGB_FULL_To_8RGBA_FULL, BIND<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8ARGB_FULL_To_8RGB_FULL,
           BIND3<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range. Block 4.
CONVERSION(Convert_8ARGB_FULL_To_10XRGB_BE_SMPTE, From8ARGB::To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_LE_SMPTE, From8ARGB::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_BE_SMPTE, From8ARGB::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// To 10-bit RGB in full range: zeros in the low bits. Block 4.
CONVERSION(Convert_8ARGB_FULL_To_10XRGB_BE_FULL, From8ARGB::To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_LE_FULL, From8ARGB::To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBX_BE_FULL, From8ARGB::To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_8ARGB_FULL_To_10RGBA_BE_FULL,
           BIND<From8ARGB::To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: filter the chroma, apply the matrix, pack. Block 8.
CONVERSION(Convert_8ARGB_FULL_To_8YUV422_SD, From8ARGB::To8YUV422<ComputerRange601>)
CONVERSION(Convert_8ARGB_FULL_To_8YUV422_HD, From8ARGB::To8YUV422<ComputerRange709>)

// To 10-bit 4:2:2: stretched to 10 bits first. Block 12.
CONVERSION(Convert_8ARGB_FULL_To_10YUV422_LE_SD, From8ARGB::To10YUV422<FullRange601<10>>)
CONVERSION(Convert_8ARGB_FULL_To_10YUV422_LE_HD, From8ARGB::To10YUV422<FullRange709<10>>)

// To 8-bit RGB of other primaries: alpha is kept. Block 4.
CONVERSION(Convert_8ARGB_FULL_601_To_8BGRA_FULL_709, From8ARGB::From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_FULL_2020_To_8BGRA_FULL_709,
           From8ARGB::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_FULL_601_To_8RGBA_FULL_709, From8ARGB::From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8ARGB_FULL_2020_To_8RGBA_FULL_709,
           From8ARGB::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
