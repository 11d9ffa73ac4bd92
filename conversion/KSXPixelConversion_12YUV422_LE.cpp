/// From 12YUV422_LE (v212): 12-bit 4:2:2 in the top of 16 bits, studio range. Samples Cb Y Cr Y.
#include "conversion/colour/BitDepth.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/V210.h"

namespace KSX::PixelConversion {

// To 10-bit 4:2:2: rounded. Block 24.
CONVERSION(Convert_12YUV422_LE_To_10YUV422_LE,
           BIND3<UNPACK_V212_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_V210>)

} // namespace KSX::PixelConversion
