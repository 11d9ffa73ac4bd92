/// Fuzzes the engine: an input is a conversion, the shapes of two pictures and the bytes of one.
/// The scalar reference gives the expected rows, and bytes outside the rows must stay.
#include "tests/common/AllConversions.h"
#include "tests/common/GuardedPicture.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

void checkConversion(const Conversion& conversion, FuzzInput& input)
{
    const auto reference = reference::rowConversion(conversion.entry);
    const unsigned least = std::max(1u, reference.leastWidth);
    // Most rows are narrow: they have every kind of end, and take little time.
    const unsigned code = input.word();
    const bool wide = code % 16 == 0;
    const unsigned width = least + (wide ? code / 16 : code / 16 % 200);
    const unsigned size = input.byte();
    const bool tall = conversion.changes601() && !wide && size % 16 == 0;
    const unsigned height = tall ? 576 : 1 + size % 3;

    const auto layout = [&]() -> PictureLayout {
        const unsigned shape = input.byte();
        // A copy takes as many bytes as the rows of the destination lie apart.
        if (conversion.copies())
            return {};
        // Every second picture ends at an unreadable page. The others have any alignment.
        const std::size_t slack = shape % 2 * (shape % 16);
        return {.padding = shape / 16, .bottomUp = input.byte() % 2 == 1, .slack = slack};
    };
    const std::size_t rowRead = reference.bytesRead(width);
    GuardedPicture src(height, rowRead, layout());
    GuardedPicture dst(height, rowBytes(conversion.dst(), width), layout());
    // The reference may look at samples after a row that have no effect.
    std::vector<std::uint8_t> bytes(height * rowRead + 64);
    input.fill(bytes);
    for (unsigned y = 0; y < height; ++y) {
        const auto row = std::span(bytes).subspan(y * rowRead, rowRead);
        conversion.limit(row);
        std::ranges::copy(row, src.row(y).begin());
    }

    conversion.entry.function(width, height, dst.top(), dst.rowStep(), src.top(), src.rowStep());

    const std::string what = conversion.name + ", width " + std::to_string(width) + ", height " +
                             std::to_string(height) + ": ";
    for (unsigned y = 0; y < height; ++y) {
        const std::uint8_t* const read = bytes.data() + y * rowRead;
        const auto expected = reference.convert(read, width, conversion.heightForPrimaries(height));
        const auto same = sameBytes(expected.bytes, expected.comparable(dst.row(y)), 1, y, 0);
        check(same, what + same.message());
        check(std::ranges::equal(src.row(y), std::span(read, rowRead)), what + "source written");
    }
    for (GuardedPicture* picture : {&src, &dst}) {
        const auto intact = picture->guardsIntact();
        check(intact, what + intact.message());
    }
}

/// Checks that a look-up gives the first row of the table that fits, and null if none does.
void checkLookup(PixelFormat src, PixelFormat dst, Colorspace from, Colorspace to)
{
    if (to == ColorspaceUnspecified)
        to = from;
    const auto answers = [&](const ConversionEntry& row) {
        const bool anyColorspace = row.srcColorspace == ColorspaceUnspecified;
        return row.srcFormat == src && row.dstFormat == dst &&
               (anyColorspace ? from == to : row.srcColorspace == from && row.dstColorspace == to);
    };
    const auto* const row = std::ranges::find_if(conversions, answers);
    const auto expected = row != std::end(conversions) ? row->function : nullptr;
    check(GetConversionFunction(src, dst, from, to) == expected,
          "look-up of row " + std::to_string(row - conversions));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<Conversion> all = allConversions();
    FuzzInput input(data, size);
    if (const unsigned index = input.word() % 512; index < all.size()) {
        checkConversion(all[index], input);
        return 0;
    }
    const auto format = [&] {
        const std::uint8_t index = input.byte();
        return index < std::size(kPixelFormats) ? kPixelFormats[index].code
                                                : static_cast<PixelFormat>(input.dword());
    };
    const auto colorspace = [&] {
        const std::uint8_t code = input.byte();
        return code < 3    ? static_cast<Colorspace>(code)
               : code == 3 ? ColorspaceUnspecified
                           : static_cast<Colorspace>(input.dword());
    };
    const PixelFormat src = format(), dst = format();
    const Colorspace from = colorspace(), to = colorspace();
    checkLookup(src, dst, from, to);
    return 0;
}
