/// How pipelines walk rows: what each stage sees, at the ends of a row above all, and which bytes
/// are touched.
#include "conversion/Transform.h"
#include "tests/conversion/ArtificialStages.h"
#include "tests/support/CaseName.h"
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

/// What the walk of a pipeline depends on.
struct WalkCase {
    struct ListedStage {
        int id;
        unsigned pixels; ///< a step
        Kind kind;
        Numbers output;
    };
    using Apply = void(const void* src, int srcRowBytes, void* dst, int dstRowBytes, unsigned width,
                       unsigned height, const void* userContext);

    std::string name;
    unsigned block;
    Numbers in, out;
    std::vector<ListedStage> stages;
    Apply* anyWidth;
    Apply* wholeBlocks;

    bool has(Kind kind) const
    {
        return std::any_of(stages.begin(), stages.end(),
                           [=](const ListedStage& stage) { return stage.kind == kind; });
    }

    /// The least width that the general walker takes.
    unsigned smallestWidth() const
    {
        if (has(Kind::Back))
            return has(Kind::Ahead) ? block + 1 : block;
        return has(Kind::Ahead) ? 1 : 0;
    }
};

void PrintTo(const WalkCase& walk, std::ostream* out)
{
    *out << walk.name;
}

template<class... STAGES>
std::vector<WalkCase::ListedStage> listed(StageList<STAGES...>)
{
    return {{STAGES::kId, STAGES::kIn, STAGES::kKind, numbersOf<typename STAGES::Output>}...};
}

template<unsigned BLOCK, class PIPELINE>
WalkCase walkCase(const char* name)
{
    using P = AsPipeline<PIPELINE>;
    static_assert(P::kBlock == BLOCK);
    return {name,
            BLOCK,
            numbersOf<typename CompositionOf<P>::Input>,
            numbersOf<typename CompositionOf<P>::Output>,
            listed(typename P::Stages{}),
            Transform<P, kAnyWidth, kPrefetchBlocks>::apply,
            Transform<P, kWholeBlocks, kPrefetchBlocks>::apply};
}

/// A number of a row as it should be. What is made from bytes behind a row is not defined.
struct Number {
    std::uint32_t value;
    bool defined;
};
using Row = std::vector<Number>;

/// Runs a stage over a row that is a whole number of blocks.
Row runPlainly(const WalkCase::ListedStage& stage, const Row& in)
{
    Row out = in;
    for (std::size_t x = 0; x < in.size(); ++x) {
        const std::size_t inGroup = x % stage.pixels;
        out[x].value = 3 * in[x].value + static_cast<unsigned>(stage.id);
        if (stage.kind == Kind::Constant) {
            out[x] = {kConstantNumber, true};
        } else if (stage.kind == Kind::Back && inGroup == 0) {
            const Number before = in[x == 0 ? 0 : x - 1];
            out[x] = {out[x].value + 7 * before.value, in[x].defined && before.defined};
        } else if (stage.kind == Kind::Ahead && inGroup == stage.pixels - 1) {
            const Number behind = in[x + 1 == in.size() ? x : x + 1];
            out[x] = {out[x].value + 5 * behind.value, in[x].defined && behind.defined};
        }
        out[x].value &= stage.output.mask();
    }
    return out;
}

/// The operations that a stage should see in rows of `pixels` pixels, whole blocks.
std::string expectedOperations(const WalkCase::ListedStage& stage, unsigned pixels, unsigned rows)
{
    std::string row(pixels / stage.pixels, 's');
    if (stage.kind == Kind::Back && !row.empty())
        row.front() = 'f';
    if (stage.kind == Kind::Ahead && !row.empty())
        row.back() = 'l';
    std::string all;
    for (unsigned y = 0; y < rows; ++y)
        all += row;
    return all;
}

class RowWalk : public testing::TestWithParam<WalkCase> {
protected:
    const WalkCase& walk = GetParam();

