/// Matrices between linear RGB of different primaries, nine floats in row-major order: rows are the
/// output's R, G, B, columns the input's.
///
/// Each is a type with a static `get()`. They rest on the RGB to XYZ matrix of each colourspace,
/// which follows from its primaries and white (SMPTE RP 177).
#pragma once

namespace KSX::PixelConversion {

// RGB to CIE XYZ and back.
struct RGB_709_TO_XYZ {
    static const float* get();
};
struct RGB_601PAL_TO_XYZ {
    static const float* get();
};
struct RGB_601NTSC_TO_XYZ {
    static const float* get();
};
/// Doubles, since two products are formed from them; but rounded to single precision in all but the
/// first column.
struct RGB_2020_TO_XYZ {
    static const double* get();
};
struct XYZ_TO_RGB_709 {
    static const float* get();
};
struct XYZ_TO_RGB_601PAL {
    static const float* get();
};
struct XYZ_TO_RGB_601NTSC {
    static const float* get();
};
struct XYZ_TO_RGB_2020 {
    static const float* get();
};

// From and to Rec. 2020.
struct RGB_2020_TO_709 {
    static const float* get();
};
struct RGB_2020_TO_601PAL {
    static const float* get();
};
struct RGB_2020_TO_601NTSC {
    static const float* get();
};
struct RGB_709_TO_2020 {
    static const float* get();
};
struct RGB_601PAL_TO_2020 {
    static const float* get();
};
struct RGB_601NTSC_TO_2020 {
    static const float* get();
};

// Between Rec. 601 and Rec. 709. Constants that must not be re-derived from the matrices above:
// they were formed with a white of X, Y, Z = 0.95047, 1, 1.08883 on the side of Rec. 601, so their
// rows do not add up to 1, and pictures of decades have the faint tint that follows.
struct RGB_601PAL_TO_709 {
    static const float* get();
};
struct RGB_601NTSC_TO_709 {
    static const float* get();
};
struct RGB_709_TO_601PAL {
    static const float* get();
};
struct RGB_709_TO_601NTSC {
    static const float* get();
};

} // namespace KSX::PixelConversion
