/// A limit for lanes of 32 bits, for which SSSE3 has no minimum and maximum.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// Limits lanes of 32 bits, whose signed values fit 16, to `lowest`, not below 0, and `highest`.
/// The lower halves are limited, and the upper ones, copies of the sign, go from all ones to 0 by
/// the maximum.
KSX_INLINE Vector clampLanes(Vector x, std::uint32_t lowest, std::uint32_t highest)
{
    return max16(min16(x, v4i(0x7fff0000 | highest)), v4i(lowest));
}

} // namespace KSX::PixelConversion
