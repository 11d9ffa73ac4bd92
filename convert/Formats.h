/// What the C library says of each pixel format, beside the names and sizes that the engine has.
#pragma once

#include "convert/KestrixPixelConversion.h"

#include "conversion/PixelFormats.h"

#include <cstddef>

namespace kestrix {

struct FormatFacts {
    KSX::PixelConversion::PixelFormat code;
    kestrix_components components;
    unsigned depth;
    kestrix_range range;
    kestrix_range alphaRange;
    unsigned
        step; ///< A multiple of the pixels that the engine's stages of the format take at a time.
    const char* words;
};

/// A format of the engine's list with its facts.
struct Format {
    const KSX::PixelConversion::PixelFormatInfo& info;
    const FormatFacts& facts;

    bool is422() const { return facts.components <= KESTRIX_COMPONENTS_YCBCRA; }
    /// Bytes in front of pixel `x`, which is the first of a group.
    std::size_t bytesBefore(unsigned x) const
    {
        return std::size_t{x} / info.groupPixels * info.groupBytes;
    }
    std::size_t rowBytes(unsigned width) const
    {
        return KSX::PixelConversion::rowBytes(info, width);
    }
};

/// The format of a row of `kPixelFormats`.
Format formatAt(std::size_t index);

/// What the C interface tells of a format.
kestrix_format_info tell(const Format& format);

} // namespace kestrix
