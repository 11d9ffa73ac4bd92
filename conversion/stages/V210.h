/// Stages of 10-bit 4:2:2, v210 (10YUV422_LE): groups of 6 pixels in 16 bytes, four little-endian
/// words of three samples each.
///
///     word   bits 0..9   10..19   20..29
///     0      Cb0         Y0       Cr0
///     1      Y1          Cb2      Y2
///     2      Cr2         Y3       Cb4
///     3      Y4          Cr4      Y5
///
/// So the samples of a row are in the order of UYVY. Bits 30 and 31 are ignored when read and 0
/// when written. A row consists of whole groups. Samples of the last group that are beyond the
/// row's width have no defined value.
#pragma once

#include "conversion/colour/ChromaReconstruction.h"
#include "conversion/colour/Flags.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// Moves samples to the top of their lanes. Byte shuffles have put the two bytes of each sample
/// into its lane, so that sample 3i + k of a group begins at bit 2k. The multiplication also drops
/// the bits above the sample. `FIRST` is the number of the first sample.
template<int FIRST>
KSX_INLINE Vector samplesAtTop(Vector lanes)
{
    constexpr auto factor = [](int lane) {
        return static_cast<std::int16_t>(64 >> 2 * ((FIRST + lane) % 3));
    };
    constexpr Vector factors =
        v8i(factor(0), factor(1), factor(2), factor(3), factor(4), factor(5), factor(6), factor(7));
    return mulLow16(lanes, factors);
}

/// Splits two groups into 24 samples, each at the top of a lane.
KSX_INLINE Pixels<UYVYv8, 12> samplesAtTop(Vector first, Vector second)
{
    const Vector from0 = v16i(0, 1, 1, 2, 2, 3, 4, 5, 5, 6, 6, 7, 8, 9, 9, 10);
    // Samples 8 to 11 of the first group and 0 to 3 of the second, from a vector with half of each
    // group.
    const Vector from8 = v16i(2, 3, 4, 5, 5, 6, 6, 7, 8, 9, 9, 10, 10, 11, 12, 13);
    const Vector from16 = v16i(5, 6, 6, 7, 8, 9, 9, 10, 10, 11, 12, 13, 13, 14, 14, 15);
    return {{samplesAtTop<0>(shuffleBytes(first, from0)),
             samplesAtTop<8>(shuffleBytes(combineShiftRightBytes<8>(second, first), from8)),
             samplesAtTop<16>(shuffleBytes(second, from16))}};
}

/// Splits two groups into 24 samples, each as the value of its lane.
KSX_INLINE Pixels<UYVYv8, 12> samplesOf(Vector first, Vector second)
{
    auto samples = samplesAtTop(first, second);
    for (Vector& lanes : samples.v)
        lanes = shiftRightU16(lanes, 6);
    return samples;
}

/// The first chroma pair of a group, with its luma between Cb and Cr.
KSX_INLINE Vector firstPair(Vector group)
{
    const Vector pair =
        shuffleBytes(group, v16i(0, 1, 1, 2, 2, 3, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    return shiftRightU16(samplesAtTop<0>(pair), 6);
}

} // namespace details

/// Unpacks v210 to UYVYv8. 12 pixels a step: 32 bytes in, 3 vectors out. Plain.
///
///     out[3i + k] = (word[i] >> 10 k) & 1023
class UNPACK_V210_TO_UYVYv8 : public Kernel<12, 12> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<16, 6>;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        return details::samplesOf(in[0], in[1]);
    }
};

/// Unpacks v210 to UYVY444v8. 12 pixels a step: 32 bytes in, 6 vectors out. Looks ahead: an odd
/// pixel's chroma is rebuilt from the pairs to its left and right.
///
/// The last pair of a row counts as its own successor if the row is a whole number of steps, or if
/// the pipeline is for the row's width (`Pipeline::kLine`). Otherwise the pair that comes next in
/// memory counts, even if it is padding. Steps are read whole.
template<SseFlag>
class UNPACK_V210_TO_UYVY444v8_T : public Kernel<12, 12> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<32, 12>;
    using Output = UYVY444v8;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in, Vector next) const
    {
        return unpack(details::samplesOf(in[0], in[1]), details::firstPair(next));
    }

    KSX_INLINE Pixels<Output, 12> lastStep(const Pixels<Input, 12>& in) const
    {
        const auto samples = details::samplesOf(in[0], in[1]);
        return unpack(samples, repeatLastPair(samples[2]));
    }

    template<unsigned PIXELS>
    KSX_INLINE Pixels<Output, 12> lastStepOf(const Pixels<Input, 12>& in) const
    {
        static_assert(PIXELS % 4 == 0, "a row ends with a vector of samples");
        auto samples = details::samplesOf(in[0], in[1]);
        constexpr unsigned kLast = PIXELS / 4 - 1;
        // The row's last pair replaces the pair after it; the pixels there are not part of the row.
        samples[kLast + 1] = repeatLastPair(samples[kLast]);
        return unpack(samples, v0);
    }

