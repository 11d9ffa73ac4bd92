/// The transfer curve of Rec. 709, from code values to linear light and back: 8-bit codes by
/// tables, 10-bit ones by polynomials.
///
///     V = 4.5 L                           L below beta
///     V = alpha L^0.45 - (alpha - 1)      otherwise
///
/// with alpha = 1.099296826809442 and beta = 0.018053968510807, at which the two formulas meet to
/// the last digit (ITU-R BT.709-6, 1.2, with the constants of ITU-R BT.2020-2, table 4).
///
/// Both forms of `Rec709OETF` work on `N` vectors of 4 lanes: codes in lanes of 32 bits, linear
/// light in floats with white at 1. `LANES` is the number of lanes in use; the others have no
/// meaning in the input or the output.
#pragma once

#include "conversion/colour/Flags.h"
#include "conversion/pipeline/LookUp.h"

#include <cstdint>

namespace KSX::PixelConversion {

template<std::size_t N>
struct Codes {
    Vector v[N];
};
template<std::size_t N>
struct Light {
    FloatVector v[N];
};

/// Linear light of each 8-bit code.
extern const float kRec709OETFToLinear8[256];

/// 8-bit codes with their fraction, of linear light in steps of 1/1279: steps of 1/255 would each
/// span many codes near black, where the curve is steep. No stage reads this table; the table below
/// is computed from it.
extern const float kRec709OETFFromLinear8[1280];
constexpr int kRec709OETFFromLinear8IdxMax = 1279;

/// The code at one entry of `kRec709OETFFromLinear8`, and the position between this entry and the
/// next at which it rises by one.
struct Rec709Rise {
    float from;
    std::int32_t code;
};
extern const Rec709Rise kRec709OETFRises8[1280];

template<unsigned BITS, VectorTypeFlag V>
class Rec709OETF;

/// 8-bit codes, 0 to 255 in the low 16 bits of a lane. Nothing checks that.
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
    ///     f = max(min(1279 L, 1279), 0)      i0 = f truncated    i1 = f rounded
    ///     code = (f - i0) T[i1] + (1 - (f - i0)) T[i0], rounded
    ///
    /// Rounding is to nearest, ties to even. The upper index is not i0 + 1: in the lower half of a
    /// step the result is T[i0] itself, in the upper half it is interpolated.
    ///
    /// From one entry to the next, T rises by less than one code. So the code rises at most once
    /// there, and one comparison shows whether f is past that position. A table has these
    /// positions; they are computed by the formula.
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
    KSX_INLINE static Vector encode(FloatVector linear)
    {
        const FloatVector last = v4f(kRec709OETFFromLinear8IdxMax);
        const FloatVector scaled = mul(linear, last);
        const FloatVector f = max(min(scaled, last), v4f(0));
        const Vector i0 = truncate32(f);
        const LookedUp rise = lookUpPairs<LANES>(kRec709OETFRises8, i0);
        return sub32(bitsOf(rise.second), bitsOf(lessOrEqual(rise.first, f)));
    }
};

/// 10-bit codes, 0 to 1023 as input. The output is not limited: light below 0 gives a negative
/// code, light of 1 gives 1023.108, and from about 1.47 up the polynomial leaves the range of an
/// integer. If light can be that high, the caller limits it first.
template<>
class Rec709OETF<10, V1> {
public:
    static constexpr bool kLimitsLight = false;

    /// V between 0 and 1 from a code; L from V on the line; the V at which the line ends; L from V
    /// above it.
    static constexpr double kSignalOfCode = 0.0009775171065493646;  // 1/1023
    static constexpr double kLineToLight = 0.2222222222222222;      // 1/4.5
    static constexpr double kLineEndInSignal = 0.08124285829863151; // 4.5 beta
    static constexpr double kToLight[] = {0.004865568031467749, 0.10452784606688573,
                                          0.6875632497840137,   0.3078302450546515,
                                          -0.1441316641773179,  0.039394104289797664};
    /// The way back: the L at which the line ends, L^0.45, and alpha.
    static constexpr double kLineEndInLight = 0.018053968510807; // beta
    static constexpr double kPower[] = {
        0.06373368751399863, 7.720267954128315, -166.68729271213184, 3382.921137362854,
        -50373.74587257034,  543705.7770209931, -4318820.723638247,  25702894.239978567,
        -116399992.15534373, 405935276.6501572, -1098990803.1316366, 2319149708.2613387,
        -3813837177.1323824, 4862393749.276773, -4751661644.016214,  3488413059.3608203,
        -1860229944.5869374, 679796309.953305,  -152180100.8505276,  15730929.805408714};
    static constexpr double kAlpha = 1.099296826809442;
    static constexpr double kAlphaMinus1 = 0.09929682680944207;

