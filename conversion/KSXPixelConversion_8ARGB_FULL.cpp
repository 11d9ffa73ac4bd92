/// From 8ARGB_FULL (32): 8-bit ARGB, full range. Bytes A R G B.
#include "conversion/ByteSwap.h"
#include "conversion/Convert.h"
#include "conversion/stages/RGB8.h"

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

} // namespace KSX::PixelConversion
