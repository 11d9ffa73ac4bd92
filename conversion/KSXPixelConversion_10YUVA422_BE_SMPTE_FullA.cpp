/// From 10YUVA422_BE_SMPTE_FullA (Ay10): 10-bit 4:2:2 in studio range with alpha in full range. A
/// big-endian word a pixel.
#include "conversion/chains/From422.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

struct From10YUVA422FullA : From422WithKey<true> {
    template<class RANGE, class MATRIX>
    using ToPrimaries = To8RGB<RANGE, BIND<PrimariesInBGRAv8<MATRIX>, PACK_BGRAv8_TO_BGRA>>;
};

// To 10-bit 4:2:2: alpha is dropped. Block 12.
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_To_10YUV422_LE,
           BIND<UNPACK_YUVA_TO_UYVYv8, PACK_UYVYv8_TO_V210>)

// To 8-bit RGB: alpha is kept. Block 4.
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange601, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_HD_To_8BGRA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange709, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8BGRA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange2020, PACK_BGRAv8_TO_BGRA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8RGBA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange601, PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_HD_To_8RGBA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange709, PACK_BGRAv8_TO_RGBA>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8RGBA_FULL,
           From10YUVA422FullA::To8RGB<ComputerRange2020, PACK_BGRAv8_TO_RGBA>)

// To 8-bit RGB of other primaries: alpha is kept. Block 4.
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL_709,
           By601Lines<From10YUVA422FullA::ToPrimaries<ComputerRange601, RGB_601PAL_TO_709>,
                      From10YUVA422FullA::ToPrimaries<ComputerRange601, RGB_601NTSC_TO_709>>)
CONVERSION(Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8BGRA_FULL_709,
           From10YUVA422FullA::ToPrimaries<ComputerRange2020, RGB_2020_TO_709>)

} // namespace KSX::PixelConversion
