/// Fast forms between bytes and words of 10-bit RGB.
#pragma once

#include "conversion/fast/Rescale.h"
#include "conversion/stages/RGB10.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of an unpack of bytes to `RGBv4`, `RGBv4_BITDEPTH<2, 16>` and a pack to 10-bit
/// RGB, and of the same chain in `RGBv8`. The low two bits of each component are 0. 4 pixels a
/// step: 16 bytes in, 16 bytes out.
///
/// A multiplication moves R and B, each in its half of the word. A shift of the whole word moves G,
/// which lies across the middle. A byte gives at most 1020, so the pack's limit has no effect.
template<class UNPACK, class PACK>
class BYTES_TO_RGB10 : public Kernel<4, 4> {
    static constexpr int B = PACK::kLowestBit;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        constexpr int kR = UNPACK::kByteOf[0], kG = UNPACK::kByteOf[1], kB = UNPACK::kByteOf[2];
        const Vector outer = v16i(kB, -1, kR, -1, kB + 4, -1, kR + 4, -1, //
                                  kB + 8, -1, kR + 8, -1, kB + 12, -1, kR + 12, -1);
        const Vector inner = v16i(-1, kG, -1, -1, -1, kG + 4, -1, -1, //
                                  -1, kG + 8, -1, -1, -1, kG + 12, -1, -1);
        constexpr Vector factors = v4i((64 << B) << 16 | 4 << B);
        const Vector words = bitOr(mulLow16(shuffleBytes(in[0], outer), factors),
                                   shiftLeft32(shuffleBytes(in[0], inner), B + 4));
        return {{PACK::kBigEndian ? reverseBytes32(words) : words}};
    }
};

/// Runs in the place of an unpack of bytes to `RGBv4`, `RGBv4_RESCALE<8, true, 10, false, P1>` and
/// a pack to 10-bit RGB, and of the same chain in `RGBv8`. Converts bytes in full range to words
/// with video levels. 4 pixels a step: 16 bytes in, 16 bytes out.
///
/// The multiplication of `RescaleBytes` rounds as the listed rescale does. Black is added to all
/// three components at once, after they are in place. A byte gives at most 940, so the sums do not
/// carry and the pack's limit has no effect.
template<class UNPACK, class PACK>
class BYTES_TO_STUDIO_RGB10 : public Kernel<4, 4>, RescaleBytes<10, false> {
    static constexpr int B = PACK::kLowestBit;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        constexpr int kR = UNPACK::kByteOf[0], kG = UNPACK::kByteOf[1], kB = UNPACK::kByteOf[2];
        const Vector outer = v16i(kB, -1, kR, -1, kB + 4, -1, kR + 4, -1, //
                                  kB + 8, -1, kR + 8, -1, kB + 12, -1, kR + 12, -1);
        const Vector inner = v16i(kG, -1, -1, -1, kG + 4, -1, -1, -1, //
                                  kG + 8, -1, -1, -1, kG + 12, -1, -1, -1);
        constexpr Vector factors = v4i((16 << B) << 16 | 1 << B);
        constexpr Vector black = v4i((kBlack << 20 | kBlack << 10 | kBlack) << B);
        const Vector redBlue = mulLow16(scaled(shuffleBytes(in[0], outer)), factors);
        const Vector green = shiftLeft32(scaled(shuffleBytes(in[0], inner)), B + 10);
        const Vector words = add32(bitOr(redBlue, green), black);
        return {{PACK::kBigEndian ? reverseBytes32(words) : words}};
    }
};

/// The indices of a byte shuffle of 4 words. It moves the two bytes that hold the component
/// beginning at bit `EVEN` to each even lane, and those for `ODD` to each odd lane. A lane whose
/// bit is -1 becomes 0.
template<class UNPACK, int EVEN, int ODD>
KSX_INLINE Vector lanesOf()
{
    constexpr auto byte = [](int bit, int i, int pixel) {
        const int in = bit / 8 + i;
        return static_cast<char>(bit < 0 ? -1 : 4 * pixel + (UNPACK::kBigEndian ? 3 - in : in));
    };
    return v16i(byte(EVEN, 0, 0), byte(EVEN, 1, 0), byte(ODD, 0, 0), byte(ODD, 1, 0), //
                byte(EVEN, 0, 1), byte(EVEN, 1, 1), byte(ODD, 0, 1), byte(ODD, 1, 1), //
                byte(EVEN, 0, 2), byte(EVEN, 1, 2), byte(ODD, 0, 2), byte(ODD, 1, 2), //
                byte(EVEN, 0, 3), byte(EVEN, 1, 3), byte(ODD, 0, 3), byte(ODD, 1, 3));
}

/// Runs in the place of an unpack of 10-bit RGB to `RGBv4`, `RGBv4_BITDEPTH<-2, 16>` and a pack to
/// bytes, and of the same chain in `RGBv8`. Rounds words to opaque bytes. 4 pixels a step: 16 bytes
/// in, 16 bytes out.
///
/// Each component moves to the top of a lane, and half of an 8-bit code is added. A sum that would
/// carry over the top saturates and gives 255, as the listed pack does. One vector holds the
/// components that go to the lower bytes of lanes, the other those that go to the upper bytes.
/// Alpha takes the place of the fourth component.
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
    /// The lowest bit of the component that goes to `byte` of a pixel, or `kNone` for alpha.
    static constexpr int at(int byte)
    {
        for (int c = 0; c < 3; ++c)
            if (PACK::kByteOf[c] == byte)
                return UNPACK::kLowestBit + 20 - 10 * c;
        return kNone;
    }

    static constexpr std::int16_t factor(int bit)
    {
        return static_cast<std::int16_t>(bit == kNone ? 0 : 64 >> bit % 8);
    }

    /// What is added: the half that rounds a component, or 255 in the upper byte for alpha.
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

/// Runs in the place of an unpack of 10-bit RGB to `RGBv4`, `RGBv4_RESCALE<10, false, 8, true, P1>`
/// and a pack to bytes, and of the same chain in `RGBv8`. Converts words with video levels to
/// opaque bytes in full range, rounded. 4 pixels a step: 16 bytes in, 16 bytes out.
///
/// The rescale's limit to white is left out: codes above white give more than 255, and the
/// narrowing saturates them.
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
            const auto& at = PACK::kByteOf;
            return static_cast<char>(byte == at[0] ? 0 : byte == at[1] ? 8 : byte == at[2] ? 1 : 9);
        };
        constexpr char k0 = from(0), k1 = from(1), k2 = from(2), k3 = from(3);
        const Vector order = v16i(k0, k1, k2, k3, k0 + 2, k1 + 2, k2 + 2, k3 + 2, //
                                  k0 + 4, k1 + 4, k2 + 4, k3 + 4, k0 + 6, k1 + 6, k2 + 6, k3 + 6);
        return {{shuffleBytes(bytes, order)}};
    }

private:
    /// Scales the components that begin at bits `EVEN` and `ODD`, in even and odd lanes. If `ODD`
    /// is -1, its lanes are `FILL`.
    template<int EVEN, int ODD, int FILL>
    KSX_INLINE static Vector scaled(Vector words)
    {
        constexpr auto k = details::rescaleConstants(10, false, 8, true);
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

} // namespace KSX::PixelConversion::fast
