/// The right ends of rows: how a row goes on after its last pixel, and which bits of its last group
/// belong to no pixel.
#pragma once

#include "convert/Formats.h"

#include <cstddef>

namespace kestrix {

/// Gives a row of `pixels` pixels more of them, up to `total`, in memory that has room for those.
/// The new pixels have the last Y, or the last colour, the last alpha, and the last Cb and Cr. If
/// the row has no Cr for its last Cb, it gets the Cr before, or that of grey.
void extendRow(const Format& format, std::byte* row, unsigned pixels, unsigned total);

/// The bits of the last group of a row that belong to its pixels.
class LastGroup {
public:
    /// For rows of `width` pixels. If they end with a group, there is nothing to clear.
    LastGroup(const Format& format, unsigned width);

    /// Sets the other bits of a row to 0.
    void clearRest(std::byte* row) const;

private:
    static constexpr std::size_t kMostBytes = 36;

    std::size_t m_first = 0; ///< Bytes in front of the group.
    std::size_t m_bytes = 0; ///< Bytes of the group, 0 if there is nothing to clear.
    std::byte m_keep[kMostBytes];
};

} // namespace kestrix
