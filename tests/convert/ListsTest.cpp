/// What the C library tells of formats and conversions, beside the layouts of the scalar reference,
/// the stages of the engine and its lookup.
#include "convert/KestrixPixelConversion.h"
#include "docs/printed/EntriesThatTellTheirPipelines.h"
#include "tests/reference/Conversions.h"

#include "conversion/PixelFormats.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

TEST(FormatList, HasTheFormatsOfTheReference)
{
    ASSERT_EQ(kestrix_format_count(), 30U);
    std::set<std::string> words;
    for (std::size_t i = 0; i < 30; ++i) {
        kestrix_format_info info;
        info.struct_size = sizeof(info);
        ASSERT_EQ(kestrix_format_at(i, &info), KESTRIX_OK);
        SCOPED_TRACE(info.name);
        const auto& layout = reference::layoutOf(static_cast<PixelFormat>(info.code));
        ASSERT_EQ(std::uint32_t{layout.code}, info.code);
        const bool alpha = layout.is422() ? layout.alphaAt >= 0 : layout.at[3] >= 0;
        const kestrix_range range = layout.levels.full ? KESTRIX_RANGE_FULL : KESTRIX_RANGE_STUDIO;
        EXPECT_EQ(info.components,
                  layout.is422() ? (alpha ? KESTRIX_COMPONENTS_YCBCRA : KESTRIX_COMPONENTS_YCBCR)
                                 : (alpha ? KESTRIX_COMPONENTS_RGBA : KESTRIX_COMPONENTS_RGB));
        EXPECT_EQ(info.depth, static_cast<unsigned>(layout.levels.bits));
        EXPECT_EQ(info.range, layout.is422() ? KESTRIX_RANGE_STUDIO : range);
        EXPECT_EQ(info.alpha_range, alpha ? range : KESTRIX_RANGE_NONE);
        EXPECT_EQ(info.chroma, layout.is422() ? KESTRIX_CHROMA_422 : KESTRIX_CHROMA_NONE);
        // A group holds as many bits as its samples lie in.
        const std::size_t unitsAPixel = layout.is422() ? 2 : 4;
        EXPECT_EQ(info.group_bytes * 8 * layout.at.size(),
                  info.group_pixels * unitsAPixel * layout.unitBits);
        EXPECT_TRUE(words.insert(info.words).second) << info.words;

        kestrix_format_info same;
        same.struct_size = sizeof(same);
        ASSERT_EQ(kestrix_format_by_name(info.name, &same), KESTRIX_OK);
        EXPECT_EQ(same.code, info.code);
        ASSERT_EQ(kestrix_format_by_code(info.code, &same), KESTRIX_OK);
        EXPECT_STREQ(same.name, info.name);
        std::size_t bytes = 0;
        for (const std::uint32_t width : {1u, 2u, 5u, 6u, 7u, 8u, 4096u}) {
            ASSERT_EQ(kestrix_row_bytes(info.code, width, &bytes), KESTRIX_OK);
            const std::size_t samples = width * unitsAPixel;
            EXPECT_GE(bytes * 8, samples * layout.unitBits / layout.at.size());
            EXPECT_EQ(bytes % info.group_bytes, 0U);
            EXPECT_LT(bytes, samples * layout.unitBits / layout.at.size() / 8 + info.group_bytes);
        }
        EXPECT_EQ(kestrix_row_bytes(info.code, 0xffffffffu, &bytes), KESTRIX_TOO_LARGE);
    }
    kestrix_format_info info;
    info.struct_size = sizeof(info);
    EXPECT_EQ(kestrix_format_by_name("ARGB", &info), KESTRIX_OK);
    EXPECT_EQ(info.code, 32U);
    for (const char* name : {"", "v21", "v2100", "V210", "32"})
        EXPECT_EQ(kestrix_format_by_name(name, &info), KESTRIX_UNKNOWN_FORMAT) << name;
    EXPECT_EQ(kestrix_format_by_code(0, &info), KESTRIX_UNKNOWN_FORMAT);
    EXPECT_EQ(kestrix_format_at(30, &info), KESTRIX_BAD_INDEX);
    EXPECT_EQ(kestrix_format_by_name(nullptr, &info), KESTRIX_NULL_POINTER);
    EXPECT_EQ(kestrix_format_at(0, nullptr), KESTRIX_NULL_POINTER);
}

// The entries linked here tell their pipelines and convert nothing.
TEST(ConversionList, TellsWhatTheStagesAsk)
{
    ASSERT_EQ(kestrix_conversion_count(), kConversionCount);
    for (unsigned row = 0; row < kConversionCount; ++row) {
        SCOPED_TRACE(row);
        kestrix_conversion told;
        told.struct_size = sizeof(told);
        ASSERT_EQ(kestrix_conversion_at(row, 576, &told), KESTRIX_OK);
        EXPECT_EQ(told.row, row);
        EXPECT_EQ(told.src_format, conversions[row].srcFormat);
        EXPECT_EQ(told.src_colorspace, conversions[row].srcColorspace);
        EXPECT_EQ(told.dst_format, conversions[row].dstFormat);
        EXPECT_EQ(told.dst_colorspace, conversions[row].dstColorspace);

        ToldPipeline pipeline;
        conversions[row].function(0, 0, &pipeline, 0, nullptr, 0);
        EXPECT_EQ(told.least_width, std::max(1u, pipeline.leastWidth));
        // Between RGB formats no row's end needs whole blocks.
        if (reference::layoutOf(conversions[row].srcFormat).is422() ||
            reference::layoutOf(conversions[row].dstFormat).is422()) {
            EXPECT_EQ(told.block, std::max(1u, pipeline.block));
        }

        const bool changes601 =
            told.src_colorspace != told.dst_colorspace &&
            (told.src_colorspace == Colorspace601 || told.dst_colorspace == Colorspace601);
        EXPECT_EQ(told.lines, changes601 ? 625U : 0U);
        for (const std::uint32_t height : {0u, 486u, 575u, 577u, 1080u}) {
            ASSERT_EQ(kestrix_conversion_at(row, height, &told), KESTRIX_OK);
            EXPECT_EQ(told.lines, changes601 ? 525U : 0U) << height;
        }
    }
    kestrix_conversion told;
    told.struct_size = sizeof(told);
    EXPECT_EQ(kestrix_conversion_at(kConversionCount, 0, &told), KESTRIX_BAD_INDEX);
}

