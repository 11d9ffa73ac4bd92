/// Writes rows of colours as bytes of any pixel format.
#pragma once

#include "conversion/KSXPixelConversion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrix::host {

/// A pixel's gamma-coded R'G'B' and alpha: 0 to 1 is black to white and transparent to opaque. The
/// primaries are those of the picture's colourspace.
struct Color {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;

    bool operator==(const Color&) const = default;
};

/// Encodes a picture row by row in one of the 30 pixel formats: plain scalar code for test
/// pictures, easy to read and not fast. It shares only the list of formats with the library, so
/// tests can compare the two.
///
/// - A code of n bits is `round(2^(n-8) (16 + 219 E'))` in studio range, `round((2^n - 1) E')` in
///   full range, and `round(2^(n-8) (128 + 224 E'c))` for chroma (ITU-R BT.709-6, 3.4; ITU-R
///   BT.2100-2, table 9).
/// - Luma has the weights of the colourspace (ITU-R BT.601-7, 2.5.1; BT.709-6, 3.2; BT.2020-2,
///   table 4, non-constant luminance).
/// - 4:2:2 chroma is co-sited with the even pixel, and filtered with the weights 1 2 1.
/// - Alpha is in full range except in "ay10".
/// - Studio-range values below black and above white are kept, except in the codes that are
///   reserved for timing references, 0 and 255 at 8 bits; all other values are clipped.
/// - The pixels that fill up a row's last group repeat the last one.
class RowEncoder {
public:
    /// `format` is one of the 30, and `colorspace` is specified; otherwise throws
    /// `std::invalid_argument`.
    RowEncoder(std::uint32_t format, KSX::PixelConversion::Colorspace colorspace, unsigned width);

    /// Bytes of a row, whole groups.
    std::size_t rowBytes() const { return m_rowBytes; }

    /// Encodes a row of `width` colours to `rowBytes()` bytes at `out`.
    void encode(std::span<const Color> row, std::uint8_t* out);

private:
    struct Layout;
    static const Layout kLayouts[];
    static const Layout& layoutOf(std::uint32_t format);

    /// The codes of one pixel, R G B A or Y Cb Cr A; those of an odd pixel have its pair's chroma.
    using Codes = std::array<std::uint32_t, 4>;

    void quantiseRGB(std::span<const Color> row);
    void quantiseYUV(std::span<const Color> row);
    void pack(std::uint8_t* out) const;

    const Layout& m_layout;
    double m_lumaR = 0;
    double m_lumaB = 0;
    std::size_t m_rowBytes = 0;
    std::vector<Codes> m_codes;
};

} // namespace kestrix::host
