/// What each conversion does to a row, by the classes of its formats. Samples are read, converted
/// to pixels of RGB (unless both formats are 4:2:2 of one colourspace), brought to other levels and
/// primaries, and written.
#pragma once

#include "tests/reference/Gamut.h"
#include "tests/reference/Layouts.h"
#include "tests/reference/Levels.h"
#include "tests/reference/YUV.h"

#include "conversion/KSXPixelConversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <numeric>
#include <vector>

namespace kestrix::test::reference {

using namespace KSX::PixelConversion;

struct RowConversion {
    /// Converts the row at `src` of a picture of `height` rows.
    std::function<WrittenRow(const std::uint8_t* src, unsigned width, unsigned height)> convert;

    /// The narrowest row that the conversion takes.
    unsigned leastWidth = 0;
    /// The bytes that it reads of a row. They can be more than the row has.
    std::function<std::size_t(unsigned width)> bytesRead;
};

inline constexpr Levels kFull8{8, true}, kFull10{10, true}, kFull12{12, true};
inline constexpr Levels kStudio8{8, false}, kStudio10{10, false}, kStudio12{12, false};

/// B, G, R, A of pixels between two formats, and which of these lanes have no defined value. The
/// count of pixels is even; if a row is odd, the last pixel does not exist and is unknown.
struct PixelLanes {
    explicit PixelLanes(std::size_t width)
        : bgra(4 * (width + width % 2)),
          unknown(bgra.size()),
          pixels(bgra.size() / 4)
    {
        std::fill(unknown.begin() + static_cast<std::ptrdiff_t>(4 * width), unknown.end(), true);
    }

    std::vector<std::uint16_t> bgra;
    std::vector<bool> unknown;
    std::size_t pixels;

    bool anyUnknown(std::size_t x) const
    {
        return unknown[4 * x] || unknown[4 * x + 1] || unknown[4 * x + 2];
    }

