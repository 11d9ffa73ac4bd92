/// Fuzzes the C library: an input is two descriptions, good or hostile, and how to convert. What is
/// taken must touch only its own bytes, and give the rows of the scalar reference.
#include "tests/convert/CheckedPicture.h"
#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

/// Replaces a member with any value, or one near its own.
template<class VALUE>
void spoil(VALUE& value, FuzzInput& input)
{
    const std::uint64_t low = input.dword();
    const std::uint64_t any = low | std::uint64_t{input.dword()} << 32;
    const auto near = static_cast<VALUE>(value + static_cast<VALUE>(low % 5) - 2);
    value = input.byte() % 2 == 0 ? near : static_cast<VALUE>(any);
}

/// A description that may lie about everything but its bytes and its size.
void spoil(kestrix_picture& picture, FuzzInput& input)
{
    switch (input.byte() % 12) {
    case 0:
        return spoil(picture.format, input);
    case 1:
        return spoil(picture.colorspace, input);
    case 2:
        return spoil(picture.width, input);
    case 3:
        return spoil(picture.height, input);
    case 4:
        return spoil(picture.row_bytes, input);
    case 5:
        picture.size -= std::min<std::size_t>(picture.size, input.byte());
        return;
    case 6:
        picture.format = kPixelFormats[input.byte() % std::size(kPixelFormats)].code;
        return;
    case 7:
        // Longer structs have members of 0 only if the bytes after this one happen to be 0.
        picture.struct_size = input.byte() % 2 == 0 ? input.byte() % sizeof(picture) : 5000;
        return;
    default:
        return;
    }
}

kestrix_status convert(const kestrix_picture& src, const kestrix_picture& dst, unsigned way)
{
    if (way % 4 == 0)
        return kestrix_convert_by_threads(&src, &dst, 1 + way / 4 % 3, 0);
    if (way % 4 == 1)
        return kestrix_convert(&src, &dst, 0);
    const std::uint32_t cut = src.height == 0 ? 0 : way / 4 % src.height;
    const kestrix_status below = kestrix_convert_rows(&src, &dst, cut, src.height, 0);
    const kestrix_status above = kestrix_convert_rows(&src, &dst, 0, cut, 0);
    check(above == below, "slices have different statuses");
    return above;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<Conversion> all = allConversions();
    FuzzInput input(data, size);
    const Conversion& conversion = all[input.word() % kConversionCount];
    const unsigned code = input.word();
    const unsigned width = 1 + (code % 16 == 0 ? code / 16 : code / 16 % 200);
    const unsigned rows = input.byte();
    const unsigned height = conversion.changes601() && rows % 16 == 0 ? 576 : 1 + rows % 5;
    const auto placing = [&]() -> Placing {
        const unsigned shape = input.byte();
        return {shape / 4 % 40, shape % 2 == 1, shape / 2 % 2 == 1};
    };
    CheckedPicture src(conversion.src(), conversion.entry.srcColorspace, width, height, placing());
    CheckedPicture dst(conversion.dst(), conversion.entry.dstColorspace, width, height, placing());
    kestrix_picture hostileSrc = src.description();
    kestrix_picture hostileDst = dst.description();
    const unsigned way = input.byte();
    const bool hostile = input.byte() % 4 == 0;
    if (hostile) {
        spoil(hostileSrc, input);
        spoil(hostileDst, input);
        if (input.byte() % 8 == 0)
            hostileDst.bytes = src.buffer().data(); // the size is that of the destination
        if (hostileDst.bytes != dst.description().bytes)
            hostileDst.size = std::min(hostileDst.size, src.buffer().size());
    }
    input.fill(src.buffer());
    for (unsigned y = 0; y < height; ++y)
        conversion.limit(src.row(y));

    char words[KESTRIX_WORDS_SIZE] = "";
    const kestrix_status foretold =
        kestrix_check(&hostileSrc, &hostileDst, 0, words, sizeof(words));
    check((foretold == KESTRIX_OK) == (words[0] == 0), "words without need, or none");
    check(std::strlen(words) + 1 < sizeof(words), "a line is cut");
    const std::vector<std::uint8_t> before(src.buffer().begin(), src.buffer().end());
    std::vector<std::uint8_t> expected(dst.buffer().begin(), dst.buffer().end());
    const kestrix_status status = convert(hostileSrc, hostileDst, way);
    check(status == foretold, std::string("foretold otherwise: ") + words);
    if (hostile && status == KESTRIX_OK)
        return 0;

    if (status == KESTRIX_OK) {
        const RowModel model(conversion);
        for (unsigned y = 0; y < height; ++y) {
            const auto row = model.convert(src.row(y), width, height);
            std::ranges::copy(row, expected.begin() + (dst.row(y).data() - dst.buffer().data()));
        }
    }
    const std::string what = conversion.name + ", " + std::to_string(width) + "x" +
                             std::to_string(height) + ", way " + std::to_string(way);
    check(status == KESTRIX_OK || hostile, what + " is refused: " + words);
    check(std::ranges::equal(expected, dst.buffer()), what + ": other bytes");
    check(std::ranges::equal(before, src.buffer()), what + ": source written");
    return 0;
}
