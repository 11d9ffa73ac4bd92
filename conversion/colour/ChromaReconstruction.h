/// 4:2:2 to 4:4:4: where chroma of odd pixels comes from.
///
///     C(2k) = stored pair k         C(2k + 1) = (C(2k) + C(2k + 2) + 1) >> 1
///
/// Pairs are sited on the even pixels (ITU-R BT.709-6, 3.4). There are no more taps than these two.
#pragma once

#include "conversion/Kernel.h"
#include "conversion/VectorConstants.h"

#include <tmmintrin.h>

namespace KSX::PixelConversion {

/// Spreads 4 pixels of `UYVYv8`. `next` begins with the chroma pair behind them.
KSX_INLINE Pixels<UYVY444v8, 4> rebuildChroma(__m128i x, __m128i next)
{
    const __m128i mean = _mm_avg_epu16(x, _mm_alignr_epi8(next, x, 8));
    const __m128i odd =
        _mm_or_si128(_mm_and_si128(mean, v4i_0xffff), _mm_andnot_si128(v4i_0xffff, x));
    return {{_mm_unpacklo_epi64(x, odd), _mm_unpackhi_epi64(x, odd)}};
}

/// What `next` is at the end of a row: the last pair of `x` counts as its own successor.
KSX_INLINE __m128i repeatLastPair(__m128i x)
{
    return _mm_srli_si128(x, 8);
}

} // namespace KSX::PixelConversion
