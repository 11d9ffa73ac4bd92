/// Changes of the primaries of RGB, a pixel at a time, in the precision and the order of the
/// stages.
#pragma once

#include "tests/reference/Curves.h"

#include "conversion/KSXPixelConversion.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestrix::test::reference {

/// Each row gives R, G or B of the destination; each column takes R, G or B of the source.
struct GamutStep {
    std::array<float, 9> matrix;
    /// Whether the result is limited in linear light to the destination's gamut.
    bool clamps;
};

struct GamutChange {
    GamutStep matrix;
    int bits;
    /// Whether R, G and B are in separate vectors, which changes the order of sums.
    bool planar;
};

// --- Matrices ------------------------------------------------------------------------------------

/// x of R, G and B, then y of them, then z.
using PrimaryColours = float[3][3];

// clang-format off
inline constexpr PrimaryColours
    kPAL  {{0.64f,  0.29f, 0.15f},  {0.33f,  0.6f,   0.06f},  {0.03f, 0.11f,  0.79f}},
    kNTSC {{0.63f,  0.31f, 0.155f}, {0.34f,  0.595f, 0.07f},  {0.03f, 0.095f, 0.775f}},
    k709  {{0.64f,  0.3f,  0.15f},  {0.33f,  0.6f,   0.06f},  {0.03f, 0.1f,   0.79f}},
    k2020 {{0.708f, 0.17f, 0.131f}, {0.292f, 0.797f, 0.046f}, {0.0f,  0.033f, 0.823f}};

/// Computed with another white for Rec. 601.
inline constexpr GamutStep
    kPALTo709  {{1.0442014f,   -0.0440422f,  0.0000002f,
                 -0.00000004f,  0.9999768f, -0.00000008f,
                 0.00000004f,   0.0117931f,  0.9879670f}, false},
    kNTSCTo709 {{0.9397049f,    0.0501804f,  0.0102742f,
                 0.0177754f,    0.9657705f,  0.0164311f,
                 -0.0016219f,  -0.0043697f,  1.0057515f}, false},
    k709ToPAL  {{0.9576697f,    0.0421788f, -0.00000015f,
                 0.00000004f,   1.0000231f,  0.00000008f,
                 -0.00000004f, -0.0119370f,  1.0121795f}, true},
    k709ToNTSC {{1.0651945f,   -0.0553915f, -0.0099765f,
                 -0.0196331f,   1.0363871f, -0.0167310f,
                 0.0016325f,    0.0044135f,  0.9941925f}, true};
// clang-format on

/// To XYZ: the primaries, scaled so that their sum is D65. In double precision, from differences in
/// single precision.
inline std::array<double, 9> toXYZ(const PrimaryColours& p)
{
    constexpr float kWhiteX = 0.3127f, kWhiteY = 0.329f;
    const double overY = 1 / static_cast<double>(kWhiteY);
    const double white = overY * kWhiteX;
    const double others = (1.0 - kWhiteX - kWhiteY) * overY + white;
    const auto& [x, y, z] = p;
    const double determinant = x[1] * (y[0] - y[2]) + (x[2] * (y[1] - y[0]) + x[0] * (y[2] - y[1]));
    double s[3];
    for (int i = 0; i < 3; ++i)
        s[i] = y[i] * others + (y[i] - 1.0f);
    const auto& [c, b, a] = s;
    const double scale[] = {
        (x[2] * b + (double{y[2] - y[1]} * white - x[1] * a)) / determinant,
        (a * x[0] + double{y[0] - y[2]} * white - x[2] * c) / determinant,
        (c * x[1] + (double{y[1] - y[0]} * white - b * x[0])) / determinant,
    };
    std::array<double, 9> matrix;
    for (std::size_t i = 0; i < 9; ++i)
        matrix[i] = p[i / 3][i % 3] * scale[i % 3];
    return matrix;
}

