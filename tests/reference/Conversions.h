/// What each conversion does to a row, one plain loop a family.
#pragma once

#include "tests/reference/Levels.h"
#include "tests/reference/RGB8.h"
#include "tests/reference/YUV.h"

#include "conversion/KSXPixelConversion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

namespace kestrix::test::reference {

struct RowConversion {
    std::function<void(const std::uint8_t* src, std::uint8_t* dst, unsigned width)> convert;

    /// The narrowest row that the conversion takes.
    unsigned leastWidth = 0;
    /// How far it reads behind a row's last byte.
    unsigned readsBehind = 0;
    /// The bytes of a written row that have no defined value.
    std::function<std::vector<std::size_t>(unsigned width)> undefinedBytes = [](unsigned) {
        return std::vector<std::size_t>();
    };

    explicit operator bool() const { return convert != nullptr; }
};

/// Undefined bytes of a row of 4:2:2 that has half a pair, counted from its end.
inline auto inOddRows(std::vector<std::size_t> fromEnd)
{
    return [=](unsigned width) {
        std::vector<std::size_t> bytes;
        if (width % 2 != 0)
            for (const std::size_t byte : fromEnd)
                bytes.push_back(2 * std::size_t{width} + 2 - byte);
        return bytes;
    };
}

inline RowConversion changesLevels(std::string_view from, Levels in, std::string_view to,
                                   Levels out)
{
    return {[=, rescale = Rescale(in, out)](const std::uint8_t* src, std::uint8_t* dst,
                                            unsigned width) {
        reorder(from, to, true, src, dst, width);
        for (std::size_t i = 0; i < 4 * std::size_t{width}; ++i)
            if (to[i % 4] != 'A')
                dst[i] = saturated(rescale(dst[i]));
    }};
}

/// The chroma of an odd row's last pair needs a pixel that is not there.
inline RowConversion rgbTo2vuy(std::string_view from, const Matrix& matrix)
{
    const auto convert = [=](const std::uint8_t* src, std::uint8_t* dst, unsigned width) {
        const std::size_t pixels = width + width % 2;
        std::vector<std::uint16_t> bgra(4 * pixels), uyvy(2 * pixels);
        for (std::size_t i = 0; i < 4 * std::size_t{width}; ++i)
            if (i % 4 != 3)
                bgra[i] = src[i / 4 * from.size() + from.find("BGR"[i % 4])];
        toUYVY({matrix, 8, 8}, bgra.data(), uyvy.data(), pixels);
        std::transform(uyvy.begin(), uyvy.end(), dst, saturated);
    };
    return {convert, from.size() == 4 ? 8u : 16u, 0, inOddRows({1, 2, 4})};
}

/// Where a row ends in a partial block, what lies behind its last pixel is leftovers: the pair that
/// its last odd pixel looks at, and in an odd row Cr of the last pair.
inline RowConversion rgbFrom2vuy(std::string_view to, const Matrix& matrix)
{
    const auto convert = [=](const std::uint8_t* src, std::uint8_t* dst, unsigned width) {
        const Rescale rescale({8, false}, {8, true});
        for (std::size_t x = 0; x < width; ++x) {
            const auto rgb = toRGB({matrix, 8, 8}, pixelOf422(src, 1, x, width), x % 2 != 0);
            for (std::size_t i = 0; i < to.size(); ++i)
                dst[x * to.size() + i] = to[i] == 'A'
                                             ? 255
                                             : saturated(rescale(static_cast<std::uint16_t>(
                                                   rgb[std::string_view("RGB").find(to[i])])));
        }
    };
    const auto undefined = [=, block = to.size() == 4 ? 8u : 16u](unsigned width) {
        std::vector<std::size_t> bytes;
        const auto add = [&](std::size_t x, std::string_view components) {
            for (const char component : components)
                bytes.push_back(x * to.size() + to.find(component));
        };
        if (width % block != 0)
            add(width - 1, width % 2 == 0 ? "RGB" : "RG");
        if (width % 2 != 0 && width % block != 1)
            add(width - 2, "RG");
        return bytes;
    };
    return {convert, 1, 12, undefined};
}

/// Of an odd row's last pair only the first half is read.
inline RowConversion exchangesBytes()
{
    const auto convert = [](const std::uint8_t* src, std::uint8_t* dst, unsigned width) {
        for (std::size_t i = 0; i < 2 * std::size_t{width}; ++i)
            dst[i] = src[i ^ 1];
    };
    return {convert, 0, 0, inOddRows({1, 2})};
}

/// The conversion that a row of the table stands for, or nothing where there is no reference.
inline RowConversion rowConversion(const KSX::PixelConversion::ConversionEntry& entry)
{
    using namespace KSX::PixelConversion;
    const PixelFormat src = entry.srcFormat;
    const PixelFormat dst = entry.dstFormat;
    if (entry.srcColorspace != entry.dstColorspace)
        return {};

    const auto pick = [&](const Matrix& of601, const Matrix& of709, const Matrix& of2020) {
        return entry.srcColorspace == Colorspace601   ? of601
               : entry.srcColorspace == Colorspace709 ? of709
                                                      : of2020;
    };
    const std::string_view from = componentOrder(src);
    const std::string_view to = componentOrder(dst);
    if (!from.empty() && !to.empty()) {
        if (isStudioRange(src) != isStudioRange(dst))
            return changesLevels(from, {8, !isStudioRange(src)}, to, {8, !isStudioRange(dst)});
        const bool swapsBytes = (src == PixelFormat_ARGB && dst == PixelFormat_BGRA) ||
                                (src == PixelFormat_BGRA && dst == PixelFormat_ARGB);
        return {[=](const std::uint8_t* in, std::uint8_t* out, unsigned width) {
            reorder(from, to, swapsBytes, in, out, width);
        }};
    }
    if (!from.empty() && dst == PixelFormat_2vuy)
        return rgbTo2vuy(from, pick(kFull8_601ToYUV, kFull8_709ToYUV, kFull8_2020ToYUV));
    if (src == PixelFormat_2vuy && !to.empty())
        return rgbFrom2vuy(to, pick(kYUVToStudio601, kYUVToStudio709, kYUVToStudio2020));
    if ((src == PixelFormat_2vuy && dst == PixelFormat_YUY2) ||
        (src == PixelFormat_YUY2 && dst == PixelFormat_2vuy))
        return exchangesBytes();
    if ((src == PixelFormat_v212 && dst == PixelFormat_v216) ||
        (src == PixelFormat_v216 && dst == PixelFormat_v212))
        return {[](const std::uint8_t* in, std::uint8_t* out, unsigned width) {
            std::memcpy(out, in, std::size_t{4} * width);
        }};
    return {};
}

} // namespace kestrix::test::reference
