/// Matrices between linear RGB of different primaries, nine floats in row-major order: rows are the
/// output's R, G, B, columns the input's.
///
/// Each is a type with a static `get()`. They are computed from the RGB to XYZ matrix of each
/// colourspace, which follows from its primaries and white point (SMPTE RP 177). The compiler
/// evaluates all of them. The precision of each step, single or double, decides the last bits and
/// so the values of pixels.
#pragma once

#include "conversion/colour/Primaries.h"

namespace KSX::PixelConversion {

namespace details {

template<class T>
struct Matrix {
    T at[9];
};

/// RGB to XYZ: each primary scaled so that the three add up to the white point, of luminance 1.
/// Products in double precision, differences of the primaries' coordinates in single.
constexpr Matrix<double> rgbToXYZ(const Primaries& p, const Chromaticity& white)
{
    const auto [r, g, b] = p;

    const double overY = 1 / static_cast<double>(white.y);
    const double whiteX = overY * white.x;
    const double whiteXZ = (1.0 - white.x - white.y) * overY + whiteX;

    const double determinant = g.x * (r.y - b.y) + (b.x * (g.y - r.y) + r.x * (b.y - g.y));

    const double blue = b.y * whiteXZ + (b.y - 1);
    const double green = g.y * whiteXZ + (g.y - 1);
    const double red = r.y * whiteXZ + (r.y - 1);

    const double scaleR = (b.x * green + ((b.y - g.y) * whiteX - g.x * blue)) / determinant;
    const double scaleG = (blue * r.x + (r.y - b.y) * whiteX - b.x * red) / determinant;
    const double scaleB = (red * g.x + ((g.y - r.y) * whiteX - green * r.x)) / determinant;

    return {{r.x * scaleR, g.x * scaleG, b.x * scaleB, r.y * scaleR, g.y * scaleG, b.y * scaleB,
             r.z * scaleR, g.z * scaleG, b.z * scaleB}};
}

constexpr Matrix<float> single(const Matrix<double>& m)
{
    Matrix<float> result{};
    for (int i = 0; i < 9; ++i)
        result.at[i] = static_cast<float>(m.at[i]);
    return result;
}

/// The inverse by cofactors, in single precision. The determinant is expanded along row 0, and one
/// reciprocal of it serves all nine.
constexpr Matrix<float> inverse(const Matrix<float>& m)
{
    const auto& a = m.at;
    const float c0 = a[4] * a[8] - a[5] * a[7];
    const float c1 = a[5] * a[6] - a[3] * a[8];
    const float c2 = a[3] * a[7] - a[4] * a[6];
    const float over = 1 / (a[0] * c0 + (a[1] * c1 + a[2] * c2));
    return {{c0 * over, (a[2] * a[7] - a[1] * a[8]) * over, (a[1] * a[5] - a[2] * a[4]) * over,
             c1 * over, (a[0] * a[8] - a[2] * a[6]) * over, (a[2] * a[3] - a[0] * a[5]) * over,
             c2 * over, (a[1] * a[6] - a[0] * a[7]) * over, (a[0] * a[4] - a[1] * a[3]) * over}};
}

/// The matrix that applies `b` and then `a`. Sums go from left to right, in the precision of `SUM`.
template<class SUM, class T>
constexpr Matrix<float> product(const Matrix<float>& a, const Matrix<T>& b)
{
    Matrix<float> result{};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            SUM sum = 0;
            for (int i = 0; i < 3; ++i)
                sum += static_cast<SUM>(a.at[3 * row + i]) * static_cast<SUM>(b.at[3 * i + column]);
            result.at[3 * row + column] = static_cast<float>(sum);
        }
    }
    return result;
}

inline constexpr Matrix<float> kRGB709ToXYZ = single(rgbToXYZ(kPrimaries709, kWhiteD65));
inline constexpr Matrix<float> kRGB601PALToXYZ = single(rgbToXYZ(kPrimaries601PAL, kWhiteD65));
inline constexpr Matrix<float> kRGB601NTSCToXYZ = single(rgbToXYZ(kPrimaries601NTSC, kWhiteD65));
inline constexpr Matrix<float> kRGB2020ToXYZSingle = single(rgbToXYZ(kPrimaries2020, kWhiteD65));

inline constexpr Matrix<double> kRGB2020ToXYZ = [] {
    Matrix<double> m = rgbToXYZ(kPrimaries2020, kWhiteD65);
    for (int i = 0; i < 9; ++i)
        if (i % 3 != 0)
            m.at[i] = kRGB2020ToXYZSingle.at[i];
    return m;
}();

inline constexpr Matrix<float> kXYZToRGB709 = inverse(kRGB709ToXYZ);
inline constexpr Matrix<float> kXYZToRGB601PAL = inverse(kRGB601PALToXYZ);
inline constexpr Matrix<float> kXYZToRGB601NTSC = inverse(kRGB601NTSCToXYZ);
inline constexpr Matrix<float> kXYZToRGB2020 = inverse(kRGB2020ToXYZSingle);

