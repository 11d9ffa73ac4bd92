/// From 8ARGB_FULL (32): 8-bit ARGB, full range. Bytes A R G B.
#include "conversion/ByteSwap.h"
#include "conversion/Convert.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To 8BGRA_FULL: a byte swap, which keeps alpha.
void Convert_8ARGB_FULL_To_8BGRA_FULL(unsigned width, unsigned height, void* dst,
                                      unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    swapPackedRGB(width, height, dst, dstRowBytes, src, srcRowBytes);
}

void Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar(unsigned width, unsigned height, void* dst,
                                             unsigned dstRowBytes, void* src, unsigned srcRowBytes)
{
    swapPackedRGBScalar(width, height, dst, dstRowBytes, src, srcRowBytes);
}

// To 8-bit RGB in other orders: by way of RGBv4, which has no alpha, so opaque. Block 4, 16 to
// RGB3.
CONVERSION(Convert_8ARGB_FULL_To_8RGBA_FULL, BIND<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA>)
CONVERSION(Convert_8ARGB_FULL_To_8RGB_FULL,
           BIND3<UNPACK_ARGB_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>)

// To 8-bit 4:2:2: weigh, filter the chroma, pack. Block 8.
template<class RANGE>
using To8YUV422 =
    BIND3<UNPACK_ARGB_TO_BGRAv8, BGRAv8_TO_UYVYv8<RANGE, 8, 8, P1, C0>, PACK_UYVYv8_TO_UYVY>;

CONVERSION(Convert_8ARGB_FULL_To_8YUV422_SD, To8YUV422<ComputerRange601>)
CONVERSION(Convert_8ARGB_FULL_To_8YUV422_HD, To8YUV422<ComputerRange709>)

} // namespace KSX::PixelConversion
