/// Stages of 10-bit RGB in one word of 32 bits a pixel.
///
///     bits       31 30   29..20   19..10   9..0
///     R210       spare   R        G        B        10XRGB: r210, R210
///
///     bits       31..22   21..12   11..2   1 0
///     R10K       R        G        B       spare    10RGBX: R10l, R10L, R10b, R10B, R10A
///
/// Words of R210 are big-endian, those of R10K as the format's name says. Spare bits are ignored
/// when read and 0 when written; in R10A, where they stand for alpha, a stage behind the pack sets
/// them. Nothing here looks at the range of the values. All stages are plain.
///
/// A04l and A04L need no stage: they are `BGRAv8` as it lies in memory.
#pragma once

#include "conversion/colour/BitDepth.h"
#include "conversion/colour/Rescale.h"
#include "conversion/pipeline/Pipeline.h"
#include "conversion/pipeline/VectorConstants.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion {

namespace details {

/// Cuts words into components of 10 bits; `B` is the lowest bit of the lowest one.
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

/// Joins components to words, each limited to 0 and 1023. Of a lane the low 16 bits count, as a
/// signed value.
template<int B>
KSX_INLINE Vector joinRGB10(const Pixels<RGBv4, 4>& in)
{
    // Upper halves of a limit are 0, and so are those of what two limits leave.
    const auto field = [](Vector x, int bit) KSX_INLINE_LAMBDA {
        return shiftLeft32(max16(min16(x, v4i_0x3ff), v0), bit);
    };
    return bitOr(bitOr(field(in[0], B + 20), field(in[1], B + 10)), field(in[2], B));
}

/// Unpacks words to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out. `B` is the lowest bit of
/// the lowest component.
///
/// A component lies in two bytes of its word, beginning at one of the lower 7 bits. Byte shuffles
/// put them into lanes; the multiplication brings the component to the top, which drops what stood
/// above, and the shift to the bottom.
template<int B, bool SWAPPED>
class UNPACK_RGB10_TO_RGBv8 : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = RGBv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        constexpr int kR = B + 20, kG = B + 10;
        // R and B of 4 pixels at once, and G of 4 into either half.
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
    /// The bytes of pixel `pixel` that have the component which begins at `bit`.
    static constexpr char low(int bit, int pixel = 0)
    {
        return static_cast<char>(4 * pixel + (SWAPPED ? 3 - bit / 8 : bit / 8));
    }
    static constexpr char high(int bit, int pixel = 0)
    {
        return static_cast<char>(low(bit, pixel) + (SWAPPED ? -1 : 1));
    }

    template<int BIT>
    KSX_INLINE static Vector aligned(Vector lanes)
    {
        constexpr int kToTop = 6 - BIT % 8;
        return shiftRightU16(shiftLeft16(lanes, kToTop), 6);
    }
};

/// Packs RGBv8 to words, each component limited to 0 and 1023 as a signed value. 8 pixels a step: 3
/// vectors in, 32 bytes out.
template<int B, bool SWAPPED>
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

    /// B and G by a multiply-and-add, R from the upper half of its lane.
    KSX_INLINE static Vector words(Vector bg, Vector r)
    {
        constexpr Vector weights = v4i((1024 << B) << 16 | 1 << B);
        const Vector joined = bitOr(mulAddPairs16(bg, weights), shiftLeft32(r, B + 4));
        return SWAPPED ? reverseBytes32(joined) : joined;
    }
};

} // namespace details

// --- R210 ----------------------------------------------------------------------------------------

/// Unpacks R210 to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr bool kUnpacksRGB10 = true;
    static constexpr int kLowestBit = 0;
    static constexpr bool kSwapped = true;
    using Input = Packed<4>;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return details::splitRGB10<0>(reverseBytes32(in[0]));
    }
};

/// Unpacks R210 to RGBv8. 8 pixels a step: 32 bytes in, 3 vectors out.
class UNPACK_R210_TO_RGBv8 : public details::UNPACK_RGB10_TO_RGBv8<0, true> {};

template<>
struct Twin<UNPACK_R210_TO_RGBv4> {
    using type = UNPACK_R210_TO_RGBv8;
};

