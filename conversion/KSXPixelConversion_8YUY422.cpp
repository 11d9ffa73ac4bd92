/// From 8YUY422 (YUY2): 8-bit 4:2:2, studio range. Bytes Y Cb Y Cr.
#include "conversion/pipeline/Convert.h"
#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To the other byte order of 4:2:2. Block 8.
CONVERSION(Convert_8YUY422_To_8YUV422, BIND<UNPACK_YUY2_TO_UYVYv8, PACK_UYVYv8_TO_UYVY>)

// To 4:2:2 of other primaries: by way of 8-bit RGB in full range. Block 8. The chroma of the pair
// behind a whole block is read from up to 14 bytes behind the row.
template<class MATRIX>
using From601To709 =
    BIND7<UNPACK_YUY2_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<StudioRange601, 8, 8, P1>,
          RGBv4_RESCALE<8, false, 8, true, P1>,
          COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, MATRIX, Rec709OETF<8, V0>>, RGBv4_TO_BGRAv8,
          BGRAv8_TO_UYVYv8<FullRange709<8>, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8YUY422_SD_To_8YUV422_HD,
           By601Lines<From601To709<RGB_601PAL_TO_709>, From601To709<RGB_601NTSC_TO_709>>)

} // namespace KSX::PixelConversion