TEST(ConversionList, IsSearchedAsTheEngineDoes)
{
    constexpr Colorspace kColorspaces[] = {Colorspace601, Colorspace709, Colorspace2020,
                                           ColorspaceUnspecified};
    for (const auto& src : kPixelFormats)
        for (const auto& dst : kPixelFormats)
            for (const Colorspace from : kColorspaces)
                for (const Colorspace to : kColorspaces) {
                    kestrix_conversion found;
                    found.struct_size = sizeof(found);
                    char words[KESTRIX_WORDS_SIZE] = "";
                    const auto function = GetConversionFunction(src.code, dst.code, from, to);
                    const kestrix_status status = kestrix_find_conversion(
                        src.code, from, dst.code, to, 0, &found, words, sizeof(words));
                    ASSERT_EQ(status, function ? KESTRIX_OK : KESTRIX_NO_CONVERSION);
                    ASSERT_EQ(words[0] == 0, status == KESTRIX_OK) << words;
                    if (function) {
                        ASSERT_EQ(conversions[found.row].function, function);
                    } else {
                        ASSERT_LT(std::strlen(words), sizeof(words) - 1) << words << " is cut";
                    }
                }
}

TEST(ConversionList, SaysWhyThereIsNone)
{
    const auto why = [](std::uint32_t src, std::uint32_t from, std::uint32_t dst,
                        std::uint32_t to) {
        char words[KESTRIX_WORDS_SIZE] = "";
        EXPECT_NE(kestrix_find_conversion(src, from, dst, to, 0, nullptr, words, sizeof(words)),
                  KESTRIX_OK);
        return std::string(words);
    };
    EXPECT_EQ(why(KESTRIX_FORMAT_A04l, KESTRIX_COLORSPACE_709, KESTRIX_FORMAT_RGB3,
                  KESTRIX_COLORSPACE_709),
              "no row leads from A04l to RGB3");
    EXPECT_EQ(why(KESTRIX_FORMAT_S12L, 1, KESTRIX_FORMAT_RGBA, 1),
              "no row leads from S12L, which is only written");
    EXPECT_EQ(why(KESTRIX_FORMAT_RGBA, 1, KESTRIX_FORMAT_BGRX, 1),
              "no row leads to BGRX, which is only read");
    EXPECT_EQ(why(KESTRIX_FORMAT_2vuy, 0, KESTRIX_FORMAT_YUY2, 2),
              "no row leads from 2vuy to YUY2 in 601 to 2020; there are rows in any one "
              "colourspace, 709 to 601");
    EXPECT_EQ(why(0x12345678, 1, KESTRIX_FORMAT_BGRA, 1),
              "no source format has the code 0x12345678");
    EXPECT_EQ(why(KESTRIX_FORMAT_2vuy, 1, KESTRIX_FORMAT_BGRA, 9),
              "no destination colourspace has the code 0x00000009");

    // A line is cut to the room that there is.
    char words[8] = "1234567";
    EXPECT_EQ(kestrix_find_conversion(KESTRIX_FORMAT_A04l, 1, KESTRIX_FORMAT_RGB3, 1, 0, nullptr,
                                      words, 5),
              KESTRIX_NO_CONVERSION);
    EXPECT_STREQ(words, "no r");
    EXPECT_EQ(words[5], '6');
    EXPECT_EQ(kestrix_find_conversion(KESTRIX_FORMAT_A04l, 1, KESTRIX_FORMAT_RGB3, 1, 0, nullptr,
                                      nullptr, 5),
              KESTRIX_NULL_POINTER);
}

TEST(Structs, MayBeOfALaterVersion)
{
    struct {
        kestrix_conversion known;
        std::uint64_t later = ~std::uint64_t{0};
    } larger;
    larger.known.struct_size = sizeof(larger);
    ASSERT_EQ(kestrix_conversion_at(5, 0, &larger.known), KESTRIX_OK);
    EXPECT_EQ(larger.known.row, 5U);
    EXPECT_EQ(larger.known.struct_size, sizeof(larger));
    EXPECT_EQ(larger.later, 0U);

    kestrix_format_info info;
    for (const std::size_t size : {std::size_t{0}, sizeof(info) - 1, std::size_t{4097},
                                   std::numeric_limits<std::size_t>::max()}) {
        info.struct_size = size;
        EXPECT_EQ(kestrix_format_at(0, &info), KESTRIX_BAD_STRUCT_SIZE) << size;
        EXPECT_EQ(info.struct_size, size);
    }
}

TEST(Statuses, HaveWordsOfTheirOwn)
{
    std::set<std::string> words;
    for (int status = KESTRIX_OK; status <= KESTRIX_BAD_THREADS + 1; ++status)
        EXPECT_TRUE(words.insert(kestrix_status_words(static_cast<kestrix_status>(status))).second);
}

} // namespace
} // namespace kestrix::test
