/// Prints docs/conversions.md, and fails where what the stages ask of rows is not what the scalar
/// reference says.
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

The rows of the table in its order, after them the entries that no row leads to. The page is
printed by the program `print_conversions` of the tests, from the stages of each conversion.

- *Colourspaces*: of source and destination, "any" where the conversion is the same in all of them
  and changes none.
- *Block*: pixels that are converted at a time. Widths that are a multiple of it need no code for a
  row's end. "-" has a conversion without stages.
- *Least width*: of a row, in pixels. Narrower ones are outside the contract and nothing checks for
  them: the engine may then read and write anywhere. At 0 a row of no pixels is left alone.
- *Reads after*: bytes after a source row that are read, at the width where that is most. What lies
  there counts for the chroma of one of the row's last two pixels and for nothing else. No byte
  outside a destination row is written, and none in front of a source row is read.

A source row has `ceil(width / pixels) x bytes` of its format's groups (docs/formats.md), but 2 bytes a
pixel of `2vuy` and `YUY2` and 4 bytes a pixel of `ay10` and `Ay10` where the width ends inside a group.
Behind that, by the source:

- `2vuy`, `YUY2`: where a row is longer than a whole number of blocks, the 16 bytes after the last
  whole one are read.
- `v210`: whole steps of 12 pixels are read, 32 bytes each.
- `ay10`, `Ay10`: whole groups of 4 pixels are read, 16 bytes each.

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
            std::fprintf(stderr, "%s: the stages ask for other rows than the reference\n",
                         conversion.name.c_str());
            return 1;
        }
    }
}
