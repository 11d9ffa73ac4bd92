/// Every 8-bit colour there is through the conversions between RGB and YUV.
#include "conversion/ConversionEntries.h"
#include "tests/reference/Levels.h"
#include "tests/reference/YUV.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

TEST(EveryColour, FromRGBToYUV)
{
    // Four pixels of each, of which the last two have nothing else beside them.
    std::vector<std::uint32_t> src(4 * 65536);
    std::vector<std::uint8_t> dst(2 * src.size());
    for (unsigned r = 0; r < 256; ++r) {
        for (unsigned i = 0; i < src.size(); ++i)
            src[i] = r << 16 | i / 4;
        Convert_8BGRA_FULL_To_8YUV422_HD(static_cast<unsigned>(src.size()), 1, dst.data(), 0,
                                         src.data(), 0);
        for (unsigned gb = 0; gb < 65536; ++gb) {
            std::uint16_t bgra[8], uyvy[4];
            for (int i = 0; i < 8; ++i)
                bgra[i] = (r << 16 | gb) >> 8 * (i % 4) & 0xff;
            reference::toUYVY({reference::kFull8_709ToYUV, 8, 8}, bgra, uyvy, 2);
            std::uint8_t expected[4];
            std::transform(uyvy, uyvy + 4, expected, reference::saturated);
            ASSERT_TRUE(std::equal(expected, expected + 4, &dst[8 * gb + 4]))
                << "RGB " << r << ' ' << gb / 256 << ' ' << gb % 256;
        }
    }
}

TEST(EveryColour, FromYUVToRGB)
{
    const reference::YUVToRGB toStudio{reference::kYUVToStudio709, 8, 8};
    std::uint8_t toFull[256];
    for (unsigned x = 0; x < 256; ++x)
        toFull[x] = reference::saturated(
            reference::Rescale({8, false}, {8, true})(static_cast<std::uint16_t>(x)));

    // Of each Y a pair, all of one chroma.
    std::vector<std::uint8_t> src(2 * 512), dst(4 * 512);
    for (unsigned chroma = 0; chroma < 65536; ++chroma) {
        const auto cb = static_cast<std::uint8_t>(chroma >> 8);
        const auto cr = static_cast<std::uint8_t>(chroma);
        for (unsigned y = 0; y < 256; ++y) {
            const auto luma = static_cast<std::uint8_t>(y);
            const std::uint8_t pair[] = {cb, luma, cr, luma};
            std::copy(pair, pair + 4, &src[4 * y]);
        }
        Convert_8YUV422_HD_To_8BGRA_FULL(512, 1, dst.data(), 0, src.data(), 0);
        for (unsigned x = 0; x < 512; ++x) {
            const auto [r, g, b] =
                reference::toRGB(toStudio, {static_cast<int>(x / 2), cb, cr}, x % 2 != 0);
            const std::uint8_t expected[] = {toFull[b], toFull[g], toFull[r], 255};
            ASSERT_TRUE(std::equal(expected, expected + 4, &dst[4 * x]))
                << "YCbCr " << x / 2 << ' ' << +cb << ' ' << +cr << ", pixel " << x % 2;
        }
    }
}

} // namespace
} // namespace kestrix::test