/// Packs RGBv4 to R210. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R210 : public Kernel<4, 4> {
public:
    static constexpr bool kPacksRGB10 = true;
    static constexpr int kLowestBit = 0;
    static constexpr bool kSwapped = true;
    using Input = RGBv4;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(details::joinRGB10<0>(in))}};
    }
};

/// Packs RGBv8 to R210, each component limited to 0 and 1023 as a signed value. 8 pixels a step: 3
/// vectors in, 32 bytes out.
class PACK_RGBv8_TO_R210 : public details::PACK_RGBv8_TO_RGB10<0, true> {};

template<>
struct Twin<PACK_RGBv4_TO_R210> {
    using type = PACK_RGBv8_TO_R210;
};

// --- R10K ----------------------------------------------------------------------------------------

/// Unpacks little-endian R10K to RGBv4. 4 pixels a step: 16 bytes in, 3 vectors out.
class UNPACK_R10KLE_TO_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr bool kUnpacksRGB10 = true;
    static constexpr int kLowestBit = 2;
    static constexpr bool kSwapped = false;
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
    static constexpr bool kSwapped = true;
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return UNPACK_R10KLE_TO_RGBv4::step({{reverseBytes32(in[0])}});
    }
};

/// Packs RGBv4 to little-endian R10K. 4 pixels a step: 3 vectors in, 16 bytes out.
class PACK_RGBv4_TO_R10KLE : public Kernel<4, 4> {
public:
    static constexpr bool kPacksRGB10 = true;
    static constexpr int kLowestBit = 2;
    static constexpr bool kSwapped = false;
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
    static constexpr bool kSwapped = true;
    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{reverseBytes32(PACK_RGBv4_TO_R10KLE::step(in)[0])}};
    }
};

template<>
struct Twin<UNPACK_R10KLE_TO_RGBv4> {
    using type = details::UNPACK_RGB10_TO_RGBv8<2, false>;
};
template<>
struct Twin<UNPACK_R10KBE_TO_RGBv4> {
    using type = details::UNPACK_RGB10_TO_RGBv8<2, true>;
};
template<>
struct Twin<PACK_RGBv4_TO_R10KLE> {
    using type = details::PACK_RGBv8_TO_RGB10<2, false>;
};
template<>
struct Twin<PACK_RGBv4_TO_R10KBE> {
    using type = details::PACK_RGBv8_TO_RGB10<2, true>;
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

// --- Merged forms --------------------------------------------------------------------------------

namespace details {

/// From bytes straight to words of 10-bit RGB with zeros below. 4 pixels a step: 16 bytes in, 16
/// bytes out. R and B are shifted by a multiplication, each in its half of the word, and G as it
/// lies across the middle.
template<class UNPACK, class PACK>
class BYTES_TO_RGB10 : public Kernel<4, 4> {
    static constexpr int B = PACK::kLowestBit;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        constexpr int kR = UNPACK::kBytes[0], kG = UNPACK::kBytes[1], kB = UNPACK::kBytes[2];
        const Vector outer = v16i(kB, -1, kR, -1, kB + 4, -1, kR + 4, -1, //
                                  kB + 8, -1, kR + 8, -1, kB + 12, -1, kR + 12, -1);
        const Vector inner = v16i(-1, kG, -1, -1, -1, kG + 4, -1, -1, //
                                  -1, kG + 8, -1, -1, -1, kG + 12, -1, -1);
        constexpr Vector factors = v4i((64 << B) << 16 | 4 << B);
        const Vector words = bitOr(mulLow16(shuffleBytes(in[0], outer), factors),
                                   shiftLeft32(shuffleBytes(in[0], inner), B + 4));
        return {{PACK::kSwapped ? reverseBytes32(words) : words}};
    }
};

/// From bytes in full range straight to words of 10-bit RGB with video levels. 4 pixels a step: 16
/// bytes in, 16 bytes out. Black is added to all three components at once, when they are in place.
template<class UNPACK, class PACK>
class BYTES_TO_STUDIO_RGB10 : public Kernel<4, 4>, RescaleBytes<10, false> {
    static constexpr int B = PACK::kLowestBit;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        constexpr int kR = UNPACK::kBytes[0], kG = UNPACK::kBytes[1], kB = UNPACK::kBytes[2];
        const Vector outer = v16i(kB, -1, kR, -1, kB + 4, -1, kR + 4, -1, //
                                  kB + 8, -1, kR + 8, -1, kB + 12, -1, kR + 12, -1);
        const Vector inner = v16i(kG, -1, -1, -1, kG + 4, -1, -1, -1, //
                                  kG + 8, -1, -1, -1, kG + 12, -1, -1, -1);
        constexpr Vector factors = v4i((16 << B) << 16 | 1 << B);
        constexpr Vector black = v4i((kBlack << 20 | kBlack << 10 | kBlack) << B);
        const Vector redBlue = mulLow16(scaled(shuffleBytes(in[0], outer)), factors);
        const Vector green = shiftLeft32(scaled(shuffleBytes(in[0], inner)), B + 10);
        const Vector words = add32(bitOr(redBlue, green), black);
        return {{PACK::kSwapped ? reverseBytes32(words) : words}};
    }
};

