/// From 8BGRA_SMPTE (BGRv): 8-bit BGRA, studio range. Bytes B G R A.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From8BGRAStudio = From8BitStudioRGB<UNPACK_BGRA_TO_BGRAv8>;

// To 8-bit RGB in full range: alpha is kept. Block 4.
CONVERSION(Convert_8BGRA_SMPTE_To_8BGRA_FULL, From8BGRAStudio::To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_SMPTE_To_8RGBA_FULL, From8BGRAStudio::To8RGB<PACK_BGRAv8_TO_RGBA>)

// To 8-bit RGB in full range of other primaries: alpha is kept. Block 4.
CONVERSION(Convert_8BGRA_SMPTE_601_To_8BGRA_FULL_709,
           From8BGRAStudio::From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_SMPTE_2020_To_8BGRA_FULL_709,
           From8BGRAStudio::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8BGRA_SMPTE_601_To_8RGBA_FULL_709,
           From8BGRAStudio::From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8BGRA_SMPTE_2020_To_8RGBA_FULL_709,
           From8BGRAStudio::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_RGBA>)

// To studio range of other primaries: through full range. Block 4.
CONVERSION(
    Convert_8BGRA_SMPTE_709_To_8BGRA_SMPTE_2020,
    From8BGRAStudio::ToPrimaries<
        RGB_709_TO_2020, BIND<BGRAv8_COMPUTER_TO_STUDIO_KEEPALPHA<8, P1>, PACK_BGRAv8_TO_BGRA>>)

// To 8-bit 4:2:2 of other primaries. Block 8.
CONVERSION(Convert_8BGRA_SMPTE_709_To_8YUV422_2020,
           From8BGRAStudio::ToPrimaries<
               RGB_709_TO_2020,
               BIND<BGRAv8_TO_UYVYv8<ComputerRange2020, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>>)

} // namespace KSX::PixelConversion
