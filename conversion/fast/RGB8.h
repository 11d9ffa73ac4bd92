/// Fast forms of the stages of 8-bit RGB: planes with alpha, and moves from bytes to bytes.
#pragma once

#include "conversion/fast/Planes.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion::fast {

/// Runs in the place of `RGBv4_TO_BGRAv8`. Regroups RGBv8 to BGRAv8. 8 pixels a step: 3 vectors in,
/// 4 out. The alpha lane is 65535, as in the listed stage.
class RGBv8_TO_BGRAv8 : public Kernel<8, 8> {
public:
    static constexpr Range kRange = Range::Kept;
    using Input = RGBv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector bgLow = interleaveLow16(in[2], in[1]);
        const Vector bgHigh = interleaveHigh16(in[2], in[1]);
        const Vector raLow = interleaveLow16(in[0], vAllSet);
        const Vector raHigh = interleaveHigh16(in[0], vAllSet);
        return {{interleaveLow32(bgLow, raLow), interleaveHigh32(bgLow, raLow),
                 interleaveLow32(bgHigh, raHigh), interleaveHigh32(bgHigh, raHigh)}};
    }
};

/// Runs in the place of `PACK_BGRAv8_TO_BGRA` and `PACK_BGRAv8_TO_RGBA`. Packs planes with alpha to
/// 4-byte pixels, with the same saturation. Lanes are narrowed first, two components per vector,
/// then interleaved twice. `R`, `G`, `B` and `A` are the bytes of the components in a pixel. 8
/// pixels a step: 4 vectors in, 32 bytes out.
template<int R, int G, int B, int A>
class PACK_RGBAv8_TO_BYTES : public Kernel<8, 8> {
public:
    using Input = RGBAv8;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return details::interleaveBytes<R, G, B, A>(in[0], in[1], in[2], in[3]);
    }
};

/// Runs in the place of an unpack of bytes to `RGBv4` and a pack from it. Changes the order of the
/// bytes and sets alpha to 255. A byte cannot saturate in the pack, so one byte shuffle and one OR
/// give the same. 4 pixels a step: 16 bytes in, 16 bytes out.
template<class UNPACK, class PACK>
class REORDER_OPAQUE_BYTES : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{bitOr(shuffleBytes(in[0], vector(kOrder)), vector(kOpaque))}};
    }

private:
    struct Bytes {
        std::int8_t at[16];
    };

    static constexpr Bytes order()
    {
        Bytes from{};
        for (int pixel = 0; pixel < 16; pixel += 4) {
            for (int c = 0; c < 3; ++c)
                from.at[pixel + PACK::kByteOf[c]] =
                    static_cast<std::int8_t>(pixel + UNPACK::kByteOf[c]);
            from.at[pixel + PACK::kByteOf[3]] = -1; // a zero byte
        }
        return from;
    }

    static constexpr Bytes opaque()
    {
        Bytes alpha{};
        for (int pixel = 0; pixel < 16; pixel += 4)
            alpha.at[pixel + PACK::kByteOf[3]] = -1;
        return alpha;
    }

    KSX_INLINE static Vector vector(const Bytes& bytes) { return repeat(loadUnit(bytes.at)); }

    alignas(16) static constexpr Bytes kOrder = order();
    alignas(16) static constexpr Bytes kOpaque = opaque();
};

} // namespace KSX::PixelConversion::fast
