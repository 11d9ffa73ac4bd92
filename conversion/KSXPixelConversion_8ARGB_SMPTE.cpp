/// From 8ARGB_SMPTE (vRGB): 8-bit ARGB, studio range. Bytes A R G B.
#include "conversion/chains/From8BitRGB.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

using From8ARGBStudio = From8BitStudioRGB<UNPACK_ARGB_TO_BGRAv8>;

// To 8-bit RGB in full range: alpha is kept. Block 4.
CONVERSION(Convert_8ARGB_SMPTE_To_8BGRA_FULL, From8ARGBStudio::To8RGB<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_To_8RGBA_FULL, From8ARGBStudio::To8RGB<PACK_BGRAv8_TO_RGBA>)

// To 8-bit RGB in full range of other primaries: alpha is kept. Block 4.
CONVERSION(Convert_8ARGB_SMPTE_601_To_8BGRA_FULL_709,
           From8ARGBStudio::From601To709<PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_2020_To_8BGRA_FULL_709,
           From8ARGBStudio::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_8ARGB_SMPTE_601_To_8RGBA_FULL_709,
           From8ARGBStudio::From601To709<PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_8ARGB_SMPTE_2020_To_8RGBA_FULL_709,
           From8ARGBStudio::ToPrimaries<RGB_2020_TO_709, PACK_BGRAv8_TO_RGBA>)

} // namespace KSX::PixelConversion
