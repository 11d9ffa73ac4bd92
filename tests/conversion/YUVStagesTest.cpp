/// The stages of 8-bit 4:2:2, and those between RGB and YUV, against their scalar forms.
#include "conversion/colour/RGBToYUV.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/stages/YUV8.h"
#include "tests/conversion/StageTest.h"
#include "tests/reference/Layouts.h"
#include "tests/reference/YUV.h"

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;
using reference::Matrix;
using Bytes = std::uint8_t;
using Words = std::uint16_t;
using Longs = std::uint32_t;

// --- 4:2:2 ---------------------------------------------------------------------------------------

template<class STAGE, class IN, class OUT>
void expectMoves(int exchange)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    const auto row = [=](const IN* in, OUT* out, std::size_t pixels) {
        for (std::size_t i = 0; i < 2 * pixels; ++i)
            out[i] = reference::saturated(in[i ^ exchange]);
    };
    expectRows<STAGE, IN, OUT>(
        row, stageInput<IN>(16, {0, 255, static_cast<IN>(256), static_cast<IN>(0x8000)}, ~IN{}, 1),
        1);
}

template<class STAGE>
void expectRebuildsChroma(PixelFormat format)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    const reference::Layout& layout = reference::layoutOf(format);
    const auto row = [&](const Bytes* in, Words* out, std::size_t pixels) {
        for (std::size_t x = 0; x < pixels; x += 2, out += 8) {
            const auto even = reference::pixelOf422(layout, in, x, pixels);
            const auto odd = reference::pixelOf422(layout, in, x + 1, pixels);
            const int lanes[] = {even.cb, even.y, even.cr, odd.y, odd.cb, even.y, odd.cr, odd.y};
            std::copy(std::begin(lanes), std::end(lanes), out);
        }
    };
    expectRows<STAGE, Bytes, Words>(row, stageInput<Bytes>(16, {10, 11}, 255, 2), 2);
}

TEST(YUV8Stages, EqualTheirScalarForms)
{
    expectMoves<UNPACK_UYVY_TO_UYVYv8, Bytes, Words>(0);
    expectMoves<UNPACK_YUY2_TO_UYVYv8, Bytes, Words>(1);
    expectMoves<PACK_UYVYv8_TO_UYVY, Words, Bytes>(0);
    expectMoves<PACK_UYVYv8_TO_YUY2, Words, Bytes>(1);
    expectRebuildsChroma<UNPACK_UYVY_TO_UYVY444v8_T<kVectors>>(PixelFormat_2vuy);
    expectRebuildsChroma<UNPACK_YUY2_TO_UYVY444v8_T<kVectors>>(PixelFormat_YUY2);
}

/// The rows that `fixedRow` makes of a float matrix.
void expectFixedRows(FixedRow (*fixedRow)(const float*, int), const float* matrix,
                     const Matrix& expected)
{
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(fixedRow(matrix, i / 3).at[i % 3], expected[i / 3][i % 3]) << "entry " << i;
}

// --- RGB to YUV ----------------------------------------------------------------------------------

/// Values about black at both depths, and lanes that are negative when read as signed.
const std::vector<Words> kRGBLanes = {0, 1, 40, 63, 64, 65, 0x7fff, 0x8000, 0xffff};

template<class RANGE, int A, int B>
void expectRGBToYUV(const Matrix& matrix, bool studio = false)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    expectFixedRows(fixedRGB2YUVRow, RANGE::RGB2YUVMatrix(), matrix);
    constexpr std::uint64_t kSeed = 100 * A + B;
    expectRows<BGRAv8_TO_UYVYv8<RANGE, A, B, P1, C0>, Words, Words>(
        [&](const Words* in, Words* out, std::size_t pixels) {
            reference::toUYVY({matrix, A, B, studio}, in, out, pixels);
        },
        stageInput<Words>(16, kRGBLanes, (1 << A) - 1, kSeed), kSeed);
}

