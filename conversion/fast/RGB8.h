/// Fast forms of the stages of 8-bit RGB: planes with alpha, and moves from bytes to bytes.
#pragma once

#include "conversion/fast/Planes.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion::fast {

/// Regroups BGRAv8 to RGBAv8, before a stage on planes. 8 pixels a step: 4 vectors in, 4 out.
class BGRAv8_TO_RGBAv8 : public Kernel<8, 8> {
public:
    using Input = BGRAv8;
    using Output = RGBAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector even0 = interleaveLow16(in[0], in[1]); // B0 B2 G0 G2 R0 R2 A0 A2
        const Vector odd0 = interleaveHigh16(in[0], in[1]); // B1 B3 G1 G3 R1 R3 A1 A3
        const Vector even4 = interleaveLow16(in[2], in[3]);
        const Vector odd4 = interleaveHigh16(in[2], in[3]);
        const Vector bg0 = interleaveLow16(even0, odd0); // B0..B3 G0..G3
        const Vector bg4 = interleaveLow16(even4, odd4);
        const Vector ra0 = interleaveHigh16(even0, odd0); // R0..R3 A0..A3
        const Vector ra4 = interleaveHigh16(even4, odd4);
        return {{interleaveLow64(ra0, ra4), interleaveHigh64(bg0, bg4), interleaveLow64(bg0, bg4),
                 interleaveHigh64(ra0, ra4)}};
    }
};

/// Regroups RGBAv8 to BGRAv8, after a stage on planes. 8 pixels a step: 4 vectors in, 4 out.
class RGBAv8_TO_BGRAv8 : public Kernel<8, 8> {
public:
    using Input = RGBAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        const Vector bgLow = interleaveLow16(in[2], in[1]);
        const Vector bgHigh = interleaveHigh16(in[2], in[1]);
        const Vector raLow = interleaveLow16(in[0], in[3]);
        const Vector raHigh = interleaveHigh16(in[0], in[3]);
        return {{interleaveLow32(bgLow, raLow), interleaveHigh32(bgLow, raLow),
                 interleaveLow32(bgHigh, raHigh), interleaveHigh32(bgHigh, raHigh)}};
    }
};

/// Runs in the place of `RGBv4_TO_BGRAv8`. Regroups RGBv8 to BGRAv8. 8 pixels a step: 3 vectors in,
/// 4 out. The alpha lane is 65535, as in the listed stage.
class RGBv8_TO_BGRAv8 : public Kernel<8, 8> {
public:
    static constexpr Range kRange = Range::Kept;
    using Input = RGBv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        return RGBAv8_TO_BGRAv8().step({{in[0], in[1], in[2], vAllSet}});
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

/// Runs in the place of `BGRAv8_TO_RGBAv8` and the unpack before it, `UNPACK_BGRA_TO_BGRAv8` or
/// `UNPACK_ARGB_TO_BGRAv8`. Unpacks 4-byte pixels directly to planes with alpha. The components lie
/// in a pixel as in BGRA, or as in ARGB if `REVERSED`. 8 pixels a step: 32 bytes in, 4 vectors out.
template<bool REVERSED>
class UNPACK_BYTES_TO_RGBAv8 : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = RGBAv8;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in) const
    {
        constexpr int R = REVERSED ? 1 : 2, G = 3 - R, B = REVERSED ? 3 : 0, A = 3 - B;
        const Vector redBlue = v16i(R, -1, R + 4, -1, R + 8, -1, R + 12, -1, //
                                    B, -1, B + 4, -1, B + 8, -1, B + 12, -1);
        const Vector greenAlpha = v16i(G, -1, G + 4, -1, G + 8, -1, G + 12, -1, //
                                       A, -1, A + 4, -1, A + 8, -1, A + 12, -1);
        const Vector rb0 = shuffleBytes(in[0], redBlue);
        const Vector rb4 = shuffleBytes(in[1], redBlue);
        const Vector ga0 = shuffleBytes(in[0], greenAlpha);
        const Vector ga4 = shuffleBytes(in[1], greenAlpha);
        return {{interleaveLow64(rb0, rb4), interleaveLow64(ga0, ga4), interleaveHigh64(rb0, rb4),
                 interleaveHigh64(ga0, ga4)}};
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
