/// Descriptions of pictures that can't be converted, at the edges of what can.
#include "tests/convert/CheckedPicture.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

constexpr unsigned kWidth = 10;
constexpr unsigned kHeight = 4;

/// A conversion that works, to be spoilt. No byte may be written then.
class Descriptions : public testing::Test {
protected:
    std::vector<std::uint8_t> m_srcBytes = std::vector<std::uint8_t>(20 * kHeight, 128);
    std::vector<std::uint8_t> m_dstBytes = std::vector<std::uint8_t>(40 * kHeight, 0);
    kestrix_picture m_src{
        sizeof(m_src),     KESTRIX_FORMAT_2vuy, KESTRIX_COLORSPACE_709, kWidth, kHeight, 20,
        m_srcBytes.data(), m_srcBytes.size()};
    kestrix_picture m_dst{
        sizeof(m_dst),     KESTRIX_FORMAT_BGRA, KESTRIX_COLORSPACE_709, kWidth, kHeight, 40,
        m_dstBytes.data(), m_dstBytes.size()};

    /// Every function gives the status, with words that have `words` in them.
    void expectRefused(kestrix_status status, const std::string& words, std::uint32_t flags = 0)
    {
        EXPECT_EQ(kestrix_convert(&m_src, &m_dst, flags), status);
        EXPECT_EQ(kestrix_convert_rows(&m_src, &m_dst, 0, 1, flags), status);
        EXPECT_EQ(kestrix_convert_by_threads(&m_src, &m_dst, 2, flags), status);
        char line[KESTRIX_WORDS_SIZE] = "";
        EXPECT_EQ(kestrix_check(&m_src, &m_dst, flags, line, sizeof(line)), status);
        EXPECT_NE(std::string(line).find(words), std::string::npos) << line;
        EXPECT_TRUE(std::ranges::all_of(m_dstBytes, [](auto byte) { return byte == 0; }));
    }
};

TEST_F(Descriptions, OfGoodPicturesAreTaken)
{
    char line[KESTRIX_WORDS_SIZE] = "same";
    EXPECT_EQ(kestrix_check(&m_src, &m_dst, 0, line, sizeof(line)), KESTRIX_OK);
    EXPECT_STREQ(line, "same");
    EXPECT_EQ(kestrix_check(&m_src, &m_dst, 0, nullptr, 0), KESTRIX_OK);
    EXPECT_EQ(kestrix_convert(&m_src, &m_dst, KESTRIX_CHECK_ONLY), KESTRIX_OK);
    EXPECT_EQ(kestrix_convert_rows(&m_src, &m_dst, 2, 2, 0), KESTRIX_OK);
    EXPECT_TRUE(std::ranges::all_of(m_dstBytes, [](auto byte) { return byte == 0; }));
    m_dst.colorspace = KESTRIX_COLORSPACE_UNSPECIFIED;
    EXPECT_EQ(kestrix_convert(&m_src, &m_dst, 0), KESTRIX_OK);
    // Y, Cb and Cr of 128 are a grey: (128 - 16) x 255 / 219.
    EXPECT_EQ(m_dstBytes.front(), 130);
    EXPECT_EQ(m_dstBytes.back(), 255);
}

TEST_F(Descriptions, WithNullPointersAreRefused)
{
    EXPECT_EQ(kestrix_convert(nullptr, &m_dst, 0), KESTRIX_NULL_POINTER);
    EXPECT_EQ(kestrix_convert(&m_src, nullptr, 0), KESTRIX_NULL_POINTER);
    EXPECT_EQ(kestrix_check(&m_src, &m_dst, 0, nullptr, 1), KESTRIX_NULL_POINTER);
    m_dst.bytes = nullptr;
    expectRefused(KESTRIX_NULL_POINTER, "destination");
}

