/// Matrices between R'G'B' and Y'CbCr for each family of RGB levels, and how they become the 16-bit
/// rows that stages multiply with.
///
/// YUV always has video levels: black 16 and white 235 at 8 bits, chroma 128 in the middle and 16
/// to 240 at its extremes, all times 4 at 10 bits (ITU-R BT.709-6, 3.4). The families differ in
/// RGB:
///
/// | family | black | white |
/// |---|---|---|
/// | `StudioRange` | 16, 64, 256 at 8, 10, 12 bits | 235, 940, 3760 |
/// | `ComputerRange` | 0 | 255 |
/// | `FullRange<N>` | 0 | 2^N - 1 |
///
/// A matrix is nine floats in row-major order: rows Y, Cb, Cr and columns R, G, B, or the other way
/// round. The two directions are separate tables and not each other's inverse.
#pragma once

#include <cstdint>

namespace KSX::PixelConversion {

// clang-format off

/// The base matrices have a Y gain of 1, from RGB that has the levels of Y. The chroma rows are
/// those of the standard times 224/219. Some have only four decimal places. They have to stay so,
/// because longer ones give other integer rows below.

// Weights of ITU-R BT.601-7, 2.5.1.
struct StudioRange601 {
    static constexpr float kRGB2YUV[9] = { 0.299f,    0.587f,    0.114f,
                                          -0.1726f,  -0.3388f,   0.5114f,
                                           0.5114f,  -0.4282f,  -0.0832f};
    static constexpr float kYUV2RGB[9] = {1.0f,  0.0f,     1.3708f,
                                          1.0f, -0.3365f, -0.6982f,
                                          1.0f,  1.7325f,  0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

// Weights of ITU-R BT.709-6, 3.2.
struct StudioRange709 {
    static constexpr float kRGB2YUV[9] = { 0.2126f,    0.7152f,    0.0722f,
                                          -0.1172f,   -0.3942f,    0.5114f,
                                           0.511416f, -0.464522f, -0.046894f};
    static constexpr float kYUV2RGB[9] = {1.0f,  0.0f,     1.5397f,
                                          1.0f, -0.1832f, -0.4577f,
                                          1.0f,  1.8142f,  0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

// Weights of ITU-R BT.2020-2, table 4, non-constant luminance.
struct StudioRange2020 {
    static constexpr float kRGB2YUV[9] = { 0.2627f,    0.678f,     0.0593f,
                                          -0.142818f, -0.368598f,  0.511416f,
                                           0.511416f, -0.470283f, -0.041132f};
    static constexpr float kYUV2RGB[9] = {1.0f,  0.0f,      1.441685f,
                                          1.0f, -0.16088f, -0.5586f,
                                          1.0f,  1.839404f, 0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

/// Matrices for RGB of `N` bits in full range: a base matrix times (219 << (N - 8)) / (2^N - 1),
/// and at 8 bits, for the way back, times 255/219. They have seven places and are stored, not
/// computed: products of the short base values sometimes round to other integers.
template<unsigned N, class STUDIO>
struct FullRange;

template<>
struct FullRange<8, StudioRange601> {
    static constexpr float kRGB2YUV[9] = { 0.2567882f,  0.5041294f,  0.0979059f,
                                          -0.1482329f, -0.2909694f,  0.4392023f,
                                           0.4392023f, -0.3677482f, -0.0714541f};
    static constexpr float kYUV2RGB[9] = {1.1643835f,  0.0f,        1.5961369f,
                                          1.1643835f, -0.3918150f, -0.8129725f,
                                          1.1643835f,  2.0172944f,  0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

template<>
struct FullRange<10, StudioRange601> {
    static constexpr float kRGB2YUV[9] = { 0.2560352f,  0.5026510f,  0.0976188f,
                                          -0.1477982f, -0.2901162f,  0.4379144f,
                                           0.4379144f, -0.3666698f, -0.0712446f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
};

template<>
struct FullRange<12, StudioRange601> {
    static constexpr float kRGB2YUV[9] = { 0.2558476f,  0.5022828f,  0.0975473f,
                                          -0.1476900f, -0.2899036f,  0.4375935f,
                                           0.4375935f, -0.3664012f, -0.0711924f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
};

template<>
struct FullRange<8, StudioRange709> {
    static constexpr float kRGB2YUV[9] = { 0.1825859f,  0.6142306f,  0.0620071f,
                                          -0.1006541f, -0.3385482f,  0.4392023f,
                                           0.4392157f, -0.3989422f, -0.0402735f};
    static constexpr float kYUV2RGB[9] = {1.1643835f,  0.0f,        1.7928014f,
                                          1.1643835f, -0.2133151f, -0.5329384f,
                                          1.1643835f,  2.1124246f,  0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

template<>
struct FullRange<10, StudioRange709> {
    static constexpr float kRGB2YUV[9] = { 0.1820504f,  0.6124293f,  0.0618252f,
                                          -0.1003589f, -0.3375554f,  0.4379144f,
                                           0.4379277f, -0.3977723f, -0.0401554f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
};

template<>
struct FullRange<12, StudioRange709> {
    static constexpr float kRGB2YUV[9] = { 0.1819171f,  0.6119807f,  0.0617799f,
                                          -0.1002854f, -0.3373081f,  0.4375935f,
                                           0.4376068f, -0.3974808f, -0.0401260f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
};

template<>
struct FullRange<8, StudioRange2020> {
    static constexpr float kRGB2YUV[9] = { 0.2256129f,  0.5822824f,  0.0509282f,
                                          -0.1226554f, -0.3165603f,  0.4392157f,
                                           0.4392157f, -0.4038902f, -0.0353255f};
    static constexpr float kYUV2RGB[9] = {1.1643835f,  0.0f,        1.6786742f,
                                          1.1643835f, -0.1873260f, -0.6504247f,
                                          1.1643835f,  2.1417718f,  0.0f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
    static constexpr const float* YUV2RGBMatrix() { return kYUV2RGB; }
};

template<>
struct FullRange<10, StudioRange2020> {
    static constexpr float kRGB2YUV[9] = { 0.2249513f,  0.5805748f,  0.0507789f,
                                          -0.1222957f, -0.3156319f,  0.4379277f,
                                           0.4379277f, -0.4027058f, -0.0352219f};
    static constexpr const float* RGB2YUVMatrix() { return kRGB2YUV; }
};

// clang-format on

template<unsigned N>
using FullRange601 = FullRange<N, StudioRange601>;
template<unsigned N>
using FullRange709 = FullRange<N, StudioRange709>;
template<unsigned N>
using FullRange2020 = FullRange<N, StudioRange2020>;

using ComputerRange601 = FullRange601<8>;
using ComputerRange709 = FullRange709<8>;
using ComputerRange2020 = FullRange2020<8>;

/// Whether RGB of the family has video levels.
template<class RANGE>
inline constexpr bool kIsStudioRange = false;
template<>
inline constexpr bool kIsStudioRange<StudioRange601> = true;
template<>
inline constexpr bool kIsStudioRange<StudioRange709> = true;
template<>
inline constexpr bool kIsStudioRange<StudioRange2020> = true;

// --- Fixed point ---------------------------------------------------------------------------------

/// The scale of RGB to YUV rows.
constexpr int kRGB2YUVScale = 32768;

/// The scales of YUV to RGB rows. Blue's coefficient for Cb is above 2 and would not fit 16 bits at
/// the scale of the others.
constexpr int kYUV2RGBScale = 16384;
constexpr int kYUV2BlueScale = 8192;

/// Row `row` of an RGB to YUV matrix, columns R, G, B. Half is added before the truncation towards
/// zero, so positive coefficients are rounded to nearest and negative ones towards zero. Every step
/// is in single precision.
struct FixedRow {
    std::int16_t at[3];
};

constexpr FixedRow fixedRGB2YUVRow(const float* matrix, int row)
{
    const auto fixed = [&](int column) {
        const float scaled = matrix[3 * row + column] * static_cast<float>(kRGB2YUVScale);
        // NOLINTNEXTLINE(bugprone-incorrect-roundings): negative ones have to go this way
        return static_cast<std::int16_t>(scaled + 0.5f);
    };
    return {{fixed(0), fixed(1), fixed(2)}};
}

/// Row `row` of a YUV to RGB matrix, columns Y, Cb, Cr, truncated towards zero.
constexpr FixedRow fixedYUV2RGBRow(const float* matrix, int row)
{
    const auto scale = static_cast<float>(row == 2 ? kYUV2BlueScale : kYUV2RGBScale);
    const auto fixed = [&](int column) {
        return static_cast<std::int16_t>(matrix[3 * row + column] * scale);
    };
    return {{fixed(0), fixed(1), fixed(2)}};
}

} // namespace KSX::PixelConversion
