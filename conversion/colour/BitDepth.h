/// Stages that change the depth of code values without a change of range.
///
/// To a larger depth, codes are shifted and the new low bits are 0: 8-bit 255 becomes 1020 at 10
/// bits, not 1023. To a smaller depth, by n bits, codes are rounded half up and limited to C:
///
///     C = ((1 << WIDTH) - 1) >> n
///     y = min((x >> n) + ((x >> (n - 1)) & 1), C)        WIDTH 16, lanes of 16 bits
///     y = min((x + (1 << (n - 1))) >> n, C)              otherwise
///
/// Both formulas round in the same way. In the first, no sum can leave the lane.
#pragma once

#include "conversion/colour/Flags.h"
#include "conversion/pipeline/EachVector.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// The arithmetic of a depth change of `SHIFT` bits.
template<int SHIFT, int WIDTH, VectorTypeFlag VECTOR>
class BitDepth {
    static constexpr int n = -SHIFT;
    static constexpr int kCap = ((1 << WIDTH) - 1) >> (n > 0 ? n : 0);

protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        if constexpr (SHIFT > 0) {
            return VECTOR == V0 ? shiftLeft32(x, SHIFT) : shiftLeft16(x, SHIFT);
        } else if constexpr (VECTOR == V0) {
            // The sum is at most 16384, so a signed minimum of 16 bits is enough.
            const Vector rounded = shiftRightU32(add32(x, v4i(1 << (n - 1))), n);
            return min16(rounded, v4i(kCap));
        } else if constexpr (WIDTH == 16) {
            const Vector half = bitAnd(shiftRightU16(x, n - 1), v8i_1);
            return min16(addSaturate16(shiftRightU16(x, n), half), v8i(kCap));
        } else {
            const Vector rounded = shiftRightU16(addSaturate16(x, v8i(1 << (n - 1))), n);
            return min16(rounded, v8i(kCap));
        }
    }
};

} // namespace details

/// Changes the depth of `RGBv4`. 4 pixels a step. Plain.
template<int SHIFT, int WIDTH>
class RGBv4_BITDEPTH : public EachVector<RGBv4, 4, details::BitDepth<SHIFT, WIDTH, V0>> {
};

/// Changes the depth of `RGBv8`. 8 pixels a step. Plain.
template<int SHIFT, int WIDTH>
class RGBv8_BITDEPTH : public EachVector<RGBv8, 8, details::BitDepth<SHIFT, WIDTH, V1>> {
};

/// Changes the depth of all lanes of `BGRAv8`, alpha too. 2 pixels a step. Plain.
template<int SHIFT, int WIDTH>
class BGRAv8_BITDEPTH : public EachVector<BGRAv8, 2, details::BitDepth<SHIFT, WIDTH, V1>> {
};

/// Changes the depth of `UYVYv8`. 8 pixels a step. Plain.
template<int SHIFT, int WIDTH>
class UYVYv8_BITDEPTH : public EachVector<UYVYv8, 8, details::BitDepth<SHIFT, WIDTH, V1>> {
};

} // namespace KSX::PixelConversion
