/// The fragment shader's colours, worked out from the bytes of a frame.
///
/// The shader does arithmetic on the four channels of a texel; this model reads a line as a stream
/// of bits. It has in common with the shader only what shows: the scale of a sample is a power of
/// two, the bits below a sample stay as its fraction, and some places are irregular.
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

/// `pixel` through a colour table of 33 points a side, with R, G, B, A in an entry. Linear between
/// the eight points around it. Alpha stays that of the pixel.
Colour throughTable(const float* table, const Colour& pixel);

/// The colour at a place of the texture for a frame of `format`, after a colour table. `frameWidth`
/// and `frameHeight` are the picture's size as the shader gets it; `s` and `t` run from 0 to 1 over
/// it, `t` from the first line. Not for formats of 8-bit RGB.
Colour shaderColour(const TexturePicture& picture, std::uint32_t format, const float* table,
                    double frameWidth, double frameHeight, double s, double t);

/// The same for formats of 8-bit RGB, but before the table: the sampler interpolates before it.
Colour sampledColour(const TexturePicture& picture, std::uint32_t format, double s, double t);

} // namespace kestrix::test