    void apply(const LevelSteps& steps)
    {
        for (const LevelStep& step : steps)
            for (std::size_t i = 0; i < bgra.size(); ++i)
                if (!step.sparesAlpha || i % 4 != 3)
                    bgra[i] = step.of(bgra[i]);
    }
};

/// Pixels that a stage of the format's family takes at a time.
inline unsigned stepOf(PixelFormat format)
{
    switch (format) {
    case PixelFormat_2vuy:
    case PixelFormat_YUY2:
        return 8;
    case PixelFormat_v210:
        return 12;
    case PixelFormat_RGB3:
        return 16;
    case PixelFormat_R12B:
    case PixelFormat_R12L:
    case PixelFormat_R12l:
        return 32;
    default:
        return 4;
    }
}

// --- Reading -------------------------------------------------------------------------------------

inline PixelLanes readRGB(const Layout& layout, const std::uint8_t* row, std::size_t width,
                          bool alphaSurvives)
{
    PixelLanes lanes(width);
    for (std::size_t i = 0; i < 4 * width; ++i)
        lanes.bgra[i] = layout.at[i % 4] < 0 || (i % 4 == 3 && !alphaSurvives)
                            ? static_cast<std::uint16_t>(layout.maximum())
                            : layout.read(row, layout.bitOf(i));
    return lanes;
}

/// If a row of 8-bit 4:2:2 ends in a partial block, old bytes follow its last pixel: the pair that
/// its last odd pixel averages with, and in an odd row Cr of the last pair. Deeper 4:2:2 is read
/// from the row itself and includes the next pair, unless the row's end is known.
inline PixelLanes readYUV(const Layout& layout, const std::uint8_t* row, std::size_t width,
                          const YUVToRGB& matrix, std::size_t block)
{
    const bool hasLine =
        layout.code == PixelFormat_v210 && (width == 1280 || width == 2048 || width == 4096);
    const bool endIsKnown = layout.levels.bits == 8 || hasLine || width % stepOf(layout.code) == 0;
    PixelLanes lanes(width);
    for (std::size_t x = 0; x < width; ++x) {
        const auto rgb =
            toRGB(matrix, pixelOf422(layout, row, x, endIsKnown ? width : width + 1), x % 2 != 0);
        for (std::size_t i = 0; i < 3; ++i)
            lanes.bgra[4 * x + i] = static_cast<std::uint16_t>(rgb[2 - i]);
        const auto alpha = [&] { return layout.read(row, layout.bitOfAlpha(x)); };
        lanes.bgra[4 * x + 3] = static_cast<std::uint16_t>(
            layout.alphaAt < 0 ? (1 << matrix.rgbBits) - 1
                               : (layout.levels.full ? alphaFromFull : alphaFromStudio)(alpha()));
    }
    const auto addUnknown = [&](std::size_t x, std::size_t firstLane) {
        for (std::size_t i = firstLane; i < 3; ++i)
            lanes.unknown[4 * x + i] = true;
    };
    // A row of v210 that ends with a step, but not with the longer block of RGB3, may be read
    // either way.
    if (width % block != 0 && endIsKnown && !hasLine && layout.alphaAt < 0)
        addUnknown(width - 1, width % 2);
    if (layout.levels.bits == 8 && width % 2 != 0 && width > 1 && width % block != 1)
        addUnknown(width - 2, 1);
    return lanes;
}

// --- Writing -------------------------------------------------------------------------------------

inline WrittenRow writeRGB(const Layout& layout, const PixelLanes& lanes, std::size_t width)
{
    WrittenRow row(layout, width);
    for (std::size_t i = 0; i < row.bytes.size() * 8 / layout.unitBits * 4; ++i)
        if (layout.at[i % 4] >= 0)
            row.put(layout.bitOf(i), i < 4 * width ? lanes.bgra[i] : 0,
                    i >= 4 * width || lanes.unknown[i]);
    if (layout.code == PixelFormat_R10A)
        for (std::size_t x = 0; x < width; ++x)
            row.bytes[4 * x + 3] |= 3;
    return row;
}

/// `sample(i)` and `unknown(i)` are for a row's samples in the order Cb Y Cr Y, `alpha(x)` for its
/// pixels.
inline WrittenRow writeYUV(const Layout& layout, std::size_t width, const auto& sample,
                           const auto& unknown, const auto& alpha)
{
    WrittenRow row(layout, width);
    const std::size_t units = row.bytes.size() * 8 / layout.unitBits;
    for (std::size_t i = 0; i < units * layout.at.size(); ++i)
        row.put(layout.bitOf(i), i < 2 * width ? sample(i) : 0, i >= 2 * width || unknown(i));
    if (layout.alphaAt >= 0)
        for (std::size_t x = 0; x < units; ++x)
            row.put(layout.bitOfAlpha(x), x < width ? alpha(x) : 0, x >= width);
    return row;
}

inline WrittenRow writeYUV(const Layout& layout, const PixelLanes& lanes, std::size_t width,
                           const RGBToYUV& matrix, bool anythingBehind)
{
    std::vector<std::uint16_t> uyvy(2 * lanes.pixels);
    toYUV(matrix, lanes.bgra.data(), lanes.pixels, [&](std::size_t x, int y, int chroma) {
        uyvy[2 * x] = static_cast<std::uint16_t>(chroma);
        // If chroma and Y are in one word of 32 bits, the sign of chroma reaches into Y.
        uyvy[2 * x + 1] = static_cast<std::uint16_t>(layout.alphaAt < 0 ? y | chroma >> 16 : y);
    });
    const auto chromaUnknown = [&](std::size_t x) {
        const std::size_t even = x / 2 * 2;
        return lanes.anyUnknown(even) || lanes.anyUnknown(even + 1) ||
               (even != 0 && lanes.anyUnknown(even - 1));
    };
    const auto unknown = [&](std::size_t i) {
        // Chroma is negative only if a neighbour is outside its range.
        return i % 2 == 0 || matrix.studio || anythingBehind ? chromaUnknown(i / 2)
                                                             : lanes.anyUnknown(i / 2);
    };
    const auto alpha = [&](std::size_t x) {
        const int a = lanes.bgra[4 * x + 3];
        return static_cast<std::uint16_t>(layout.levels.full ? a : alphaToStudio(a));
    };
    return writeYUV(
        layout, width, [&](std::size_t i) { return uyvy[i]; }, unknown, alpha);
}

// --- The classes of conversions ------------------------------------------------------------------

/// In 4:2:2, only the pixels of a row's last group that exist are read; v210 is read to the group's
/// end.
inline std::function<std::size_t(unsigned width)> bytesOfPixels(const Layout& src)
{
    return [&src](unsigned width) {
        return src.is422() && src.code != PixelFormat_v210
                   ? 2 * std::size_t{width} / src.at.size() * src.unitBits / 8
                   : rowBytes(*findPixelFormat(src.code), width);
    };
}

inline RowConversion copies(const Layout& src, const Layout& dst)
{
    return {.convert =
                [&](const std::uint8_t* row, unsigned width, unsigned) {
                    WrittenRow copy(dst, width);
                    std::copy_n(row, copy.bytes.size(), copy.bytes.begin());
                    return copy;
                },
            .bytesRead = bytesOfPixels(src)};
}

/// 4:2:2 to 4:2:2 of one colourspace. New alpha is 1023, also at video levels.
inline RowConversion staysYUV(const Layout& src, const Layout& dst)
{
    const int by = dst.levels.bits - src.levels.bits;
    const auto convert = [&src, &dst, by](const std::uint8_t* row, unsigned width, unsigned) {
        const auto sample = [&](std::size_t i) {
            const std::uint16_t x = src.read(row, src.bitOf(i));
            return by == 0 ? x : static_cast<std::uint16_t>(atDepth(x, by, 16));
        };
        return writeYUV(
            dst, width, sample, [](std::size_t) { return false; },
            [](std::size_t) { return std::uint16_t{1023}; });
    };
    return {.convert = convert, .bytesRead = bytesOfPixels(src)};
}

/// RGB to RGB of one colourspace. Between the ranges of 10 bits, the result is cut and not rounded.
inline LevelSteps stepsOfRGB(const Layout& src, const Layout& dst)
{
    const auto is = [&](PixelFormat from, PixelFormat to) {
        return src.code == from && dst.code == to;
    };
    // Pairs of formats that differ from their class.
    if (is(PixelFormat_BGRA, PixelFormat_S12L))
        return {rescale(kFull8, kFull12)};
    if (is(PixelFormat_BGRA, PixelFormat_A04l))
        return {rescale(kFull8, kStudio8), rescale(kStudio8, kStudio10)};
    if (is(PixelFormat_R10l, PixelFormat_RGBA) || is(PixelFormat_r210, PixelFormat_RGB3))
        return {rescale(kStudio10, kFull10, false), shift(-2)};
    if (is(PixelFormat_b64a, PixelFormat_R12B) || is(PixelFormat_b64a, PixelFormat_R12L))
        return {};
    if (is(PixelFormat_R12l, PixelFormat_b64a)) {
        LevelSteps steps = stepsBetween(kStudio12, kFull12);
        steps.push_back(shift(4));
        return steps;
    }
    return stepsBetween(src.levels, dst.levels, src.levels.bits != 10 || dst.levels.bits != 10);
}

/// Steps to the levels that the curves of a change of primaries need.
inline LevelSteps stepsToCurves(Levels from, Levels curves)
{
    if (from.full && from.bits > curves.bits)
        return {shift(curves.bits - from.bits, from.bits)};
    return stepsBetween(from, curves);
}

inline const Matrix& matrixToYUV(Levels levels, int bits, Colorspace colorspace)
{
    static const Matrix* const matrices[][3] = {
        {&kStudio601ToYUV, &kStudio709ToYUV, &kStudio2020ToYUV},
        {&kFull8_601ToYUV, &kFull8_709ToYUV, &kFull8_2020ToYUV},
        {&kFull10_601ToYUV, &kFull10_709ToYUV, &kFull10_2020ToYUV},
        {&kFull12_601ToYUV, &kFull12_709ToYUV, nullptr}};
    return *matrices[levels.full ? bits / 2 - 3 : 0][colorspace];
}

inline const Matrix& matrixToRGB(bool full, Colorspace colorspace)
{
    static const Matrix* const matrices[][3] = {
        {&kYUVToStudio601, &kYUVToStudio709, &kYUVToStudio2020},
        {&kYUVToFull601, &kYUVToFull709, &kYUVToFull2020}};
    return *matrices[full][colorspace];
}

/// All conversions that go through pixels of RGB.
inline RowConversion throughRGB(const ConversionEntry& entry, const Layout& src, const Layout& dst)
{
    const bool changes = entry.srcColorspace != entry.dstColorspace;
    const bool fromYUV = src.is422();
    const bool intoYUV = dst.is422();

    // The levels of the pixels. YUV becomes video levels unless it carries alpha.
    Levels levels = src.levels;
    YUVToRGB decode{};
    if (fromYUV) {
        const bool full = src.alphaAt >= 0;
        const bool toStudio = !changes && !full && !dst.levels.full;
        levels = full ? kFull8 : Levels{toStudio ? dst.levels.bits : src.levels.bits, false};
        decode = {matrixToRGB(full, entry.srcColorspace), src.levels.bits, levels.bits, !full,
                  src.code != PixelFormat_ay10};
    }

    // Only A04l and A04L keep 10 bits if primaries change.
    const bool deep = src.levels.bits == 10 && src.unitBits == 64;
    // Primaries change in the lanes of RGBv4 after YUV without alpha, and after 10 bits in one word
    // except for one conversion.
    const bool oneWord = src.levels.bits == 10 && src.unitBits == 32;
    const bool planar = (fromYUV || oneWord) && src.alphaAt < 0 &&
                        !(src.code == PixelFormat_r210 && entry.srcColorspace == Colorspace601);
    LevelSteps before;
    if (changes) {
        before = stepsToCurves(levels, deep ? kFull10 : kFull8);
        levels = deep ? kFull10 : kFull8;
    }
    const int gamutBits = levels.bits;

    LevelSteps after;
    RGBToYUV encode{};
    if (intoYUV) {
        if (!fromYUV && levels == kFull8 && dst.levels.bits == 10 && dst.code != PixelFormat_ay10) {
            after = {rescale(kFull8, kFull10)};
            levels = kFull10;
        }
        encode = {matrixToYUV(levels, fromYUV ? dst.levels.bits : levels.bits, entry.dstColorspace),
                  levels.bits, dst.levels.bits, !levels.full, dst.code != PixelFormat_ay10};
    } else {
        after = changes || fromYUV ? stepsBetween(levels, dst.levels) : stepsOfRGB(src, dst);
    }

    // A conversion that only reorders bytes loses alpha, unless it reverses all bytes of a pixel.
    const bool reverses = (src.code == PixelFormat_ARGB && dst.code == PixelFormat_BGRA) ||
                          (src.code == PixelFormat_BGRA && dst.code == PixelFormat_ARGB);
    const bool alphaSurvives = changes || reverses || !(src.levels == dst.levels);
    const unsigned block = std::lcm(stepOf(src.code), stepOf(dst.code));

    RowConversion result;
    result.bytesRead = bytesOfPixels(src);
    result.convert = [=, &src, &dst](const std::uint8_t* row, unsigned width, unsigned height) {
        PixelLanes lanes = fromYUV ? readYUV(src, row, width, decode, block)
                                   : readRGB(src, row, width, alphaSurvives);
        lanes.apply(before);
        if (changes) {
            const GamutChange change{gamutStep(entry.srcColorspace, entry.dstColorspace, height),
                                     gamutBits, planar};
            for (std::size_t x = 0; x < width; ++x) {
                std::uint16_t* const bgra = lanes.bgra.data() + 4 * x;
                const auto rgb = changeGamut(change, {bgra[2], bgra[1], bgra[0]});
                for (std::size_t i = 0; i < 3; ++i)
                    bgra[i] = static_cast<std::uint16_t>(rgb[2 - i]);
                if (lanes.anyUnknown(x))
                    for (std::size_t i = 0; i < 3; ++i)
                        lanes.unknown[4 * x + i] = true;
            }
        }
        lanes.apply(after);
        // Lanes that are read from memory unchanged can hold any 16 bits after the row.
        const bool anythingBehind = src.code == PixelFormat_A04l;
        return intoYUV ? writeYUV(dst, lanes, width, encode, anythingBehind)
                       : writeRGB(dst, lanes, width);
    };
    // A chroma filter needs a whole block, and one more pixel if it comes after a stage that looks
    // ahead.
    if (fromYUV)
        result.leastWidth = src.levels.bits == 8 ? 1 : stepOf(src.code) + 1;
    if (intoYUV)
        result.leastWidth = fromYUV ? block + 1 : block;
    if (fromYUV && src.levels.bits == 8)
        // The vector after the last whole block is read, if pixels follow that block.
        result.bytesRead = [=](unsigned width) {
            const unsigned whole = width / block * block;
            const bool looks = whole != 0 && whole != width;
            return std::max<std::size_t>(2 * width, looks ? 2 * whole + 16 : 0);
        };
    else if (fromYUV)
        // Whole steps are read.
        result.bytesRead = [=, &src](unsigned width) {
            const unsigned step = stepOf(src.code);
            return rowBytes(*findPixelFormat(src.code), (width + step - 1) / step * step);
        };
    return result;
}

/// The conversion of a row of the table.
inline RowConversion rowConversion(const ConversionEntry& entry)
{
    const Layout& src = layoutOf(entry.srcFormat);
    const Layout& dst = layoutOf(entry.dstFormat);
    if (entry.function == CopyWithoutConversion)
        return copies(src, dst);
    if (src.is422() && dst.is422() && entry.srcColorspace == entry.dstColorspace)
        return staysYUV(src, dst);
    return throughRGB(entry, src, dst);
}

} // namespace kestrix::test::reference
