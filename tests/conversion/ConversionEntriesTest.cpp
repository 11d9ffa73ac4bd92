/// Compares whole conversions with the scalar reference: every row of the table, and the entries
/// that no row uses.
#include "tests/common/AllConversions.h"
#include "tests/common/CaseName.h"
#include "tests/common/GuardedPicture.h"
#include "tests/common/Random.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// Fills the stack that the next call will use with `byte`.
[[gnu::noinline]] void paintStack(std::uint8_t byte)
{
    std::uint8_t stack[65536];
    std::memset(stack, byte, sizeof(stack));
    asm volatile("" : : "r"(stack) : "memory");
}

class ConversionEntries : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& conversion = GetParam();
    const reference::RowConversion reference = reference::rowConversion(conversion.entry);

    /// Covers every tail: all widths up to two of the longest block.
    template<class CHECK>
    void forAllWidths(const CHECK& check) const
    {
        const unsigned least = std::max(1u, reference.leastWidth);
        for (unsigned width = least; width < std::max(97u, 2 * least + 9); ++width) {
            SCOPED_TRACE(testing::Message() << "width " << width);
            ASSERT_NO_FATAL_FAILURE(check(width));
        }
    }

    /// A picture of the source's format with the bytes that are read after its last row.
    GuardedPicture source(unsigned width, unsigned height, PictureLayout layout = {}) const
    {
        const std::size_t row = rowBytes(conversion.src(), width);
        layout.slack = std::max(row, reference.bytesRead(width)) - row;
        return {height, row, layout};
    }

    void fill(GuardedPicture& picture, Content content, std::uint64_t seed) const
    {
        Random random(seed);
        for (unsigned y = 0; y < picture.height(); ++y) {
            random.fill(picture.row(y), content);
            conversion.limit(picture.row(y));
        }
    }

    /// Converts a picture to another one, or in place, and checks all bytes of both. What is on the
    /// stack before the call must not matter.
    void expectConverts(GuardedPicture& src, GuardedPicture& dst, unsigned width,
                        std::uint64_t seed) const
    {
        std::vector<reference::WrittenRow> expected;
        for (unsigned y = 0; y < src.height(); ++y)
            expected.push_back(reference.convert(src.row(y).data(), width,
                                                 conversion.heightForPrimaries(src.height())));
        constexpr std::uint8_t kStacks[] = {0x00, 0xFF, 0xA5};
        paintStack(kStacks[seed % 3]);
        conversion.entry.function(width, src.height(), dst.top(), dst.rowStep(), src.top(),
                                  src.rowStep());
        for (unsigned y = 0; y < dst.height(); ++y) {
            ASSERT_TRUE(sameBytes(expected[y].bytes, expected[y].comparable(dst.row(y)),
                                  conversion.dst().groupBytes, y, seed))
                << "a pixel of the report is a group of " << conversion.dst().groupPixels;
        }
        ASSERT_TRUE(src.guardsIntact());
        ASSERT_TRUE(dst.guardsIntact());
    }

    void expectConverts(unsigned width, unsigned height, Content content, std::uint64_t seed) const
    {
        SCOPED_TRACE(testing::Message() << "width " << width << ", height " << height);
        // A copy copies as many bytes as the destination's rows lie apart, so its rows get no gap.
        const bool apart = !conversion.copies();
        Random random(seed);
        const auto layout = [&]() -> PictureLayout {
            return {.padding = apart ? random.upTo(17) : 0,
                    .bottomUp = apart && random.upTo(1) == 1};
        };
        GuardedPicture src = source(width, height, layout());
        GuardedPicture dst(height, rowBytes(conversion.dst(), width), layout());
        fill(src, content, seed);
        expectConverts(src, dst, width, seed);
    }
};

TEST_P(ConversionEntries, ConvertAnyPictureAndTouchNothingElse)
{
    std::uint64_t seed = 0;
    forAllWidths([&](unsigned width) {
        for (const Content content : kContents) {
            ++seed;
            const unsigned height = (width + seed) % 2 == 0 ? 1 : 3;
            ASSERT_NO_FATAL_FAILURE(expectConverts(width, height, content, seed));
        }
    });
    // Long rows with tails, and the rows of v210 that have loops of their own.
    for (const unsigned width : {720, 1279, 1280, 1281, 1286, 1919, 1920, 2048, 4095, 4096})
        ASSERT_NO_FATAL_FAILURE(expectConverts(width, 2, Content::Uniform, ++seed));
}

TEST_P(ConversionEntries, TellTheLineStandardByTheHeight)
{
    for (unsigned height = 575; height <= 577 && conversion.changes601(); ++height)
        ASSERT_NO_FATAL_FAILURE(expectConverts(26, height, Content::Uniform, height));
}

TEST_P(ConversionEntries, ConvertEveryCodeOfEachSample)
{
    // Each code twice, side by side, so that in 4:2:2 both kinds of chroma have all codes.
    const reference::Layout& layout = reference::layoutOf(conversion.entry.srcFormat);
    const unsigned width = 2 * (layout.maximum() + 1) + 6;
    const std::size_t samples = layout.is422() ? 2 : 4;
    for (std::size_t i = 0; i < samples + (layout.alphaAt < 0 ? 0 : 1); ++i) {
        GuardedPicture src = source(width, 1);
        GuardedPicture dst(1, conversion.copies() ? src.row(0).size()
                                                  : rowBytes(conversion.dst(), width));
        fill(src, Content::Uniform, i);
        for (unsigned x = 0; x < width; ++x) {
            if (i == samples)
                layout.write(src.top(), layout.bitOfAlpha(x), x / 2);
            else if (layout.at[i % layout.at.size()] >= 0)
                layout.write(src.top(), layout.bitOf(samples * x + i), x / 2);
        }
        ASSERT_NO_FATAL_FAILURE(expectConverts(src, dst, width, i));
    }
}

