/// Compares what runs with what is listed: every row of the table and the same row without fast
/// forms.
#include "tests/common/AllConversions.h"
#include "tests/common/Random.h"
#include "tests/conversion/listed/ListedConversion.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
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
/// all its rows lie in one place. `undefined` has the bits without a defined value set.
void expectSame(const Conversion& conversion, ConversionFunction listed, unsigned width,
                unsigned height, Bytes& src, const Bytes& undefined = {})
{
    Bytes expected(rowBytes(conversion.dst(), width)), got = expected;
    const auto rowStep = height == 1 ? static_cast<unsigned>(got.size()) : 0;
    listed(width, height, expected.data(), rowStep, src.data(), 0);
    conversion.entry.function(width, height, got.data(), rowStep, src.data(), 0);
    for (std::size_t i = 0; i < undefined.size(); ++i) {
        expected[i] &= static_cast<std::uint8_t>(~undefined[i]);
        got[i] &= static_cast<std::uint8_t>(~undefined[i]);
    }
    const auto [e, g] = std::mismatch(expected.begin(), expected.end(), got.begin());
    ASSERT_EQ(e, expected.end()) << "width " << width << ", height " << height << ", byte "
                                 << e - expected.begin() << ": listed " << +*e << ", got " << +*g;
}

TEST(FastForms, GiveTheBytesOfTheListedStages)
{
    forEachRow([](const Conversion& conversion, ConversionFunction listed) {
        const auto reference = reference::rowConversion(conversion.entry);
        // Whole wide blocks, a single block after them, tails, and a row of v210 with its own loop.
        for (const unsigned width : {26u, 96u, 108u, 131u, 1280u, 1926u}) {
            if (width < reference.leastWidth)
                continue;
            for (const Content content : kContents) {
                Bytes src(reference.bytesRead(width) + 64);
                Random(width).fill(std::span(src), content);
                conversion.limit(src);
                for (const unsigned height : {1u, 576u}) {
                    if (height != 1 && (!conversion.changes601() || width > 200))
                        continue;
                    const auto written = reference.convert(src.data(), width, height);
                    expectSame(conversion, listed, width, height, src,
                               {written.undefined.begin(), written.undefined.end()});
                }
            }
        }
    });
}

TEST(FastForms, GiveTheBytesOfTheListedStagesForEveryByteInEveryPlace)
{
    forEachRow([](const Conversion& conversion, ConversionFunction listed) {
        constexpr unsigned kWidth = 96;
        Bytes src(rowBytes(conversion.src(), kWidth) + 64);
        // One byte of a block counts up; the others are random.
        for (std::size_t place = 0; place < 64; ++place) {
            Random random(place);
            for (unsigned value = 0; value < 256; value += 4) {
                random.fill(std::span(src), Content::Uniform);
                for (unsigned i = 0; i < 4 && 64 * i + place < src.size(); ++i)
                    src[64 * i + place] = static_cast<std::uint8_t>(value + i);
                conversion.limit(src);
                expectSame(conversion, listed, kWidth, 1, src);
            }
        }
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
