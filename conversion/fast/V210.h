/// Fast forms of the stages of v210.
#pragma once

#include "conversion/fast/Planes.h"
#include "conversion/stages/V210.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of `UNPACK_V210_TO_UYVY444v8_T`. Unpacks v210 to planes and rebuilds the
/// chroma of odd pixels by the same mean. 24 pixels a step: 64 bytes in, 9 vectors out. Looks
/// ahead.
class UNPACK_V210_TO_YUVv8 : public Kernel<24, 24> {
public:
    using Input = Packed<32, 12>;
    using Output = YUVv8;

    KSX_INLINE Pixels<Output, 24> step(const Pixels<Input, 24>& in, Vector next) const
    {
        Samples samples = samplesFrom(in);
        samples.v[6] = details::firstPair(next);
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
    /// Vectors of `UYVYv8`, and one that begins with the next pair.
    struct Samples {
        Vector v[7];
    };

    KSX_INLINE static Samples samplesFrom(const Pixels<Input, 24>& in)
    {
        const auto first = details::samplesOf(in[0], in[1]);
        const auto second = details::samplesOf(in[2], in[3]);
        return {{first[0], first[1], first[2], second[0], second[1], second[2], v0}};
    }

    KSX_INLINE static Pixels<Output, 24> unpack(const Samples& samples)
    {
        // Cb and Cr of four pairs per vector.
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
            const Vector cb = bitOr(bitAnd(even, v4i_0xffff), shiftLeft32(odd, 16));
            const Vector cr = bitOr(shiftRightU32(even, 16), bitAndNot(v4i_0xffff, odd));
            constexpr Vector lumaTimes16 = v4i(16 << 16);
            const Vector middle = v8i(512 << 6);
            out[3 * V] = packSaturate32To16(mulAddPairs16(samples.v[2 * V], lumaTimes16),
                                            mulAddPairs16(samples.v[2 * V + 1], lumaTimes16));
            out[3 * V + 1] = sub16(shiftLeft16(cb, 6), middle);
            out[3 * V + 2] = sub16(shiftLeft16(cr, 6), middle);
        });
        return out;
    }
};

/// Runs before a pack to 2vuy, in the place of `UNPACK_V210_TO_UYVYv8` and
/// `UYVYv8_BITDEPTH<-2, 16>`. Unpacks v210 to UYVYv8 of 8 bits. 12 pixels a step: 32 bytes in, 3
/// vectors out. Plain.
///
/// Half of an 8-bit code is added while samples are at the top of their lanes. A sum that would
/// carry over the top saturates and gives 255, as the pack after the listed stages does.
class UNPACK_V210_TO_8BIT_UYVYv8 : public Kernel<12, 12> {
public:
    using Input = Packed<16, 6>;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 12> step(const Pixels<Input, 12>& in) const
    {
        auto samples = details::samplesAtTop(in[0], in[1]);
        for (Vector& lanes : samples.v)
            lanes = shiftRightU16(addSaturateU16(lanes, v8i(128)), 8);
        return samples;
    }
};

/// Runs in the place of `UNPACK_UYVY_TO_UYVYv8`, `UYVYv8_BITDEPTH<2, 16>` and
/// `PACK_UYVYv8_TO_V210`. Converts 2vuy directly to v210. 24 pixels a step: 48 bytes in, 64 bytes
/// out. Plain.
///
/// A word takes three bytes. A multiplication moves the outer two, each in its half of the word. A
/// shift of the whole word moves the inner one, which lies across the middle. A byte gives at most
/// 1020, so the pack's limit has no effect.
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

} // namespace KSX::PixelConversion::fast
