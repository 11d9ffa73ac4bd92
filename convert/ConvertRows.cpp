/// Shares rows between the engine, which works in place, and pieces in scratch memory.
#include "convert/ConvertRows.h"

#include "conversion/pipeline/By601Lines.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace kestrix {

namespace {

/// Bytes of scratch memory for the pieces of one picture. At least one piece fits: three of the
/// longest blocks, 96 pixels, in 8 bytes a pixel.
constexpr std::size_t kScratchBytes = 8192;
static_assert(kScratchBytes >= std::size_t{3} * 96 * 8);

/// The engine takes distances between rows of 32 bits.
bool fitsEngine(std::ptrdiff_t step)
{
    return step >= std::numeric_limits<int>::min() && step <= std::numeric_limits<int>::max();
}

} // namespace

RowConverter::RowConverter(const Conversion& conversion, unsigned width)
    : m_conversion(conversion),
      m_width(width),
      m_lastGroup(conversion.dst, width),
      m_direct(width)
{
    if (conversion.copies())
        return;
    const unsigned block = conversion.block();
    const bool undefinedEnd =
        conversion.rebuildsChroma() || (conversion.dst.is422() && width % 2 != 0);
    if (width >= conversion.leastWidth() && (width % block == 0 || !undefinedEnd))
        return;

    // The piece has the last whole block of the row, because a change at the end of the row has an
    // effect there. If a chroma filter looks back, it has the block before that one too.
    const unsigned blocks = width / block;
    m_total = std::max(2u, (width + block - 1) / block) * block;
    m_direct = blocks < 2 ? 0 : blocks * block;
    m_keep = blocks < 2 ? 0 : m_direct - block;
    m_piece = m_keep < block || !conversion.filtersChroma() ? m_keep : m_keep - block;
}

void RowConverter::convert(const Rows& src, const Rows& dst, unsigned first, unsigned end) const
{
    if (m_conversion.copies())
        copy(src, dst, first, end);
    else if (m_total != 0)
        convertEnds(src, dst, first, end);
    else
        callEngine(m_width, {src.at(first), src.step}, {dst.at(first), dst.step}, end - first);

    if (m_width % m_conversion.dst.info.groupPixels != 0)
        for (unsigned row = first; row < end; ++row)
            m_lastGroup.clearRest(dst.at(row));
}

void RowConverter::copy(const Rows& src, const Rows& dst, unsigned first, unsigned end) const
{
    const std::size_t bytes = m_conversion.dst.rowBytes(m_width);
    for (unsigned row = first; row < end; ++row)
        if (dst.at(row) != src.at(row))
            std::memcpy(dst.at(row), src.at(row), bytes);
}

void RowConverter::convertEnds(const Rows& src, const Rows& dst, unsigned first, unsigned end) const
{
    const Format& from = m_conversion.src;
    const Format& to = m_conversion.dst;
    const std::size_t srcBegin = from.bytesBefore(m_piece);
    const std::size_t srcBytes = from.rowBytes(m_width) - srcBegin;
    const std::size_t dstBegin = to.bytesBefore(m_keep);
    const std::size_t dstBytes = to.rowBytes(m_width) - dstBegin;
    const unsigned pieceWidth = m_total - m_piece;
    const std::size_t srcStep = from.rowBytes(pieceWidth);
    const std::size_t dstStep = to.rowBytes(pieceWidth);
    const auto most = static_cast<unsigned>(kScratchBytes / std::max(srcStep, dstStep));

    alignas(16) std::byte srcScratch[kScratchBytes];
    alignas(16) std::byte dstScratch[kScratchBytes];
    const Rows srcPieces{srcScratch, static_cast<std::ptrdiff_t>(srcStep)};
    const Rows dstPieces{dstScratch, static_cast<std::ptrdiff_t>(dstStep)};
    for (unsigned row = first; row < end; row += most) {
        const unsigned rows = std::min(most, end - row);
        // In place, the engine overwrites what the pieces begin with.
        for (unsigned i = 0; i < rows; ++i) {
            std::memcpy(srcPieces.at(i), src.at(row + i) + srcBegin, srcBytes);
            extendRow(from, srcPieces.at(i), m_width - m_piece, pieceWidth);
        }
        if (m_direct != 0)
            callEngine(m_direct, {src.at(row), src.step}, {dst.at(row), dst.step}, rows);
        callEngine(pieceWidth, srcPieces, dstPieces, rows);
        for (unsigned i = 0; i < rows; ++i)
            std::memcpy(dst.at(row + i) + dstBegin,
                        dstPieces.at(i) + to.bytesBefore(m_keep - m_piece), dstBytes);
    }
}

void RowConverter::callEngine(unsigned width, const Rows& src, const Rows& dst, unsigned rows) const
{
    using KSX::PixelConversion::kPALHeight;
    unsigned most = rows;
    if (!fitsEngine(src.step) || !fitsEngine(dst.step))
        most = 1;
    else if (m_conversion.lines == 525)
        most = kPALHeight - 1;
    for (unsigned row = 0; row < rows; row += most)
        m_conversion.function(width, std::min(most, rows - row), dst.at(row),
                              static_cast<unsigned>(dst.step), src.at(row),
                              static_cast<unsigned>(src.step));
}

} // namespace kestrix
