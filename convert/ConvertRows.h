/// Converts rows of pictures that have been checked.
#pragma once

#include "convert/Conversions.h"
#include "convert/Pictures.h"
#include "convert/RowEnds.h"

#include <cstddef>

namespace kestrix {

/// A conversion of rows of one width.
///
/// The engine reads and writes the pictures where they are, as far as it can: whole rows, or the
/// whole blocks of a row. If the end of a row has no defined value in the engine, or the engine
/// reads bytes after a row, or the row is too narrow, a piece with the end of the row goes through
/// scratch memory. There the row goes on to a whole number of blocks.
class RowConverter {
public:
    RowConverter(const Conversion& conversion, unsigned width);

    /// Converts the rows `first` to `end` - 1. Several threads may do so for different rows.
    void convert(const Rows& src, const Rows& dst, unsigned first, unsigned end) const;

private:
    void copy(const Rows& src, const Rows& dst, unsigned first, unsigned end) const;
    void convertEnds(const Rows& src, const Rows& dst, unsigned first, unsigned end) const;
    void callEngine(unsigned width, const Rows& src, const Rows& dst, unsigned rows) const;

    const Conversion m_conversion;
    const unsigned m_width;
    const LastGroup m_lastGroup;
    unsigned m_direct;    ///< Pixels from the left that are converted where they are.
    unsigned m_piece = 0; ///< First pixel of the piece that goes through scratch memory.
    unsigned m_keep = 0;  ///< First pixel that is taken from the piece.
    unsigned m_total = 0; ///< Pixels of a row that goes on to whole blocks; 0 if there is no piece.
};

} // namespace kestrix
