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
/// when written. A row is whole groups; samples of the last one that lie behind the row's width
/// have no defined value.
#pragma once

#include "conversion/colour/BitDepth.h"
#include "conversion/colour/ChromaReconstruction.h"
#include "conversion/colour/Flags.h"
#include "conversion/colour/RGBToYUV.h"
#include "conversion/pipeline/Pipeline.h"
#include "conversion/pipeline/VectorConstants.h"
#include "conversion/stages/YUV8.h"

namespace KSX::PixelConversion {

namespace details {

/// Brings samples to the top of their lanes. Byte shuffles have put them there, two bytes each, so
/// that sample 3i + k of a group begins at bit 2k; the multiplication drops what stood above.
/// `FIRST` is the number of the first one.
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

/// Cuts two groups into 24 samples at the top of a lane each.
KSX_INLINE Pixels<UYVYv8, 12> samplesAtTop(Vector first, Vector second)
{
    const Vector from0 = v16i(0, 1, 1, 2, 2, 3, 4, 5, 5, 6, 6, 7, 8, 9, 9, 10);
    // Samples 8 to 11 of the first group and 0 to 3 of the second, in a vector of half of each.
    const Vector from8 = v16i(2, 3, 4, 5, 5, 6, 6, 7, 8, 9, 9, 10, 10, 11, 12, 13);
    const Vector from16 = v16i(5, 6, 6, 7, 8, 9, 9, 10, 10, 11, 12, 13, 13, 14, 14, 15);
    return {{samplesAtTop<0>(shuffleBytes(first, from0)),
             samplesAtTop<8>(shuffleBytes(combineShiftRightBytes<8>(second, first), from8)),
             samplesAtTop<16>(shuffleBytes(second, from16))}};
}

/// The same with each sample as the value of its lane.
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
/// `LINE` is the width of the rows, or 0 for any. At the end of a row of `LINE` pixels, or of one
/// that is a whole number of steps, the last pair counts as its own successor; otherwise whatever
/// pair stands next in memory, padding or not. Steps are read whole.
template<SseFlag S, unsigned LINE = 0>
class UNPACK_V210_TO_UYVY444v8_T;

template<SseFlag S>
class UNPACK_V210_TO_UYVY444v8_T<S, 0> : public Kernel<12, 12> {
public:
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
        // What follows the row's last pair is replaced by it; the pixels there are no one's.
        samples[kLast + 1] = repeatLastPair(samples[kLast]);
        return unpack(samples, v0);
    }

private:
    /// `next` begins with the pair behind the step.
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

template<SseFlag S, unsigned LINE>
class UNPACK_V210_TO_UYVY444v8_T : public UNPACK_V210_TO_UYVY444v8_T<S, 0> {
public:
    using AnyLine = UNPACK_V210_TO_UYVY444v8_T<S, 0>;
    static constexpr unsigned kLine = LINE;
};

namespace details {

/// The same to planes, YUVv8. 24 pixels a step: 64 bytes in, 9 vectors out. Looks ahead.
class UNPACK_V210_TO_YUVv8 : public Kernel<24, 24> {
public:
    using Input = Packed<32, 12>;
    using Output = YUVv8;

    KSX_INLINE Pixels<Output, 24> step(const Pixels<Input, 24>& in, Vector next) const
    {
        Samples samples = samplesFrom(in);
        samples.v[6] = firstPair(next);
        return unpack(samples);
    }

    KSX_INLINE Pixels<Output, 24> lastStep(const Pixels<Input, 24>& in) const
    {
        return lastStepOf<24>(in);
    }

    template<unsigned PIXELS>
    KSX_INLINE Pixels<Output, 24> lastStepOf(const Pixels<Input, 24>& in) const
    {
        static_assert(PIXELS % 4 == 0, "a row ends with a vector of samples");
        Samples samples = samplesFrom(in);
        samples.v[6] = v0;
        samples.v[PIXELS / 4] = repeatLastPair(samples.v[PIXELS / 4 - 1]);
        return unpack(samples);
    }

private:
    /// Vectors of `UYVYv8`, and one that begins with the pair behind them.
    struct Samples {
        Vector v[7];
    };

    KSX_INLINE static Samples samplesFrom(const Pixels<Input, 24>& in)
    {
        const auto first = samplesOf(in[0], in[1]);
        const auto second = samplesOf(in[2], in[3]);
        return {{first[0], first[1], first[2], second[0], second[1], second[2], v0}};
    }

