/// From 8YUY422 (YUY2): 8-bit 4:2:2, studio range. Bytes Y Cb Y Cr.
#include "conversion/chains/From422.h"
#include "conversion/pipeline/Convert.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

using From8YUY422 = From422<UNPACK_YUY2_TO_UYVY444v8_T<kVectors>, 8>;

// To the other byte order of 4:2:2. Block 8.
CONVERSION(Convert_8YUY422_To_8YUV422, BIND<UNPACK_YUY2_TO_UYVYv8, PACK_UYVYv8_TO_UYVY>)

// To 4:2:2 of other primaries: through 8-bit RGB in full range. Block 8. The chroma of the pair
// after a whole block is read, from up to 14 bytes after the row.
CONVERSION(Convert_8YUY422_SD_To_8YUV422_HD,
           By601Lines<From8YUY422::From601To709In422<RGB_601PAL_TO_709, PACK_UYVYv8_TO_UYVY>,
                      From8YUY422::From601To709In422<RGB_601NTSC_TO_709, PACK_UYVYv8_TO_UYVY>>)

} // namespace KSX::PixelConversion
