/// Prints docs/formats.md: sizes from the list of formats, bits from the layouts that the tests of
/// all conversions use, limits from the stages, helpers from the lookup and the shader.
#include "docs/printed/EntriesThatTellTheirPipelines.h"
#include "docs/printed/FormatNames.h"
#include "tests/reference/Conversions.h"

#include "conversion/PixelFormats.h"
#include "preview/ShaderFormats.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;
using reference::Layout;

namespace {

constexpr char kHead[] = R"(# Pixel formats

The library has %zu packed pixel formats. The code is a FourCC with its first character in the most
significant byte of a 32-bit value; 8-bit ARGB is the plain number 32. The program `print_formats` prints
this page from the tables of the code and of its tests.

A row of `width` pixels consists of whole groups: `ceil(width / pixels) x bytes`, with the pixels and bytes
of one group. The stride may be larger, and rows need no alignment.

Ranges: *full* runs from 0 to the largest code. *Studio* has black at 16 x 2^(n-8) and white at
235 x 2^(n-8), Cb and Cr centred on 128 x 2^(n-8) with extremes at 16 and 240 x 2^(n-8)
(ITU-R BT.709-6, 3.4; ITU-R BT.601-7, 2.5.3).

| Code | Engine name | Samples | Range | Alpha | Pixels per group | Bytes per group |
|---|---|---|---|---|---|---|
)";

constexpr char kLimits[] = R"(
`l64a` has 10-bit values in the high bits of its 16 bits, `v212` has 12-bit values there. `S12L`, `L64A` and
`l64a` are only destinations. If a source has no alpha, the result is opaque.

## What conversions require of rows

*From* and *To* count the rows of the [table](conversions.md) with the format as source and as destination.
*Least width* is the narrowest row, in pixels, that all of these conversions accept. *Reads after* is the
most bytes that any of them reads after a source row; 64 bytes after the last line are always enough. No
conversion writes after a destination row.

| Format | From | Least width | Reads after | To | Least width |
|---|---|---|---|---|---|
)";

constexpr char kHelpers[] = R"(
## Which helper paints them

*Fixed function*: the colourspaces in which the helper accepts the format, and the least width; it
returns `E_INVALIDARG` for all others. *OpenGL 3*: the kind of samples that the helper expects. It shows
formats that its shader does not know, marked -, as opaque black, and `SetFrame` returns `S_OK`. The
fixed-function helper treats a captured frame in 32 or `BGRA` as studio range; the OpenGL 3 helper uses only
the format code. Neither helper shows alpha, but the OpenGL 3 helper writes the alpha of `Ay10` to the
framebuffer, for the host's blending, and 1 for all other formats. It is straight alpha: the colours are not
multiplied by it.

| Format | Fixed function | Least width | OpenGL 3 |
|---|---|---|---|
)";

constexpr char kBytes[] = R"(
## Bytes

Each line shows four bytes in the order of their addresses, and the bits of a byte from the highest to the
lowest. `Y1[5:0]` are the bits 5 to 0 of the Y of pixel 1; a name alone is a byte that contains a whole
sample. Unused bits, marked -, are written as 0, but as 1 in `R10A`. They are ignored when read, but must be
0 in `A04l` and `A04L`.

4:2:2 chroma is co-sited with the even pixel: Cb0 and Cr0 belong to the pixels 0 and 1.
)";

constexpr char kMatrix[] = R"(
## Which formats convert to which

Each line is a source format, each column a destination format. `a`: one conversion for all colourspaces.
`c`: a conversion for each of some colourspaces. `p`: also conversions that change primaries. Pairs without
a letter have no conversion. See [conversions](conversions.md) for the %u rows.