TEST(RGBToYUV, EqualsItsScalarForm)
{
    using namespace reference;
    expectRGBToYUV<ComputerRange601, 8, 8>(kFull8_601ToYUV);
    expectRGBToYUV<ComputerRange709, 8, 8>(kFull8_709ToYUV);
    expectRGBToYUV<ComputerRange2020, 8, 8>(kFull8_2020ToYUV);
    expectRGBToYUV<FullRange601<10>, 10, 10>(kFull10_601ToYUV);
    expectRGBToYUV<FullRange709<10>, 10, 10>(kFull10_709ToYUV);
    expectRGBToYUV<FullRange2020<10>, 10, 10>(kFull10_2020ToYUV);
    expectRGBToYUV<FullRange601<10>, 10, 8>(kFull10_601ToYUV);
    expectRGBToYUV<FullRange709<10>, 10, 8>(kFull10_709ToYUV);
    expectRGBToYUV<FullRange601<10>, 8, 10>(kFull10_601ToYUV);
    expectRGBToYUV<FullRange709<10>, 8, 10>(kFull10_709ToYUV);
    expectRGBToYUV<FullRange601<12>, 12, 10>(kFull12_601ToYUV);
    expectRGBToYUV<FullRange709<12>, 12, 10>(kFull12_709ToYUV);
    expectRGBToYUV<FullRange601<12>, 12, 8>(kFull12_601ToYUV);
    expectRGBToYUV<FullRange709<12>, 12, 8>(kFull12_709ToYUV);
    expectRGBToYUV<StudioRange601, 10, 10>(kStudio601ToYUV, true);
    expectRGBToYUV<StudioRange709, 10, 10>(kStudio709ToYUV, true);
    expectRGBToYUV<StudioRange2020, 10, 10>(kStudio2020ToYUV, true);
    expectRGBToYUV<StudioRange601, 10, 8>(kStudio601ToYUV, true);
    expectRGBToYUV<StudioRange709, 10, 8>(kStudio709ToYUV, true);
}

/// Eight pixels of `value` but for one lane of the second.
template<class STAGE>
std::vector<Bytes> packedAroundBlueOfP1(Words value, Words blueOfP1)
{
    std::vector<Words> in(32, value);
    in[4] = blueOfP1;
    std::vector<Bytes> out(16);
    runBlocks<BIND<STAGE, PACK_UYVYv8_TO_UYVY>>(in.data(), out.data(), 1);
    return out;
}

TEST(RGBToYUV, OnPixelsWorkedOutByHand)
{
    const auto grey = [](Bytes y) {
        return std::vector<Bytes>{128, y, 128, y, 128, y, 128, y, 128, y, 128, y, 128, y, 128, y};
    };
    using Full = BGRAv8_TO_UYVYv8<ComputerRange601, 8, 8, P1, C0>;
    EXPECT_EQ(packedAroundBlueOfP1<Full>(0, 0), grey(16));
    EXPECT_EQ(packedAroundBlueOfP1<Full>(255, 255), grey(235));

    // Blue at 40, 24 below black: without black 65512, and between zeros a mean of 16378, of which
    // come a Cb of 2222 and a Cr of -213. That takes the odd pixels' Y with it.
    using Studio = BGRAv8_TO_UYVYv8<StudioRange601, 10, 8, P1, C0>;
    const std::vector<Bytes> belowBlack = {255, 16, 0,   0,  255, 16, 0,   0,
                                           128, 16, 128, 16, 128, 16, 128, 16};
    EXPECT_EQ(packedAroundBlueOfP1<Studio>(64, 40), belowBlack);
}

// --- YUV to RGB ----------------------------------------------------------------------------------

/// Two pairs, in the lanes of UYVY444v8 to those of RGBv4.
void toRGBv4(const reference::YUVToRGB& c, const Words* in, Longs* out)
{
    for (int x = 0; x < 4; ++x) {
        const Words* const chroma = in + 4 * x;
        const auto rgb =
            reference::toRGB(c, {chroma[1 + x % 2 * 2], chroma[0], chroma[2]}, x % 2 != 0);
        for (int i = 0; i < 3; ++i)
            out[4 * i + x] = static_cast<Longs>(rgb[i]);
    }
}

