/// The forms that take 4:2:2 to RGB in one go, against the stages in whose place they run, where
/// the comparison of whole conversions has but a sample of what there is.
#include "conversion/Transform.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/RGB10.h"
#include "conversion/stages/RGB8.h"
#include "conversion/stages/V210.h"

#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using Longs = std::uint32_t;

/// Rows of one Cb and one Cr: all lumas beside all chromas, and each of them against its opposite
/// and itself, which is every sum that R and B can have, and every part of those of G.
template<class RANGE, class RESCALE, class PACK>
void expectEveryLumaAndChroma()
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    using P = BIND4<UNPACK_V210_TO_UYVY444v8_T<kVectors>, UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>,
                    RESCALE, PACK>;
    constexpr unsigned kWidth = 1032;
    std::vector<Longs> row(kWidth / 6 * 4), expected(kWidth), got(kWidth);
    for (Longs cb = 0; cb < 1024; ++cb) {
        for (const Longs cr : {cb, 1023 - cb}) {
            const auto luma = [](Longs i) { return i % 1024; };
            for (Longs group = 0; group < kWidth / 6; ++group) {
                const Longs y = 6 * group;
                Longs* const word = &row[4 * group];
                word[0] = cb | luma(y) << 10 | cr << 20;
                word[1] = luma(y + 1) | cb << 10 | luma(y + 2) << 20;
                word[2] = cr | luma(y + 3) << 10 | cb << 20;
                word[3] = luma(y + 4) | cr << 10 | luma(y + 5) << 20;
            }
            Transform<AsListed<P>, kWholeBlocks, kPrefetchBlocks>::apply(
                row.data(), 0, expected.data(), 0, kWidth, 1, nullptr);
            Transform<P, kWholeBlocks, kPrefetchBlocks>::apply(row.data(), 0, got.data(), 0, kWidth,
                                                               1, nullptr);
            ASSERT_EQ(expected, got) << "Cb " << cb << ", Cr " << cr;
        }
    }
}

TEST(MergedForms, EveryLumaBesideEveryChroma)
{
    using To8 = RGBv4_RESCALE<10, false, 8, true, P1>;
    using To10 = RGBv4_RESCALE<10, false, 10, true, P1>;
    expectEveryLumaAndChroma<StudioRange601, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange709, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange2020, To8, PACK_RGBv4_TO_BGRA>();
    expectEveryLumaAndChroma<StudioRange601, To10, PACK_RGBv4_TO_R210>();
    expectEveryLumaAndChroma<StudioRange709, To10, PACK_RGBv4_TO_R210>();
    expectEveryLumaAndChroma<StudioRange2020, To10, PACK_RGBv4_TO_R210>();
}

} // namespace
} // namespace kestrix::test
