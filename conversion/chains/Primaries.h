/// Changes of primaries that chains share.
#pragma once

#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/pipeline/By601Lines.h"
#include "conversion/pipeline/Pipeline.h"

namespace KSX::PixelConversion {

/// At 8 bits in `RGBv4`.
template<class MATRIX>
using PrimariesInRGBv4 = COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V0>, MATRIX, Rec709OETF<8, V0>>;

/// At 8 bits in `BGRAv8`, with alpha. The sums are in another order than in `RGBv4`.
template<class MATRIX>
using PrimariesInBGRAv8 = COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V1>, MATRIX, Rec709OETF<8, V1>>;

/// At 10 bits in `BGRAv8`.
template<class MATRIX>
using PrimariesIn10BitBGRAv8 =
    COLOURSPACE_CONV_BGRAv8<Rec709OETF<10, V1>, MATRIX, Rec709OETF<10, V1>>;

} // namespace KSX::PixelConversion