inline constexpr Matrix<float> kRGB2020To709 = product<double>(kXYZToRGB709, kRGB2020ToXYZ);
inline constexpr Matrix<float> kRGB2020To601PAL = product<double>(kXYZToRGB601PAL, kRGB2020ToXYZ);
inline constexpr Matrix<float> kRGB2020To601NTSC = product<double>(kXYZToRGB601NTSC, kRGB2020ToXYZ);
inline constexpr Matrix<float> kRGB709To2020 = product<float>(kXYZToRGB2020, kRGB709ToXYZ);
inline constexpr Matrix<float> kRGB601PALTo2020 = product<float>(kXYZToRGB2020, kRGB601PALToXYZ);
inline constexpr Matrix<float> kRGB601NTSCTo2020 = product<float>(kXYZToRGB2020, kRGB601NTSCToXYZ);

// Between Rec. 601 and Rec. 709. These constants must not be computed again from the matrices
// above. They were made with a white of X, Y, Z = 0.95047, 1, 1.08883 on the side of Rec. 601, so
// their rows do not add up to 1. Pictures of decades have the faint tint that results.
// clang-format off
inline constexpr Matrix<float> kRGB601PALTo709 =
    {{ 1.0442014f,   -0.0440422f,  0.0000002f,
      -0.00000004f,   0.9999768f, -0.00000008f,
       0.00000004f,   0.0117931f,  0.9879670f}};
inline constexpr Matrix<float> kRGB601NTSCTo709 =
    {{ 0.9397049f,    0.0501804f,  0.0102742f,
       0.0177754f,    0.9657705f,  0.0164311f,
      -0.0016219f,   -0.0043697f,  1.0057515f}};
inline constexpr Matrix<float> kRGB709To601PAL =
    {{ 0.9576697f,    0.0421788f, -0.00000015f,
       0.00000004f,   1.0000231f,  0.00000008f,
      -0.00000004f,  -0.0119370f,  1.0121795f}};
inline constexpr Matrix<float> kRGB709To601NTSC =
    {{ 1.0651945f,   -0.0553915f, -0.0099765f,
      -0.0196331f,    1.0363871f, -0.0167310f,
       0.0016325f,    0.0044135f,  0.9941925f}};
// clang-format on

} // namespace details

// RGB to CIE XYZ and back.
struct RGB_709_TO_XYZ {
    static constexpr const float* get() { return details::kRGB709ToXYZ.at; }
};
struct RGB_601PAL_TO_XYZ {
    static constexpr const float* get() { return details::kRGB601PALToXYZ.at; }
};
struct RGB_601NTSC_TO_XYZ {
    static constexpr const float* get() { return details::kRGB601NTSCToXYZ.at; }
};
/// Doubles, because products are computed from them. All columns but the first are rounded to
/// single precision.
struct RGB_2020_TO_XYZ {
    static constexpr const double* get() { return details::kRGB2020ToXYZ.at; }
};
struct XYZ_TO_RGB_709 {
    static constexpr const float* get() { return details::kXYZToRGB709.at; }
};
struct XYZ_TO_RGB_601PAL {
    static constexpr const float* get() { return details::kXYZToRGB601PAL.at; }
};
struct XYZ_TO_RGB_601NTSC {
    static constexpr const float* get() { return details::kXYZToRGB601NTSC.at; }
};
struct XYZ_TO_RGB_2020 {
    static constexpr const float* get() { return details::kXYZToRGB2020.at; }
};

// From and to Rec. 2020.
struct RGB_2020_TO_709 {
    static constexpr const float* get() { return details::kRGB2020To709.at; }
};
struct RGB_2020_TO_601PAL {
    static constexpr const float* get() { return details::kRGB2020To601PAL.at; }
};
struct RGB_2020_TO_601NTSC {
    static constexpr const float* get() { return details::kRGB2020To601NTSC.at; }
};
struct RGB_709_TO_2020 {
    static constexpr const float* get() { return details::kRGB709To2020.at; }
};
struct RGB_601PAL_TO_2020 {
    static constexpr const float* get() { return details::kRGB601PALTo2020.at; }
};
struct RGB_601NTSC_TO_2020 {
    static constexpr const float* get() { return details::kRGB601NTSCTo2020.at; }
};

// Between Rec. 601 and Rec. 709.
struct RGB_601PAL_TO_709 {
    static constexpr const float* get() { return details::kRGB601PALTo709.at; }
};
struct RGB_601NTSC_TO_709 {
    static constexpr const float* get() { return details::kRGB601NTSCTo709.at; }
};
struct RGB_709_TO_601PAL {
    static constexpr const float* get() { return details::kRGB709To601PAL.at; }
};
struct RGB_709_TO_601NTSC {
    static constexpr const float* get() { return details::kRGB709To601NTSC.at; }
};

} // namespace KSX::PixelConversion
