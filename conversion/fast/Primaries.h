/// Fast forms of changes of primaries.
#pragma once

#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/fast/Rec709OETF10.h"
#include "conversion/pipeline/EachVector.h"
#include "conversion/pipeline/Pipeline.h"
#include "conversion/stages/RGB8.h"

namespace KSX::PixelConversion::fast {

/// The products of `MATRIX` and the linear light of 8-bit codes, rounded as the listed stages round
/// them: for each input component R, G, B and each code its parts of B, G and R, and a 0.
template<class MATRIX>
struct LightProducts {
    static const TableRow at[3][256];
};

// Made at build time.
template<>
const TableRow LightProducts<RGB_2020_TO_709>::at[3][256];
template<>
const TableRow LightProducts<RGB_2020_TO_601PAL>::at[3][256];
template<>
const TableRow LightProducts<RGB_2020_TO_601NTSC>::at[3][256];
template<>
const TableRow LightProducts<RGB_709_TO_2020>::at[3][256];
template<>
const TableRow LightProducts<RGB_601PAL_TO_2020>::at[3][256];
template<>
const TableRow LightProducts<RGB_601NTSC_TO_2020>::at[3][256];
template<>
const TableRow LightProducts<RGB_601PAL_TO_709>::at[3][256];
template<>
const TableRow LightProducts<RGB_601NTSC_TO_709>::at[3][256];
template<>
const TableRow LightProducts<RGB_709_TO_601PAL>::at[3][256];
template<>
const TableRow LightProducts<RGB_709_TO_601NTSC>::at[3][256];

/// Runs in the place of `COLOURSPACE_CONV_RGBv4` and `COLOURSPACE_CONV_BGRAv8` with the curve of 8
/// bits, between bytes. A vector holds the light of a pixel, which is the sum of three rows of a
/// table. Component `LAST`, R G B, is added last, as in the listed stage, so that the sums round in
/// the same way. Components lie where `UNPACK` and `PACK` have them; alpha is kept. 4 pixels a
/// step: 16 bytes in, 16 bytes out.
template<class MATRIX, int LAST, class UNPACK, class PACK>
class COLOURSPACE_CONV_BYTES : public Kernel<4, 4> {
    using Curve = Rec709OETF<8, V1>;

public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const LookedUpRows g = products<1>(in[0]);
        const LookedUpRows other = products<2 - LAST>(in[0]);
        const LookedUpRows last = products<LAST>(in[0]);
        Light<4> light;
        for (std::size_t i = 0; i < 4; ++i)
            light.v[i] = add(add(g.v[i], other.v[i]), last.v[i]);
        const Codes<4> bgr = Curve::forward<3, 4>(light);
        const Vector bytes = packSaturate16ToU8(packSaturate32To16(bgr.v[0], bgr.v[1]),
                                                packSaturate32To16(bgr.v[2], bgr.v[3]));
        return {{ordered(bitOr(bitAnd(bytes, v4i(0xffffff)), alpha(in[0])))}};
    }

private:
    template<int COMPONENT>
    KSX_INLINE static LookedUpRows products(Vector pixels)
    {
        return lookUpRows<UNPACK::kByteOf[COMPONENT]>(LightProducts<MATRIX>::at[COMPONENT], pixels);
    }

    /// Alpha in the top byte; zeros in the others.
    KSX_INLINE static Vector alpha(Vector pixels)
    {
        constexpr int kByte = 6 - UNPACK::kByteOf[0] - UNPACK::kByteOf[1] - UNPACK::kByteOf[2];
        static_assert(kByte == 0 || kByte == 3);
        return kByte == 3 ? bitAnd(pixels, v4i_0xff000000) : shiftLeft32(pixels, 24);
    }

    /// Moves B, G, R, A to their bytes.
    KSX_INLINE static Vector ordered(Vector bgra)
    {
        constexpr auto from = [](int byte) {
            constexpr int kByteOfBGRA[4] = {2, 1, 0, 3};
            int component = 0;
            while (PACK::kByteOf[component] != byte % 4)
                ++component;
            return static_cast<char>(byte - byte % 4 + kByteOfBGRA[component]);
        };
        if constexpr (from(0) == 0 && from(1) == 1 && from(2) == 2)
            return bgra;
        return shuffleBytes(bgra, v16i(from(0), from(1), from(2), from(3), from(4), from(5),
                                       from(6), from(7), from(8), from(9), from(10), from(11),
                                       from(12), from(13), from(14), from(15)));
    }
};

/// The stage in a loop of its own, because look-ups take long.
template<class MATRIX, int LAST, class UNPACK = UNPACK_BGRA_TO_RGBv4,
         class PACK = PACK_RGBv4_TO_BGRA>
using PrimariesInBytes = Alone<COLOURSPACE_CONV_BYTES<MATRIX, LAST, UNPACK, PACK>>;

// --- 10 bits -------------------------------------------------------------------------------------

/// Whether `MATRIX` gives light from 0 to `kRec709EdgesHighest` for all codes of 10 bits. The light
/// of the largest code is 1.00005.
template<class MATRIX>
consteval bool givesLightInRange()
{
    for (int row = 0; row < 3; ++row) {
        const float* m = MATRIX::get() + 3 * row;
        if (m[0] < 0 || m[1] < 0 || m[2] < 0 || m[0] + m[1] + m[2] > 1.00001f)
            return false;
    }
    return true;
}

struct LimitTo10Bits {
    KSX_INLINE static Vector apply(Vector x) { return sub16(x, subSaturateU16(x, v8i_0x3ff)); }
};

/// Limits all lanes of BGRAv8 to 1023, so that they are places in a table. Codes of 10 bits stay as
/// they are. 2 pixels a step.
class BGRAv8_LIMIT_TO_10_BITS : public EachVector<BGRAv8, 2, LimitTo10Bits> {};

/// Runs in the place of `COLOURSPACE_CONV_BGRAv8` with the curve of 10 bits, by tables in place of
/// polynomials. Codes have to be 0 to 1023. 4 pixels a step: 2 vectors in, 2 out.
template<class MATRIX>
class COLOURSPACE_CONV_10BIT_BGRAv8 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = BGRAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{convert(in[0]), convert(in[1])}};
    }

private:
    KSX_INLINE static Vector convert(Vector bgra)
    {
        const Vector first = Rec709OETF10::forward<3>(light<0>(bgra));
        const Vector second = Rec709OETF10::forward<3>(light<1>(bgra));
        return bitOr(bitAnd(packSaturate32To16(first, second), v8i_mask_x654x210),
                     bitAnd(bgra, v8i_mask_7xxx3xxx));
    }

    /// Blue, green and red of a pixel, summed in the order of the listed stage.
    template<int PIXEL>
    KSX_INLINE static FloatVector light(Vector bgra)
    {
        const FloatVector b = Rec709OETF10::inverse<4 * PIXEL>(bgra);
        const FloatVector g = Rec709OETF10::inverse<4 * PIXEL + 1>(bgra);
        const FloatVector r = Rec709OETF10::inverse<4 * PIXEL + 2>(bgra);
        return add(add(mul(g, column(1)), mul(r, column(0))), mul(b, column(2)));
    }

    /// The weights of input component `c`, R G B, in each output component.
    static constexpr FloatVector column(int c)
    {
        const float* m = MATRIX::get();
        return v4f(m[6 + c], m[3 + c], m[c], 0);
    }
};

} // namespace KSX::PixelConversion::fast
