/// The fragment shader's colours, worked out from the bytes of a frame.
///
/// Where the shader does arithmetic on the four channels of a texel, this takes a line as a stream
/// of bits. What it has of the shader's own is what shows: the scale of a sample is a power of two,
/// the bits below a sample stay as its fraction, and the places where the shader is irregular.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace kestrix::test {

using Colour = std::array<double, 4>;

/// A frame's lines as they lie in the texture, four bytes a texel.
struct TexturePicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    const std::uint8_t* texel(int x, int y) const
    {
        return &bytes[static_cast<std::size_t>(y * width + x) * 4];
    }
};

/// `pixel` through a colour table of 33 points a side, R, G, B, A an entry: linear between the
/// eight points around it. Alpha stays the pixel's.
Colour throughTable(const float* table, const Colour& pixel);

/// The colour at a place of the texture for a frame of `format`, behind a colour table.
/// `frameWidth` and `frameHeight` are what the shader is told of the picture's size; `s` and `t`
/// run from 0 to 1 over it, `t` from the first line. Formats of 8-bit RGB are not taken.
Colour shaderColour(const TexturePicture& picture, std::uint32_t format, const float* table,
                    double frameWidth, double frameHeight, double s, double t);

/// The same for the formats of 8-bit RGB, before the table: the sampler has interpolated already.
Colour sampledColour(const TexturePicture& picture, std::uint32_t format, double s, double t);

} // namespace kestrix::test
