/// One function a format, for the pixel at a column and a line.
#include "tests/preview/ShaderModel.h"

#include "tests/common/PreviewFixture.h"

#include <algorithm>
#include <cmath>

namespace kestrix::test {
namespace {

/// What a driver gives for a texel that is not there. It must not show.
constexpr std::uint32_t kOutside = 0;

bool inside(const TexturePicture& picture, int x, int y)
{
    return x >= 0 && y >= 0 && x < picture.width && y < picture.height;
}

std::uint32_t littleEndian(const TexturePicture& picture, int x, int y)
{
    if (!inside(picture, x, y))
        return kOutside;
    const std::uint8_t* b = picture.texel(x, y);
    return static_cast<std::uint32_t>(b[3]) << 24 | b[2] << 16 | b[1] << 8 | b[0];
}

std::uint32_t bigEndian(const TexturePicture& picture, int x, int y)
{
    return __builtin_bswap32(littleEndian(picture, x, y));
}

/// A sample of ten bits from bit `low` of a word on. Bits of the lowest sample's byte that lie
/// below the sample count as its fraction.
double tenBits(std::uint32_t word, int low)
{
    const int fraction = low % 8;
    return static_cast<double>(word >> (low - fraction) & ((1u << (10 + fraction)) - 1)) /
           (1 << fraction);
}

// --- YCbCr 4:2:2 ---------------------------------------------------------------------------------

/// A line's pixel whose chroma is its own in even columns and the mean of its neighbours' in odd
/// ones.
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

/// Groups of 6 pixels in 12 samples, 3 to a word, Cb Y Cr Y and so on.
Colour v210(const TexturePicture& picture, int x, int y)
{
    const int group = x / 6;
    const int inGroup = x % 6;
    const auto sample = [&](int number) {
        const std::uint32_t word = littleEndian(picture, group * 4 + number / 3, y);
        return tenBits(word, number % 3 * 10) / 1024;
    };
    const double luma = sample(2 * inGroup + 1);
    const int pair = inGroup / 2 * 4;
    const double cb = sample(pair);
    const double cr = sample(pair + 2);
    if (inGroup % 2 == 0)
        return {luma, cb, cr, 1};
    // The next pair's chroma may be the next group's, which counts only where it is not in the
    // texture's last column; else the last chroma is repeated.
    const bool last = inGroup == 5 && group * 4 + 4 >= picture.width - 1;
    const double nextCb = last ? cb : sample(pair + 4);
    const double nextCr = last ? cr : sample(pair + 6);
    return {luma, (cb + nextCb) / 2, (cr + nextCr) / 2, 1};
}

/// A word a pixel: alpha, chroma, luma from the top; chroma is Cb in even columns and Cr in odd
/// ones.
Colour Ay10(const TexturePicture& picture, int x, int y)
{
    const int even = x / 2 * 2;
    const auto word = [&](int k) {
        return bigEndian(picture, std::clamp(even + k, 0, picture.width - 1),
                         std::clamp(y, 0, picture.height - 1));
    };
    const auto chroma = [&](int k) { return tenBits(word(k), 10) / 1024; };
    const std::uint32_t own = word(x % 2);
    const double luma = tenBits(own, 0) / 1024;
    const double alpha = tenBits(own, 20) / 1024;
    if (x % 2 == 0)
        return {luma, chroma(0), chroma(1), alpha};
    return {luma, (chroma(0) + chroma(2)) / 2, (chroma(1) + chroma(3)) / 2, alpha};
}

// --- RGB -----------------------------------------------------------------------------------------

/// Ten bits each from the word's bit `low` on: blue, green, red.
Colour tenBitRGB(std::uint32_t word, int low)
{
    return {tenBits(word, low + 20) / 1024, tenBits(word, low + 10) / 1024,
            tenBits(word, low) / 1024, 1};
}

/// Samples of 12 bits in a stream of bytes, low bits first; 8 pixels in 36 bytes.
Colour twelveBitRGB(const TexturePicture& picture, bool bigEndianWords, int x, int y)
{
    const int start = x / 8 * 36;
    const auto byteAt = [&](int offset) -> double {
        const int position = start + offset;
        const int texel = position / 4;
        const std::uint32_t word =
            bigEndianWords ? bigEndian(picture, texel, y) : littleEndian(picture, texel, y);
        return word >> position % 4 * 8 & 0xff;
    };
    Colour colour{0, 0, 0, 1};
    for (int component = 0; component < 3; ++component) {
        const int sample = x % 8 * 3 + component;
        const int first = sample * 3 / 2;
        const bool inLowBits = sample % 2 == 0;
        double value = inLowBits ? byteAt(first) + std::fmod(byteAt(first + 1), 16) * 256
                                 : byteAt(first + 1) * 16 + byteAt(first) / 16;
        // Red has its low end from elsewhere in three of the eight pixels.
        if (component == 0 && (x % 8 == 1 || x % 8 == 3))
            value = byteAt(first + 1) * 16 + std::fmod(byteAt(first), 16);
        if (component == 0 && x % 8 == 5)
            value = byteAt(first + 1) * 16 + byteAt(first - 1) / 16;
        colour[static_cast<std::size_t>(component)] = value / 4096;
    }
    return colour;
}

/// The pixel at a column and a line, for the formats that the shader unpacks by itself.
Colour unpacked(const TexturePicture& picture, std::uint32_t format, int x, int y)
{
    switch (format) {
    case code("2vuy"):
        return clamped8(picture, x, y);
    case code("v210"):
        return v210(picture, x, y);
    case code("Ay10"):
        return Ay10(picture, x, y);
    case code("r210"):
        return tenBitRGB(bigEndian(picture, x, y), 0);
    case code("R10l"):
    case code("R10L"):
        return tenBitRGB(littleEndian(picture, x, y), 2);
    case code("R10b"):
    case code("R10B"):
        return tenBitRGB(bigEndian(picture, x, y), 2);
    case code("R12b"):
    case code("R12B"):
        return twelveBitRGB(picture, true, x, y);
    case code("R12l"):
    case code("R12L"):
        return twelveBitRGB(picture, false, x, y);
    default:
        return {0, 0, 0, 1};
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
