/// Computes the pixel at a column and a line from the layout of its format.
#include "tests/preview/ShaderModel.h"

#include "tests/common/PreviewFixture.h"
#include "tests/reference/Layouts.h"

#include <algorithm>
#include <cmath>

namespace kestrix::test {
namespace {

using reference::Layout;

/// The sample of a line that begins at `bit`, as a value from 0 to 1. Bits of its lowest byte that
/// are below the sample count as its fraction. Outside the texture all is 0; it must not show.
double sampleAt(const TexturePicture& picture, const Layout& layout, std::size_t bit, int y)
{
    const int fraction = bit % 8;
    const auto lastBit = bit + static_cast<unsigned>(layout.levels.bits) - 1;
    unsigned value = 0;
    for (std::size_t byte = bit / 8; byte <= lastBit / 8; ++byte)
        if (y >= 0 && y < picture.height && byte < static_cast<std::size_t>(picture.width) * 4)
            value |= unsigned{picture.texel(0, y)[byte ^ (layout.wordBytes - 1)]}
                     << 8 * (byte - bit / 8);
    value &= (1u << (layout.levels.bits + fraction)) - 1;
    return static_cast<double>(value) / (1 << (layout.levels.bits + fraction));
}

// --- YCbCr 4:2:2 ---------------------------------------------------------------------------------

/// An 8-bit pixel of a line. In even columns it has its own chroma, and in odd columns the mean of
/// its neighbours' chroma.
Colour clamped8(const TexturePicture& picture, int x, int y)
{
    const auto group = [&](int g) {
        return picture.texel(std::clamp(g, 0, picture.width - 1),
                             std::clamp(y, 0, picture.height - 1));
    };
    const std::uint8_t* own = group(x / 2); // Cb Y0 Cr Y1
    if (x % 2 == 0)
        return {own[1] / 255.0, own[0] / 255.0, own[2] / 255.0, 1};
    const std::uint8_t* next = group(x / 2 + 1);
    return {own[3] / 255.0, (own[0] + next[0]) / 510.0, (own[2] + next[2]) / 510.0, 1};
}

/// 10 bits, 6 pixels in 4 words.
Colour v210(const TexturePicture& picture, const Layout& layout, int x, int y)
{
    const auto sample = [&](int number) {
        return sampleAt(picture, layout, layout.bitOf(static_cast<std::size_t>(number)), y);
    };
    const double luma = sample(2 * x + 1);
    const int pair = x / 2 * 4;
    const double cb = sample(pair);
    const double cr = sample(pair + 2);
    if (x % 2 == 0)
        return {luma, cb, cr, 1};
    // The next pair's chroma may be in the next group. It counts only if that group is not in the
    // texture's last column; otherwise the last chroma is repeated.
    const bool last = x % 6 == 5 && x / 6 * 4 + 4 >= picture.width - 1;
    return {luma, last ? cb : (cb + sample(pair + 4)) / 2, last ? cr : (cr + sample(pair + 6)) / 2,
            1};
}

/// 10 bits with alpha, a word a pixel.
Colour Ay10(const TexturePicture& picture, const Layout& layout, int x, int y)
{
    y = std::clamp(y, 0, picture.height - 1);
    const auto column = [&](int k) {
        return static_cast<std::size_t>(std::clamp(x / 2 * 2 + k, 0, picture.width - 1));
    };
    const auto chroma = [&](int k) {
        return sampleAt(picture, layout, layout.bitOf(2 * column(k)), y);
    };
    const double luma = sampleAt(picture, layout, layout.bitOf(2 * column(x % 2) + 1), y);
    const double alpha = sampleAt(picture, layout, layout.bitOfAlpha(column(x % 2)), y);
    if (x % 2 == 0)
        return {luma, chroma(0), chroma(1), alpha};
    return {luma, (chroma(0) + chroma(2)) / 2, (chroma(1) + chroma(3)) / 2, alpha};
}

// --- RGB -----------------------------------------------------------------------------------------

Colour deepRGB(const TexturePicture& picture, const Layout& layout, int x, int y)
{
    Colour colour{0, 0, 0, 1};
    for (std::size_t i = 0; i < 3; ++i) // B, G, R in the layout
        colour[i] =
            sampleAt(picture, layout, layout.bitOf(4 * static_cast<std::size_t>(x) + 2 - i), y);
    // At 12 bits, three of eight pixels take the low bits of red from another place.
    const std::size_t first = layout.bitOf(4 * static_cast<std::size_t>(x) + 2) / 8 * 8;
    const auto byteAt = [&](std::size_t bit) {
        const Layout bytes{layout.code, {8, true}, layout.wordBytes, 8, {0}};
        return 256 * sampleAt(picture, bytes, bit, y);
    };
    if (layout.levels.bits == 12 && (x % 8 == 1 || x % 8 == 3))
        colour[0] = (byteAt(first + 8) * 16 + std::fmod(byteAt(first), 16)) / 4096;
    if (layout.levels.bits == 12 && x % 8 == 5)
        colour[0] = (byteAt(first + 8) * 16 + byteAt(first - 8) / 16) / 4096;
    return colour;
}

/// The pixel at a column and a line, for the formats that the shader unpacks by itself.
Colour unpacked(const TexturePicture& picture, std::uint32_t format, int x, int y)
{
    using namespace KSX::PixelConversion;
    // The engine does not know `R12b`, which has the layout of `R12B`.
    const auto known = format == code("R12b") ? PixelFormat_R12B : static_cast<PixelFormat>(format);
    if (!findPixelFormat(known))
        return {0, 0, 0, 1};
    const Layout& layout = reference::layoutOf(known);
    switch (format) {
    case code("2vuy"):
        return clamped8(picture, x, y);
    case code("v210"):
        return v210(picture, layout, x, y);
    case code("Ay10"):
        return Ay10(picture, layout, x, y);
    default:
        return layout.is422() || layout.levels.bits == 8 ? Colour{0, 0, 0, 1}
                                                         : deepRGB(picture, layout, x, y);
    }
}

} // namespace

Colour throughTable(const float* table, const Colour& pixel)
{
    int first[3];
    double share[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double place = std::clamp(32 * pixel[i], 0.0, 32.0);
        first[i] = std::min(static_cast<int>(place), 31);
        share[i] = place - first[i];
    }
    Colour colour{0, 0, 0, pixel[3]};
    for (int corner = 0; corner < 8; ++corner) {
        double weight = 1;
        int entry = 0;
        for (int i = 2; i >= 0; --i) {
            const int beyond = corner >> i & 1;
            weight *= std::abs(1 - beyond - share[i]);
            entry = 33 * entry + first[i] + beyond;
        }
        for (std::size_t i = 0; i < 3; ++i)
            colour[i] += weight * table[4 * static_cast<std::size_t>(entry) + i];
    }
    return colour;
}

Colour shaderColour(const TexturePicture& picture, std::uint32_t format, const float* table,
                    double frameWidth, double frameHeight, double s, double t)
{
    const double x = (frameWidth - 1) * s;
    const double y = (frameHeight - 1) * t;
    const int column = static_cast<int>(std::floor(x));
    const int line = static_cast<int>(std::floor(y));
    Colour colour{};
    for (int below = 0; below < 2; ++below)
        for (int right = 0; right < 2; ++right) {
            const double weight =
                std::abs(1 - right - (x - column)) * std::abs(1 - below - (y - line));
            const Colour pixel =
                throughTable(table, unpacked(picture, format, column + right, line + below));
            for (std::size_t i = 0; i < 4; ++i)
                colour[i] += weight * pixel[i];
        }
    return colour;
}

Colour sampledColour(const TexturePicture& picture, std::uint32_t format, double s, double t)
{
    const bool alphaFirst = format == kARGB || format == code("vRGB");
    const double x = s * picture.width - 0.5;
    const double y = t * picture.height - 0.5;
    Colour sum{0, 0, 0, 1};
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column) {
            const std::uint8_t* texel = picture.texel(
                std::clamp(static_cast<int>(std::floor(x)) + column, 0, picture.width - 1),
                std::clamp(static_cast<int>(std::floor(y)) + row, 0, picture.height - 1));
            const double weight = std::abs(1 - column - (x - std::floor(x))) *
                                  std::abs(1 - row - (y - std::floor(y)));
            for (std::size_t i = 0; i < 3; ++i) // A R G B or B G R A
                sum[i] += weight * texel[alphaFirst ? i + 1 : 2 - i] / 255.0;
        }
    return sum;
}

} // namespace kestrix::test
