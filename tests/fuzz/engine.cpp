/// Fuzzes the engine: an input is a conversion, a picture's shape and its bytes. Buffers have
/// exactly the bytes that the conversion can touch, and the scalar reference says what has to come
/// out.
#include "tests/common/AllConversions.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/reference/Conversions.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

#define CHECK(CONDITION, ...)                                                                      \
    do {                                                                                           \
        if (!(CONDITION)) {                                                                        \
            std::fprintf(stderr, __VA_ARGS__);                                                     \
            std::fprintf(stderr, ": %s\n", #CONDITION);                                            \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

constexpr std::uint8_t kUntouched = 0xA5;

/// Rows in a block of memory that has not a byte more behind them.
struct Picture {
    Picture(FuzzInput& input, std::size_t row, unsigned rows, bool apart)
        : rowBytes(row),
          height(rows)
    {
        const unsigned shape = input.byte();
        offset = shape % 16;
        const std::size_t padding = apart && rows != kPALHeight ? shape / 16 : 0;
        bottomUp = apart && input.byte() % 2 == 1;
        // The height of a whole picture asks for one only to choose the primaries: rows lie upon
        // each other.
        distance = rows == kPALHeight ? 0 : rowBytes + padding;
        size = offset + (rows - 1) * distance + rowBytes;
        bytes = std::make_unique<std::uint8_t[]>(size);
    }

    static constexpr unsigned kPALHeight = 576;

    std::uint8_t* row(unsigned y)
    {
        return bytes.get() + offset + (bottomUp ? height - 1 - y : y) * distance;
    }
    unsigned step() const
    {
        const auto step = static_cast<unsigned>(distance);
        return bottomUp ? 0 - step : step;
    }
    std::span<std::uint8_t> all() { return {bytes.get(), size}; }

    std::size_t rowBytes;
    unsigned height;
    std::size_t offset;
    std::size_t distance;
    bool bottomUp;
    std::size_t size;
    std::unique_ptr<std::uint8_t[]> bytes;
};

void checkConversion(const Conversion& conversion, FuzzInput& input)
{
    const auto reference = reference::rowConversion(conversion.entry);
    const unsigned least = std::max(1u, reference.leastWidth);
    // Narrow rows have all ends that there are, so most are narrow: they are many times faster.
    const unsigned code = input.word();
    const bool wide = code % 16 == 0;
    const unsigned width = least + (wide ? code / 16 : code / 16 % 200);
    const unsigned shape = input.byte();
    const bool tall = conversion.changes601() && !wide && shape % 16 == 0;
    const unsigned height = tall ? Picture::kPALHeight : 1 + shape % 3;
    // A copy takes as many bytes as the rows of the destination lie apart.
    const bool apart = !conversion.copies() && !tall;

    Picture src(input, reference.bytesRead(width), height, apart);
    Picture dst(input, rowBytes(conversion.dst(), width), height, apart);
    input.fill(src.all());
    for (unsigned y = 0; y < std::min(height, 4u); ++y)
        conversion.limit({src.row(y), src.rowBytes});
    std::ranges::fill(dst.all(), kUntouched);
    // The reference can look at a sample that counts for nothing.
    std::vector<std::uint8_t> srcCopy(src.all().begin(), src.all().end());
    srcCopy.resize(src.size + 64);

    conversion.entry.function(width, height, dst.row(0), dst.step(), src.row(0), src.step());

    std::vector<bool> written(dst.size);
    for (unsigned y = 0; y < std::min(height, 4u); ++y) {
        const auto expected = reference.convert(srcCopy.data() + (src.row(y) - src.bytes.get()),
                                                width, conversion.heightForPrimaries(height));
        for (std::size_t i = 0; i < dst.rowBytes; ++i) {
            const unsigned defined = 0xFFu & ~expected.undefined[i];
            CHECK((dst.row(y)[i] & defined) == (expected.bytes[i] & defined),
                  "%s, width %u, height %u, row %u, byte %zu", conversion.name.c_str(), width,
                  height, y, i);
            written[static_cast<std::size_t>(dst.row(y) - dst.bytes.get()) + i] = true;
        }
    }
    for (std::size_t i = 0; i < dst.size; ++i)
        CHECK(written[i] || dst.bytes[i] == kUntouched, "%s, width %u, byte %zu outside the rows",
              conversion.name.c_str(), width, i);
    CHECK(std::equal(src.all().begin(), src.all().end(), srcCopy.begin()), "%s wrote to its source",
          conversion.name.c_str());
}

/// Whatever is asked for, the answer is a row that says so, and none if there is no such row.
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
    CHECK(GetConversionFunction(src, dst, from, to) == expected, "look-up of %08x %08x %08x %08x",
          src, dst, from, to);
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
