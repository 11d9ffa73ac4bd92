/// The pixel formats in memory: their names, and how many bytes a row takes; the names of
/// colourspaces.
#pragma once

#include "conversion/KSXPixelConversion.h"

#include <cstddef>
#include <string_view>

namespace KSX::PixelConversion {

/// A format's pixels lie in groups of `groupPixels` pixels and `groupBytes` bytes; a row ends with
/// a whole group.
struct PixelFormatInfo {
    PixelFormat code;
    const char* name; ///< The four characters; "ARGB" for 32.
    const char* engineName;
    unsigned groupPixels;
    unsigned groupBytes;
};

// clang-format off
inline constexpr PixelFormatInfo kPixelFormats[] = {
    // code              name    engine name                 pixels, bytes a group
    {PixelFormat_2vuy,   "2vuy", "8YUV422",                  2,  4},
    {PixelFormat_YUY2,   "YUY2", "8YUY422",                  2,  4},
    {PixelFormat_v210,   "v210", "10YUV422_LE",              6, 16},
    {PixelFormat_v212,   "v212", "12YUV422_LE",              1,  4},
    {PixelFormat_v216,   "v216", "16YUV422_LE",              1,  4},
    {PixelFormat_ay10,   "ay10", "10YUVA422_BE_SMPTE",       4, 16},
    {PixelFormat_Ay10,   "Ay10", "10YUVA422_BE_SMPTE_FullA", 4, 16},

    {PixelFormat_ARGB,   "ARGB", "8ARGB_FULL",               1,  4},
    {PixelFormat_vRGB,   "vRGB", "8ARGB_SMPTE",              1,  4},
    {PixelFormat_BGRA,   "BGRA", "8BGRA_FULL",               1,  4},
    {PixelFormat_BGRv,   "BGRv", "8BGRA_SMPTE",              1,  4},
    {PixelFormat_BGRX,   "BGRX", "8BGRX_FULL",               1,  4},
    {PixelFormat_RGBA,   "RGBA", "8RGBA_FULL",               1,  4},
    {PixelFormat_RGB3,   "RGB3", "8RGB_FULL",                1,  3},

    {PixelFormat_r210,   "r210", "10XRGB_BE_SMPTE",          1,  4},
    {PixelFormat_R210,   "R210", "10XRGB_BE_FULL",           1,  4},
    {PixelFormat_R10l,   "R10l", "10RGBX_LE_SMPTE",          1,  4},
    {PixelFormat_R10L,   "R10L", "10RGBX_LE_FULL",           1,  4},
    {PixelFormat_R10b,   "R10b", "10RGBX_BE_SMPTE",          1,  4},
    {PixelFormat_R10B,   "R10B", "10RGBX_BE_FULL",           1,  4},
    {PixelFormat_R10A,   "R10A", "10RGBA_BE_FULL",           1,  4},
    {PixelFormat_A04l,   "A04l", "10BGRA_LE_SMPTE",          1,  8},
    {PixelFormat_A04L,   "A04L", "10BGRA_LE_FULL",           1,  8},

    {PixelFormat_R12B,   "R12B", "12RGB_BE_FULL",            8, 36},
    {PixelFormat_R12L,   "R12L", "12RGB_LE_FULL",            8, 36},
    {PixelFormat_R12l,   "R12l", "12RGB_LE_SMPTE",           8, 36},
    {PixelFormat_S12L,   "S12L", "S12L",                     1,  8},
    {PixelFormat_b64a,   "b64a", "16ARGB_BE_FULL",           1,  8},
    {PixelFormat_L64A,   "L64A", "16ARGB_LE_FULL",           1,  8},
    {PixelFormat_l64a,   "l64a", "16ARGB_LE_SMPTE",          1,  8},
};
// clang-format on

/// The row of `code` in the list, or null if there is no such format.
constexpr const PixelFormatInfo* findPixelFormat(std::uint32_t code)
{
    for (const PixelFormatInfo& info : kPixelFormats)
        if (info.code == code)
            return &info;
    return nullptr;
}

/// The row of the format with that name, or null.
constexpr const PixelFormatInfo* findPixelFormat(std::string_view name)
{
    for (const PixelFormatInfo& info : kPixelFormats)
        if (info.name == name)
            return &info;
    return nullptr;
}

/// The code of `format` as text: its four characters, or "32".
constexpr const char* codeText(const PixelFormatInfo& format)
{
    return format.code == PixelFormat_ARGB ? "32" : format.name;
}

/// "601", "709" or "2020"; empty for an unspecified colourspace.
constexpr const char* colorspaceName(Colorspace colorspace)
{
    switch (colorspace) {
    case Colorspace601:
        return "601";
    case Colorspace709:
        return "709";
    case Colorspace2020:
        return "2020";
    default:
        return "";
    }
}

/// Bytes that a row of `width` pixels occupies when written: whole groups. If a row of 8-bit 4:2:2
/// has an odd width, only the 2 `width` bytes of its pixels are read.
constexpr std::size_t rowBytes(const PixelFormatInfo& format, std::size_t width)
{
    return (width + format.groupPixels - 1) / format.groupPixels * format.groupBytes;
}

} // namespace KSX::PixelConversion
