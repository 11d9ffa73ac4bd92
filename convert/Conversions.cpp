/// Finds the rows of the table, and tells what they ask of the pictures.
#include "convert/Conversions.h"

#include "convert/EntriesIn625Lines.h"

#include "conversion/pipeline/By601Lines.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <numeric>

namespace kestrix {

namespace {

using namespace KSX::PixelConversion;

struct LineStandards {
    ConversionFunction byHeight;
    ConversionFunction in625Lines;
};

constexpr LineStandards kLineStandards[] = {
    {Convert_8YUV422_HD_To_8YUY422_SD, lines625::Convert_8YUV422_HD_To_8YUY422_SD},
    {Convert_8YUV422_601_To_8BGRA_FULL_709, lines625::Convert_8YUV422_601_To_8BGRA_FULL_709},
    {Convert_8YUV422_601_To_8RGBA_FULL_709, lines625::Convert_8YUV422_601_To_8RGBA_FULL_709},
    {Convert_8YUV422_601_To_8YUV422_709, lines625::Convert_8YUV422_601_To_8YUV422_709},
    {Convert_8YUV422_709_To_8YUV422_601, lines625::Convert_8YUV422_709_To_8YUV422_601},
    {Convert_8YUY422_SD_To_8YUV422_HD, lines625::Convert_8YUY422_SD_To_8YUV422_HD},
    {Convert_10YUV422_LE_601_To_8BGRA_FULL_709,
     lines625::Convert_10YUV422_LE_601_To_8BGRA_FULL_709},
    {Convert_10YUV422_LE_601_To_8RGBA_FULL_709,
     lines625::Convert_10YUV422_LE_601_To_8RGBA_FULL_709},
    {Convert_10YUV422_LE_601_To_10YUV422_LE_709,
     lines625::Convert_10YUV422_LE_601_To_10YUV422_LE_709},
    {Convert_10YUV422_LE_709_To_10YUV422_LE_601,
     lines625::Convert_10YUV422_LE_709_To_10YUV422_LE_601},
    {Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL_709,
     lines625::Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL_709},
    {Convert_8ARGB_FULL_601_To_8BGRA_FULL_709, lines625::Convert_8ARGB_FULL_601_To_8BGRA_FULL_709},
    {Convert_8ARGB_FULL_601_To_8RGBA_FULL_709, lines625::Convert_8ARGB_FULL_601_To_8RGBA_FULL_709},
    {Convert_8BGRA_FULL_601_To_8YUV422_HD, lines625::Convert_8BGRA_FULL_601_To_8YUV422_HD},
    {Convert_8BGRA_FULL_709_To_8YUV422_SD, lines625::Convert_8BGRA_FULL_709_To_8YUV422_SD},
    {Convert_8BGRA_FULL_601_To_8YUV422_2020, lines625::Convert_8BGRA_FULL_601_To_8YUV422_2020},
    {Convert_8BGRA_FULL_2020_To_8YUV422_SD, lines625::Convert_8BGRA_FULL_2020_To_8YUV422_SD},
    {Convert_8BGRA_FULL_601_To_8RGBA_FULL_709, lines625::Convert_8BGRA_FULL_601_To_8RGBA_FULL_709},
    {Convert_8BGRA_FULL_601_To_8BGRA_FULL_709, lines625::Convert_8BGRA_FULL_601_To_8BGRA_FULL_709},
    {Convert_8BGRA_FULL_601_To_8BGRA_FULL_2020,
     lines625::Convert_8BGRA_FULL_601_To_8BGRA_FULL_2020},
    {Convert_8BGRA_FULL_2020_To_8BGRA_FULL_601,
     lines625::Convert_8BGRA_FULL_2020_To_8BGRA_FULL_601},
    {Convert_8BGRA_FULL_709_To_8BGRA_FULL_601, lines625::Convert_8BGRA_FULL_709_To_8BGRA_FULL_601},
    {Convert_8ARGB_SMPTE_601_To_8BGRA_FULL_709,
     lines625::Convert_8ARGB_SMPTE_601_To_8BGRA_FULL_709},
    {Convert_8ARGB_SMPTE_601_To_8RGBA_FULL_709,
     lines625::Convert_8ARGB_SMPTE_601_To_8RGBA_FULL_709},
    {Convert_8BGRA_SMPTE_601_To_8BGRA_FULL_709,
     lines625::Convert_8BGRA_SMPTE_601_To_8BGRA_FULL_709},
    {Convert_8BGRA_SMPTE_601_To_8RGBA_FULL_709,
     lines625::Convert_8BGRA_SMPTE_601_To_8RGBA_FULL_709},
    {Convert_10XRGB_BE_SMPTE_601_To_8BGRA_FULL_709,
     lines625::Convert_10XRGB_BE_SMPTE_601_To_8BGRA_FULL_709},
};

constexpr std::size_t kFormats = std::size(kPixelFormats);
constexpr std::uint16_t kNone = 0xffff;

std::size_t indexOf(std::uint32_t code)
{
    return static_cast<std::size_t>(findPixelFormat(code) - kPixelFormats);
}

/// The rows of each source format, as lists in the order of the table. A search of the whole table
/// takes as long as a small picture.
struct RowsBySource {
    std::array<std::uint16_t, kFormats> first;
    std::array<std::uint16_t, kConversionCount> next;
    std::array<std::uint8_t, kConversionCount> src;
    std::array<std::uint8_t, kConversionCount> dst;

