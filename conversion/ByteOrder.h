/// The byte shuffle between big-endian and little-endian words.
#pragma once

#include "conversion/Kernel.h"

#include <tmmintrin.h>

namespace KSX::PixelConversion {

/// Reverses the bytes of every word of 32 bits.
KSX_INLINE __m128i swapWords(__m128i words)
{
    return _mm_shuffle_epi8(words,
                            _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
}

} // namespace KSX::PixelConversion
