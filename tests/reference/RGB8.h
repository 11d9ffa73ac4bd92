/// The 8-bit RGB formats a pixel at a time: where components lie, and what becomes of alpha.
#pragma once

#include "conversion/KSXPixelConversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrix::test::reference {

/// The components of a pixel in the order of its bytes; empty where the format is not 8-bit RGB.
constexpr std::string_view componentOrder(KSX::PixelConversion::PixelFormat format)
{
    switch (format) {
    case KSX::PixelConversion::PixelFormat_ARGB:
    case KSX::PixelConversion::PixelFormat_vRGB:
        return "ARGB";
    case KSX::PixelConversion::PixelFormat_BGRA:
    case KSX::PixelConversion::PixelFormat_BGRv:
        return "BGRA";
    case KSX::PixelConversion::PixelFormat_RGBA:
        return "RGBA";
    case KSX::PixelConversion::PixelFormat_RGB3:
        return "RGB";
    default:
        return {};
    }
}

constexpr bool isStudioRange(KSX::PixelConversion::PixelFormat format)
{
    return format == KSX::PixelConversion::PixelFormat_vRGB ||
           format == KSX::PixelConversion::PixelFormat_BGRv;
}

/// A 16-bit lane, read as signed, as a byte.
constexpr std::uint8_t saturated(std::uint16_t lane)
{
    return static_cast<std::uint8_t>(std::clamp<int>(static_cast<std::int16_t>(lane), 0, 255));
}

/// Moves the components of `pixels` pixels to another order. Alpha is opaque unless it `survives`.
inline void reorder(std::string_view from, std::string_view to, bool survives,
                    const std::uint8_t* src, std::uint8_t* dst, std::size_t pixels)
{
    for (std::size_t x = 0; x < pixels; ++x)
        for (std::size_t i = 0; i < to.size(); ++i)
            dst[x * to.size() + i] =
                to[i] == 'A' && !survives ? 255 : src[x * from.size() + from.find(to[i])];
}

} // namespace kestrix::test::reference