/// A shuffle of 4 words: the two bytes that have the component which begins at bit `EVEN` into each
/// even lane, and those for `ODD` into each odd one. No byte for -1.
template<class UNPACK, int EVEN, int ODD>
KSX_INLINE Vector lanesOf()
{
    constexpr auto byte = [](int bit, int i, int pixel) {
        const int in = bit / 8 + i;
        return static_cast<char>(bit < 0 ? -1 : 4 * pixel + (UNPACK::kSwapped ? 3 - in : in));
    };
    return v16i(byte(EVEN, 0, 0), byte(EVEN, 1, 0), byte(ODD, 0, 0), byte(ODD, 1, 0), //
                byte(EVEN, 0, 1), byte(EVEN, 1, 1), byte(ODD, 0, 1), byte(ODD, 1, 1), //
                byte(EVEN, 0, 2), byte(EVEN, 1, 2), byte(ODD, 0, 2), byte(ODD, 1, 2), //
                byte(EVEN, 0, 3), byte(EVEN, 1, 3), byte(ODD, 0, 3), byte(ODD, 1, 3));
}

/// From words of 10-bit RGB straight to opaque bytes, rounded. 4 pixels a step: 16 bytes in, 16
/// bytes out.
///
/// Two components of a pixel at the top of a lane each, with half of an 8-bit code added: what that
/// carries over the top saturates there. One vector has those that end up in the lower bytes of
/// lanes, the other those of the upper ones, alpha among them.
template<class UNPACK, class PACK>
class RGB10_TO_BYTES : public Kernel<4, 4> {
    static constexpr int kNone = -1;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector lower = rounded<at(0), at(2)>(in[0]);
        const Vector upper = rounded<at(1), at(3)>(in[0]);
        return {{bitOr(shiftRightU16(lower, 8), bitAnd(upper, v8i(0xff00)))}};
    }

private:
    /// The lowest bit of the component that goes to `byte` of a pixel.
    static constexpr int at(int byte)
    {
        for (int c = 0; c < 3; ++c)
            if (PACK::kBytes[c] == byte)
                return UNPACK::kLowestBit + 20 - 10 * c;
        return kNone;
    }

    static constexpr std::int16_t factor(int bit)
    {
        return static_cast<std::int16_t>(bit == kNone ? 0 : 64 >> bit % 8);
    }

    /// What rounds a component, and makes 255 of none.
    static constexpr std::int16_t half(int bit) { return bit == kNone ? -256 : 128; }

    template<int LOW, int HIGH>
    KSX_INLINE static Vector rounded(Vector words)
    {
        constexpr Vector factors = v8i(factor(LOW), factor(HIGH), factor(LOW), factor(HIGH),
                                       factor(LOW), factor(HIGH), factor(LOW), factor(HIGH));
        constexpr Vector halves = v8i(half(LOW), half(HIGH), half(LOW), half(HIGH), half(LOW),
                                      half(HIGH), half(LOW), half(HIGH));
        return addSaturateU16(mulLow16(shuffleBytes(words, lanesOf<UNPACK, LOW, HIGH>()), factors),
                              halves);
    }
};

