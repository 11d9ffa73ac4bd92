/// Fast forms of changes of primaries, on planes.
#pragma once

#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/fast/Planes.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of `COLOURSPACE_CONV_RGBv4` and `COLOURSPACE_CONV_BGRAv8` with the curve of 8
/// bits. Converts planes of 8-bit codes. 8 pixels a step. Alpha passes, if there is one.
///
/// Products are added in the order of components `A`, `B` and `C`, which is the listed stage's
/// order, so that the sums round in the same way.
template<class PLANES, class MATRIX, VectorTypeFlag V, int A, int B, int C>
class COLOURSPACE_CONV_PLANES : public Kernel<8, 8> {
    using Curve = Rec709OETF<8, V>;

public:
    static constexpr Range kRange = Range::Given;
    using Input = PLANES;
    using Output = PLANES;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Codes<6> codes = details::convertPlanes<Curve, MATRIX, Curve, A, B, C, 6>(
            {interleaveLow16(in[0], v0), interleaveHigh16(in[0], v0), interleaveLow16(in[1], v0),
             interleaveHigh16(in[1], v0), interleaveLow16(in[2], v0), interleaveHigh16(in[2], v0)});
        Pixels<Output, 8> out = in;
        for (std::size_t c = 0; c < 3; ++c)
            out[c] = packSaturate32To16(codes.v[2 * c], codes.v[2 * c + 1]);
        return out;
    }
};

} // namespace KSX::PixelConversion::fast
