/// Whole conversions against the scalar reference: every row of the table that has a function, and
/// the entries that no row leads to.
#include "conversion/ConversionEntries.h"
#include "conversion/PixelFormats.h"
#include "tests/reference/Conversions.h"
#include "tests/support/CaseName.h"
#include "tests/support/Difference.h"
#include "tests/support/GuardedPicture.h"
#include "tests/support/Random.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

struct Conversion {
    std::string name;
    ConversionEntry entry;

    const PixelFormatInfo& src() const { return *findPixelFormat(entry.srcFormat); }
    const PixelFormatInfo& dst() const { return *findPixelFormat(entry.dstFormat); }
    bool copies() const { return entry.function == CopyWithoutConversion; }
};

void PrintTo(const Conversion& conversion, std::ostream* out)
{
    *out << conversion.name;
}

std::vector<Conversion> allConversions()
{
    std::vector<Conversion> all;
    for (std::size_t i = 0; i < std::size(conversions); ++i) {
        const Conversion row{{}, conversions[i]};
        if (row.entry.function != nullptr)
            all.push_back({"Row" + std::to_string(i) + "_" + row.src().engineName + "_To_" +
                               row.dst().engineName,
                           row.entry});
    }
    const auto add = [&](const char* name, PixelFormat src, PixelFormat dst,
                         ConversionFunction function) {
        all.push_back({name, {src, ColorspaceUnspecified, dst, ColorspaceUnspecified, function}});
    };
    add("ARGBToBGRA_Scalar", PixelFormat_ARGB, PixelFormat_BGRA,
        Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar);
    add("BGRAToARGB_Scalar", PixelFormat_BGRA, PixelFormat_ARGB,
        Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar);
    add("ARGBToRGB3", PixelFormat_ARGB, PixelFormat_RGB3, Convert_8ARGB_FULL_To_8RGB_FULL);
    add("BGRAToRGB3", PixelFormat_BGRA, PixelFormat_RGB3, Convert_8BGRA_FULL_To_8RGB_FULL);
    return all;
}

class ConversionEntries : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& conversion() const { return GetParam(); }

    /// Every width up to several of the largest block, then some with tails far from the start.
    std::vector<unsigned> widths() const
    {
        std::vector<unsigned> all;
        for (unsigned width = std::max(1u, reference.leastWidth); width <= 3 * 32 + 1; ++width)
            all.push_back(width);
        all.insert(all.end(), {720, 1279, 1280, 1281, 1920, 4095});
        return all;
    }

    const reference::RowConversion reference = reference::rowConversion(GetParam().entry);

    void SetUp() override { ASSERT_TRUE(reference) << "no scalar form to compare with"; }

    static void fill(GuardedPicture& picture, Content content, std::uint64_t seed)
    {
        Random random(seed);
        for (unsigned y = 0; y < picture.height(); ++y)
            random.fill(picture.row(y), content);
    }

    /// The rows that `src` should become.
    std::vector<std::vector<std::uint8_t>> expectedRows(GuardedPicture& src, unsigned width) const
    {
        std::vector<std::vector<std::uint8_t>> rows(src.height());
        for (unsigned y = 0; y < src.height(); ++y) {
            rows[y].resize(rowBytes(conversion().dst(), width));
            reference.convert(src.row(y).data(), rows[y].data(), width);
        }
        return rows;
    }

    void convert(GuardedPicture& src, GuardedPicture& dst, unsigned width) const
    {
        conversion().entry.function(width, src.height(), dst.top(), dst.rowStep(), src.top(),
                                    src.rowStep());
    }

    void expectRows(std::vector<std::vector<std::uint8_t>> expected, GuardedPicture& dst,
                    unsigned width, std::uint64_t seed) const
    {
        const std::size_t pixelBytes =
            conversion().dst().groupBytes / conversion().dst().groupPixels;
        for (unsigned y = 0; y < dst.height(); ++y) {
            for (const std::size_t byte : reference.undefinedBytes(width))
                expected[y][byte] = dst.row(y)[byte];
            ASSERT_TRUE(sameLanes<std::uint8_t>(expected[y], dst.row(y), pixelBytes, y, seed));
        }
    }
};

TEST_P(ConversionEntries, ConvertAnyPictureAndTouchNothingElse)
{
    // A copy takes as many bytes as the destination's rows lie apart, so it gets them close.
    const bool apart = !conversion().copies();
    std::uint64_t seed = 0;
    for (const unsigned width : widths()) {
        for (const unsigned height : {1u, 4u}) {
            for (const Content content : kContents) {
                SCOPED_TRACE(testing::Message() << "width " << width << ", height " << height);
                Random random(++seed);
                const auto layout = [&](std::size_t slack) -> PictureLayout {
                    return {.padding = apart ? random.upTo(17) : 0,
                            .bottomUp = apart && random.upTo(1) == 1,
                            .slack = slack};
                };
                GuardedPicture src(height, rowBytes(conversion().src(), width),
                                   layout(reference.readsBehind));
                GuardedPicture dst(height, rowBytes(conversion().dst(), width), layout(0));
                fill(src, content, seed);
                const auto expected = expectedRows(src, width);
                convert(src, dst, width);
                expectRows(expected, dst, width, seed);
                EXPECT_TRUE(src.guardsIntact());
                EXPECT_TRUE(dst.guardsIntact());
                if (HasFailure())
                    return;
            }
        }
    }
}

class ConversionsOfOnePixelSize : public ConversionEntries {};

TEST_P(ConversionsOfOnePixelSize, ConvertInPlace)
{
    for (const unsigned width : widths()) {
        SCOPED_TRACE(testing::Message() << "width " << width);
        GuardedPicture picture(3, rowBytes(conversion().src(), width), {.padding = 6});
        fill(picture, Content::Uniform, width);
        const auto expected = expectedRows(picture, width);
        convert(picture, picture, width);
        expectRows(expected, picture, width, width);
        ASSERT_TRUE(picture.guardsIntact());
    }
}

TEST_P(ConversionEntries, LeaveEmptyPicturesAlone)
{
    for (const unsigned height : {0u, 0x80000000u, 0xffffffffu})
        for (const unsigned width : {1u, 5u, 96u})
            conversion().entry.function(width, height, nullptr, 384, nullptr, 384);
    if (!conversion().copies() && reference.leastWidth == 0)
        conversion().entry.function(0, 3, nullptr, 16, nullptr, 16);
}

std::vector<Conversion> conversionsOfOnePixelSize()
{
    std::vector<Conversion> all = allConversions();
    std::erase_if(all, [](const Conversion& conversion) {
        return conversion.copies() || conversion.src().groupBytes != conversion.dst().groupBytes ||
               conversion.src().groupPixels != conversion.dst().groupPixels;
    });
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, ConversionEntries, testing::ValuesIn(allConversions()), caseName);
INSTANTIATE_TEST_SUITE_P(All, ConversionsOfOnePixelSize,
                         testing::ValuesIn(conversionsOfOnePixelSize()), caseName);

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

} // namespace
} // namespace kestrix::test
