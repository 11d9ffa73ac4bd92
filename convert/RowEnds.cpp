/// Reads and writes single samples at the right ends of rows.
#include "convert/RowEnds.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kestrix {

namespace {

using namespace KSX::PixelConversion;

/// Where the samples of a row lie. A row is a stream of bits, from the lowest bit of its first word
/// upward. Every `unitBits` bits hold a sample of `bits` bits at each place in `at`. 4:2:2 has the
/// samples Cb Y Cr Y of each pair in this order. 12-bit RGB has one sample of 36 bits a pixel.
struct SampleLayout {
    unsigned bits;
    unsigned wordBytes; ///< of big-endian words; 1 in a little-endian format
    unsigned unitBits;
    unsigned samples; ///< of a unit
    unsigned at[3];
    unsigned alphaAt = 0; ///< of 4:2:2 with alpha, in a unit a pixel

    std::size_t bitOf(std::size_t sample) const
    {
        return sample / samples * unitBits + at[sample % samples];
    }
};

SampleLayout layoutOf(const Format& format)
{
    switch (format.info.code) {
    case PixelFormat_2vuy:
        return {8, 1, 16, 2, {0, 8}};
    case PixelFormat_YUY2:
        return {8, 1, 16, 2, {8, 0}};
    case PixelFormat_v210:
        return {10, 1, 32, 3, {0, 10, 20}};
    case PixelFormat_v212:
    case PixelFormat_v216:
        return {16, 1, 16, 1, {0}};
    case PixelFormat_ay10:
    case PixelFormat_Ay10:
        return {10, 4, 32, 2, {10, 0}, 20};
    case PixelFormat_R12B:
        return {36, 4, 36, 1, {0}};
    default: // R12L and R12l; all others have groups of one pixel
        return {36, 1, 36, 1, {0}};
    }
}

/// The samples of a row in memory.
class Samples {
public:
    Samples(const SampleLayout& layout, std::byte* row) : m_layout(layout), m_row(row) {}

    std::uint64_t read(std::size_t bit) const
    {
        std::uint64_t value = 0;
        const std::size_t first = bit / 8;
        for (std::size_t byte = first; 8 * byte < bit + m_layout.bits; ++byte)
            value |= std::to_integer<std::uint64_t>(at(byte)) << (8 * (byte - first));
        return value >> (bit % 8) & maximum();
    }

    void write(std::size_t bit, std::uint64_t value)
    {
        const std::size_t first = bit / 8;
        const std::uint64_t mask = maximum() << (bit % 8);
        const std::uint64_t bits = value << (bit % 8);
        for (std::size_t byte = first; 8 * byte < bit + m_layout.bits; ++byte) {
            const auto shift = 8 * (byte - first);
            at(byte) = (at(byte) & ~static_cast<std::byte>(mask >> shift)) |
                       static_cast<std::byte>(bits >> shift);
        }
    }

    void copy(std::size_t from, std::size_t to) { write(to, read(from)); }

private:
    std::byte& at(std::size_t byte) const { return m_row[byte ^ (m_layout.wordBytes - 1)]; }
    std::uint64_t maximum() const { return (std::uint64_t{1} << m_layout.bits) - 1; }

    const SampleLayout& m_layout;
    std::byte* m_row;
};

// The samples of pixel `x` of 4:2:2.
constexpr std::size_t lumaOf(std::size_t x)
{
    return 2 * x + 1;
}
constexpr std::size_t cbOf(std::size_t x)
{
    return x / 2 * 4;
}
constexpr std::size_t crOf(std::size_t x)
{
    return cbOf(x) + 2;
}

void continue422(const Format& format, const SampleLayout& layout, Samples& row, unsigned pixels,
                 unsigned end)
{
    const std::size_t last = pixels - 1;
    if (format.info.groupPixels == 1 && pixels % 2 != 0) {
        if (last == 0)
            row.write(layout.bitOf(crOf(last)), std::uint64_t{1} << (layout.bits - 1));
        else
            row.copy(layout.bitOf(crOf(last - 1)), layout.bitOf(crOf(last)));
    }
    for (std::size_t x = pixels; x < end; ++x) {
        row.copy(layout.bitOf(lumaOf(last)), layout.bitOf(lumaOf(x)));
        if (x % 2 == 0) {
            row.copy(layout.bitOf(cbOf(last)), layout.bitOf(cbOf(x)));
            row.copy(layout.bitOf(crOf(last)), layout.bitOf(crOf(x)));
        }
        if (layout.alphaAt != 0)
            row.copy(last * layout.unitBits + layout.alphaAt, x * layout.unitBits + layout.alphaAt);
    }
}

} // namespace

void extendRow(const Format& format, std::byte* row, unsigned pixels, unsigned total)
{
    const unsigned period = std::max(format.info.groupPixels, format.is422() ? 2u : 1u);
    const unsigned periodBytes = period / format.info.groupPixels * format.info.groupBytes;
    // All periods after the one with the last pixel are alike, so one sample at a time is only
    // needed up to the first of them.
    const unsigned alike = (pixels + period - 1) / period;
    const unsigned periods = (total + period - 1) / period;
    const unsigned end = std::min(periods, alike + 1) * period;
    std::byte* const rest = row + format.rowBytes(pixels);
    std::byte* const copies = row + std::size_t{alike} * periodBytes;
    std::memset(rest, 0, static_cast<std::size_t>(row + format.rowBytes(end) - rest));

    const SampleLayout layout = layoutOf(format);
    Samples samples(layout, row);
    if (format.is422()) {
        continue422(format, layout, samples, pixels, end);
    } else if (format.info.groupPixels == 1) {
        const std::size_t bytes = format.info.groupBytes;
        for (std::size_t x = pixels; x < end; ++x)
            std::memcpy(row + x * bytes, row + (pixels - 1) * bytes, bytes);
    } else {
        for (std::size_t x = pixels; x < end; ++x)
            samples.copy(layout.bitOf(pixels - 1), layout.bitOf(x));
    }
    for (unsigned i = alike + 1; i < periods; ++i)
        std::memcpy(row + std::size_t{i} * periodBytes, copies, periodBytes);
}

LastGroup::LastGroup(const Format& format, unsigned width)
{
    const unsigned pixels = width % format.info.groupPixels;
    if (pixels == 0)
        return;
    m_first = format.bytesBefore(width);
    m_bytes = format.info.groupBytes;
    std::memset(m_keep, 0xff, sizeof(m_keep));

    const SampleLayout layout = layoutOf(format);
    Samples samples(layout, m_keep);
    for (std::size_t x = pixels; x < format.info.groupPixels; ++x) {
        if (!format.is422()) {
            samples.write(layout.bitOf(x), 0);
            continue;
        }
        samples.write(layout.bitOf(lumaOf(x)), 0);
        if (x % 2 == 0) {
            samples.write(layout.bitOf(cbOf(x)), 0);
            samples.write(layout.bitOf(crOf(x)), 0);
        }
        if (layout.alphaAt != 0)
            samples.write(x * layout.unitBits + layout.alphaAt, 0);
    }
}

void LastGroup::clearRest(std::byte* row) const
{
    std::byte* const group = row + m_first;
    for (std::size_t i = 0; i < m_bytes; i += sizeof(std::uint32_t)) {
        std::uint32_t word = 0;
        std::uint32_t keep = 0;
        std::memcpy(&word, group + i, sizeof(word));
        std::memcpy(&keep, m_keep + i, sizeof(keep));
        word &= keep;
        std::memcpy(group + i, &word, sizeof(word));
    }
}

} // namespace kestrix