TEST_F(Descriptions, OfUnknownVersionsAreRefused)
{
    for (const std::size_t size : {std::size_t{0}, sizeof(m_src) - 1, std::size_t{1} << 40}) {
        m_src.struct_size = size;
        expectRefused(KESTRIX_BAD_STRUCT_SIZE, "source");
    }
    struct {
        kestrix_picture known;
        std::uint64_t later = 0;
    } larger{m_dst};
    m_src.struct_size = sizeof(m_src);
    larger.known.struct_size = sizeof(larger);
    EXPECT_EQ(kestrix_convert(&m_src, &larger.known, KESTRIX_CHECK_ONLY), KESTRIX_OK);
    larger.later = 1;
    EXPECT_EQ(kestrix_convert(&m_src, &larger.known, 0), KESTRIX_BAD_STRUCT_SIZE);
}

TEST_F(Descriptions, WithUnknownCodesAreRefused)
{
    expectRefused(KESTRIX_BAD_FLAGS, "0x00000002", 2);
    m_src.colorspace = 3;
    expectRefused(KESTRIX_UNKNOWN_COLORSPACE, "source");
    m_src.colorspace = KESTRIX_COLORSPACE_2020;
    m_dst.colorspace = KESTRIX_COLORSPACE_601;
    expectRefused(KESTRIX_NO_CONVERSION, "2020 to 601");
    m_dst.format = 0;
    expectRefused(KESTRIX_UNKNOWN_FORMAT, "destination");
}

TEST_F(Descriptions, WithSizesThatDoNotFitAreRefused)
{
    m_src.width = 11;
    expectRefused(KESTRIX_SIZES_DIFFER, "11x4 to 10x4");
    m_src.width = 0;
    m_dst.width = 0;
    expectRefused(KESTRIX_EMPTY_PICTURE, "0x4");
    // 4 x 2^29 bytes are one more than the engine's rows can have.
    m_src.width = 1u << 29;
    m_dst.width = 1u << 29;
    m_src.row_bytes = std::ptrdiff_t{1} << 40;
    m_dst.row_bytes = std::ptrdiff_t{1} << 40;
    m_src.size = m_dst.size = std::numeric_limits<std::size_t>::max();
    expectRefused(KESTRIX_TOO_LARGE, "destination");
    m_src.width = m_dst.width = 0xffffffff;
    expectRefused(KESTRIX_TOO_LARGE, "source");
    m_src.width = m_dst.width = kWidth;
    m_src.height = m_dst.height = 0x80000000;
    expectRefused(KESTRIX_TOO_LARGE, "source");
}

TEST_F(Descriptions, WithRowsThatDoNotFitAreRefused)
{
    for (const std::ptrdiff_t rowBytes : {39, 0, -39, 1}) {
        m_dst.row_bytes = rowBytes;
        expectRefused(KESTRIX_ROW_BYTES_TOO_SMALL, "needs 40 bytes");
    }
    for (const std::ptrdiff_t rowBytes : {40, -40}) {
        m_dst.row_bytes = rowBytes;
        m_dst.size = m_dstBytes.size() - 1;
        expectRefused(KESTRIX_BUFFER_TOO_SMALL, "needs 160 bytes and has 159");
    }
    m_dst.size = std::numeric_limits<std::size_t>::max();
    for (const auto rowBytes :
         {std::numeric_limits<std::ptrdiff_t>::min(), std::numeric_limits<std::ptrdiff_t>::max(),
          std::ptrdiff_t{1} << 62, -(std::ptrdiff_t{1} << 62)}) {
        m_dst.row_bytes = rowBytes;
        expectRefused(KESTRIX_TOO_LARGE, "no memory");
    }
    m_dst.row_bytes = 40;
    m_dst.bytes = reinterpret_cast<void*>(std::numeric_limits<std::uintptr_t>::max() - 100);
    expectRefused(KESTRIX_TOO_LARGE, "no memory");

    m_src.height = m_dst.height = 1;
    m_dst.bytes = m_dstBytes.data();
    m_dst.row_bytes = std::numeric_limits<std::ptrdiff_t>::min();
    EXPECT_EQ(kestrix_convert(&m_src, &m_dst, 0), KESTRIX_OK) << "a row has no row below";
}

