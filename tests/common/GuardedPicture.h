/// A picture in memory that shows each byte that is written outside its rows.
#pragma once

#include "tests/common/GuardedBytes.h"

#include <cstddef>
#include <cstdint>
#include <span>

#include <gtest/gtest.h>

namespace kestrix::test {

/// Where the rows of a picture lie. There are `padding` bytes between rows, and `slack` bytes from
/// the end of the last row in memory to the page that can't be read or written.
struct PictureLayout {
    std::size_t padding = 0;
    bool bottomUp = false;
    std::size_t slack = 0;
};

/// Rows of exact size. There are guard bytes before, between and after them, and then a page that
/// can't be read. If the padding is odd, rows have every alignment.
class GuardedPicture {
public:
    GuardedPicture(unsigned height, std::size_t rowBytes, PictureLayout layout = {})
        : m_height(height),
          m_rowBytes(rowBytes),
          m_layout(layout),
          m_memory(kLead + height * rowBytes + (height > 1 ? (height - 1) * layout.padding : 0) +
                   layout.slack)
    {
        for (std::uint8_t* byte = m_memory.begin(); byte != m_memory.end(); ++byte)
            *byte = guardAt(byte);
    }

    unsigned height() const { return m_height; }
    std::uint8_t* top() { return rowAt(0); }

    /// The distance from a row to the one below, as the engine's entries take it.
    unsigned rowStep() const
    {
        const auto step = static_cast<unsigned>(m_rowBytes + m_layout.padding);
        return m_layout.bottomUp ? 0 - step : step;
    }

    std::span<std::uint8_t> row(unsigned y) { return {rowAt(y), m_rowBytes}; }

    /// Fails with the place of the first guard byte that has changed.
    testing::AssertionResult guardsIntact()
    {
        const std::size_t step = m_rowBytes + m_layout.padding;
        const std::uint8_t* const rows = m_memory.begin() + kLead;
        for (const std::uint8_t* byte = m_memory.begin(); byte != m_memory.end(); ++byte) {
            const std::ptrdiff_t offset = byte - rows;
            const bool inRows = offset >= 0 && step != 0 &&
                                static_cast<std::size_t>(offset) / step < m_height &&
                                static_cast<std::size_t>(offset) % step < m_rowBytes;
            if (!inRows && *byte != guardAt(byte))
                return testing::AssertionFailure()
                       << "guard byte at " << offset << " from the lowest row was written; rows of "
                       << m_rowBytes << " bytes, " << step << " apart";
        }
        return testing::AssertionSuccess();
    }

private:
    static constexpr std::size_t kLead = 64;

    static std::uint8_t guardAt(const std::uint8_t* byte)
    {
        return static_cast<std::uint8_t>(0xA5 ^ reinterpret_cast<std::uintptr_t>(byte) * 29);
    }

    std::uint8_t* rowAt(unsigned y)
    {
        const unsigned fromLowest = m_layout.bottomUp && m_height != 0 ? m_height - 1 - y : y;
        return m_memory.begin() + kLead + fromLowest * (m_rowBytes + m_layout.padding);
    }

    unsigned m_height;
    std::size_t m_rowBytes;
    PictureLayout m_layout;
    GuardedBytes m_memory;
};

/// Compares rows of pixels of `pixelBytes` bytes. A failure names the row, the pixel, the byte in
/// it, both values and the seed of the input.
inline testing::AssertionResult sameBytes(std::span<const std::uint8_t> expected,
                                          std::span<const std::uint8_t> got, std::size_t pixelBytes,
                                          unsigned row, std::uint64_t seed)
{
    if (expected.size() != got.size())
        return testing::AssertionFailure()
               << "row " << row << ": " << expected.size() << " bytes expected, got " << got.size();
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (expected[i] != got[i])
            return testing::AssertionFailure()
                   << "row " << row << ", pixel " << i / pixelBytes << ", byte " << i % pixelBytes
                   << ": expected " << +expected[i] << ", got " << +got[i] << "; seed " << seed;
    return testing::AssertionSuccess();
}

} // namespace kestrix::test
