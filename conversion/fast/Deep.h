/// Fast forms of depth changes from 16-bit samples.
#pragma once

#include "conversion/stages/Deep.h"

namespace KSX::PixelConversion::fast {

/// The arithmetic of `BGRAv8_ROUND_TO_8_BITS`: rounds 16-bit samples to 8 bits. A sum that would
/// carry over the top saturates and gives 255, which is also the listed stage's limit.
class RoundTo8Bits {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        return shiftRightU16(addSaturateU16(x, v8i(128)), 8);
    }
};

/// Runs in the place of `BGRAv8_BITDEPTH<-8, 16>` before a pack to bytes. 2 pixels a step. Plain.
class BGRAv8_ROUND_TO_8_BITS : public EachVector<BGRAv8, 2, RoundTo8Bits> {};

/// Runs before a pack to v210, in the place of `UYVYv8_BITDEPTH<-6, 16>`, or of
/// `UNPACK_V212_TO_UYVYv8` and `UYVYv8_BITDEPTH<-2, 16>`. Rounds 16-bit samples to 10 bits. 4
/// pixels a step. Plain.
///
/// A sum that would carry over the top saturates and gives 1023, the limit that the listed stage or
/// the pack sets. The low four bits of v212, which the listed unpack drops, are below the bit that
/// rounds, so they have no effect.
class UYVYv8_ROUND_TO_10_BITS : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = UYVYv8;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{shiftRightU16(addSaturateU16(in[0], v8i(32)), 6)}};
    }
};

} // namespace KSX::PixelConversion::fast
