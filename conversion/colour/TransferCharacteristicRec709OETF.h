/// The transfer curve of Rec. 709, from code values to linear light and back: 8-bit codes by
/// tables, 10-bit ones by polynomials.
///
///     V = 4.5 L                           L below beta
///     V = alpha L^0.45 - (alpha - 1)      otherwise
///
/// with alpha = 1.099296826809442 and beta = 0.018053968510807, where the two meet to the last
/// digit (ITU-R BT.709-6, 1.2, with the constants of ITU-R BT.2020-2, table 4).
///
/// Both forms of `Rec709OETF` work on `N` vectors of 4 lanes: codes in lanes of 32 bits, linear
/// light in floats with white at 1. `LANES` counts those that are needed; the others have no
/// meaning, coming or going.
#pragma once

#include "conversion/Kernel.h"
#include "conversion/colour/Flags.h"

#include <cstdint>

namespace KSX::PixelConversion {

template<std::size_t N>
struct Codes {
    __m128i v[N];
};
template<std::size_t N>
struct Light {
    __m128 v[N];
};

/// Linear light of each 8-bit code.
extern const float kRec709OETFToLinear8[256];

/// 8-bit codes with their fraction, of linear light in steps of 1/1279: steps of 1/255 would each
/// span many codes near black, where the curve is steep. No stage reads them; what they come to
/// stands in the table below.
extern const float kRec709OETFFromLinear8[1280];
constexpr int kRec709OETFFromLinear8IdxMax = 1279;

/// The code at one entry of `kRec709OETFFromLinear8`, and where on the way to the next entry it
/// rises, by one.
struct Rec709Rise {
    float from;
    std::int32_t code;
};
extern const Rec709Rise kRec709OETFRises8[1280];

template<unsigned BITS, VectorTypeFlag V>
class Rec709OETF;

/// 8-bit codes, 0 to 255 in the low 16 bits of a lane; nothing tests that.
template<VectorTypeFlag V>
class Rec709OETF<8, V> {
public:
    template<int LANES, std::size_t N>
    KSX_INLINE static Light<N> inverse(const Codes<N>& codes)
    {
        Light<N> light;
        unrolled<0, N>([&]<unsigned I>() KSX_INLINE_LAMBDA {
            light.v[I] = lookUp<LANES>(kRec709OETFToLinear8, codes.v[I]);
        });
        return light;
    }

    static constexpr bool kLimitsLight = true;

