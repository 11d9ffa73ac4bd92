/// Stages that move RGB from one set of primaries to another: decode to linear light, multiply by a
/// gamut matrix, encode again. Codes are full range, of the depth of the transfer curve. Plain.
///
/// Sums are in single precision, in the order that each stage states. `IN` and `OUT` are forms of
/// `Rec709OETF`, `MATRIX` one of the matrices between RGB of two colourspaces.
#pragma once

#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/TransferCharacteristicRec709OETF.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

/// Whether linear light is limited to 0 to 1 after a matrix. In a conversion to a narrower gamut,
/// colours can be far outside that range.
template<class MATRIX>
inline constexpr bool kLimitsLight = false;
template<>
inline constexpr bool kLimitsLight<RGB_2020_TO_709> = true;
template<>
inline constexpr bool kLimitsLight<RGB_2020_TO_601PAL> = true;
template<>
inline constexpr bool kLimitsLight<RGB_2020_TO_601NTSC> = true;
template<>
inline constexpr bool kLimitsLight<RGB_709_TO_601PAL> = true;
template<>
inline constexpr bool kLimitsLight<RGB_709_TO_601NTSC> = true;

namespace details {

/// Limits the light that a matrix gives, unless `CURVE` does it.
template<class MATRIX, class CURVE>
KSX_INLINE FloatVector limitLight(FloatVector light)
{
    if constexpr (kLimitsLight<MATRIX> && !CURVE::kLimitsLight)
        return max(min(light, v4f(1)), v4f(0));
    else
        return light;
}

} // namespace details

/// Converts BGRAv8. 2 pixels a step. Alpha passes.
///
///     out = (G mG + R mR) + B mB
template<class IN, class MATRIX, class OUT>
class COLOURSPACE_CONV_BGRAv8 : public Kernel<2, 2> {
public:
    /// The curve of 8 bits limits its codes; the curve of 10 bits does not.
    static constexpr Range kRange = OUT::kLimitsLight ? Range::Given : Range::Any;
    using Input = BGRAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 2> step(const Pixels<Input, 2>& in) const
    {
        const Light<2> light =
            IN::template inverse<3, 2>({interleaveLow16(in[0], v0), interleaveHigh16(in[0], v0)});
        const Codes<2> bgra =
            OUT::template forward<3, 2>({{convert(light.v[0]), convert(light.v[1])}});
        return {{bitOr(bitAnd(packSaturate32To16(bgra.v[0], bgra.v[1]), v8i_mask_x654x210),
                       bitAnd(in[0], v8i_mask_7xxx3xxx))}};
    }

private:
    /// The weights of input component `c`, R G B, in each output component.
    static constexpr FloatVector column(int c)
    {
        const float* m = MATRIX::get();
        return v4f(m[6 + c], m[3 + c], m[c], 0);
    }

    KSX_INLINE static FloatVector convert(FloatVector bgra)
    {
        constexpr FloatVector mR = column(0);
        constexpr FloatVector mG = column(1);
        constexpr FloatVector mB = column(2);
        const FloatVector b = shuffle32<0, 0, 0, 0>(bgra, bgra);
        const FloatVector g = shuffle32<1, 1, 1, 1>(bgra, bgra);
        const FloatVector r = shuffle32<2, 2, 2, 2>(bgra, bgra);
        return details::limitLight<MATRIX, OUT>(add(add(mul(g, mG), mul(r, mR)), mul(b, mB)));
    }
};

/// Converts RGBv4. 4 pixels a step.
///
///     out = (B mB + G mG) + R mR
///
/// 10-bit codes come out as signed values of 32 bits.
template<class IN, class MATRIX, class OUT>
class COLOURSPACE_CONV_RGBv4 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = OUT::kLimitsLight ? Range::Given : Range::Any;
    using Input = RGBv4;
    using Output = RGBv4;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Light<3> rgb = IN::template inverse<4, 3>({in[0], in[1], in[2]});
        const Codes<3> out =
            OUT::template forward<4, 3>({component<0>(rgb), component<1>(rgb), component<2>(rgb)});
        return {{out.v[0], out.v[1], out.v[2]}};
    }

private:
    template<int ROW>
    KSX_INLINE static FloatVector component(const Light<3>& rgb)
    {
        constexpr const float* row = MATRIX::get() + 3 * ROW;
        return details::limitLight<MATRIX, OUT>(
            add(add(mul(rgb.v[2], v4f(row[2])), mul(rgb.v[1], v4f(row[1]))),
                mul(rgb.v[0], v4f(row[0]))));
    }
};

} // namespace KSX::PixelConversion