    KSX_INLINE static Pixels<Output, 24> unpack(const Samples& samples)
    {
        // Cb and Cr of four pairs a vector.
        const auto pairs = [&]<unsigned V>() KSX_INLINE_LAMBDA {
            return packSaturate32To16(bitAnd(samples.v[V], v4i_0xffff),
                                      bitAnd(samples.v[V + 1], v4i_0xffff));
        };
        const Vector chroma[4] = {pairs.template operator()<0>(), pairs.template operator()<2>(),
                                  pairs.template operator()<4>(),
                                  packSaturate32To16(bitAnd(samples.v[6], v4i_0xffff), v0)};
        Pixels<Output, 24> out;
        unrolled<0, 3>([&]<std::size_t V>() KSX_INLINE_LAMBDA {
            const Vector even = chroma[V];
            const Vector odd = averageU16(even, combineShiftRightBytes<4>(chroma[V + 1], even));
            out[3 * V] = packSaturate32To16(shiftRightU32(samples.v[2 * V], 16),
                                            shiftRightU32(samples.v[2 * V + 1], 16));
            out[3 * V + 1] = bitOr(bitAnd(even, v4i_0xffff), shiftLeft32(odd, 16));
            out[3 * V + 2] = bitOr(shiftRightU32(even, 16), bitAndNot(v4i_0xffff, odd));
        });
        return out;
    }
};

} // namespace details

template<SseFlag S>
struct Twin<UNPACK_V210_TO_UYVY444v8_T<S, 0>> {
    using type = details::UNPACK_V210_TO_YUVv8;
};

namespace details {

/// Packs UYVYv8 to v210. 12 pixels a step: 3 vectors in, 32 bytes out. Plain. Lanes are 0 to 1023.
///
///     word[i] = in[3i] | in[3i + 1] << 10 | in[3i + 2] << 20
class PACK_LIMITED_UYVYv8_TO_V210 : public Kernel<12, 12> {
public:
    using Input = UYVYv8;
    using Output = Packed<16, 6>;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        // Sample 3i + k is brought to bit 2k of its lane, from where whole bytes go to their word:
        // the first and third of a word side by side, the second over both.
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

/// Packs UYVYv8 to v210, lanes limited to 0 and 1023 as signed values. 12 pixels a step: 3 vectors
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

// --- Merged forms --------------------------------------------------------------------------------

namespace details {

/// Unpacks v210 to UYVYv8 of 8 bits. 12 pixels a step: 32 bytes in, 3 vectors out. Plain.
///
/// Half of an 8-bit code is added while samples stand at the top of their lanes. What that carries
/// over the top saturates there, as the pack would have it.
class UNPACK_V210_TO_8BIT_UYVYv8 : public Kernel<12, 12> {
public:
    using Input = Packed<16, 6>;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        auto samples = samplesAtTop(in[0], in[1]);
        for (Vector& lanes : samples.v)
            lanes = shiftRightU16(addSaturateU16(lanes, v8i(128)), 8);
        return samples;
    }
};

/// From 2vuy straight to v210. 24 pixels a step: 48 bytes in, 64 bytes out. Plain. Of a word's
/// three bytes the outer two are shifted by a multiplication, each in its half, and the inner one
/// as it lies across the middle.
class UYVY_TO_V210 : public Kernel<24, 24> {
public:
    using Input = Packed<2>;
    using Output = Packed<16, 6>;

    KSX_INLINE Pixels<Output, 24> step(const Pixels<Input, 24>& in) const
    {
        return {{group<0>(in[0]), group<0>(combineShiftRightBytes<12>(in[1], in[0])),
                 group<0>(combineShiftRightBytes<8>(in[2], in[1])), group<4>(in[2])}};
    }

private:
    /// A group from the 12 bytes that begin at byte `B`.
    template<int B>
    KSX_INLINE static Vector group(Vector bytes)
    {
        const Vector outer = v16i(B, -1, B + 2, -1, B + 3, -1, B + 5, -1, //
                                  B + 6, -1, B + 8, -1, B + 9, -1, B + 11, -1);
        const Vector inner = v16i(-1, B + 1, -1, -1, -1, B + 4, -1, -1, //
                                  -1, B + 7, -1, -1, -1, B + 10, -1, -1);
        constexpr Vector factors = v4i(64 << 16 | 4);
        return bitOr(mulLow16(shuffleBytes(bytes, outer), factors),
                     shiftLeft32(shuffleBytes(bytes, inner), 4));
    }
};

} // namespace details

template<>
struct MergedForm<UNPACK_V210_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_UYVY> {
    using type = StageList<details::UNPACK_V210_TO_8BIT_UYVYv8, PACK_UYVYv8_TO_UYVY>;
};

template<>
struct MergedForm<UNPACK_UYVY_TO_UYVYv8, UYVYv8_BITDEPTH<2, 16>, PACK_UYVYv8_TO_V210> {
    using type = StageList<details::UYVY_TO_V210>;
};

/// From RGB that keeps to the codes of its full range nothing lies beyond 10 bits.
template<class BEFORE, unsigned N, class STUDIO, int A>
requires(!requires {
    BEFORE::kLeavesRange;
}) struct MergedForm<BEFORE, BGRAv8_TO_UYVYv8<FullRange<N, STUDIO>, A, 10, P1, C0>,
                     PACK_UYVYv8_TO_V210> {
    using type = StageList<BEFORE, BGRAv8_TO_UYVYv8<FullRange<N, STUDIO>, A, 10, P1, C0>,
                           details::PACK_LIMITED_UYVYv8_TO_V210>;
};

} // namespace KSX::PixelConversion