    void expectWalk(WalkCase::Apply* apply, unsigned width) const
    {
        constexpr unsigned kHeight = 3;
        const unsigned wholeBlocks = width / walk.block * walk.block;
        const unsigned pixels = (width + walk.block - 1) / walk.block * walk.block;

        // From the last whole block a look ahead goes 16 bytes into the one that is not whole.
        const std::size_t rowBytes = walk.in.rowBytes(width);
        const std::size_t seen = walk.in.rowBytes(wholeBlocks) + 16;
        const bool looksOut = walk.has(Kind::Ahead) && wholeBlocks != 0 && pixels != wholeBlocks;
        const std::size_t slack = looksOut && seen > rowBytes ? seen - rowBytes : 0;

        GuardedPicture src(kHeight, rowBytes,
                           {.padding = 5, .bottomUp = width % 2 == 1, .slack = slack});
        GuardedPicture dst(kHeight, walk.out.rowBytes(width),
                           {.padding = 3, .bottomUp = width % 3 == 1});
        Random random(width);
        for (unsigned y = 0; y < kHeight; ++y)
            random.fill(src.row(y), Content::Uniform);

        operations.fill({});
        apply(src.top(), static_cast<int>(src.rowStep()), dst.top(),
              static_cast<int>(dst.rowStep()), width, kHeight, nullptr);

        for (const auto& stage : walk.stages)
            EXPECT_EQ(operations[stage.id], expectedOperations(stage, pixels, kHeight));
        EXPECT_TRUE(src.guardsIntact());
        EXPECT_TRUE(dst.guardsIntact());
        for (unsigned y = 0; y < kHeight; ++y) {
            Row row(pixels);
            for (unsigned x = 0; x < width; ++x)
                row[x] = {walk.in.get(src.row(y).data(), x), true};
            for (const auto& stage : walk.stages)
                row = runPlainly(stage, row);
            expectRow(row, dst.row(y), width, y);
        }
    }

    void expectRow(const Row& expected, std::span<const std::uint8_t> got, unsigned width,
                   unsigned y) const
    {
        const Numbers& out = walk.out;
        for (unsigned x = 0; x < got.size() / out.groupBytes * out.groupPixels; ++x) {
            const bool known = x < width && !(walk.has(Kind::Ahead) && x + 1 == width);
            ASSERT_TRUE(expected[x].defined || !known) << "pixel " << x;
            ASSERT_TRUE(!expected[x].defined || out.get(got.data(), x) == expected[x].value)
                << "row " << y << ", pixel " << x << ": expected " << expected[x].value << ", got "
                << out.get(got.data(), x);
        }
        for (std::size_t at = 0; at < got.size(); ++at) {
            const bool filler = at % out.groupBytes >= out.size * out.groupPixels;
            ASSERT_TRUE(!filler || got[at] == Numbers::kFiller) << "row " << y << ", byte " << at;
        }
    }
};

