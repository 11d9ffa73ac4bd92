/// Pictures whose sizes need more bits than usual ones: many lines, long rows, rows far apart. The
/// expected bytes are those of the same conversion of small pictures, which other tests compare
/// with the reference.
#include "tests/common/AllConversions.h"
#include "tests/common/Random.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// All conversions that copy nothing, or every `step`th of them.
std::vector<Conversion> conversionsInStepsOf(std::size_t step)
{
    std::vector<Conversion> chosen;
    const std::vector<Conversion> all = allConversions();
    for (std::size_t i = 0; i < all.size(); i += step)
        if (!all[i].copies())
            chosen.push_back(all[i]);
    return chosen;
}

/// Random samples; a large number of them repeats.
std::vector<std::uint8_t> randomRow(const Conversion& conversion, std::size_t bytes)
{
    std::vector<std::uint8_t> row(bytes);
    const std::span some(row.data(), std::min<std::size_t>(bytes, 100002));
    Random(bytes).fill(some, Content::Uniform);
    conversion.limit(some);
    for (std::size_t i = some.size(); i < bytes; ++i)
        row[i] = row[i - some.size()];
    return row;
}

/// The bytes of a row without its last pixels, whose chroma may not be defined.
std::size_t comparedBytes(const Conversion& conversion, unsigned width)
{
    return rowBytes(conversion.dst(), width - 2);
}

TEST(LargePictures, MayHaveMoreThan32767Lines)
{
    constexpr unsigned kWidth = 98;
    constexpr unsigned kHeight = 33000;
    constexpr unsigned kPart = 5500;
    for (const Conversion& conversion : conversionsInStepsOf(3)) {
        const auto srcRow = static_cast<unsigned>(rowBytes(conversion.src(), kWidth)) + 64;
        const auto dstRow = static_cast<unsigned>(rowBytes(conversion.dst(), kWidth));
        std::vector<std::uint8_t> src = randomRow(conversion, std::size_t{srcRow} * kHeight);
        std::vector<std::uint8_t> dst(std::size_t{dstRow} * kHeight);
        std::vector<std::uint8_t> expected(dst.size());
        conversion.entry.function(kWidth, kHeight, dst.data(), dstRow, src.data(), srcRow);
        for (unsigned y = 0; y < kHeight; y += kPart)
            conversion.entry.function(kWidth, kPart, expected.data() + std::size_t{dstRow} * y,
                                      dstRow, src.data() + std::size_t{srcRow} * y, srcRow);
        for (unsigned y = 0; y < kHeight; ++y)
            ASSERT_EQ(std::memcmp(dst.data() + std::size_t{dstRow} * y,
                                  expected.data() + std::size_t{dstRow} * y,
                                  comparedBytes(conversion, kWidth)),
                      0)
                << conversion.name << ", row " << y;
    }
}

// The pixels repeat, so the result repeats too.
TEST(LargePictures, MayHaveMoreThan131071BlocksInARow)
{
    constexpr unsigned kPeriod = 480;
    constexpr unsigned kWidth = 14000 * kPeriod; // 140,000 blocks of the longest
    for (const Conversion& conversion : conversionsInStepsOf(20)) {
        const std::size_t srcPeriod = rowBytes(conversion.src(), kPeriod);
        const std::size_t dstPeriod = rowBytes(conversion.dst(), kPeriod);
        std::vector<std::uint8_t> src = randomRow(conversion, srcPeriod);
        src.reserve(14000 * srcPeriod + 64);
        for (unsigned i = 1; i < 14000; ++i)
            src.insert(src.end(), src.begin(),
                       src.begin() + static_cast<std::ptrdiff_t>(srcPeriod));
        std::vector<std::uint8_t> few(4 * dstPeriod);
        conversion.entry.function(4 * kPeriod, 1, few.data(), 0, src.data(), 0);
        src.resize(14000 * srcPeriod + 64);
        std::vector<std::uint8_t> dst(14000 * dstPeriod);
        conversion.entry.function(kWidth, 1, dst.data(), 0, src.data(), 0);
        for (unsigned i = 0; i < 13999; ++i)
            ASSERT_EQ(std::memcmp(dst.data() + i * dstPeriod, few.data() + (i == 0 ? 0 : dstPeriod),
                                  dstPeriod),
                      0)
                << conversion.name << ", period " << i;
    }
}

TEST(LargePictures, MayHaveRowsThatAreFarApart)
{
    constexpr unsigned kWidth = 98;
    constexpr unsigned kHeight = 6;
    constexpr std::size_t kStride = std::size_t{1} << 30;
    const auto reserve = [] {
        return static_cast<std::uint8_t*>(mmap(nullptr, kHeight * kStride, PROT_READ | PROT_WRITE,
                                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    };
    std::uint8_t* const src = reserve();
    std::uint8_t* const dst = reserve();
    ASSERT_NE(static_cast<void*>(src), MAP_FAILED);
    ASSERT_NE(static_cast<void*>(dst), MAP_FAILED);
    for (const Conversion& conversion : conversionsInStepsOf(20)) {
        const std::size_t srcRow = rowBytes(conversion.src(), kWidth);
        const std::size_t dstRow = rowBytes(conversion.dst(), kWidth);
        const std::vector<std::uint8_t> rows = randomRow(conversion, kHeight * srcRow + 64);
        for (unsigned y = 0; y < kHeight; ++y)
            std::copy_n(rows.data() + y * srcRow, srcRow + 64, src + y * kStride);
        conversion.entry.function(kWidth, kHeight, dst, kStride, src, kStride);
        std::vector<std::uint8_t> expected(kHeight * dstRow);
        std::vector<std::uint8_t> near = rows;
        conversion.entry.function(kWidth, kHeight, expected.data(), static_cast<unsigned>(dstRow),
                                  near.data(), static_cast<unsigned>(srcRow));
        for (unsigned y = 0; y < kHeight; ++y)
            ASSERT_EQ(std::memcmp(dst + y * kStride, expected.data() + y * dstRow,
                                  comparedBytes(conversion, kWidth)),
                      0)
                << conversion.name << ", row " << y;
    }
    munmap(src, kHeight * kStride);
    munmap(dst, kHeight * kStride);
}

} // namespace
} // namespace kestrix::test
