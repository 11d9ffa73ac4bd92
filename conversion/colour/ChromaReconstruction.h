/// 4:2:2 to 4:4:4: how the chroma of odd pixels is rebuilt.
///
///     C(2k) = stored pair k         C(2k + 1) = (C(2k) + C(2k + 2) + 1) >> 1
///
/// Pairs are sited on the even pixels (ITU-R BT.709-6, 3.4). The filter has only these two taps.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// Rebuilds the chroma of 4 pixels of `UYVYv8`. `next` begins with the chroma pair after them.
KSX_INLINE Pixels<UYVY444v8, 4> rebuildChroma(Vector x, Vector next)
{
    const Vector mean = averageU16(x, combineShiftRightBytes<8>(next, x));
    const Vector odd = bitOr(bitAnd(mean, v4i_0xffff), bitAndNot(v4i_0xffff, x));
    return {{interleaveLow64(x, odd), interleaveHigh64(x, odd)}};
}

/// The value of `next` at the end of a row: the last pair of `x` counts as its own successor.
KSX_INLINE Vector repeatLastPair(Vector x)
{
    return shiftRightBytes<8>(x);
}

} // namespace KSX::PixelConversion