    /// The error is within 5e-5.
    template<int LANES, std::size_t N>
    KSX_INLINE static Light<N> inverse(const Codes<N>& codes)
    {
        Pairs<N> signal;
        unrolled<0, N>([&]<unsigned I>() KSX_INLINE_LAMBDA {
            const DoubleVector scale = v2d(kSignalOfCode);
            const Doubles code = toDoubles(codes.v[I]);
            signal.v[2 * I] = mul(code.first, scale);
            signal.v[2 * I + 1] = mul(code.second, scale);
        });
        Pairs<N> light = evaluate<N>(kToLight, signal);
        for (std::size_t i = 0; i < 2 * N; ++i) {
            const DoubleVector line = mul(signal.v[i], v2d(kLineToLight));
            light.v[i] = select(lessThan(signal.v[i], v2d(kLineEndInSignal)), line, light.v[i]);
        }
        Light<N> result;
        for (std::size_t i = 0; i < N; ++i)
            result.v[i] = toFloats(light.v[2 * i], light.v[2 * i + 1]);
        return result;
    }

    /// The error is within 0.11 of a code from beta to 1. Codes are rounded to nearest, ties to
    /// even.
    template<int LANES, std::size_t N>
    KSX_INLINE static Codes<N> forward(const Light<N>& light)
    {
        Pairs<N> l;
        for (std::size_t i = 0; i < N; ++i) {
            const Doubles linear = toDoubles(light.v[i]);
            l.v[2 * i] = linear.first;
            l.v[2 * i + 1] = linear.second;
        }
        const Pairs<N> power = evaluate<N>(kPower, l);
        Codes<N> codes;
        for (std::size_t i = 0; i < N; ++i)
            codes.v[i] = toNearest32(encode(l.v[2 * i], power.v[2 * i]),
                                     encode(l.v[2 * i + 1], power.v[2 * i + 1]));
        return codes;
    }

private:
    /// The lanes of `N` vectors in double precision, two lanes per vector.
    template<std::size_t N>
    struct Pairs {
        DoubleVector v[2 * N];
    };

    /// Evaluates the polynomial by Horner's rule, from the highest power down. All lanes go side by
    /// side, because each step waits for the result of the one before. If the order is left to the
    /// compiler, the sums come one after the other, and the processor's queue fills with
    /// instructions that wait.
    template<std::size_t N, unsigned TERMS>
    KSX_INLINE static Pairs<N> evaluate(const double (&polynomial)[TERMS], const Pairs<N>& x)
    {
        Pairs<N> sums;
        for (DoubleVector& sum : sums.v)
            sum = v2d(polynomial[TERMS - 1]);
        unrolled<2, TERMS + 1>([&]<unsigned FROM_END>() KSX_INLINE_LAMBDA {
            unrolled<0, 2 * N>([&]<unsigned I>() KSX_INLINE_LAMBDA {
                sums.v[I] = add(mul(sums.v[I], x.v[I]), v2d(polynomial[TERMS - FROM_END]));
            });
            keepTogether(sums.v); // no later step before all sums of this one
        });
        return sums;
    }

    KSX_INLINE static DoubleVector encode(DoubleVector l, DoubleVector power)
    {
        const DoubleVector line = mul(l, v2d(4.5));
        const DoubleVector curve = sub(mul(power, v2d(kAlpha)), v2d(kAlphaMinus1));
        const DoubleVector isLine = lessThan(l, v2d(kLineEndInLight));
        return mul(select(isLine, line, curve), v2d(1023));
    }

    KSX_INLINE static DoubleVector select(DoubleVector mask, DoubleVector a, DoubleVector b)
    {
        return bitOr(bitAnd(mask, a), bitAndNot(mask, b));
    }
};

} // namespace KSX::PixelConversion
