/// What each conversion does to a row, one plain loop a family.
#pragma once

#include "tests/reference/RGB8.h"

#include "conversion/KSXPixelConversion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

namespace kestrix::test::reference {

using RowConversion =
    std::function<void(const std::uint8_t* src, std::uint8_t* dst, unsigned width)>;

/// The conversion that a row of the table stands for, or nothing where there is no reference.
inline RowConversion rowConversion(const KSX::PixelConversion::ConversionEntry& entry)
{
    using namespace KSX::PixelConversion;
    const PixelFormat src = entry.srcFormat;
    const PixelFormat dst = entry.dstFormat;
    if (entry.srcColorspace != entry.dstColorspace)
        return {};

    const std::string_view from = componentOrder(src);
    const std::string_view to = componentOrder(dst);
    if (!from.empty() && !to.empty()) {
        const bool swapsBytes = (src == PixelFormat_ARGB && dst == PixelFormat_BGRA) ||
                                (src == PixelFormat_BGRA && dst == PixelFormat_ARGB);
        return [=](const std::uint8_t* in, std::uint8_t* out, unsigned width) {
            reorder(from, to, swapsBytes, in, out, width);
        };
    }
    if ((src == PixelFormat_v212 && dst == PixelFormat_v216) ||
        (src == PixelFormat_v216 && dst == PixelFormat_v212))
        return [](const std::uint8_t* in, std::uint8_t* out, unsigned width) {
            std::memcpy(out, in, std::size_t{4} * width);
        };
    return {};
}

} // namespace kestrix::test::reference
