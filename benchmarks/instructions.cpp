/// Runs every conversion of the table on two pictures, the second twice as high as the first.
/// callgrind counts the instructions of each run; see instructions.py.
#include "benchmarks/Rows.h"

#include <cstdio>
#include <string>
#include <vector>

#include <valgrind/callgrind.h>

namespace {

using namespace kestrix::bench;
using namespace KSX::PixelConversion;

constexpr unsigned kWidth = 1920;
constexpr unsigned kHeights[] = {4, 8};
/// Bytes of a pixel of the largest format, and bytes that stages read after the end of a row.
constexpr std::size_t kPixelBytes = 8;
constexpr std::size_t kReadableBehind = 64;

/// Dumps the count of `row` at `height` as "name height".
void count(unsigned index, unsigned height, unsigned char* dst, unsigned char* src)
{
    const ConversionEntry& row = conversions[index];
    const std::string title = rowName(index) + " " + std::to_string(height);
    const auto dstRow = static_cast<unsigned>(rowBytes(row.dstFormat, kWidth));
    const auto srcRow = static_cast<unsigned>(rowBytes(row.srcFormat, kWidth));
    CALLGRIND_ZERO_STATS;
    row.function(kWidth, height, dst, dstRow, src, srcRow);
    CALLGRIND_DUMP_STATS_AT(title.c_str());
}

} // namespace

int main()
{
    if (!RUNNING_ON_VALGRIND) {
        std::fprintf(stderr, "kestrix_instructions: counts nothing by itself, "
                             "run benchmarks/instructions.py\n");
        return 1;
    }
    const std::size_t bytes = std::size_t{kWidth} * kHeights[1] * kPixelBytes + kReadableBehind;
    std::vector<unsigned char> src(bytes, 0x5a);
    std::vector<unsigned char> dst(bytes);
    CALLGRIND_START_INSTRUMENTATION;
    for (unsigned i = 0; i < kConversionCount; ++i)
        for (const unsigned height : kHeights)
            count(i, height, dst.data(), src.data());
    CALLGRIND_STOP_INSTRUMENTATION;
}
