/// The pixel formats that the fragment shader of the OpenGL 3 helper knows.
#pragma once

#include "conversion/KSXPixelConversion.h"
#include "preview/ScreenPreviewLut.h"

#include <GL/gl.h>

#include <cstdint>

/// A format of the shader's switch.
struct ShaderFormat {
    /// The code that a frame returns: a FourCC, or 32.
    std::uint32_t code;
    /// How a word of the frame becomes a texel, always as `GL_BGRA`. Bytes 0, 1, 2, 3 become b, g,
    /// r, a with `GL_UNSIGNED_INT_8_8_8_8_REV`, and a, r, g, b with `GL_UNSIGNED_INT_8_8_8_8`.
    GLenum texelType;
    /// What the shader unpacks.
    LutInput input;
};

// clang-format off
inline constexpr ShaderFormat kShaderFormats[] = {
    {KSX::PixelConversion::PixelFormat_2vuy, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::YCbCr},
    {KSX::PixelConversion::PixelFormat_v210, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::YCbCr},
    {KSX::PixelConversion::PixelFormat_Ay10, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::YCbCr},

    {KSX::PixelConversion::PixelFormat_ARGB, GL_UNSIGNED_INT_8_8_8_8,     LutInput::FullRGB},
    {KSX::PixelConversion::PixelFormat_vRGB, GL_UNSIGNED_INT_8_8_8_8,     LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::FullRGB},
    {KSX::PixelConversion::PixelFormat_BGRv, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::StudioRGB},

    {KSX::PixelConversion::PixelFormat_r210, GL_UNSIGNED_INT_8_8_8_8,     LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_R10l, GL_UNSIGNED_INT_8_8_8_8,     LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_R10L, GL_UNSIGNED_INT_8_8_8_8,     LutInput::FullRGB},
    {KSX::PixelConversion::PixelFormat_R10b, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_R10B, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::FullRGB},

    // not among the engine's formats
    {KSX::PixelConversion::fourCC("R12b"),   GL_UNSIGNED_INT_8_8_8_8,     LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_R12B, GL_UNSIGNED_INT_8_8_8_8,     LutInput::FullRGB},
    {KSX::PixelConversion::PixelFormat_R12l, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::StudioRGB},
    {KSX::PixelConversion::PixelFormat_R12L, GL_UNSIGNED_INT_8_8_8_8_REV, LutInput::FullRGB},
};
// clang-format on

/// The row of `code` in the list, or null if the shader does not know the format and shows black.
constexpr const ShaderFormat* findShaderFormat(std::uint32_t code)
{
    for (const ShaderFormat& format : kShaderFormats)
        if (format.code == code)
            return &format;
    return nullptr;
}