    /// Linear light below 0 gives 0, above 1 gives 255.
    ///
    ///     f = max(min(1279 L, 1279), 0)      i0 = f cut off      i1 = f rounded
    ///     code = (f - i0) T[i1] + (1 - (f - i0)) T[i0], rounded
    ///
    /// Rounding is to nearest, ties to even. The upper index is not i0 + 1: in the lower half of a
    /// step the result is T[i0] itself, in the upper half it is interpolated.
    ///
    /// From entry to entry T rises by less than one code, so a code rises at most once there, and
    /// one comparison tells whether f is past the place. Those are in a table, found by the
    /// formula.
    template<int LANES, std::size_t N>
    KSX_INLINE static Codes<N> forward(const Light<N>& light)
    {
        Codes<N> codes;
        unrolled<0, N>([&]<unsigned I>()
                           KSX_INLINE_LAMBDA { codes.v[I] = encode<LANES>(light.v[I]); });
        return codes;
    }

private:
    template<int LANES>
    KSX_INLINE static __m128i encode(__m128 linear)
    {
        const __m128 last = _mm_set1_ps(kRec709OETFFromLinear8IdxMax);
        const __m128 scaled = _mm_mul_ps(linear, last);
        const __m128 f = _mm_max_ps(_mm_min_ps(scaled, last), _mm_setzero_ps());
        const __m128i i0 = _mm_cvttps_epi32(f);
        const Indices i(i0);
        const __m128 first = twoRises(i.a, i.b);
        const __m128 second = LANES == 3 ? oneRise(i.c) : twoRises(i.c, i.d);
        const __m128 from = _mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0));
        const __m128i code =
            _mm_castps_si128(_mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1)));
        return _mm_sub_epi32(code, _mm_castps_si128(_mm_cmple_ps(from, f)));
    }

    /// Four lanes that are at least 0. Two at once on their way to where addresses are made: the
    /// way is narrow.
    struct Indices {
        KSX_INLINE explicit Indices(__m128i lanes)
        {
            const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(lanes));
            const auto high =
                static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(lanes, lanes)));
            a = static_cast<std::uint32_t>(low);
            b = low >> 32;
            c = static_cast<std::uint32_t>(high);
            d = high >> 32;
        }
        std::uint64_t a, b, c, d;
    };

    KSX_INLINE static __m128 oneRise(std::uint64_t i)
    {
        return _mm_castsi128_ps(
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kRec709OETFRises8 + i)));
    }
    KSX_INLINE static __m128 twoRises(std::uint64_t i, std::uint64_t j)
    {
        return _mm_loadh_pi(oneRise(i), reinterpret_cast<const __m64*>(kRec709OETFRises8 + j));
    }

    template<int LANES>
    KSX_INLINE static __m128 lookUp(const float* table, __m128i index)
    {
        const Indices i(index);
        const __m128 a = _mm_load_ss(table + i.a);
        const __m128 b = _mm_load_ss(table + i.b);
        const __m128 c = _mm_load_ss(table + i.c);
        if constexpr (LANES == 3)
            return _mm_movelh_ps(_mm_unpacklo_ps(a, b), c);
        const __m128 d = _mm_load_ss(table + i.d);
        return _mm_movelh_ps(_mm_unpacklo_ps(a, b), _mm_unpacklo_ps(c, d));
    }
};

/// 10-bit codes, 0 to 1023 going in. Coming out they are not limited: light below 0 gives a
/// negative code, light of 1 gives 1023.108, and from about 1.47 up the polynomial leaves the range
/// of an integer, so whoever can get there limits light first.
template<>
class Rec709OETF<10, V1> {
public:
    static constexpr bool kLimitsLight = false;

    /// Within 5e-5.
    template<int LANES, std::size_t N>
    KSX_INLINE static Light<N> inverse(const Codes<N>& codes)
    {
        constexpr double kPolynomial[] = {0.004865568031467749, 0.10452784606688573,
                                          0.6875632497840137,   0.3078302450546515,
                                          -0.1441316641773179,  0.039394104289797664};
        Pairs<N> signal;
        unrolled<0, N>([&]<unsigned I>() KSX_INLINE_LAMBDA {
            const __m128d scale = _mm_set1_pd(0.0009775171065493646); // 1/1023
            const __m128i upper = _mm_shuffle_epi32(codes.v[I], _MM_SHUFFLE(3, 2, 3, 2));
            signal.v[2 * I] = _mm_mul_pd(_mm_cvtepi32_pd(codes.v[I]), scale);
            signal.v[2 * I + 1] = _mm_mul_pd(_mm_cvtepi32_pd(upper), scale);
        });
        Pairs<N> light = evaluate<N>(kPolynomial, signal);
        for (std::size_t i = 0; i < 2 * N; ++i) {
            const __m128d line = _mm_mul_pd(signal.v[i], _mm_set1_pd(0.2222222222222222)); // 1/4.5
            light.v[i] =
                select(_mm_cmplt_pd(signal.v[i], _mm_set1_pd(0.08124285829863151)), // 4.5 beta
                       line, light.v[i]);
        }
        Light<N> result;
        for (std::size_t i = 0; i < N; ++i)
            result.v[i] =
                _mm_movelh_ps(_mm_cvtpd_ps(light.v[2 * i]), _mm_cvtpd_ps(light.v[2 * i + 1]));
        return result;
    }

