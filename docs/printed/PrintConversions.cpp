/// Prints docs/conversions.md, and fails if the rows that the stages require are not those of the
/// scalar reference.
#include "docs/printed/EntriesThatTellTheirPipelines.h"
#include "docs/printed/FormatNames.h"
#include "tests/common/AllConversions.h"
#include "tests/reference/Conversions.h"

#include <cstdio>
#include <string>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

constexpr char kHead[] = R"(# Conversions

This page lists the rows of the table in their order, then the entries that no row uses. The program
`print_conversions` prints it from the stages of each conversion.

- *Colourspaces*: of source and destination; "any" if the conversion is the same in all colourspaces
  and changes none.
- *Block*: the number of pixels that are converted at a time. If the width is a multiple of the block, no
  code for the end of a row runs. "-" means a conversion without stages.
- *Least width*: of a row, in pixels. Narrower rows are not allowed, and nothing checks for them: the
  engine may then read and write anywhere. If the least width is 0, a row of no pixels changes nothing.
- *Reads after*: the most bytes that the engine reads after a source row, over all widths. These bytes
  affect only the chroma of one of the last two pixels of the row. The engine writes no byte outside a
  destination row and reads no byte before a source row.

A source row has `ceil(width / pixels) x bytes` of the groups of its [format](formats.md). If the width ends
inside a group, it has 2 bytes per pixel of `2vuy` and `YUY2`, and 4 bytes per pixel of `ay10` and `Ay10`.
After these bytes, the source format decides what the engine reads:

- `2vuy`, `YUY2`: if a row is longer than a whole number of blocks, the engine reads the 16 bytes after
  the last whole block.
- `v210`: the engine reads whole steps of 12 pixels, 32 bytes each.
- `ay10`, `Ay10`: the engine reads whole groups of 4 pixels, 16 bytes each.

| Row | From | To | Colourspaces | Block | Least width | Reads after |
|---|---|---|---|---|---|---|
)";

std::string colorspacesOf(const Conversion& conversion)
{
    const auto& [src, from, dst, to, function] = conversion.entry;
    if (from == ColorspaceUnspecified)
        return "any";
    const std::string name = colorspaceName(from);
    return from == to ? name : name + " to " + colorspaceName(to);
}

} // namespace

int main()
{
    std::fputs(kHead, stdout);
    const std::vector<Conversion> all = allConversions();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Conversion& conversion = all[i];
        const auto& entry = conversion.entry;
        const auto reference = reference::rowConversion(entry);
        const auto pixels = reference::bytesOfPixels(reference::layoutOf(entry.srcFormat));

        ToldPipeline limits;
        entry.function(0, 0, &limits, 0, nullptr, 0);
        std::size_t behind = 0;
        bool agrees = limits.leastWidth == reference.leastWidth;
        if (!reference::layoutOf(entry.dstFormat).is422())
            agrees = agrees && limits.leastWidth == leastWidthToRGB(entry.srcFormat);
        for (unsigned width = std::max(1u, limits.leastWidth); width <= 4096; ++width) {
            const std::size_t read = reference.bytesRead(width);
            agrees = agrees && (limits.block == 0 || limits.bytesRead(width) == read);
            behind = std::max(behind, read - pixels(width));
        }
        std::printf("| %s | %s | %s | %s | %s | %u | %zu |\n",
                    i < kConversionCount ? std::to_string(i).c_str() : conversion.name.c_str(),
                    nameOf(entry.srcFormat).c_str(), nameOf(entry.dstFormat).c_str(),
                    colorspacesOf(conversion).c_str(),
                    limits.block == 0 ? "-" : std::to_string(limits.block).c_str(),
                    limits.leastWidth, behind);
        if (!agrees) {
            std::fprintf(stderr, "%s: the stages require other rows than the reference\n",
                         conversion.name.c_str());
            return 1;
        }
    }
}
