/// Conversions between code values and linear light, a sample at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace kestrix::test::reference {

// --- ITU-R BT.709-6, 1.2, with the constants of ITU-R BT.2020-2, table 4, for 12 bits ------------

inline constexpr long double kAlpha = 1.099296826809442L;
inline constexpr long double kBeta = 0.018053968510807L;

/// Linear light from 0 to 1 for a signal from 0 to 1.
inline long double toLinear(long double v)
{
    return v < 4.5L * kBeta ? v / 4.5L : std::pow((v + kAlpha - 1) / kAlpha, 1 / 0.45L);
}

inline long double fromLinear(long double l)
{
    return l < kBeta ? 4.5L * l : kAlpha * std::pow(l, 0.45L) - (kAlpha - 1);
}

/// Entry `i` of the tables that replace the curve at 8 bits.
inline float toLinear8(int i)
{
    return static_cast<float>(toLinear(i / 255.0L));
}

inline float fromLinear8(int i)
{
    return static_cast<float>(255 * fromLinear(i / 1279.0L));
}

inline float decoded8(int code)
{
    static const auto table = [] {
        std::array<float, 256> entries;
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = toLinear8(static_cast<int>(i));
        return entries;
    }();
    return table[static_cast<std::size_t>(code)];
}

/// The 8-bit code with its fraction at place `f` of the table from linear light. The upper entry is
/// the one nearest to `f`, so between two entries the value is constant in the lower half and has a
/// slope in the upper half.
inline float betweenEntries8(float f)
{
    static const auto table = [] {
        std::array<float, 1280> entries;
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = fromLinear8(static_cast<int>(i));
        return entries;
    }();
    const float lower = std::trunc(f);
    const float share = f - lower;
    const float fromUpper = share * table[static_cast<std::size_t>(std::nearbyint(f))];
    const float fromLower = (1.0f - share) * table[static_cast<std::size_t>(lower)];
    return fromUpper + fromLower;
}

inline float encoded8(float linear)
{
    return betweenEntries8(std::max(std::min(linear * 1279.0f, 1279.0f), 0.0f));
}

/// A polynomial's value. The first coefficient is the constant one.
template<std::size_t N>
double polynomial(const double (&coefficients)[N], double x)
{
    double sum = coefficients[N - 1];
    for (std::size_t i = N - 1; i-- > 0;) {
        const double product = sum * x;
        sum = product + coefficients[i];
    }
    return sum;
}

/// At 10 bits, polynomials replace the powers.
inline double decoded10(double code)
{
    constexpr double kPower[] = {0.004865568031467749, 0.10452784606688573, 0.6875632497840137,
                                 0.3078302450546515,   -0.1441316641773179, 0.039394104289797664};
    const double v = code * 0.0009775171065493646;
    return v < 0.08124285829863151 ? v * 0.2222222222222222 : polynomial(kPower, v);
}

/// A 10-bit code with its fraction. It has no limits, and is not accurate far above 1.
inline double encoded10(double linear)
{
    constexpr double kPower[] = {
        0.06373368751399863, 7.720267954128315, -166.68729271213184, 3382.921137362854,
        -50373.74587257034,  543705.7770209931, -4318820.723638247,  25702894.239978567,
        -116399992.15534373, 405935276.6501572, -1098990803.1316366, 2319149708.2613387,
        -3813837177.1323824, 4862393749.276773, -4751661644.016214,  3488413059.3608203,
        -1860229944.5869374, 679796309.953305,  -152180100.8505276,  15730929.805408714};
    if (linear < 0.018053968510807)
        return 4.5 * linear * 1023.0;
    const double scaled = polynomial(kPower, linear) * 1.099296826809442;
    return (scaled - 0.09929682680944207) * 1023.0;
}

/// A code without its fraction; ties go to even. If the code does not fit, the lowest integer.
inline int roundedCode(double code)
{
    return std::abs(code) < 0x1p31 ? static_cast<int>(std::nearbyint(code))
                                   : std::numeric_limits<int>::min();
}

// --- SMPTE ST 2084 -------------------------------------------------------------------------------

/// Luminance in cd/m2 for a signal from 0 to 1.
inline double luminanceOfPQ(double signal)
{
    constexpr double kM1 = 2610.0 / 16384, kM2 = 2523.0 / 4096 * 128;
    constexpr double kC1 = 3424.0 / 4096, kC2 = 2413.0 / 4096 * 32, kC3 = 2392.0 / 4096 * 32;
    const double root = std::pow(signal, 1 / kM2);
    return 10000 * std::pow(std::max(root - kC1, 0.0) / (kC2 - kC3 * root), 1 / kM1);
}

} // namespace kestrix::test::reference