    RowsBySource()
    {
        first.fill(kNone);
        for (unsigned row = kConversionCount; row-- != 0;) {
            const std::size_t index = indexOf(conversions[row].srcFormat);
            next[row] = first[index];
            first[index] = static_cast<std::uint16_t>(row);
            src[row] = static_cast<std::uint8_t>(index);
            dst[row] = static_cast<std::uint8_t>(indexOf(conversions[row].dstFormat));
        }
    }
};

/// Made when the library is loaded, from a table that is constant.
const RowsBySource kRowsBySource;

bool isColorspace(std::uint32_t value)
{
    return value == Colorspace601 || value == Colorspace709 || value == Colorspace2020 ||
           value == ColorspaceUnspecified;
}

const char* nameOf(std::uint32_t colorspace)
{
    return colorspace == ColorspaceUnspecified
               ? "unspecified"
               : colorspaceName(static_cast<Colorspace>(colorspace));
}

/// Appends to a line, which is cut at its end.
template<class... VALUES>
void append(char (&line)[KESTRIX_WORDS_SIZE], std::size_t& length, const char* format,
            VALUES... values)
{
    const int added = std::snprintf(line + length, sizeof(line) - length, format, values...);
    length = std::min(length + static_cast<std::size_t>(std::max(added, 0)), sizeof(line) - 1);
}

void appendColorspaces(char (&line)[KESTRIX_WORDS_SIZE], std::size_t& length, std::uint32_t src,
                       std::uint32_t dst)
{
    if (src == dst)
        append(line, length, "%s", nameOf(src));
    else
        append(line, length, "%s to %s", nameOf(src), nameOf(dst));
}

kestrix_status sayWhyNone(const PixelFormatInfo& src, std::uint32_t srcColorspace,
                          const PixelFormatInfo& dst, std::uint32_t dstColorspace,
                          const Words& words)
{
    const auto none = [&](const auto& fits) {
        return std::none_of(std::begin(conversions), std::end(conversions), fits);
    };
    if (none([&](const auto& row) { return row.srcFormat == src.code; }))
        return words.say(KESTRIX_NO_CONVERSION, "no row leads from %s, which is only written",
                         src.name);
    if (none([&](const auto& row) { return row.dstFormat == dst.code; }))
        return words.say(KESTRIX_NO_CONVERSION, "no row leads to %s, which is only read", dst.name);

    char line[KESTRIX_WORDS_SIZE];
    std::size_t length = 0;
    append(line, length, "no row leads from %s to %s", src.name, dst.name);
    const char* separator = " in ";
    for (const ConversionEntry& row : conversions) {
        if (row.srcFormat != src.code || row.dstFormat != dst.code)
            continue;
        if (*separator == ' ') {
            append(line, length, "%s", separator);
            appendColorspaces(line, length, srcColorspace, dstColorspace);
            separator = "; there are rows in ";
        }
        append(line, length, "%s", separator);
        if (row.srcColorspace == ColorspaceUnspecified)
            append(line, length, "%s", "any one colourspace");
        else
            appendColorspaces(line, length, row.srcColorspace, row.dstColorspace);
        separator = ", ";
    }
    return words.say(KESTRIX_NO_CONVERSION, "%s", line);
}

} // namespace

kestrix_status Words::say(kestrix_status status, const char* format, ...) const
{
    if (size != 0) {
        std::va_list values;
        va_start(values, format);
        std::vsnprintf(text, size, format, values);
        va_end(values);
    }
    return status;
}

bool Conversion::copies() const
{
    return entry.function == CopyWithoutConversion;
}

bool Conversion::rebuildsChroma() const
{
    return src.is422() && (!dst.is422() || entry.srcColorspace != entry.dstColorspace);
}

bool Conversion::filtersChroma() const
{
    return dst.is422() && (!src.is422() || entry.srcColorspace != entry.dstColorspace);
}

unsigned Conversion::block() const
{
    return copies() ? 1 : std::lcm(src.facts.step, dst.facts.step);
}

unsigned Conversion::leastWidth() const
{
    if (copies())
        return 0;
    if (filtersChroma())
        return block() + (rebuildsChroma() ? 1 : 0);
    return rebuildsChroma() ? leastWidthToRGB(entry.srcFormat) : 0;
}

Conversion conversionAt(unsigned row, std::uint32_t height)
{
    const ConversionEntry& entry = conversions[row];
    ConversionFunction function = entry.function;
    unsigned lines = 0;
    if (entry.srcColorspace != entry.dstColorspace) {
        const auto* const both =
            std::find_if(std::begin(kLineStandards), std::end(kLineStandards),
                         [&](const auto& it) { return it.byHeight == function; });
        if (both != std::end(kLineStandards)) {
            lines = height == kPALHeight ? 625 : 525;
            if (lines == 625)
                function = both->in625Lines;
        }
    }
    return {row,   entry,   formatAt(kRowsBySource.src[row]), formatAt(kRowsBySource.dst[row]),
            lines, function};
}

kestrix_status findRow(std::uint32_t srcFormat, std::uint32_t srcColorspace,
                       std::uint32_t dstFormat, std::uint32_t dstColorspace, unsigned& row,
                       const Words& words)
{
    const PixelFormatInfo* const src = findPixelFormat(srcFormat);
    const PixelFormatInfo* const dst = findPixelFormat(dstFormat);
    if (!src || !dst)
        return words.say(KESTRIX_UNKNOWN_FORMAT, "no %s format has the code 0x%08x",
                         src ? "destination" : "source", src ? dstFormat : srcFormat);
    if (!isColorspace(srcColorspace) || !isColorspace(dstColorspace))
        return words.say(KESTRIX_UNKNOWN_COLORSPACE, "no %s colourspace has the code 0x%08x",
                         isColorspace(srcColorspace) ? "destination" : "source",
                         isColorspace(srcColorspace) ? dstColorspace : srcColorspace);

    const std::uint32_t target =
        dstColorspace == ColorspaceUnspecified ? srcColorspace : dstColorspace;
    const std::size_t dstIndex = indexOf(dstFormat);
    for (unsigned at = kRowsBySource.first[indexOf(srcFormat)]; at != kNone;
         at = kRowsBySource.next[at]) {
        if (kRowsBySource.dst[at] != dstIndex)
            continue;
        const ConversionEntry& entry = conversions[at];
        const bool anyColorspace = entry.srcColorspace == ColorspaceUnspecified;
        const bool sameColorspaces =
            entry.srcColorspace == srcColorspace && entry.dstColorspace == target;
        if (sameColorspaces || (anyColorspace && target == srcColorspace)) {
            row = at;
            return KESTRIX_OK;
        }
    }
    return sayWhyNone(*src, srcColorspace, *dst, target, words);
}

kestrix_conversion tell(const Conversion& conversion)
{
    const ConversionEntry& entry = conversion.entry;
    return {.struct_size = sizeof(kestrix_conversion),
            .row = conversion.row,
            .src_format = entry.srcFormat,
            .src_colorspace = entry.srcColorspace,
            .dst_format = entry.dstFormat,
            .dst_colorspace = entry.dstColorspace,
            .lines = conversion.lines,
            .block = conversion.block(),
            .least_width = std::max(1u, conversion.leastWidth())};
}

} // namespace kestrix
