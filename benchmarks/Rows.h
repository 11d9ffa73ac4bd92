/// The names and sizes of the table's rows in the benchmarks.
#pragma once

#include "conversion/KSXPixelConversion.h"
#include "conversion/PixelFormats.h"

#include <cstddef>
#include <string>

namespace kestrix::bench {

/// Pixels a row, and the number of rows.
struct Size {
    unsigned width;
    unsigned height;

    std::size_t pixels() const { return std::size_t{width} * height; }
};

inline std::size_t rowBytes(KSX::PixelConversion::PixelFormat format, unsigned width)
{
    return KSX::PixelConversion::rowBytes(*KSX::PixelConversion::findPixelFormat(format), width);
}

/// For example "2vuy:709/BGRA:709".
inline std::string shortName(unsigned index)
{
    const auto end = [](KSX::PixelConversion::PixelFormat format,
                        KSX::PixelConversion::Colorspace colorspace) {
        const std::string suffix = KSX::PixelConversion::colorspaceName(colorspace);
        return KSX::PixelConversion::findPixelFormat(format)->name +
               (suffix.empty() ? "" : ":" + suffix);
    };
    const auto& row = KSX::PixelConversion::conversions[index];
    return end(row.srcFormat, row.srcColorspace) + "/" + end(row.dstFormat, row.dstColorspace);
}

/// For example "row17/2vuy:709/BGRA:709".
inline std::string rowName(unsigned index)
{
    return "row" + std::to_string(index) + "/" + shortName(index);
}

} // namespace kestrix::bench
