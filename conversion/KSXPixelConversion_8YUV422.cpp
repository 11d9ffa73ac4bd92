/// From 8YUV422 (2vuy): 8-bit 4:2:2, studio range. Bytes Cb Y Cr Y.
#include "conversion/Convert.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To the other byte order of 4:2:2. Block 8.
CONVERSION(Convert_8YUV422_To_8YUY422, BIND<UNPACK_UYVY_TO_UYVYv8, PACK_UYVYv8_TO_YUY2>)

// To 8-bit RGB: rebuild chroma, multiply, stretch to full range. Block 8, 16 to RGB3. The chroma of
// the pair behind a whole block is read from up to 14 bytes behind the row.
template<class RANGE, class PACK>
using To8RGB = BIND4<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 8, 8, P1>,
                     RGBv4_RESCALE<8, false, 8, true, P1>, PACK>;

CONVERSION(Convert_8YUV422_SD_To_8ARGB_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8YUV422_HD_To_8ARGB_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_ARGB>)
CONVERSION(Convert_8YUV422_SD_To_8BGRA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_HD_To_8BGRA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_2020_To_8BGRA_FULL, To8RGB<StudioRange2020, PACK_RGBv4_TO_BGRA>)
CONVERSION(Convert_8YUV422_SD_To_8RGBA_FULL, To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8YUV422_HD_To_8RGBA_FULL, To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8YUV422_SD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange601, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)
CONVERSION(Convert_8YUV422_HD_To_8RGB_FULL,
           BIND<To8RGB<StudioRange709, PACK_RGBv4_TO_RGBA>, PACK_RGBA_TO_RGB>)

} // namespace KSX::PixelConversion
