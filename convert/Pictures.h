/// The two pictures of a conversion, checked.
#pragma once

#include "convert/Conversions.h"
#include "convert/KestrixPixelConversion.h"
#include "convert/Words.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace kestrix {

/// The engine computes with these types.
constexpr std::size_t kMostRowBytes = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t kMostRows = std::numeric_limits<std::int32_t>::max();

/// The rows of a picture in memory.
struct Rows {
    std::byte* top;
    std::ptrdiff_t step;

    std::byte* at(unsigned row) const { return top + static_cast<std::ptrdiff_t>(row) * step; }
};

/// Pictures that a conversion may read and write.
struct Pictures {
    unsigned row; ///< of the table
    unsigned width;
    unsigned height;
    Rows src;
    Rows dst;
};

/// Checks what callers gave. On KESTRIX_OK `pictures` is set, and any part of it can be converted.
kestrix_status checkPictures(const kestrix_picture* src, const kestrix_picture* dst,
                             std::uint32_t flags, Pictures& pictures, const Words& words);

} // namespace kestrix
