/// Compares what runs with what is listed: every row of the table and the same row without fast
/// forms.
#include "tests/common/AllConversions.h"
#include "tests/common/GuardedPicture.h"
#include "tests/common/Random.h"
#include "tests/conversion/listed/ListedConversion.h"
#include "tests/reference/Conversions.h"

#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using Bytes = std::vector<std::uint8_t>;

/// Calls `check` for each row of the table that has stages.
template<class CHECK>
void forEachRow(const CHECK& check)
{
    const std::vector<Conversion> all = allConversions();
    for (unsigned row = 0; row < kConversionCount; ++row) {
        SCOPED_TRACE(all[row].name);
        if (all[row].copies())
            continue;
        check(all[row], listedConversion(row));
        if (testing::Test::HasFatalFailure())
            return;
    }
}

/// Converts a row of `width` pixels both ways. A tall picture selects the primaries for 625 lines;
/// all its rows lie in one place. If `reference` is given, bits without a defined value may differ.
void expectSame(const Conversion& conversion, ConversionFunction listed, unsigned width,
                unsigned height, Bytes& src, const reference::WrittenRow* reference = nullptr)
{
    Bytes expected(rowBytes(conversion.dst(), width)), got = expected;
    const auto rowStep = height == 1 ? static_cast<unsigned>(got.size()) : 0;
    listed(width, height, expected.data(), rowStep, src.data(), 0);
    conversion.entry.function(width, height, got.data(), rowStep, src.data(), 0);
    if (reference) {
        expected = reference->comparable(expected);
        got = reference->comparable(got);
    }
    ASSERT_TRUE(sameBytes(expected, got, conversion.dst().groupBytes, 0, 0))
        << "width " << width << ", height " << height;
}

TEST(FastForms, GiveTheBytesOfTheListedStages)
{
    forEachRow([](const Conversion& conversion, ConversionFunction listed) {
        const auto reference = reference::rowConversion(conversion.entry);
        const auto expectSameFor = [&](unsigned width, unsigned height, Content content) {
            Bytes src(reference.bytesRead(width) + 64);
            Random(width).fill(src, content);
            conversion.limit(src);
            const auto written = reference.convert(src.data(), width, height);
            expectSame(conversion, listed, width, height, src, &written);
        };
        // Whole wide blocks, a single block after them, tails, and a row of v210 with its own loop.
        for (const unsigned width : {26u, 96u, 108u, 131u, 1280u, 1926u})
            for (const Content content : kContents) {
                if (width < reference.leastWidth)
                    continue;
                expectSameFor(width, 1, content);
                if (conversion.changes601() && width < 200)
                    expectSameFor(width, 576, content);
            }
    });
}

TEST(FastForms, GiveTheBytesOfTheListedStagesForEveryByteInEveryPlace)
{
    forEachRow([](const Conversion& conversion, ConversionFunction listed) {
        // Whole blocks, and so many that each of their bytes has every value several times.
        constexpr unsigned kWidth = 96 * 1024;
        Bytes src(rowBytes(conversion.src(), kWidth) + 64);
        Random(kWidth).fill(src, Content::Uniform);
        conversion.limit(src);
        expectSame(conversion, listed, kWidth, 1, src);
    });
}

/// Each row has one Cb and one Cr. Tests all lumas with all chromas, and each chroma with its
/// opposite and with itself. That gives every sum that R and B can have, and every part of the sums
/// of G.
TEST(FastForms, GiveTheBytesOfTheListedStagesForEveryLumaBesideEveryChroma)
{
    forEachRow([](const Conversion& conversion, ConversionFunction listed) {
        if (conversion.entry.srcFormat != PixelFormat_v210 &&
            conversion.entry.srcFormat != PixelFormat_2vuy)
            return;
        const reference::Layout& layout = reference::layoutOf(conversion.entry.srcFormat);
        const unsigned largest = layout.maximum();
        // At least every luma, in whole blocks.
        const unsigned width = (largest / 48 + 1) * 48;
        Bytes src(rowBytes(conversion.src(), width) + 64);
        for (unsigned x = 0; x < width; ++x)
            layout.write(src.data(), layout.bitOf(2 * x + 1), x & largest);
        for (unsigned cb = 0; cb <= largest; ++cb) {
            for (const unsigned cr : {cb, largest - cb}) {
                for (unsigned x = 0; x < width; ++x)
                    layout.write(src.data(), layout.bitOf(2 * x), x % 2 == 0 ? cb : cr);
                expectSame(conversion, listed, width, 1, src);
            }
        }
    });
}

} // namespace
} // namespace kestrix::test