TEST_F(Descriptions, OfRowsThatThePictureLacksAreRefused)
{
    EXPECT_EQ(kestrix_convert_rows(&m_src, &m_dst, 3, 2, 0), KESTRIX_BAD_ROWS);
    EXPECT_EQ(kestrix_convert_rows(&m_src, &m_dst, 0, kHeight + 1, 0), KESTRIX_BAD_ROWS);
    EXPECT_EQ(kestrix_convert_rows(&m_src, &m_dst, 0xffffffff, 0xffffffff, 0), KESTRIX_BAD_ROWS);
    EXPECT_EQ(kestrix_convert_by_threads(&m_src, &m_dst, 0, 0), KESTRIX_BAD_THREADS);
    EXPECT_EQ(kestrix_convert_by_threads(&m_src, &m_dst, 0xffffffff, 0), KESTRIX_OK);
}

// Pictures of three rows in one small buffer, in all places: what is refused is what has a byte in
// common.
TEST(Overlaps, AreRefusedIfAByteBelongsToBoth)
{
    std::vector<std::uint8_t> bytes(512);
    unsigned taken = 0;
    for (std::size_t dstAt = 0; dstAt < 160; ++dstAt)
        for (const std::ptrdiff_t srcStep : {4, 9, 24, -24})
            for (const std::ptrdiff_t dstStep : {8, 24, 31, -24}) {
                const kestrix_picture src{sizeof(src), KESTRIX_FORMAT_2vuy, 1,  2, 3,
                                          srcStep,     bytes.data() + 60,   100};
                const kestrix_picture dst{sizeof(dst), KESTRIX_FORMAT_BGRA,  1,  2, 3,
                                          dstStep,     bytes.data() + dstAt, 200};
                std::vector<int> owner(bytes.size());
                bool shared = false;
                for (std::size_t row = 0; row < 3; ++row)
                    for (std::size_t i = 0; i < 4; ++i)
                        owner[60 + row * static_cast<std::size_t>(std::abs(srcStep)) + i] = 1;
                for (std::size_t row = 0; row < 3; ++row)
                    for (std::size_t i = 0; i < 8; ++i)
                        shared =
                            shared ||
                            owner[dstAt + row * static_cast<std::size_t>(std::abs(dstStep)) + i] ==
                                1;
                taken += shared ? 0 : 1;
                ASSERT_EQ(kestrix_convert(&src, &dst, KESTRIX_CHECK_ONLY),
                          shared ? KESTRIX_OVERLAP : KESTRIX_OK)
                    << dstAt << ", " << srcStep << ", " << dstStep;
            }
    EXPECT_GT(taken, 500U);
}

TEST(Overlaps, InPlaceAreTakenOnlyForTheSameRowsOfTheSameGroups)
{
    std::vector<std::uint8_t> bytes(512);
    kestrix_picture src{sizeof(src), KESTRIX_FORMAT_ARGB, 1, 2, 3, 10, bytes.data() + 64, 100};
    kestrix_picture dst = src;
    dst.format = KESTRIX_FORMAT_BGRA;
    EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OK);
    dst.row_bytes = -10;
    EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OVERLAP) << "upside down";
    dst.row_bytes = 11;
    EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OVERLAP) << "rows elsewhere";
    dst.row_bytes = 10;
    dst.bytes = bytes.data() + 65;
    EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OVERLAP) << "a byte further";
    dst.bytes = src.bytes;
    dst.format = KESTRIX_FORMAT_2vuy; // groups of two pixels
    EXPECT_EQ(kestrix_convert(&src, &dst, 0), KESTRIX_OVERLAP);
}

} // namespace
} // namespace kestrix::test