template<class RANGE, int A, int B, PrecisionFlag P = P1>
void expectYUVToRGB(const Matrix& matrix, bool studio)
{
    SCOPED_TRACE(__PRETTY_FUNCTION__);
    expectFixedRows(fixedYUV2RGBRow, RANGE::YUV2RGBMatrix(), matrix);
    constexpr std::uint64_t kSeed = 1000 * P + 100 * A + B;
    // Partial sums saturate for values far beyond the depth, where they are rounded.
    std::vector<Words> boundaries;
    for (const int value : {16, 128, 235, 240})
        for (const int beside : {-1, 0, 1})
            boundaries.push_back(static_cast<Words>((value << (A - 8)) + beside));
    if (P == P1)
        boundaries.insert(boundaries.end(), {0x7fff, 0x8000, 0xffff});
    expectSteps<Words, Longs>(
        runBlocks<UYVY444v8_TO_RGBv4<RANGE, A, B, P>>,
        [&](const Words* in, Longs* out) {
            toRGBv4({matrix, A, B, studio, P == P1}, in, out);
        },
        stageInput<Words>(16, boundaries, (1 << A) - 1, kSeed), 16, 12, kSeed);
}

TEST(YUVToRGB, EqualsItsScalarForm)
{
    using namespace reference;
    expectYUVToRGB<StudioRange601, 10, 10>(kYUVToStudio601, true);
    expectYUVToRGB<StudioRange709, 10, 10>(kYUVToStudio709, true);
    expectYUVToRGB<StudioRange2020, 10, 10>(kYUVToStudio2020, true);
    expectYUVToRGB<StudioRange601, 8, 10>(kYUVToStudio601, true);
    expectYUVToRGB<StudioRange709, 8, 10>(kYUVToStudio709, true);
    expectYUVToRGB<StudioRange2020, 8, 10>(kYUVToStudio2020, true);
    expectYUVToRGB<StudioRange601, 8, 8>(kYUVToStudio601, true);
    expectYUVToRGB<StudioRange709, 8, 8>(kYUVToStudio709, true);
    expectYUVToRGB<StudioRange2020, 8, 8>(kYUVToStudio2020, true);
    expectYUVToRGB<ComputerRange601, 10, 8>(kYUVToFull601, false);
    expectYUVToRGB<ComputerRange709, 10, 8>(kYUVToFull709, false);
    expectYUVToRGB<ComputerRange2020, 10, 8>(kYUVToFull2020, false);
    expectYUVToRGB<ComputerRange601, 10, 8, P0>(kYUVToFull601, false);
    expectYUVToRGB<ComputerRange709, 10, 8, P0>(kYUVToFull709, false);
    expectYUVToRGB<ComputerRange2020, 10, 8, P0>(kYUVToFull2020, false);
}

TEST(YUVToRGB, OnPixelsWorkedOutByHand)
{
    // R, G, B of the even and of the odd pixel of a pair.
    using Pair = std::vector<Longs>;
    const auto pair = []<class STAGE>(Words y, Words cb, Words cr) {
        const std::vector<Words> in = {cb, y, cr, y, cb, y, cr, y, cb, y, cr, y, cb, y, cr, y};
        Pair out(12);
        runBlocks<STAGE>(in.data(), out.data(), 1);
        return Pair{out[0], out[4], out[8], out[1], out[5], out[9]};
    };
    using To8 = UYVY444v8_TO_RGBv4<StudioRange601, 8, 8, P1>;
    using To10 = UYVY444v8_TO_RGBv4<StudioRange601, 8, 10, P1>;
    EXPECT_EQ(pair.operator()<To8>(235, 128, 128), Pair(6, 235));
    EXPECT_EQ(pair.operator()<To8>(255, 128, 128), Pair(6, 235));
    EXPECT_EQ(pair.operator()<To8>(15, 128, 128), Pair(6, 16));
    EXPECT_EQ(pair.operator()<To10>(235, 128, 128), Pair(6, 940));
    EXPECT_EQ(pair.operator()<To10>(16, 128, 128), Pair(6, 64));

    // 5 * 19077 and 2 * 26151 are 1 and 0 units of 65536 when cut apart, and 2 when cut together.
    using Fast = UYVY444v8_TO_RGBv4<ComputerRange601, 10, 8, P0>;
    EXPECT_EQ((pair.operator()<Fast>(69, 512, 514)), (Pair{1, 0, 1, 2, 1, 1}));
}

} // namespace
} // namespace kestrix::test
