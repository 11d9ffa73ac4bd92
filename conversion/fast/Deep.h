/// Fast forms of depth changes from 16-bit samples.
#pragma once

#include "conversion/stages/Deep.h"

namespace KSX::PixelConversion::fast {

/// Rounds 16-bit samples to 8 bits. What the rounding carries over the top saturates there, as the
/// pack to bytes behind it would have it.
class RoundTo8Bits {
protected:
    KSX_INLINE static Vector apply(Vector x)
    {
        return shiftRightU16(addSaturateU16(x, v8i(128)), 8);
    }
};

class BGRAv8_ROUND_TO_8_BITS : public EachVector<BGRAv8, 2, RoundTo8Bits> {};

/// Rounds 16-bit samples to 10 bits, at most 1023. The low four bits of v212 lie below what counts.
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
