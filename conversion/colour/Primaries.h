/// Chromaticities and relative luminance of the RGB colourspaces.
#pragma once

namespace KSX::PixelConversion {

/// CIE 1931 x, y, z of a primary or white point. z is stored with the digits of the standard; in
/// single precision this is 1 - x - y.
struct Chromaticity {
    float x;
    float y;
    float z;
};

/// The primaries of a colourspace.
struct Primaries {
    Chromaticity r;
    Chromaticity g;
    Chromaticity b;
};

// clang-format off

// D65, the white of all of them. ITU-R BT.709-6, 1.3.
inline constexpr Chromaticity kWhiteD65     {0.3127f, 0.329f, 0.3583f};

// 625-line systems. ITU-R BT.601-7, 2.
inline constexpr Chromaticity kPriR601PAL   {0.64f,   0.33f,  0.03f};
inline constexpr Chromaticity kPriG601PAL   {0.29f,   0.6f,   0.11f};
inline constexpr Chromaticity kPriB601PAL   {0.15f,   0.06f,  0.79f};

// 525-line systems. ITU-R BT.601-7, 2; SMPTE ST 170.
inline constexpr Chromaticity kPriR601NTSC  {0.63f,   0.34f,  0.03f};
inline constexpr Chromaticity kPriG601NTSC  {0.31f,   0.595f, 0.095f};
inline constexpr Chromaticity kPriB601NTSC  {0.155f,  0.07f,  0.775f};

// ITU-R BT.709-6, 1.3.
inline constexpr Chromaticity kPriR709      {0.64f,   0.33f,  0.03f};
inline constexpr Chromaticity kPriG709      {0.3f,    0.6f,   0.1f};
inline constexpr Chromaticity kPriB709      {0.15f,   0.06f,  0.79f};

// ITU-R BT.2020-2, table 3.
inline constexpr Chromaticity kPriR2020     {0.708f,  0.292f, 0.0f};
inline constexpr Chromaticity kPriG2020     {0.17f,   0.797f, 0.033f};
inline constexpr Chromaticity kPriB2020     {0.131f,  0.046f, 0.823f};

// P3 with the white of D65, for extensions of the engine. SMPTE EG 432-1.
inline constexpr Chromaticity kPriRP3D65    {0.68f,   0.32f,  0.0f};
inline constexpr Chromaticity kPriGP3D65    {0.265f,  0.69f,  0.045f};
inline constexpr Chromaticity kPriBP3D65    {0.15f,   0.06f,  0.79f};

inline constexpr Primaries kPrimaries601PAL {kPriR601PAL,  kPriG601PAL,  kPriB601PAL};
inline constexpr Primaries kPrimaries601NTSC{kPriR601NTSC, kPriG601NTSC, kPriB601NTSC};
inline constexpr Primaries kPrimaries709    {kPriR709,     kPriG709,     kPriB709};
inline constexpr Primaries kPrimaries2020   {kPriR2020,    kPriG2020,    kPriB2020};

// Weights of R, G and B in relative luminance. ITU-R BT.709-6, 3.2; ITU-R BT.2020-2, table 4.
inline constexpr float kRelLum709[3]  = {0.2126f, 0.7152f, 0.0722f};
inline constexpr float kRelLum2020[3] = {0.2627f, 0.678f,  0.0593f};

// clang-format on

} // namespace KSX::PixelConversion
