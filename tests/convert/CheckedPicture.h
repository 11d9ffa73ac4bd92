/// Pictures for the C library, between pages that can't be touched, and what rows become.
#pragma once

#include "convert/KestrixPixelConversion.h"
#include "tests/common/AllConversions.h"
#include "tests/common/GuardedBytes.h"
#include "tests/common/Random.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrix::test {

/// How the rows of a picture lie.
struct Placing {
    std::size_t padding = 0;
    bool bottomUp = false;
    bool atEnd = true; ///< The buffer ends at a protected page, or else begins at one.
};

inline Placing anyPlacing(Random& random)
{
    return {random.upTo(2) == 0 ? 0 : random.upTo(40), random.upTo(1) == 1, random.upTo(1) == 1};
}

/// A picture whose buffer has no byte more than it needs.
class CheckedPicture {
public:
    CheckedPicture(const KSX::PixelConversion::PixelFormatInfo& format, std::uint32_t colorspace,
                   unsigned width, unsigned height, Placing placing)
        : m_rowBytes(rowBytes(format, width)),
          m_distance(m_rowBytes + placing.padding),
          m_memory((needed(height) + 4095) / 4096 * 4096),
          m_picture{sizeof(m_picture),
                    format.code,
                    colorspace,
                    width,
                    height,
                    static_cast<std::ptrdiff_t>(m_distance) * (placing.bottomUp ? -1 : 1),
                    placing.atEnd ? m_memory.end() - needed(height) : m_memory.begin(),
                    needed(height)}
    {
    }

    const kestrix_picture& description() const { return m_picture; }
    kestrix_picture& description() { return m_picture; }

    std::span<std::uint8_t> buffer()
    {
        return {static_cast<std::uint8_t*>(m_picture.bytes), m_picture.size};
    }

    std::span<std::uint8_t> row(unsigned y)
    {
        const unsigned fromLowest = m_picture.row_bytes < 0 ? m_picture.height - 1 - y : y;
        return buffer().subspan(fromLowest * m_distance, m_rowBytes);
    }

private:
    std::size_t needed(unsigned height) const { return (height - 1) * m_distance + m_rowBytes; }

    std::size_t m_rowBytes;
    std::size_t m_distance;
    GuardedBytes m_memory;
    kestrix_picture m_picture;
};

/// What a row becomes, for any width: the scalar reference converts a row that goes on to the
/// right, so that the row's end is an inside to it.
class RowModel {
public:
    explicit RowModel(const Conversion& conversion)
        : m_src(reference::layoutOf(conversion.entry.srcFormat)),
          m_dst(reference::layoutOf(conversion.entry.dstFormat)),
          m_srcInfo(conversion.src()),
          m_dstInfo(conversion.dst()),
          m_reference(reference::rowConversion(conversion.entry))
    {
    }

    std::vector<std::uint8_t> convert(std::span<const std::uint8_t> src, unsigned width,
                                      unsigned height) const
    {
        // A multiple of every block, and of two of them at least.
        const unsigned total = (width / 96 + 2) * 96;
        std::vector<std::uint8_t> row(rowBytes(m_srcInfo, total) + 16);
        std::ranges::copy(src, row.begin());
        goOn(row.data(), width, total);
        auto [layout, bytes, undefined] = m_reference.convert(row.data(), total, height);
        bytes.resize(rowBytes(m_dstInfo, width));
        undefined.resize(bytes.size());
        if (std::ranges::any_of(undefined, [](auto bits) { return bits != 0; }))
            throw "the reference does not know the inside of a row";
        if (m_dstInfo.groupPixels != 1)
            clearAfter(bytes, width);
        return bytes;
    }

private:
    /// Copies the last pixel to all after it; in 4:2:2, to those that lack a sample.
    void goOn(std::uint8_t* row, unsigned width, unsigned total) const
    {
        const auto copy = [&](std::size_t from, std::size_t to) {
            m_src.write(row, m_src.bitOf(to), m_src.read(row, m_src.bitOf(from)));
        };
        const std::size_t last = width - 1;
        if (!m_src.is422()) {
            for (std::size_t x = width; x < total; ++x)
                for (std::size_t i = 0; i < 4; ++i)
                    if (m_src.at[i] >= 0)
                        copy(4 * last + i, 4 * x + i);
            return;
        }
        const std::size_t cb = last / 2 * 4;
        const bool lacksCr = width % 2 != 0 && m_srcInfo.groupPixels == 1;
        if (lacksCr && width == 1)
            m_src.write(row, m_src.bitOf(cb + 2), (m_src.maximum() + 1) / 2);
        else if (lacksCr)
            copy(cb - 2, cb + 2);
        for (std::size_t x = width; x < total; ++x) {
            copy(2 * last + 1, 2 * x + 1);
            if (x / 2 != last / 2)
                copy(x % 2 == 0 ? cb : cb + 2, 2 * x);
            if (m_src.alphaAt >= 0)
                m_src.write(row, m_src.bitOfAlpha(x), m_src.read(row, m_src.bitOfAlpha(last)));
        }
    }

    void clearAfter(std::vector<std::uint8_t>& row, unsigned width) const
    {
        const unsigned end =
            (width + m_dstInfo.groupPixels - 1) / m_dstInfo.groupPixels * m_dstInfo.groupPixels;
        const auto clear = [&](std::size_t bit) { m_dst.write(row.data(), bit, 0); };
        for (std::size_t x = width; x < end; ++x) {
            for (std::size_t i = 0; i < 4 && !m_dst.is422(); ++i)
                if (m_dst.at[i] >= 0)
                    clear(m_dst.bitOf(4 * x + i));
            if (!m_dst.is422())
                continue;
            clear(m_dst.bitOf(2 * x + 1));
            const bool crOfLast = x == width && width % 2 != 0;
            if (!crOfLast)
                clear(m_dst.bitOf(2 * x));
            if (m_dst.alphaAt >= 0)
                clear(m_dst.bitOfAlpha(x));
        }
    }

    const reference::Layout& m_src;
    const reference::Layout& m_dst;
    const KSX::PixelConversion::PixelFormatInfo& m_srcInfo;
    const KSX::PixelConversion::PixelFormatInfo& m_dstInfo;
    reference::RowConversion m_reference;
};

} // namespace kestrix::test
