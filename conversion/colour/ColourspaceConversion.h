/// Stages that move RGB from one set of primaries to another: decode to linear light, multiply by a
/// gamut matrix, encode again. Codes are full range, of the depth of the transfer curve. Plain.
///
/// Sums are in single precision, in the order that each stage states. `IN` and `OUT` are forms of
/// `Rec709OETF`, `MATRIX` one of the matrices between RGB of two colourspaces.
#pragma once

#include "conversion/Kernel.h"
#include "conversion/VectorConstants.h"
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/TransferCharacteristicRec709OETF.h"

namespace KSX::PixelConversion {

/// Whether linear light is limited to 0 and 1 behind a matrix. Into a narrower gamut colours can
/// leave that range by far.
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

template<class MATRIX>
KSX_INLINE __m128 limitLight(__m128 light)
{
    if constexpr (kLimitsLight<MATRIX>)
        return _mm_max_ps(_mm_min_ps(light, _mm_set1_ps(1)), _mm_setzero_ps());
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
    using Input = BGRAv8;
    using Output = BGRAv8;

    KSX_INLINE Pixels<Output, 2> step(const Pixels<Input, 2>& in) const
    {
        const Light<2> light = IN::template inverse<3, 2>(
            {_mm_unpacklo_epi16(in[0], v0), _mm_unpackhi_epi16(in[0], v0)});
        const Codes<2> bgra =
            OUT::template forward<3, 2>({{convert(light.v[0]), convert(light.v[1])}});
        return {
            {_mm_or_si128(_mm_and_si128(_mm_packs_epi32(bgra.v[0], bgra.v[1]), v8i_mask_x654x210),
                          _mm_and_si128(in[0], v8i_mask_7xxx3xxx))}};
    }

private:
    /// The weights of input component `c`, R G B, in each output component.
    static constexpr __m128 column(int c)
    {
        const float* m = MATRIX::get();
        return __m128{m[6 + c], m[3 + c], m[c], 0};
    }

    KSX_INLINE static __m128 convert(__m128 bgra)
    {
        constexpr __m128 mR = column(0);
        constexpr __m128 mG = column(1);
        constexpr __m128 mB = column(2);
        const __m128 b = _mm_shuffle_ps(bgra, bgra, _MM_SHUFFLE(0, 0, 0, 0));
        const __m128 g = _mm_shuffle_ps(bgra, bgra, _MM_SHUFFLE(1, 1, 1, 1));
        const __m128 r = _mm_shuffle_ps(bgra, bgra, _MM_SHUFFLE(2, 2, 2, 2));
        return details::limitLight<MATRIX>(
            _mm_add_ps(_mm_add_ps(_mm_mul_ps(g, mG), _mm_mul_ps(r, mR)), _mm_mul_ps(b, mB)));
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
    KSX_INLINE static __m128 component(const Light<3>& rgb)
    {
        constexpr const float* row = MATRIX::get() + 3 * ROW;
        return details::limitLight<MATRIX>(
            _mm_add_ps(_mm_add_ps(_mm_mul_ps(rgb.v[2], _mm_set1_ps(row[2])),
                                  _mm_mul_ps(rgb.v[1], _mm_set1_ps(row[1]))),
                       _mm_mul_ps(rgb.v[0], _mm_set1_ps(row[0]))));
    }
};

} // namespace KSX::PixelConversion
