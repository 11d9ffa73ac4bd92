/// The facts of the pixel formats.
#include "convert/Formats.h"

#include <algorithm>
#include <iterator>

namespace kestrix {

namespace {

using namespace KSX::PixelConversion;

constexpr kestrix_components YCbCr = KESTRIX_COMPONENTS_YCBCR;
constexpr kestrix_components YCbCrA = KESTRIX_COMPONENTS_YCBCRA;
constexpr kestrix_components RGB = KESTRIX_COMPONENTS_RGB;
constexpr kestrix_components RGBA = KESTRIX_COMPONENTS_RGBA;
constexpr kestrix_range None = KESTRIX_RANGE_NONE;
constexpr kestrix_range Studio = KESTRIX_RANGE_STUDIO;
constexpr kestrix_range Full = KESTRIX_RANGE_FULL;

// clang-format off
constexpr FormatFacts kFacts[] = {
    // code            samples bits  range   alpha  step
    {PixelFormat_2vuy, YCbCr,   8,  Studio, None,    8, "8-bit 4:2:2 Y'CbCr, studio range, Cb first"},
    {PixelFormat_YUY2, YCbCr,   8,  Studio, None,    8, "8-bit 4:2:2 Y'CbCr, studio range, Y' first"},
    {PixelFormat_v210, YCbCr,  10,  Studio, None,   12, "10-bit 4:2:2 Y'CbCr, studio range, 3 samples in 32 bits"},
    {PixelFormat_v212, YCbCr,  12,  Studio, None,    8, "12-bit 4:2:2 Y'CbCr, studio range, at the top of 16 bits"},
    {PixelFormat_v216, YCbCr,  16,  Studio, None,    8, "16-bit 4:2:2 Y'CbCr, studio range"},
    {PixelFormat_ay10, YCbCrA, 10,  Studio, Studio,  4, "10-bit 4:2:2 Y'CbCr, studio range, with studio-range alpha"},
    {PixelFormat_Ay10, YCbCrA, 10,  Studio, Full,    4, "10-bit 4:2:2 Y'CbCr, studio range, with full-range alpha"},

    {PixelFormat_ARGB, RGBA,    8,  Full,   Full,    4, "8-bit ARGB, full range"},
    {PixelFormat_vRGB, RGBA,    8,  Studio, Studio,  4, "8-bit ARGB, studio range"},
    {PixelFormat_BGRA, RGBA,    8,  Full,   Full,    4, "8-bit BGRA, full range"},
    {PixelFormat_BGRv, RGBA,    8,  Studio, Studio,  4, "8-bit BGRA, studio range"},
    {PixelFormat_BGRX, RGB,     8,  Full,   None,    4, "8-bit BGR, full range, with a spare byte"},
    {PixelFormat_RGBA, RGBA,    8,  Full,   Full,    4, "8-bit RGBA, full range"},
    {PixelFormat_RGB3, RGB,     8,  Full,   None,   16, "8-bit RGB, full range"},

    {PixelFormat_r210, RGB,    10,  Studio, None,    4, "10-bit RGB, studio range, big-endian, spare bits at the top"},
    {PixelFormat_R210, RGB,    10,  Full,   None,    4, "10-bit RGB, full range, big-endian, spare bits at the top"},
    {PixelFormat_R10l, RGB,    10,  Studio, None,    4, "10-bit RGB, studio range, little-endian, spare bits at the bottom"},
    {PixelFormat_R10L, RGB,    10,  Full,   None,    4, "10-bit RGB, full range, little-endian, spare bits at the bottom"},
    {PixelFormat_R10b, RGB,    10,  Studio, None,    4, "10-bit RGB, studio range, big-endian, spare bits at the bottom"},
    {PixelFormat_R10B, RGB,    10,  Full,   None,    4, "10-bit RGB, full range, big-endian, spare bits at the bottom"},
    {PixelFormat_R10A, RGB,    10,  Full,   None,    4, "10-bit RGB, full range, big-endian, spare bits of 1 at the bottom"},
    {PixelFormat_A04l, RGBA,   10,  Studio, Studio,  4, "10-bit BGRA, studio range, at the bottom of 16 bits"},
    {PixelFormat_A04L, RGBA,   10,  Full,   Full,    4, "10-bit BGRA, full range, at the bottom of 16 bits"},

    {PixelFormat_R12B, RGB,    12,  Full,   None,   32, "12-bit RGB, full range, big-endian words, 8 pixels in 36 bytes"},
    {PixelFormat_R12L, RGB,    12,  Full,   None,   32, "12-bit RGB, full range, little-endian words, 8 pixels in 36 bytes"},
    {PixelFormat_R12l, RGB,    12,  Studio, None,   32, "12-bit RGB, studio range, little-endian words, 8 pixels in 36 bytes"},
    {PixelFormat_S12L, RGB,    12,  Full,   None,    4, "12-bit BGR, full range, at the bottom of 16 bits"},
    {PixelFormat_b64a, RGBA,   16,  Full,   Full,    4, "16-bit ARGB, full range, big-endian"},
    {PixelFormat_L64A, RGBA,   16,  Full,   Full,    4, "16-bit ARGB, full range, little-endian"},
    {PixelFormat_l64a, RGBA,   16,  Studio, Studio,  4, "16-bit ARGB, studio range, little-endian, 10 bits at the top"},
};
// clang-format on

static_assert(std::equal(std::begin(kFacts), std::end(kFacts), std::begin(kPixelFormats),
                         std::end(kPixelFormats),
                         [](const auto& a, const auto& b) { return a.code == b.code; }));

} // namespace

Format formatAt(std::size_t index)
{
    return {kPixelFormats[index], kFacts[index]};
}

kestrix_format_info tell(const Format& format)
{
    const auto& [info, facts] = format;
    return {.struct_size = sizeof(kestrix_format_info),
            .code = info.code,
            .components = facts.components,
            .depth = facts.depth,
            .range = facts.range,
            .alpha_range = facts.alphaRange,
            .chroma = format.is422() ? KESTRIX_CHROMA_422 : KESTRIX_CHROMA_NONE,
            .group_pixels = info.groupPixels,
            .group_bytes = info.groupBytes,
            .name = info.name,
            .words = facts.words};
}

} // namespace kestrix
