/// The stages of the 8-bit RGB formats against their scalar forms.
#include "conversion/stages/RGB8.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/Levels.h"

#include <numeric>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::saturated;
using Bytes = std::uint8_t;
using Words = std::uint16_t;
using Longs = std::uint32_t;

// Lanes of four pixels: in BGRAv8 pixel p has B, G, R, A from 4p on; in RGBv4 R is from 0, G from 4
// and B from 8 on. Of eight in RGBv8, R is from 0, G from 8 and B from 16 on.

std::vector<Bytes> allBytes()
{
    std::vector<Bytes> all(256);
    std::iota(all.begin(), all.end(), Bytes{0});
    return all;
}

/// Around both ends of a byte and of a signed lane.
const std::vector<Words> kLanes = {0,      1,      254,    255,    256,   0x3fff,
                                   0x7fff, 0x8000, 0x8001, 0xff00, 0xffff};

/// The same with something above the 16 bits that count.
std::vector<Longs> dirtyLanes()
{
    std::vector<Longs> lanes;
    for (const Longs lane : kLanes)
        for (const Longs above : {0u, 1u, 0x7fffu, 0xffffu})
            lanes.push_back(above << 16 | lane);
    return lanes;
}

template<class STAGE>
auto unpacksToBGRAv8(std::string name, std::string_view order)
{
    return stageCase<STAGE, Bytes, Words>(name, allBytes(), 255, [=](const Bytes* in, Words* out) {
        for (int i = 0; i < 16; ++i) {
            const auto at = order.find("BGRA"[i % 4]);
            out[i] = at == order.npos ? 255 : in[i / 4 * 4 + at];
        }
    });
}

template<class STAGE>
auto unpacksToRGBv4(std::string name, std::string_view order)
{
    return stageCase<STAGE, Bytes, Longs>(name, allBytes(), 255, [=](const Bytes* in, Longs* out) {
        for (int c = 0; c < 3; ++c)
            for (int p = 0; p < 4; ++p)
                out[4 * c + p] = in[4 * p + order.find("RGB"[c])];
    });
}

template<class STAGE>
auto packsBGRAv8(std::string name, std::string_view order)
{
    return stageCase<STAGE, Words, Bytes>(name, kLanes, 0xffff, [=](const Words* in, Bytes* out) {
        for (int i = 0; i < 16; ++i)
            out[i] = saturated(in[i / 4 * 4 + std::string_view("BGRA").find(order[i % 4])]);
    });
}

template<class STAGE>
auto packsRGBv4(std::string name, std::string_view order)
{
    return stageCase<STAGE, Longs, Bytes>(
        name, dirtyLanes(), 0xffffffff, [=](const Longs* in, Bytes* out) {
            for (int i = 0; i < 16; ++i) {
                const auto c = std::string_view("RGB").find(order[i % 4]);
                out[i] = c == order.npos ? 255 : saturated(static_cast<Words>(in[4 * c + i / 4]));
            }
        });
}

template<class STAGE>
auto reordersBytes(std::string name, std::string_view from, std::string_view to, bool alphaSurvives)
{
    return stageCase<STAGE, Bytes, Bytes>(name, allBytes(), 255, [=](const Bytes* in, Bytes* out) {
        for (std::size_t i = 0; i < STAGE::kIn * to.size(); ++i) {
            const char component = to[i % to.size()];
            out[i] = component == 'A' && !alphaSurvives
                         ? 255
                         : in[i / to.size() * from.size() + from.find(component)];
        }
    });
}

class RGB8Stages : public testing::TestWithParam<StageCase> {};

TEST_P(RGB8Stages, EqualTheirScalarForms)
{
    GetParam().expectScalar(20240101);
}