/// The inverse by cofactors, in single precision.
inline std::array<float, 9> fromXYZ(const PrimaryColours& p)
{
    std::array<float, 9> m, inverse;
    std::ranges::transform(toXYZ(p), m.begin(), [](double x) { return static_cast<float>(x); });
    const auto cofactor = [&](std::size_t row, std::size_t column) {
        const auto at = [&](std::size_t r, std::size_t c) {
            return m[3 * ((row + r) % 3) + (column + c) % 3];
        };
        const float plus = at(1, 1) * at(2, 2);
        const float minus = at(1, 2) * at(2, 1);
        return plus - minus;
    };
    const float others = m[1] * cofactor(0, 1) + m[2] * cofactor(0, 2);
    const float determinant = m[0] * cofactor(0, 0) + others;
    const float reciprocal = 1.0f / determinant;
    for (std::size_t i = 0; i < 9; ++i)
        inverse[i] = cofactor(i % 3, i / 3) * reciprocal;
    return inverse;
}

/// `SUM` is the precision of the products, of their sum, and of red's part in XYZ.
template<class SUM>
GamutStep between(const PrimaryColours& from, const PrimaryColours& to, bool clamps)
{
    const auto last = fromXYZ(to);
    const auto first = toXYZ(from);
    GamutStep step{{}, clamps};
    for (std::size_t i = 0; i < 9; ++i) {
        SUM sum = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double xyz = first[3 * k + i % 3];
            const SUM rounded = i % 3 == 0 ? static_cast<SUM>(xyz) : static_cast<float>(xyz);
            sum += last[i / 3 * 3 + k] * rounded;
        }
        step.matrix[i] = static_cast<float>(sum);
    }
    return step;
}

/// Rec. 601 has the primaries for 625 lines if `height` is 576, and otherwise those for 525 lines.
inline GamutStep gamutStep(KSX::PixelConversion::Colorspace from,
                           KSX::PixelConversion::Colorspace to, unsigned height)
{
    using namespace KSX::PixelConversion;
    const bool pal = height == 576;
    if (from == Colorspace2020) {
        static const GamutStep to709 = between<double>(k2020, k709, true),
                               toPAL = between<double>(k2020, kPAL, true),
                               toNTSC = between<double>(k2020, kNTSC, true);
        return to == Colorspace709 ? to709 : pal ? toPAL : toNTSC;
    }
    if (to == Colorspace2020) {
        static const GamutStep from709 = between<float>(k709, k2020, false),
                               fromPAL = between<float>(kPAL, k2020, false),
                               fromNTSC = between<float>(kNTSC, k2020, false);
        return from == Colorspace709 ? from709 : pal ? fromPAL : fromNTSC;
    }
    if (from == Colorspace601)
        return pal ? kPALTo709 : kNTSCTo709;
    return pal ? k709ToPAL : k709ToNTSC;
}

// --- Pixels --------------------------------------------------------------------------------------

/// R, G, B in full-range code values, as the stage gives them: 0 to 255 at 8 bits, without limits
/// at 10 bits.
inline std::array<int, 3> changeGamut(const GamutChange& change, std::array<int, 3> rgb)
{
    std::array<float, 3> linear;
    for (std::size_t i = 0; i < 3; ++i)
        linear[i] = change.bits == 8 ? decoded8(rgb[i]) : static_cast<float>(decoded10(rgb[i]));

    std::array<int, 3> codes;
    for (std::size_t i = 0; i < 3; ++i) {
        const float* const row = change.matrix.matrix.data() + 3 * i;
        const float r = row[0] * linear[0];
        const float g = row[1] * linear[1];
        const float b = row[2] * linear[2];
        float sum = change.planar ? (b + g) + r : (g + r) + b;
        if (change.matrix.clamps)
            sum = std::max(std::min(sum, 1.0f), 0.0f);
        const double code = change.bits == 8 ? double{encoded8(sum)} : encoded10(sum);
        codes[i] = roundedCode(code);
    }
    return codes;
}

} // namespace kestrix::test::reference