    /// Within 0.11 of a code from beta to 1. Rounded to nearest, ties to even.
    template<int LANES, std::size_t N>
    KSX_INLINE static Codes<N> forward(const Light<N>& light)
    {
        // L^0.45.
        constexpr double kPolynomial[] = {
            0.06373368751399863, 7.720267954128315, -166.68729271213184, 3382.921137362854,
            -50373.74587257034,  543705.7770209931, -4318820.723638247,  25702894.239978567,
            -116399992.15534373, 405935276.6501572, -1098990803.1316366, 2319149708.2613387,
            -3813837177.1323824, 4862393749.276773, -4751661644.016214,  3488413059.3608203,
            -1860229944.5869374, 679796309.953305,  -152180100.8505276,  15730929.805408714};
        Pairs<N> l;
        for (std::size_t i = 0; i < N; ++i) {
            l.v[2 * i] = _mm_cvtps_pd(light.v[i]);
            l.v[2 * i + 1] = _mm_cvtps_pd(_mm_movehl_ps(light.v[i], light.v[i]));
        }
        const Pairs<N> power = evaluate<N>(kPolynomial, l);
        Codes<N> codes;
        for (std::size_t i = 0; i < N; ++i)
            codes.v[i] = _mm_unpacklo_epi64(encode(l.v[2 * i], power.v[2 * i]),
                                            encode(l.v[2 * i + 1], power.v[2 * i + 1]));
        return codes;
    }

private:
    /// The lanes of `N` vectors in double precision, two by two.
    template<std::size_t N>
    struct Pairs {
        __m128d v[2 * N];
    };

    /// By Horner's rule, from the highest power down. All lanes go side by side, since each step
    /// has to wait for the one before; sums that are left to the compiler come out one behind the
    /// other, and fill the processor's queue with instructions that wait.
    template<std::size_t N, unsigned TERMS>
    KSX_INLINE static Pairs<N> evaluate(const double (&polynomial)[TERMS], const Pairs<N>& x)
    {
        Pairs<N> sums;
        for (__m128d& sum : sums.v)
            sum = _mm_set1_pd(polynomial[TERMS - 1]);
        unrolled<2, TERMS + 1>([&]<unsigned FROM_END>() KSX_INLINE_LAMBDA {
            unrolled<0, 2 * N>([&]<unsigned I>() KSX_INLINE_LAMBDA {
                sums.v[I] = _mm_add_pd(_mm_mul_pd(sums.v[I], x.v[I]),
                                       _mm_set1_pd(polynomial[TERMS - FROM_END]));
            });
            keepTogether(sums.v);
        });
        return sums;
    }

    /// Lets the compiler begin nothing behind it before all sums are there. No instruction.
    KSX_INLINE static void keepTogether(__m128d (&v)[4])
    {
        asm("" : "+x"(v[0]), "+x"(v[1]), "+x"(v[2]), "+x"(v[3]));
    }
    KSX_INLINE static void keepTogether(__m128d (&v)[6])
    {
        asm("" : "+x"(v[0]), "+x"(v[1]), "+x"(v[2]), "+x"(v[3]), "+x"(v[4]), "+x"(v[5]));
    }

    KSX_INLINE static __m128i encode(__m128d l, __m128d power)
    {
        const __m128d line = _mm_mul_pd(l, _mm_set1_pd(4.5));
        const __m128d curve = _mm_sub_pd(_mm_mul_pd(power, _mm_set1_pd(1.099296826809442)),
                                         _mm_set1_pd(0.09929682680944207));
        const __m128d isLine = _mm_cmplt_pd(l, _mm_set1_pd(0.018053968510807)); // beta
        return _mm_cvtpd_epi32(_mm_mul_pd(select(isLine, line, curve), _mm_set1_pd(1023)));
    }

    KSX_INLINE static __m128d select(__m128d mask, __m128d a, __m128d b)
    {
        return _mm_or_pd(_mm_and_pd(mask, a), _mm_andnot_pd(mask, b));
    }
};

} // namespace KSX::PixelConversion
