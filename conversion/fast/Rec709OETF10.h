/// `Rec709OETF<10, V1>` by tables, for light from 0 to just above 1.
#pragma once

#include "conversion/colour/TransferCharacteristicRec709OETF.h"
#include "conversion/pipeline/VectorConstants.h"

#include <bit>
#include <cstdint>

namespace KSX::PixelConversion::fast {

/// Linear light of each 10-bit code.
extern const float kRec709OETFToLinear10[1024];

/// The place at which the code rises by one in a range of light. As numbers, the bits of floats at
/// or above 0 are in the order of the floats.
struct Rec709Edge {
    /// Minus the bits of the first float with the higher code, plus the code in the top 10 bits.
    std::uint32_t rise;
    /// Bit i is set if the float number i + 1 after that one has the lower code again.
    std::uint32_t falls;
};

/// Ranges of light are numbered by the top bits of light + `kRec709EdgesOffset`. Without an offset
/// there would be as many ranges near black as there are for each doubling of light.
constexpr float kRec709EdgesOffset = 1.0f / 64;
constexpr int kRec709EdgesShift = 14;
constexpr std::uint32_t rec709EdgesRange(float light)
{
    return std::bit_cast<std::uint32_t>(light + kRec709EdgesOffset) >> kRec709EdgesShift;
}
/// The code is 0 from here down.
constexpr float kRec709EdgesLowest = 1e-4f;
constexpr float kRec709EdgesHighest = 1.0001f;
constexpr std::uint32_t kRec709EdgesFirst = rec709EdgesRange(kRec709EdgesLowest);
constexpr std::uint32_t kRec709EdgesCount =
    rec709EdgesRange(kRec709EdgesHighest) + 1 - kRec709EdgesFirst;
extern const Rec709Edge kRec709Edges10[kRec709EdgesCount];

/// The same codes and the same light as `Rec709OETF<10, V1>`.
///
/// Close to white, the sums of its polynomial are so inexact that the code rises, falls and rises
/// again over up to 45 floats. The table has a bit for each of the 31 floats after the first rise.
/// Only three floats that have the lower code lie beyond. No colour gives them: sums that close to
/// white are few. They come out one code too high.
class Rec709OETF10 {
public:
    /// `LANE` of 16 bits is a code of 0 to 1023. All lanes of the result are its light.
    template<int LANE>
    KSX_INLINE static FloatVector inverse(Vector codes)
    {
        return lookUpRepeated<LANE>(kRec709OETFToLinear10, codes);
    }

    /// Light from 0 to `kRec709EdgesHighest`. Nothing checks that.
    template<int LANES>
    KSX_INLINE static Vector forward(FloatVector light)
    {
        constexpr int kCodeBit = 22;
        const FloatVector l = max(light, v4f(kRec709EdgesLowest));
        const Vector range =
            shiftRightU32(bitsOf(add(l, v4f(kRec709EdgesOffset))), kRec709EdgesShift);
        const LookedUp edge = lookUpPairs<LANES, kRec709EdgesFirst>(kRec709Edges10, range);
        // The code, and below it the number of floats since the rise. Before the rise that number
        // is negative, and borrows one from the code.
        const Vector sum = add32(bitsOf(l), bitsOf(edge.first));
        const Vector since = bitAnd(sum, v4i((1u << kCodeBit) - 1));
        // Bit `since` - 1: 2 to this power as a float, by its exponent, then as an integer. From 32
        // on, this is the sign, which is never set in `falls`.
        const FloatVector exponent = add(min(toFloats(since), v4f(32)), v4f(0x1p23f + 126));
        const Vector bit = truncate32(floatsOfBits(shiftLeft32(bitsOf(exponent), 23)));
        const Vector fallen = greater32(bitAnd(bit, bitsOf(edge.second)), v0);
        return add32(shiftRightU32(sum, kCodeBit), fallen);
    }
};

} // namespace KSX::PixelConversion::fast