TEST_P(RowWalk, ConvertsEveryWidthAndTouchesNothingElse)
{
    for (unsigned width = walk.smallestWidth(); width <= 4 * walk.block + 1; ++width) {
        SCOPED_TRACE(testing::Message() << "width " << width);
        expectWalk(walk.anyWidth, width);
        if (width % walk.block == 0)
            expectWalk(walk.wholeBlocks, width);
        if (HasFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Plain, RowWalk,
    testing::Values(
        walkCase<4, PLAIN<1, 4>>("Smallest"), walkCase<8, Nx<2, PLAIN<1, 4>>>("Repeated"),
        walkCase<16, PLAIN<1, 16, Packed<3>, Packed<4>>>("ThreeBytesAPixel"),
        walkCase<12, PLAIN<1, 12, Packed<16, 6>>>("GroupsOfSix"),
        walkCase<32, PLAIN<1, 32, Packed<36, 8>, Packed<4>>>("GroupsOfEight"),
        walkCase<24, BIND<PLAIN<1, 12, Packed<16, 6>, Packed<4>>,
                          PLAIN<2, 8, Packed<4>, Packed<4, 2>>>>("TwelvesAndEights"),
        walkCase<48, BIND4<PLAIN<1, 16, Packed<3>, Packed<4>>, PLAIN<2, 4, Packed<4>, Packed<8>>,
                           PLAIN<3, 2, Packed<8>>, PLAIN<4, 12, Packed<8>, Packed<16, 6>>>>(
            "SixteensToTwos"),
        walkCase<96, BIND<PLAIN<1, 32>, PLAIN<2, 12, Packed<4>, Packed<16, 6>>>>(
            "ThirtyTwosAndTwelves")),
    caseName);

// Every byte that is to be written is known, those of pixels behind the row too.
INSTANTIATE_TEST_SUITE_P(
    WholeGroups, RowWalk,
    testing::Values(walkCase<8, CONSTANT<1, 8, Packed<4>, Packed<4, 2>>>("Pairs"),
                    walkCase<4, CONSTANT<1, 4, Packed<4>, Packed<16, 4>>>("Fours"),
                    walkCase<12, CONSTANT<1, 12, Packed<4>, Packed<16, 6>>>("Sixes"),
                    walkCase<32, CONSTANT<1, 32, Packed<4>, Packed<36, 8>>>("Eights")),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    LooksBack, RowWalk,
    testing::Values(
        walkCase<4, LOOK_BACK<1, 4>>("Alone"),
        walkCase<8, BIND3<PLAIN<1, 4>, LOOK_BACK<2, 4>, PLAIN<3, 8, Packed<4>, Packed<4, 2>>>>(
            "InTheMiddle"),
        walkCase<24,
                 BIND3<LOOK_BACK<1, 4>, LOOK_BACK<2, 8>, PLAIN<3, 12, Packed<4>, Packed<16, 6>>>>(
            "Twice")),
    caseName);

// With 2 bytes a pixel the look goes 14 bytes past a row.
INSTANTIATE_TEST_SUITE_P(
    LooksAhead, RowWalk,
    testing::Values(walkCase<4, LOOK_AHEAD<1, 4>>("Alone"),
                    walkCase<8, LOOK_AHEAD<1, 8, Packed<2>, Packed<4>>>("TwoBytesAPixel"),
                    walkCase<8, LOOK_AHEAD<1, 8, Packed<4, 2>, Packed<4>>>("Pairs"),
                    walkCase<8, BIND<LOOK_AHEAD<1, 4>, PLAIN<2, 8>>>("WithinABlock"),
                    walkCase<24, BIND<LOOK_AHEAD<1, 12, Packed<16, 6>, Packed<4>>,
                                      PLAIN<2, 8, Packed<4>, Packed<4, 2>>>>("GroupsOfSix")),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    LooksBothWays, RowWalk,
    testing::Values(walkCase<8, BIND3<LOOK_AHEAD<1, 8, Packed<2>, Packed<4>>, LOOK_BACK<2, 4>,
                                      PLAIN<3, 8, Packed<4>, Packed<4, 2>>>>("TwoBytesAPixel"),
                    walkCase<12, BIND<LOOK_AHEAD<1, 4>, LOOK_BACK<2, 12>>>("WithinABlock"),
                    walkCase<24, BIND3<LOOK_AHEAD<1, 12, Packed<16, 6>, Packed<4>>, LOOK_BACK<2, 4>,
                                       PLAIN<3, 8>>>("GroupsOfSix")),
    caseName);

TEST(RowWalkHeights, BelowOneReadAsSignedDoNothing)
{
    operations.fill({});
    for (const unsigned height : {0u, 0x80000000u, 0xffffffffu}) {
        Transform<PLAIN<1, 4>, kAnyWidth, 8>::apply(nullptr, 4, nullptr, 4, 1, height, nullptr);
        Transform<PLAIN<1, 4>, kWholeBlocks, 8>::apply(nullptr, 16, nullptr, 16, 4, height,
                                                       nullptr);
        Transform<LOOK_BACK<1, 4>, kAnyWidth, 8>::apply(nullptr, 20, nullptr, 20, 5, height,
                                                        nullptr);
        Transform<LOOK_AHEAD<1, 4>, kAnyWidth, 8>::apply(nullptr, 20, nullptr, 20, 5, height,
                                                         nullptr);
    }
    EXPECT_EQ(operations[1], "");
}

} // namespace
} // namespace kestrix::test
