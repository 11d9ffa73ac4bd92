/// Stages that apply the same operation to every vector.
#pragma once

#include "conversion/pipeline/Kernel.h"

namespace KSX::PixelConversion {

/// A plain stage that keeps the representation and calls `ARITHMETIC::apply` for each vector of a
/// step. One `ARITHMETIC` serves several representations.
template<class REPRESENTATION, unsigned PIXELS, class ARITHMETIC>
class EachVector : public Kernel<PIXELS, PIXELS>, protected ARITHMETIC {
public:
    using Input = REPRESENTATION;
    using Output = REPRESENTATION;

    KSX_INLINE Pixels<Output, PIXELS> step(const Pixels<Input, PIXELS>& in) const
    {
        Pixels<Output, PIXELS> out;
        unrolled<0, out.kVectors>([&]<unsigned V>()
                                      KSX_INLINE_LAMBDA { out[V] = ARITHMETIC::apply(in[V]); });
        return out;
    }
};

} // namespace KSX::PixelConversion