```text
)";

const ConversionEntry* const kEnd = std::end(conversions);

std::string rangeOf(const Layout& layout)
{
    return layout.levels.full && !layout.is422() ? "full" : "studio";
}

std::string samplesOf(const Layout& layout)
{
    return std::to_string(layout.levels.bits) + (layout.is422() ? "-bit 4:2:2" : "-bit RGB");
}

std::string alphaOf(const Layout& layout)
{
    if (layout.is422())
        return layout.alphaAt < 0 ? "" : layout.levels.full ? "full" : "studio";
    return layout.at[3] < 0 ? "" : rangeOf(layout);
}

void printFormats()
{
    for (const PixelFormatInfo& format : kPixelFormats) {
        const Layout& layout = reference::layoutOf(format.code);
        std::printf("| %s | `%s` | %s | %s | %s | %u | %u |\n", nameOf(format.code).c_str(),
                    format.engineName, samplesOf(layout).c_str(), rangeOf(layout).c_str(),
                    alphaOf(layout).c_str(), format.groupPixels, format.groupBytes);
    }
}

// --- Rows ----------------------------------------------------------------------------------------

unsigned leastWidthOf(ConversionFunction function)
{
    ToldPipeline limits;
    function(0, 0, &limits, 0, nullptr, 0);
    return limits.leastWidth;
}

std::size_t readsBehind(const ConversionEntry& entry)
{
    ToldPipeline limits;
    entry.function(0, 0, &limits, 0, nullptr, 0);
    if (!limits.bytesRead)
        return 0;
    const auto ofPixels = reference::bytesOfPixels(reference::layoutOf(entry.srcFormat));
    std::size_t most = 0;
    for (unsigned width = std::max(1u, limits.leastWidth); width <= 4096; ++width)
        most = std::max(most, limits.bytesRead(width) - ofPixels(width));
    return most;
}

void printLimits()
{
    for (const PixelFormatInfo& format : kPixelFormats) {
        unsigned from = 0, fromWidth = 0, to = 0, toWidth = 0;
        std::size_t behind = 0;
        for (const ConversionEntry& entry : conversions) {
            const unsigned width = leastWidthOf(entry.function);
            if (entry.srcFormat == format.code) {
                ++from;
                fromWidth = std::max(fromWidth, width);
                behind = std::max(behind, readsBehind(entry));
            }
            if (entry.dstFormat == format.code) {
                ++to;
                toWidth = std::max(toWidth, width);
            }
        }
        std::printf("| %s | %u | %u | %zu | %u | %u |\n", nameOf(format.code).c_str(), from,
                    fromWidth, behind, to, toWidth);
    }
}

// --- Helpers -------------------------------------------------------------------------------------

/// What `ScreenPreviewBase` does with a frame that is not captured.
std::string fixedFunction(PixelFormat format, unsigned& leastWidth)
{
    std::string taken;
    for (const Colorspace colorspace : {Colorspace601, Colorspace709, Colorspace2020}) {
        const ConversionFunction function =
            GetConversionFunction(format, PixelFormat_RGBA, colorspace, Colorspace709);
        if (!function && !(format == PixelFormat_RGBA && colorspace == Colorspace709))
            continue;
        taken += (taken.empty() ? "" : ", ") + std::string(colorspaceName(colorspace));
        if (function)
            leastWidth = std::max(leastWidth, leastWidthOf(function));
    }
    return taken.empty() ? "-" : taken;
}

const char* openGL3(PixelFormat format)
{
    const ShaderFormat* const known = findShaderFormat(format);
    return known ? nameOf(known->input) : "-";
}

void printHelpers()
{
    for (const PixelFormatInfo& format : kPixelFormats) {
        unsigned leastWidth = 0;
        const std::string taken = fixedFunction(format.code, leastWidth);
        std::printf("| %s | %s | %s | %s |\n", nameOf(format.code).c_str(), taken.c_str(),
                    taken == "-" ? "" : std::to_string(leastWidth).c_str(), openGL3(format.code));
    }
}

// --- Bytes ---------------------------------------------------------------------------------------

/// The smallest number of whole groups that contains each kind of sample.
struct Picture {
    explicit Picture(const PixelFormatInfo& format) : layout(reference::layoutOf(format.code))
    {
        pixels = std::max(format.groupPixels, layout.is422() ? 2u : 1u);
        bits.resize(pixels / format.groupPixels * format.groupBytes);
        const std::size_t perPixel = layout.is422() ? 2 : 4;
        for (std::size_t i = 0; i < perPixel * pixels; ++i)
            if (layout.is422() || layout.at[i % 4] >= 0)
                place(layout.bitOf(i), nameOfSample(i));
        for (std::size_t x = 0; layout.alphaAt >= 0 && x < pixels; ++x)
            place(layout.bitOfAlpha(x), "A" + std::to_string(x));
    }

    std::string nameOfSample(std::size_t i) const
    {
        if (!layout.is422())
            return std::string(1, "BGRA"[i % 4]) + (pixels > 1 ? std::to_string(i / 4) : "");
        const char* const names[] = {"Cb", "Y", "Cr", "Y"};
        return names[i % 4] + std::to_string(i / 4 * 2 + (i % 4 == 3));
    }

    void place(std::size_t first, const std::string& name)
    {
        for (int bit = 0; bit < layout.levels.bits; ++bit) {
            const std::size_t at = first + static_cast<std::size_t>(bit);
            bits[at / 8 ^ (layout.wordBytes - 1)][at % 8] = {name, bit};
        }
    }

    std::string byte(std::size_t i) const
    {
        std::string text;
        for (int high = 7; high >= 0;) {
            int low = high;
            while (low > 0 && bits[i][static_cast<unsigned>(low) - 1].name == at(i, high).name)
                --low;
            text += text.empty() ? "" : " ";
            const auto& [name, bit] = at(i, high);
            if (name.empty())
                text += "-";
            else if (layout.levels.bits == 8)
                text += name;
            else
                text += name + "[" + std::to_string(bit) +
                        (high == low ? "" : ":" + std::to_string(at(i, low).bit)) + "]";
            high = low - 1;
        }
        return text;
    }

    std::string text() const
    {
        constexpr std::size_t kAcross = 4;
        std::size_t width = 0;
        for (std::size_t i = 0; i < bits.size(); ++i)
            width = std::max(width, byte(i).size());
        std::string lines;
        for (std::size_t i = 0; i < bits.size(); ++i) {
            if (i % kAcross == 0)
                lines += (i < 10 ? " " : "") + std::to_string(i);
            const bool last = i % kAcross == kAcross - 1 || i + 1 == bits.size();
            std::string cell = byte(i);
            if (!last)
                cell.resize(width, ' ');
            lines += " | " + cell + (last ? "\n" : "");
        }
        return lines;
    }

    struct Bit {
        std::string name;
        int bit = 0;
    };
    const Bit& at(std::size_t byte, int bit) const
    {
        return bits[byte][static_cast<unsigned>(bit)];
    }

    const Layout& layout;
    unsigned pixels = 0;
    std::vector<std::array<Bit, 8>> bits;
};

/// Formats with the same layout have one picture, under the first of them.
void printBytes()
{
    std::vector<std::string> seen;
    for (const PixelFormatInfo& format : kPixelFormats) {
        const std::string text = Picture(format).text();
        if (std::ranges::find(seen, text) != seen.end())
            continue;
        seen.push_back(text);
        std::string names;
        for (const PixelFormatInfo& other : kPixelFormats)
            if (Picture(other).text() == text)
                names += (names.empty() ? "" : ", ") + nameOf(other.code);
        std::printf("\n%s\n\n```text\n%s```\n", names.c_str(), text.c_str());
    }
}

// --- Matrix --------------------------------------------------------------------------------------

char cellOf(PixelFormat src, PixelFormat dst)
{
    char cell = src == dst ? '\\' : '.';
    for (const ConversionEntry& entry : conversions) {
        if (entry.srcFormat != src || entry.dstFormat != dst)
            continue;
        if (entry.srcColorspace != entry.dstColorspace)
            return 'p';
        if (cell != 'a')
            cell = entry.srcColorspace == ColorspaceUnspecified ? 'a' : 'c';
    }
    return cell;
}

void printMatrix()
{
    for (std::size_t line = 0; line < 4; ++line) {
        std::string head = "     ";
        for (const PixelFormatInfo& dst : kPixelFormats) {
            const std::string code = codeText(dst);
            const std::size_t blank = 4 - code.size();
            head += std::string(" ") + (line < blank ? ' ' : code[line - blank]);
        }
        std::printf("%s\n", head.substr(0, head.find_last_not_of(' ') + 1).c_str());
    }
    for (const PixelFormatInfo& src : kPixelFormats) {
        if (std::none_of(conversions, kEnd,
                         [&](const auto& entry) { return entry.srcFormat == src.code; }))
            continue;
        std::printf("%4s ", codeText(src));
        for (const PixelFormatInfo& dst : kPixelFormats)
            std::printf(" %c", cellOf(src.code, dst.code));
        std::printf("\n");
    }
}

} // namespace

int main()
{
    std::printf(kHead, std::size(kPixelFormats));
    printFormats();
    std::fputs(kLimits, stdout);
    printLimits();
    std::fputs(kHelpers, stdout);
    printHelpers();
    std::fputs(kBytes, stdout);
    printBytes();
    std::printf(kMatrix, kConversionCount);
    printMatrix();
    std::fputs("```\n", stdout);
}
