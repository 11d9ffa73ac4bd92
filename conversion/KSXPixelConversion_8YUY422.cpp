/// From 8YUY422 (YUY2): 8-bit 4:2:2, studio range. Bytes Y Cb Y Cr.
#include "conversion/Convert.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

// To the other byte order of 4:2:2. Block 8.
CONVERSION(Convert_8YUY422_To_8YUV422, BIND<UNPACK_YUY2_TO_UYVYv8, PACK_UYVYv8_TO_UYVY>)

} // namespace KSX::PixelConversion
