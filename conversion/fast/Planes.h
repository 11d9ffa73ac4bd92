/// Representations with one component a vector, 8 pixels each, that fast forms work on. Where the
/// listed stages have empty lanes, or hold a luma twice, these have neither.
#pragma once

#include "conversion/pipeline/Representations.h"

namespace KSX::PixelConversion {

/// Three vectors Y, Cb, Cr, a pixel a lane of 16 bits. 8 pixels.
struct YUVv8 : Representation<6, 1> {};

/// The same with a fourth vector for alpha.
struct YUVAv8 : Representation<8, 1> {};

/// Four vectors R, G, B, A, a pixel a lane of 16 bits. 8 pixels.
struct RGBAv8 : Representation<8, 1> {};

} // namespace KSX::PixelConversion
