/// Representations of fast forms: one component per vector, 8 pixels each. The representations of
/// listed stages can have unused lanes or hold a luma twice; these do neither.
#pragma once

#include "conversion/pipeline/Representations.h"

namespace KSX::PixelConversion {

/// Three vectors Y, Cb, Cr, one pixel per lane of 16 bits, as the matrix to RGB takes them: codes
/// of n bits are Y 2^(14 - n), and Cb and Cr less their middle, 2^(16 - n) times. 8 pixels.
struct YUVv8 : Representation<6, 1> {};

/// Four vectors Y, Cb, Cr, A, one pixel per lane of 16 bits. 8 pixels.
struct YUVAv8 : Representation<8, 1> {};

/// Four vectors R, G, B, A, one pixel per lane of 16 bits. 8 pixels.
struct RGBAv8 : Representation<8, 1> {};

} // namespace KSX::PixelConversion
