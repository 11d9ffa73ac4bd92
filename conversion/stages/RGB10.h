/// Stages of 10-bit RGB in one word of 32 bits a pixel.
///
///     bits       31 30   29..20   19..10   9..0
///     R210       spare   R        G        B        10XRGB: r210, R210
///
///     bits       31..22   21..12   11..2   1 0
///     R10K       R        G        B       spare    10RGBX: R10l, R10L, R10b, R10B, R10A
///
/// Words of R210 are big-endian; the byte order of R10K is in the format's name. Spare bits are
/// ignored when read and 0 when written. In R10A they are alpha, and a stage after the pack sets
/// them. No stage depends on the range of the values. All stages are plain.
///
/// A04l and A04L need no stage: they are `BGRAv8` in memory.
#pragma once

#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// Splits words into components of 10 bits; `B` is the lowest bit of the lowest one.
template<int B>
KSX_INLINE Pixels<RGBv4, 4> splitRGB10(Vector words)
{
    const auto field = [&]<int BIT>() KSX_INLINE_LAMBDA {
        const Vector shifted = shiftRightU32(words, BIT);
        return BIT == 22 ? shifted : bitAnd(shifted, v4i_0x3ff);
    };
    return {{field.template operator()<B + 20>(), field.template operator()<B + 10>(),
             field.template operator()<B>()}};
}

/// Joins components to words, each limited to 0 to 1023. Only the low 16 bits of a lane count, as a
/// signed value.
template<int B>
KSX_INLINE Vector joinRGB10(const Pixels<RGBv4, 4>& in)
{
    // The upper halves of both limits are 0, so the upper halves of the result are 0 too.
    const auto field = [](Vector x, int bit) KSX_INLINE_LAMBDA {
        return shiftLeft32(max16(min16(x, v4i_0x3ff), v0), bit);
    };
    return bitOr(bitOr(field(in[0], B + 20), field(in[1], B + 10)), field(in[2], B));
}

/// Unpacks words to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out. `B` is the lowest bit of
/// the lowest component.
///
/// A component lies in two bytes of its word and begins at one of the lower 7 bits. Byte shuffles
/// put the two bytes into a lane. A shift to the left moves the component to the top of the lane
/// and drops the bits above it, and a shift to the right moves it to the bottom.
template<int B, bool BE>
class UNPACK_RGB10_TO_RGBv8 : public Kernel<8, 8> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<4>;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        constexpr int kR = B + 20, kG = B + 10;
        // R and B of 4 pixels in one vector, and G of 4 pixels in the lower or the upper half.
        const Vector redBlue =
            v16i(low(kR), high(kR), low(kR, 1), high(kR, 1), low(kR, 2), high(kR, 2), low(kR, 3),
                 high(kR, 3), low(B), high(B), low(B, 1), high(B, 1), low(B, 2), high(B, 2),
                 low(B, 3), high(B, 3));
        const Vector greenLow =
            v16i(low(kG), high(kG), low(kG, 1), high(kG, 1), low(kG, 2), high(kG, 2), low(kG, 3),
                 high(kG, 3), -1, -1, -1, -1, -1, -1, -1, -1);
        const Vector greenHigh =
            v16i(-1, -1, -1, -1, -1, -1, -1, -1, low(kG), high(kG), low(kG, 1), high(kG, 1),
                 low(kG, 2), high(kG, 2), low(kG, 3), high(kG, 3));
        const Vector first = shuffleBytes(in[0], redBlue);
        const Vector second = shuffleBytes(in[1], redBlue);
        const Vector green = bitOr(shuffleBytes(in[0], greenLow), shuffleBytes(in[1], greenHigh));
        return {{aligned<kR>(interleaveLow64(first, second)), aligned<kG>(green),
                 aligned<B>(interleaveHigh64(first, second))}};
    }

    /// G of 4 words, in the lower half.
    KSX_INLINE static Vector greenOf(Vector words)
    {
        constexpr int kG = B + 10;
        const Vector lanes =
            v16i(low(kG), high(kG), low(kG, 1), high(kG, 1), low(kG, 2), high(kG, 2), low(kG, 3),
                 high(kG, 3), -1, -1, -1, -1, -1, -1, -1, -1);
        return aligned<kG>(shuffleBytes(words, lanes));
    }