private:
    /// `next` begins with the pair after the step.
    KSX_INLINE static Pixels<Output, 12> unpack(const Pixels<UYVYv8, 12>& samples, Vector next)
    {
        Pixels<Output, 12> out;
        unrolled<0, 3>([&]<unsigned V>() KSX_INLINE_LAMBDA {
            const auto pixels = rebuildChroma(samples[V], V == 2 ? next : samples[V + 1]);
            out[2 * V] = pixels[0];
            out[2 * V + 1] = pixels[1];
        });
        return out;
    }
};

namespace details {

/// Packs UYVYv8 to v210. 12 pixels a step: 3 vectors in, 32 bytes out. Plain. Lanes have to be 0 to
/// 1023.
///
///     word[i] = in[3i] | in[3i + 1] << 10 | in[3i + 2] << 20
class PACK_LIMITED_UYVYv8_TO_V210 : public Kernel<12, 12> {
public:
    using Input = UYVYv8;
    using Output = Packed<16, 6>;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        // Sample 3i + k moves to bit 2k of its lane, so that whole bytes can go to their word: the
        // first and third sample of a word side by side, the second over both.
        const Vector a = shifted<0>(in[0]);
        const Vector b = shifted<8>(in[1]);
        const Vector c = shifted<16>(in[2]);

        const Vector outerA = v16i(0, 1, 4, 5, 6, 7, 10, 11, 12, 13, -1, -1, -1, -1, -1, -1);
        const Vector innerA = v16i(-1, 2, 3, -1, -1, 8, 9, -1, -1, 14, 15, -1, -1, -1, -1, -1);
        const Vector outerB0 = v16i(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 0, 1, 2, 3, 6, 7);
        const Vector innerB0 = v16i(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 4, 5, -1);
        const Vector outerB1 = v16i(8, 9, 12, 13, 14, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
        const Vector innerB1 = v16i(-1, 10, 11, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
        const Vector outerC = v16i(-1, -1, -1, -1, -1, -1, 2, 3, 4, 5, 8, 9, 10, 11, 14, 15);
        const Vector innerC = v16i(-1, -1, -1, -1, -1, 0, 1, -1, -1, 6, 7, -1, -1, 12, 13, -1);

        const auto join = [](Vector x, Vector outerX, Vector innerX, Vector y, Vector outerY,
                             Vector innerY) KSX_INLINE_LAMBDA {
            return bitOr(bitOr(shuffleBytes(x, outerX), shuffleBytes(x, innerX)),
                         bitOr(shuffleBytes(y, outerY), shuffleBytes(y, innerY)));
        };
        return {{join(a, outerA, innerA, b, outerB0, innerB0),
                 join(b, outerB1, innerB1, c, outerC, innerC)}};
    }

private:
    template<int FIRST>
    KSX_INLINE static Vector shifted(Vector x)
    {
        constexpr auto factor = [](int lane) {
            return static_cast<std::int16_t>(1 << 2 * ((FIRST + lane) % 3));
        };
        constexpr Vector factors = v8i(factor(0), factor(1), factor(2), factor(3), factor(4),
                                       factor(5), factor(6), factor(7));
        return mulLow16(x, factors);
    }
};

} // namespace details

/// Packs UYVYv8 to v210, lanes limited to 0 to 1023 as signed values. 12 pixels a step: 3 vectors
/// in, 32 bytes out. Plain.
class PACK_UYVYv8_TO_V210 : public details::PACK_LIMITED_UYVYv8_TO_V210 {
public:
    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        return PACK_LIMITED_UYVYv8_TO_V210::step(
            {{limited(in[0]), limited(in[1]), limited(in[2])}});
    }

private:
    KSX_INLINE static Vector limited(Vector x) { return max16(min16(x, v8i_0x3ff), v0); }
};

} // namespace KSX::PixelConversion
