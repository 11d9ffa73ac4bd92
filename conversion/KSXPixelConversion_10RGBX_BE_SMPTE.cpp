/// From 10RGBX_BE_SMPTE (R10b): 10-bit RGB, studio range. A big-endian word, spare bits at the
/// bottom.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8-bit RGB in full range, in one step. Block 4, 16 to RGB3.
template<class PACK>
using To8RGB = BIND3<UNPACK_R10KBE_TO_RGBv4, RGBv4_RESCALE<10, false, 8, true, P1>, PACK>;

CONVERSION(Convert_10RGBX_BE_SMPTE_To_8ARGB_FULL, To8RGB<PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8BGRA_FULL, To8RGB<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8RGBA_FULL, To8RGB<PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8RGB_FULL, BIND<To8RGB<PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

// To 10-bit RGB in studio range: words are put together anew. Block 4.
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_SMPTE,
           BIND<UNPACK_R10KBE_TO_RGBv4, PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_SMPTE,
           BIND<UNPACK_R10KBE_TO_RGBv4, PACK_RGBv4_TO_R10KLE>)

// To 10-bit RGB in full range. Block 4.
template<class PACK>
using To10RGBFull = BIND3<UNPACK_R10KBE_TO_RGBv4, RGBv4_STUDIO_TO_COMPUTER<10, P0>, PACK>;

CONVERSION(Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R210>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KLE>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBX_BE_FULL, To10RGBFull<PACK_RGBv4_TO_R10KBE>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10RGBA_BE_FULL,
           BIND<To10RGBFull<PACK_RGBv4_TO_R10KBE>, PAD_R10KBE_WITH_1>)

// To 8-bit 4:2:2: weigh at 10 bits. Block 8.
template<class RANGE>
using To8YUV422 = BIND4<UNPACK_R10KBE_TO_RGBv4, RGBv4_TO_BGRAv8,
                        BGRAv8_TO_UYVYv8<RANGE, 10, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_10RGBX_BE_SMPTE_To_8YUV422_SD, To8YUV422<StudioRange601>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_8YUV422_HD, To8YUV422<StudioRange709>)

// To 10-bit 4:2:2. Block 12.
template<class RANGE>
using To10YUV422 = BIND4<UNPACK_R10KBE_TO_RGBv4, RGBv4_TO_BGRAv8,
                         BGRAv8_TO_UYVYv8<RANGE, 10, 10, P1, C0>, PACK_UYVYv8_TO_V210>;

CONVERSION(Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_SD, To10YUV422<StudioRange601>)
CONVERSION(Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_HD, To10YUV422<StudioRange709>)

// To 8-bit RGB of other primaries. Block 4.
template<class PACK>
using From2020To709 = To8RGB<
    BIND<COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, RGB_2020_TO_709, Rec709OETF<8, V0>>, PACK>>;

CONVERSION(Convert_10RGBX_BE_SMPTE_2020_To_8BGRA_FULL_709, From2020To709<PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_10RGBX_BE_SMPTE_2020_To_8RGBA_FULL_709, From2020To709<PACK_RGBv4_TO_RGBA>)

} // namespace KSX::PixelConversion