INSTANTIATE_TEST_SUITE_P(
    Unpack, RGB8Stages,
    testing::Values(unpacksToBGRAv8<UNPACK_ARGB_TO_BGRAv8>("UNPACK_ARGB_TO_BGRAv8", "ARGB"),
                    unpacksToBGRAv8<UNPACK_BGRA_TO_BGRAv8>("UNPACK_BGRA_TO_BGRAv8", "BGRA"),
                    unpacksToBGRAv8<UNPACK_RGBA_TO_BGRAv8>("UNPACK_RGBA_TO_BGRAv8", "RGBA"),
                    unpacksToBGRAv8<UNPACK_BGRX_TO_BGRAv8>("UNPACK_BGRX_TO_BGRAv8", "BGRX"),
                    unpacksToRGBv4<UNPACK_ARGB_TO_RGBv4>("UNPACK_ARGB_TO_RGBv4", "ARGB"),
                    unpacksToRGBv4<UNPACK_BGRA_TO_RGBv4>("UNPACK_BGRA_TO_RGBv4", "BGRA"),
                    unpacksToRGBv4<UNPACK_RGBA_TO_RGBv4>("UNPACK_RGBA_TO_RGBv4", "RGBA"),
                    stageCase<UNPACK_BGRA_TO_RGBv8, Bytes, Words>(
                        "UNPACK_BGRA_TO_RGBv8", allBytes(), 255,
                        [](const Bytes* in, Words* out) {
                            for (int i = 0; i < 24; ++i)
                                out[i] =
                                    in[i % 8 * 4 + std::string_view("BGRA").find("RGB"[i / 8])];
                        })),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Pack, RGB8Stages,
    testing::Values(packsBGRAv8<PACK_BGRAv8_TO_BGRA>("PACK_BGRAv8_TO_BGRA", "BGRA"),
                    packsBGRAv8<PACK_BGRAv8_TO_ARGB>("PACK_BGRAv8_TO_ARGB", "ARGB"),
                    packsBGRAv8<PACK_BGRAv8_TO_RGBA>("PACK_BGRAv8_TO_RGBA", "RGBA"),
                    packsRGBv4<PACK_RGBv4_TO_BGRA>("PACK_RGBv4_TO_BGRA", "BGRA"),
                    packsRGBv4<PACK_RGBv4_TO_ARGB>("PACK_RGBv4_TO_ARGB", "ARGB"),
                    packsRGBv4<PACK_RGBv4_TO_RGBA>("PACK_RGBv4_TO_RGBA", "RGBA"),
                    stageCase<PACK_RGBv8_TO_BGRA, Words, Bytes>(
                        "PACK_RGBv8_TO_BGRA", kLanes, 0xffff,
                        [](const Words* in, Bytes* out) {
                            for (int p = 0; p < 8; ++p)
                                for (int i = 0; i < 4; ++i)
                                    out[4 * p + i] = i == 3 ? 255 : saturated(in[8 * (2 - i) + p]);
                        })),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Regroup, RGB8Stages,
    testing::Values(
        reordersBytes<UNPACK_RGB_TO_RGBA_SSSE3>("UNPACK_RGB_TO_RGBA_SSSE3", "RGB", "RGBA", false),
        reordersBytes<PACK_RGBA_TO_RGB>("PACK_RGBA_TO_RGB", "RGBA", "RGB", false),
        reordersBytes<ENDIAN_SWAP_PACKED_RGB>("ENDIAN_SWAP_PACKED_RGB", "ARGB", "BGRA", true),
        stageCase<BGRAv8_TO_RGBv4, Words, Longs>("BGRAv8_TO_RGBv4", kLanes, 0xffff,
                                                 [](const Words* in, Longs* out) {
                                                     for (int i = 0; i < 12; ++i)
                                                         out[i] = in[i % 4 * 4 + 2 - i / 4];
                                                 }),
        stageCase<RGBv4_TO_BGRAv8, Longs, Words>(
            "RGBv4_TO_BGRAv8", {0, 1, 255, 256, 0x8000, 0xffff}, 0xffff,
            [](const Longs* in, Words* out) {
                for (int i = 0; i < 16; ++i)
                    out[i] = static_cast<Words>(i % 4 == 3 ? 0xffff : in[4 * (2 - i % 4) + i / 4]);
            })),
    caseName);

template<class UNPACK>
void expectMergedReorders()
{
    expectMergedLikeListed<BIND<UNPACK, PACK_RGBv4_TO_ARGB>, Bytes>(1, allBytes(), 255);
    expectMergedLikeListed<BIND<UNPACK, PACK_RGBv4_TO_BGRA>, Bytes>(2, allBytes(), 255);
    expectMergedLikeListed<BIND<UNPACK, PACK_RGBv4_TO_RGBA>, Bytes>(3, allBytes(), 255);
}

TEST(RGB8MergedForms, EqualTheStagesInWhosePlaceTheyStand)
{
    expectMergedReorders<UNPACK_ARGB_TO_RGBv4>();
    expectMergedReorders<UNPACK_BGRA_TO_RGBv4>();
    expectMergedReorders<UNPACK_RGBA_TO_RGBv4>();
    // Within longer lists, as entries have them.
    expectMergedLikeListed<BIND3<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>,
                           Bytes>(4, allBytes(), 255);
    expectMergedLikeListed<
        BIND3<UNPACK_RGB_TO_RGBA_SSSE3, UNPACK_RGBA_TO_RGBv4, PACK_RGBv4_TO_BGRA>, Bytes>(
        5, allBytes(), 255);
}

} // namespace
} // namespace kestrix::test
