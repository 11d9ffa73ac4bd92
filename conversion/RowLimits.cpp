/// The least widths of rows that become RGB, from the stages that unpack them.
#include "conversion/pipeline/RowLimits.h"

#include "conversion/KSXPixelConversion.h"
#include "conversion/stages/V210.h"
#include "conversion/stages/YUV8.h"
#include "conversion/stages/YUVA.h"

namespace KSX::PixelConversion {

namespace {

/// The stage that unpacks 4:2:2 rebuilds the chroma, and looks ahead to do so. The stages after it
/// work on each pixel alone, so its limit is the limit of every pipeline to RGB.
template<class UNPACK>
constexpr unsigned kLeastWidthOf = RowLimits<AsPipeline<UNPACK>>::kLeastWidth;

} // namespace

unsigned leastWidthToRGB(PixelFormat source)
{
    switch (source) {
    case PixelFormat_2vuy:
        return kLeastWidthOf<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>>;
    case PixelFormat_YUY2:
        return kLeastWidthOf<UNPACK_YUY2_TO_UYVY444v8_T<kVectors>>;
    case PixelFormat_v210:
        return kLeastWidthOf<UNPACK_V210_TO_UYVY444v8_T<kVectors>>;
    case PixelFormat_ay10:
    case PixelFormat_Ay10:
        return kLeastWidthOf<UNPACK_YUVA<C0>>;
    default:
        return 0;
    }
}

} // namespace KSX::PixelConversion
