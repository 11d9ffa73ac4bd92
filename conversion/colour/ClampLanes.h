/// A limit for lanes of 32 bits, for which SSSE3 has no minimum and maximum.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// Limits lanes of 32 bits to `lowest` to `highest`. Their signed values have to fit 16 bits, and
/// `lowest` must not be below 0. The lower halves are limited as lanes of 16 bits. The upper halves
/// are copies of the sign; the maximum turns all ones into 0.
KSX_INLINE Vector clampLanes(Vector x, std::uint32_t lowest, std::uint32_t highest)
{
    return max16(min16(x, v4i(0x7fff0000 | highest)), v4i(lowest));
}

} // namespace KSX::PixelConversion
