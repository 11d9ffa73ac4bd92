/// From 10BGRA_LE_FULL (A04L): 10-bit BGRA in 16 bits, full range. It is BGRAv8 in memory.
#include "conversion/chains/Primaries.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

// To 10-bit RGB of other primaries, at 10 bits throughout. Block 4.
struct From10BGRAFull {
    template<class PACK>
    using From709To2020 = BIND3<PrimariesIn10BitBGRAv8<RGB_709_TO_2020>, BGRAv8_TO_RGBv4, PACK>;
};

CONVERSION(Convert_10BGRA_LE_FULL_709_To_10RGBX_LE_FULL_2020,
           From10BGRAFull::From709To2020<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10BGRA_LE_FULL_709_To_10RGBX_BE_FULL_2020,
           From10BGRAFull::From709To2020<PACK_RGBv4_TO_R10KBE>)

} // namespace KSX::PixelConversion
