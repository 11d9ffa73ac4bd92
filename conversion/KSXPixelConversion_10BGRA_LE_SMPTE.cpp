/// From 10BGRA_LE_SMPTE (A04l): 10-bit BGRA in 16 bits, studio range. It is BGRAv8 in memory.
#include "conversion/chains/Primaries.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"

namespace KSX::PixelConversion {

// To other primaries, all at 10 bits: through full range.
struct From10BGRAStudio {
    template<class PACK>
    using From709To2020 = BIND3<BGRAv8_RESCALE<10, false, 10, true, P1>,
                                PrimariesIn10BitBGRAv8<RGB_709_TO_2020>, PACK>;

    template<class PACK>
    using To10RGBStudio =
        From709To2020<BIND3<BGRAv8_RESCALE<10, true, 10, false, P1>, BGRAv8_TO_RGBv4, PACK>>;
};

// 10-bit RGB in studio range. Block 4.
CONVERSION(Convert_10BGRA_LE_SMPTE_709_To_10XRGB_BE_SMPTE_2020,
           From10BGRAStudio::To10RGBStudio<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10BGRA_LE_SMPTE_709_To_10RGBX_LE_SMPTE_2020,
           From10BGRAStudio::To10RGBStudio<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10BGRA_LE_SMPTE_709_To_10RGBX_BE_SMPTE_2020,
           From10BGRAStudio::To10RGBStudio<PACK_RGBv4_TO_R10KBE>)

// 10-bit 4:2:2. Block 12.
CONVERSION(Convert_10BGRA_LE_SMPTE_709_To_10YUV422_LE_2020,
           From10BGRAStudio::From709To2020<
               BIND<BGRAv8_TO_UYVYv8<FullRange2020<10>, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>>)

} // namespace KSX::PixelConversion
