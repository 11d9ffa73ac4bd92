/// The rows of the table as the C library sees them: how to find one, why there is none, and what
/// it asks of the pictures.
#pragma once

#include "convert/Formats.h"
#include "convert/KestrixPixelConversion.h"
#include "convert/Words.h"

#include "conversion/KSXPixelConversion.h"

#include <cstddef>
#include <cstdint>

namespace kestrix {

/// A row of the table for pictures of one height.
struct Conversion {
    unsigned row;
    const KSX::PixelConversion::ConversionEntry& entry;
    Format src;
    Format dst;
    unsigned lines; ///< 625 or 525, or 0 if the conversion is the same for both.
    /// The conversion at the height of the picture, also for fewer rows of it. If `lines` is 525,
    /// it must not be called for exactly as many rows as a picture of 625 lines has.
    KSX::PixelConversion::ConversionFunction function;

    bool copies() const;
    /// The conversion goes from 4:2:2 through RGB, for which it rebuilds chroma between pairs.
    bool rebuildsChroma() const;
    /// The conversion goes from RGB to 4:2:2, for which it filters chroma.
    bool filtersChroma() const;
    /// A multiple of the pixels that the engine converts at a time.
    unsigned block() const;
    /// The narrowest row that the engine takes.
    unsigned leastWidth() const;
};

/// Row `row` of the table for pictures of `height` rows.
Conversion conversionAt(unsigned row, std::uint32_t height);

/// Finds a conversion as `GetConversionFunction` does. Returns its row, or says why there is none.
kestrix_status findRow(std::uint32_t srcFormat, std::uint32_t srcColorspace,
                       std::uint32_t dstFormat, std::uint32_t dstColorspace, unsigned& row,
                       const Words& words);

/// What the C interface tells of a conversion.
kestrix_conversion tell(const Conversion& conversion);

} // namespace kestrix