private:
    /// The lower and the upper byte of pixel `pixel` that hold the component beginning at `bit`.
    static constexpr char low(int bit, int pixel = 0)
    {
        return static_cast<char>(4 * pixel + (BE ? 3 - bit / 8 : bit / 8));
    }
    static constexpr char high(int bit, int pixel = 0)
    {
        return static_cast<char>(low(bit, pixel) + (BE ? -1 : 1));
    }

    template<int BIT>
    KSX_INLINE static Vector aligned(Vector lanes)
    {
        constexpr int kToTop = 6 - BIT % 8;
        return shiftRightU16(shiftLeft16(lanes, kToTop), 6);
    }
};

/// Packs RGBv8 to words, each component limited to 0 to 1023 as a signed value. 8 pixels a step: 3
/// vectors in, 32 bytes out.
template<int B, bool BE>
class PACK_RGBv8_TO_RGB10 : public Kernel<8, 8> {
public:
    static constexpr int kLargestCode = 1023;
    using Input = RGBv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector r = limited(in[0]), g = limited(in[1]), b = limited(in[2]);
        return {{words(interleaveLow16(b, g), interleaveLow16(v0, r)),
                 words(interleaveHigh16(b, g), interleaveHigh16(v0, r))}};
    }

private:
    KSX_INLINE static Vector limited(Vector x) { return max16(min16(x, v8i_0x3ff), v0); }

    /// Joins B and G by a multiply-and-add, and R from the upper half of its lane.
    KSX_INLINE static Vector words(Vector bg, Vector r)
    {
        constexpr Vector weights = v4i((1024 << B) << 16 | 1 << B);
        const Vector joined = bitOr(mulAddPairs16(bg, weights), shiftLeft32(r, B + 4));
        return BE ? reverseBytes32(joined) : joined;
    }
};

} // namespace details

// --- R210 ----------------------------------------------------------------------------------------

/// Unpacks R210 to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Given;
    static constexpr int kLowestBit = 0;
    static constexpr bool kBigEndian = true;
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return details::splitRGB10<0>(reverseBytes32(in[0]));
    }
};

/// Unpacks R210 to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv8 : public details::UNPACK_RGB10_TO_RGBv8<0, true> {};

/// Packs RGBv4 to R210. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R210 : public Kernel<4, 4> {
public:
    static constexpr int kLowestBit = 0;
    static constexpr bool kBigEndian = true;
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(details::joinRGB10<0>(in))}};
    }
};

/// Packs RGBv8 to R210, each component limited to 0 to 1023 as a signed value. 8 pixels a step: 3
/// vectors in, 32 bytes out.
class PACK_RGBv8_TO_R210 : public details::PACK_RGBv8_TO_RGB10<0, true> {};

// --- R10K ----------------------------------------------------------------------------------------

/// Unpacks little-endian R10K to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R10KLE_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Given;
    static constexpr int kLowestBit = 2;
    static constexpr bool kBigEndian = false;
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return details::splitRGB10<2>(in[0]);
    }
};

/// Unpacks big-endian R10K to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R10KBE_TO_RGBv4 : public UNPACK_R10KLE_TO_RGBv4 {
public:
    static constexpr bool kBigEndian = true;
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return UNPACK_R10KLE_TO_RGBv4::step({{reverseBytes32(in[0])}});
    }
};

/// Packs RGBv4 to little-endian R10K. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R10KLE : public Kernel<4, 4> {
public:
    static constexpr int kLowestBit = 2;
    static constexpr bool kBigEndian = false;
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{details::joinRGB10<2>(in)}};
    }
};

/// Packs RGBv4 to big-endian R10K. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R10KBE : public PACK_RGBv4_TO_R10KLE {
public:
    static constexpr bool kBigEndian = true;
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(PACK_RGBv4_TO_R10KLE::step(in)[0])}};
    }
};

namespace details {

inline constexpr Vector v4i_r10kpaddingbe = v4i(0x03000000);

} // namespace details

/// Sets the spare bits of packed big-endian R10K, which makes it R10A: alpha 3, opaque. 4 pixels a
/// step: 16 bytes in, 16 bytes out.
class PAD_R10KBE_WITH_1 : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{bitOr(in[0], details::v4i_r10kpaddingbe)}};
    }
};

} // namespace KSX::PixelConversion
