/// The interface of the conversion engine: pixel formats, colourspaces, the table of conversions
/// and its lookup.
///
/// A conversion turns a whole picture of one packed pixel format into another. It allocates
/// nothing, holds no state, checks nothing and cannot fail; any number may run at once on any
/// threads. Sizes are the caller's responsibility: see `ConversionFunction`.
#pragma once

#include <cstdint>

namespace KSX::PixelConversion {

/// A FourCC with its first character in the top byte.
constexpr std::uint32_t fourCC(const char (&code)[5])
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(code[i]);
    return value;
}

/// The layout and range of a picture's bytes. Each enumerator has the code in its name; the comment
/// beside it has the name that entries and source files use. There FULL is full range, SMPTE is
/// studio range, and BE and LE are the byte order of a packed word. PixelFormats.h has the sizes,
/// docs/formats.md the layouts.
enum PixelFormat : std::uint32_t {
    PixelFormat_2vuy = fourCC("2vuy"), ///< 8YUV422
    PixelFormat_YUY2 = fourCC("YUY2"), ///< 8YUY422
    PixelFormat_v210 = fourCC("v210"), ///< 10YUV422_LE
    PixelFormat_v212 = fourCC("v212"), ///< 12YUV422_LE
    PixelFormat_v216 = fourCC("v216"), ///< 16YUV422_LE
    PixelFormat_ay10 = fourCC("ay10"), ///< 10YUVA422_BE_SMPTE
    PixelFormat_Ay10 = fourCC("Ay10"), ///< 10YUVA422_BE_SMPTE_FullA
    PixelFormat_ARGB = 32,             ///< 8ARGB_FULL, the one code that is no FourCC
    PixelFormat_vRGB = fourCC("vRGB"), ///< 8ARGB_SMPTE
    PixelFormat_BGRA = fourCC("BGRA"), ///< 8BGRA_FULL
    PixelFormat_BGRv = fourCC("BGRv"), ///< 8BGRA_SMPTE
    PixelFormat_BGRX = fourCC("BGRX"), ///< 8BGRX_FULL
    PixelFormat_RGBA = fourCC("RGBA"), ///< 8RGBA_FULL
    PixelFormat_RGB3 = fourCC("RGB3"), ///< 8RGB_FULL
    PixelFormat_r210 = fourCC("r210"), ///< 10XRGB_BE_SMPTE
    PixelFormat_R210 = fourCC("R210"), ///< 10XRGB_BE_FULL
    PixelFormat_R10l = fourCC("R10l"), ///< 10RGBX_LE_SMPTE
    PixelFormat_R10L = fourCC("R10L"), ///< 10RGBX_LE_FULL
    PixelFormat_R10b = fourCC("R10b"), ///< 10RGBX_BE_SMPTE
    PixelFormat_R10B = fourCC("R10B"), ///< 10RGBX_BE_FULL
    PixelFormat_R10A = fourCC("R10A"), ///< 10RGBA_BE_FULL
    PixelFormat_A04l = fourCC("A04l"), ///< 10BGRA_LE_SMPTE
    PixelFormat_A04L = fourCC("A04L"), ///< 10BGRA_LE_FULL
    PixelFormat_R12B = fourCC("R12B"), ///< 12RGB_BE_FULL, also 12RGBX_BE_FULL
    PixelFormat_R12L = fourCC("R12L"), ///< 12RGB_LE_FULL, also 12RGBX_LE_FULL
    PixelFormat_R12l = fourCC("R12l"), ///< 12RGB_LE_SMPTE, also 12RGBX_LE_SMPTE
    PixelFormat_S12L = fourCC("S12L"), ///< S12L
    PixelFormat_b64a = fourCC("b64a"), ///< 16ARGB_BE_FULL
    PixelFormat_L64A = fourCC("L64A"), ///< 16ARGB_LE_FULL
    PixelFormat_l64a = fourCC("l64a"), ///< 16ARGB_LE_SMPTE
};

/// The colour encoding of a picture.
enum Colorspace : std::uint32_t {
    Colorspace601 = 0,                      ///< ITU-R BT.601-7, either line standard
    Colorspace709 = 1,                      ///< ITU-R BT.709-6
    Colorspace2020 = 2,                     ///< ITU-R BT.2020-2
    ColorspaceUnspecified = fourCC("unsp"), ///< none stated, or none that matters
};

/// Converts a picture of `width` pixels by `height` rows.
///
/// `dst` and `src` point at the first byte of the top row; the next row begins `dstRowBytes` or
/// `srcRowBytes` after it. Pointers and row sizes need no alignment. Row sizes above 2147483647 act
/// as negative strides. A `height` of 0, or above 2147483647, converts nothing.
///
/// Exactly the bytes that the format needs for `width` pixels are written to each destination row
/// (`rowBytes` in PixelFormats.h). Conversions that rebuild chroma from the pixels to the right
/// also read past the end of a source row; docs/conversions.md lists how far. All others read only
/// the bytes of the row's pixels. Source and destination may be the same picture if their formats
/// have pixels of the same size.
using ConversionFunction = void (*)(unsigned width, unsigned height, void* dst,
                                    unsigned dstRowBytes, void* src, unsigned srcRowBytes);

/// A row of the table. Both colourspaces are unspecified if the conversion is the same in all of
/// them and changes none. Otherwise both are real.
struct ConversionEntry {
    PixelFormat srcFormat;
    Colorspace srcColorspace;
    PixelFormat dstFormat;
    Colorspace dstColorspace;
    ConversionFunction function;
};

/// The number of rows of the table.
constexpr unsigned kConversionCount = 364;

/// All conversions, in the order in which the lookup tries them.
extern const ConversionEntry conversions[kConversionCount];

/// Returns the conversion from `srcFormat` in `srcColorspace` to `dstFormat` in `dstColorspace`, or
/// null if there is none. An unspecified `dstColorspace` means that of the source. Formats come
/// first and colourspaces last, unlike in a row of the table.
ConversionFunction GetConversionFunction(PixelFormat srcFormat, PixelFormat dstFormat,
                                         Colorspace srcColorspace, Colorspace dstColorspace);

/// The least width, in pixels, of the rows that the conversions from `source` to RGB formats take:
/// 0 if they leave a row of no pixels alone. Conversions to other formats have limits of their
/// own, which docs/conversions.md lists.
unsigned leastWidthToRGB(PixelFormat source);

/// Copies `height` rows of `dstRowBytes` bytes each. The number of bytes is always the
/// destination's row size, so a source row must have as many readable bytes. `width` is unused.
void CopyWithoutConversion(unsigned width, unsigned height, void* dst, unsigned dstRowBytes,
                           void* src, unsigned srcRowBytes);

} // namespace KSX::PixelConversion