TEST_P(ConversionEntries, ConvertInPlaceWherePixelsKeepTheirSize)
{
    if (!conversion.copies() && conversion.src().groupBytes == conversion.dst().groupBytes &&
        conversion.src().groupPixels == conversion.dst().groupPixels) {
        forAllWidths([&](unsigned width) {
            GuardedPicture picture = source(width, 3, {.padding = 6});
            fill(picture, Content::Uniform, width);
            expectConverts(picture, picture, width, width);
        });
    }
}

/// In place, with the rows of the destination as close as they can be: each is written over rows
/// that have been read.
TEST_P(ConversionEntries, ConvertInPlaceToCloserRows)
{
    if (conversion.copies())
        return;
    forAllWidths([&](unsigned width) {
        constexpr unsigned kHeight = 5;
        const std::size_t in = rowBytes(conversion.src(), width);
        const std::size_t out = rowBytes(conversion.dst(), width);
        if (out > in)
            return;
        std::vector<std::uint8_t> bytes(kHeight * in + reference.bytesRead(width));
        Random(width).fill(std::span(bytes), Content::Uniform);
        conversion.limit(bytes);
        const std::vector<std::uint8_t> before = bytes;
        conversion.entry.function(width, kHeight, bytes.data(), static_cast<unsigned>(out),
                                  bytes.data(), static_cast<unsigned>(in));
        for (unsigned y = 0; y < kHeight; ++y) {
            const auto row = reference.convert(before.data() + y * in, width,
                                               conversion.heightForPrimaries(kHeight));
            for (std::size_t i = 0; i < out; ++i)
                ASSERT_EQ(bytes[y * out + i] & ~row.undefined[i], row.bytes[i] & ~row.undefined[i])
                    << "row " << y << ", byte " << i;
        }
        ASSERT_TRUE(
            std::equal(bytes.begin() + kHeight * out, bytes.end(), before.begin() + kHeight * out));
    });
}

TEST_P(ConversionEntries, LeaveEmptyPicturesAlone)
{
    for (const unsigned height : {0u, 0x80000000u, 0xffffffffu})
        for (const unsigned width : {1u, 5u, 96u})
            conversion.entry.function(width, height, nullptr, 384, nullptr, 384);
    if (!conversion.copies() && reference.leastWidth == 0)
        conversion.entry.function(0, 3, nullptr, 16, nullptr, 16);
}

INSTANTIATE_TEST_SUITE_P(All, ConversionEntries, testing::ValuesIn(allConversions()), caseName);

TEST(CopyWithoutConversion, CopiesAsManyBytesAsTheDestinationsRowsLieApart)
{
    const std::vector<std::uint8_t> src = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto copied = [&](unsigned dstRowBytes, unsigned srcRowBytes, std::size_t first) {
        std::vector<std::uint8_t> dst(9, 0);
        CopyWithoutConversion(1000, 2, dst.data(), dstRowBytes,
                              const_cast<std::uint8_t*>(src.data() + first), srcRowBytes);
        return dst;
    };
    EXPECT_EQ(copied(2, 5, 0), (std::vector<std::uint8_t>{1, 2, 6, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(copied(4, 3, 0), (std::vector<std::uint8_t>{1, 2, 3, 4, 4, 5, 6, 7, 0}))
        << "a row reaches into the next one of the source";
    EXPECT_EQ(copied(2, 0u - 4u, 4), (std::vector<std::uint8_t>{5, 6, 1, 2, 0, 0, 0, 0, 0}))
        << "a source from the bottom up";
}

// All samples of a colour together: another order of sums rounds differently, but only for few
// colours.
TEST(EveryColour, IsConvertedBetweenRGBAndYUV)
{
    const auto isConverted = [](PixelFormat from, PixelFormat to, ConversionFunction function,
                                void* src, unsigned width) {
        const auto expected =
            reference::rowConversion({from, Colorspace709, to, Colorspace709, function})
                .convert(static_cast<std::uint8_t*>(src), width, 1);
        std::vector<std::uint8_t> dst(expected.bytes.size());
        function(width, 1, dst.data(), 0, src, 0);
        return dst == expected.bytes;
    };
    // Four pixels of each colour. The last two have only pixels of the same colour beside them.
    std::vector<std::uint32_t> bgra(4 * 65536);
    for (unsigned red = 0; red < 256; ++red) {
        for (unsigned i = 0; i < bgra.size(); ++i)
            bgra[i] = red << 16 | i / 4;
        ASSERT_TRUE(isConverted(PixelFormat_BGRA, PixelFormat_2vuy,
                                Convert_8BGRA_FULL_To_8YUV422_HD, bgra.data(), 4 * 65536))
            << "red " << red;
    }
    // A pair of each Y, all with the same chroma.
    std::vector<std::uint8_t> yuv(2 * 512);
    for (unsigned chroma = 0; chroma < 65536; ++chroma) {
        for (unsigned i = 0; i < yuv.size(); ++i)
            yuv[i] = static_cast<std::uint8_t>(i % 2 ? i / 4 : i % 4 ? chroma : chroma >> 8);
        ASSERT_TRUE(isConverted(PixelFormat_2vuy, PixelFormat_BGRA,
                                Convert_8YUV422_HD_To_8BGRA_FULL, yuv.data(), 512))
            << "CbCr " << chroma;
    }
}

} // namespace
} // namespace kestrix::test
