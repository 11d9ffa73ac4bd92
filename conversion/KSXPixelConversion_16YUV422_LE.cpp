/// From 16YUV422_LE (v216): 16-bit 4:2:2, studio range. Samples Cb Y Cr Y.
#include "conversion/colour/BitDepth.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/V210.h"

namespace KSX::PixelConversion {

// To 10-bit 4:2:2: rounded. Block 24.
CONVERSION(Convert_16YUV422_LE_To_10YUV422_LE, BIND<UYVYv8_BITDEPTH<-6, 16>, PACK_UYVYv8_TO_V210>)

} // namespace KSX::PixelConversion