/// From words of 10-bit RGB with video levels straight to opaque bytes in full range, rounded. 4
/// pixels a step: 16 bytes in, 16 bytes out. What lies above white saturates in the narrowing.
template<class UNPACK, class PACK>
class STUDIO_RGB10_TO_BYTES : public Kernel<4, 4> {
    static constexpr int kR = UNPACK::kLowestBit + 20, kG = UNPACK::kLowestBit + 10,
                         kB = UNPACK::kLowestBit;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector bytes =
            packSaturate16ToU8(scaled<kR, kB, 0>(in[0]), scaled<kG, -1, 255>(in[0]));
        constexpr auto from = [](int byte) {
            const auto& at = PACK::kBytes;
            return static_cast<char>(byte == at[0] ? 0 : byte == at[1] ? 8 : byte == at[2] ? 1 : 9);
        };
        constexpr char k0 = from(0), k1 = from(1), k2 = from(2), k3 = from(3);
        const Vector order = v16i(k0, k1, k2, k3, k0 + 2, k1 + 2, k2 + 2, k3 + 2, //
                                  k0 + 4, k1 + 4, k2 + 4, k3 + 4, k0 + 6, k1 + 6, k2 + 6, k3 + 6);
        return {{shuffleBytes(bytes, order)}};
    }

private:
    /// The components that begin at bits `EVEN` and `ODD`, in even and odd lanes. In the place of
    /// one that begins at -1 stands `FILL`.
    template<int EVEN, int ODD, int FILL>
    KSX_INLINE static Vector scaled(Vector words)
    {
        constexpr auto k = rescaleConstants(10, false, 8, true);
        constexpr auto pairs = [](int even, int odd) {
            return v4i(static_cast<int>(static_cast<unsigned>(odd) << 16 | unsigned(even)));
        };
        constexpr auto lane = [](int bit) { return bit < 0 ? 0 : 64 >> bit % 8; };
        const Vector fields = mulLow16(shuffleBytes(words, lanesOf<UNPACK, EVEN, ODD>()),
                                       pairs(lane(EVEN), lane(ODD)));
        const Vector codes = subSaturateU16(shiftRightU16(fields, 6), v8i(k.black));
        return averageU16(mulHighU16(codes, v8i(2 * k.gain)), pairs(0, 2 * FILL));
    }
};

} // namespace details

template<class UNPACK, class PACK>
requires(UNPACK::kUnpacksBytesToRGBv4&&
             PACK::kPacksRGB10) struct MergedForm<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK> {
    using type = StageList<details::BYTES_TO_RGB10<UNPACK, PACK>>;
};
template<>
struct MergedForm<UNPACK_BGRA_TO_RGBv8, RGBv8_BITDEPTH<2, 16>, PACK_RGBv8_TO_R210> {
    using type = StageList<details::BYTES_TO_RGB10<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_R210>>;
};

template<class UNPACK, class PACK>
requires(UNPACK::kUnpacksRGB10&&
             PACK::kPacksRGBv4ToBytes) struct MergedForm<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK> {
    using type = StageList<details::RGB10_TO_BYTES<UNPACK, PACK>>;
};
template<>
struct MergedForm<UNPACK_R210_TO_RGBv8, RGBv8_BITDEPTH<-2, 16>, PACK_RGBv8_TO_BGRA> {
    using type = StageList<details::RGB10_TO_BYTES<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_BGRA>>;
};

// The same with video levels on the side of 10 bits.
template<class UNPACK, class PACK>
requires(UNPACK::kUnpacksBytesToRGBv4&& PACK::kPacksRGB10) struct MergedForm<
    UNPACK, RGBv4_RESCALE<8, true, 10, false, P1>, PACK> {
    using type = StageList<details::BYTES_TO_STUDIO_RGB10<UNPACK, PACK>>;
};
template<>
struct MergedForm<UNPACK_BGRA_TO_RGBv8, RGBv8_RESCALE<8, true, 10, false, P1>, PACK_RGBv8_TO_R210> {
    using type =
        StageList<details::BYTES_TO_STUDIO_RGB10<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_R210>>;
};
template<class UNPACK, class PACK>
requires(UNPACK::kUnpacksRGB10&& PACK::kPacksRGBv4ToBytes) struct MergedForm<
    UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK> {
    using type = StageList<details::STUDIO_RGB10_TO_BYTES<UNPACK, PACK>>;
};
template<>
struct MergedForm<UNPACK_R210_TO_RGBv8, RGBv8_RESCALE<10, false, 8, true, P1>, PACK_RGBv8_TO_BGRA> {
    using type =
        StageList<details::STUDIO_RGB10_TO_BYTES<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_BGRA>>;
};

} // namespace KSX::PixelConversion
