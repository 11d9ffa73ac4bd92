/// One body for the tests of all stages, and one for the merged forms that stand in their place.
#pragma once

#include "tests/support/CaseName.h"
#include "tests/support/Difference.h"
#include "tests/support/Random.h"

#include "conversion/Transform.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {

/// A stage and the comparison of it with its scalar form.
struct StageCase {
    std::string name;
    std::function<void(std::uint64_t seed)> expectScalar;
};

inline void PrintTo(const StageCase& stage, std::ostream* out)
{
    *out << stage.name;
}

/// Steps of every content, then steps with each boundary value in each lane among random ones.
template<class IN>
std::vector<IN> stageInput(std::size_t lanes, const std::vector<IN>& boundaries, IN maximum,
                           std::uint64_t seed)
{
    constexpr std::size_t kStepsOfAContent = 64;
    Random random(seed);
    std::vector<IN> input;
    std::vector<IN> step(lanes);
    for (const Content content : kContents) {
        for (std::size_t i = 0; i < kStepsOfAContent; ++i) {
            random.fill(std::span(step), content, maximum);
            input.insert(input.end(), step.begin(), step.end());
        }
    }
    for (const IN boundary : boundaries) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            random.fill(std::span(step), Content::Uniform, maximum);
            step[lane] = boundary;
            input.insert(input.end(), step.begin(), step.end());
        }
    }
    return input;
}

/// Runs steps through a stage and through its scalar form.
template<class IN, class OUT>
void expectSteps(const std::function<void(const void* in, void* out, std::size_t steps)>& run,
                 const std::function<void(const IN* in, OUT* out)>& scalar,
                 const std::vector<IN>& in, std::size_t inLanes, std::size_t outLanes,
                 std::uint64_t seed)
{
    const std::size_t steps = in.size() / inLanes;
    std::vector<OUT> expected(steps * outLanes), got(expected.size());
    for (std::size_t step = 0; step < steps; ++step)
        scalar(in.data() + step * inLanes, expected.data() + step * outLanes);
    run(in.data(), got.data(), steps);
    EXPECT_TRUE(
        sameLanes(std::span<const OUT>(expected), std::span<const OUT>(got), outLanes, 0, seed))
        << "a pixel of the report is a step here, and a component a lane";
}

/// Runs a whole number of a pipeline's blocks that lie one behind the other.
template<class PIPELINE>
void runBlocks(const void* in, void* out, std::size_t blocks)
{
    using namespace KSX::PixelConversion;
    Transform<PIPELINE, kWholeBlocks, kPrefetchBlocks>::apply(
        in, 0, out, 0, static_cast<unsigned>(blocks * AsPipeline<PIPELINE>::kBlock), 1, nullptr);
}

/// `STAGE` beside `scalar`, which does a row, for stages that look beyond a step: in rows of one
/// step, of two and of more.
template<class STAGE, class IN, class OUT>
void expectRows(const std::function<void(const IN* in, OUT* out, std::size_t pixels)>& scalar,
                const std::vector<IN>& in, std::uint64_t seed)
{
    using namespace KSX::PixelConversion;
    for (const unsigned steps : {1u, 2u, 3u, 16u}) {
        SCOPED_TRACE(testing::Message() << "rows of " << steps << " steps");
        const unsigned inBytes = steps * InputOf<STAGE>::kBytes;
        const unsigned outBytes = steps * OutputOf<STAGE>::kBytes;
        const unsigned pixels = steps * STAGE::kIn;
        expectSteps<IN, OUT>(
            [&](const void* src, void* dst, std::size_t rows) {
                Transform<STAGE, kWholeBlocks, kPrefetchBlocks>::apply(
                    src, static_cast<int>(inBytes), dst, static_cast<int>(outBytes), pixels,
                    static_cast<unsigned>(rows), nullptr);
            },
            [&](const IN* src, OUT* dst) { scalar(src, dst, pixels); }, in, inBytes / sizeof(IN),
            outBytes / sizeof(OUT), seed);
    }
}

/// `STAGE` beside `scalar`, which does one step. A step's pixels are lanes of `IN` and `OUT` as
/// they lie in memory. Values come up to `maximum`, and each of `boundaries` in every lane.
template<class STAGE, class IN, class OUT>
StageCase stageCase(std::string name, const std::vector<IN>& boundaries, IN maximum,
                    const std::function<void(const IN* in, OUT* out)>& scalar)
{
    using namespace KSX::PixelConversion;
    return {std::move(name), [=](std::uint64_t seed) {
                expectSteps(
                    runBlocks<STAGE>, scalar,
                    stageInput(InputOf<STAGE>::kBytes / sizeof(IN), boundaries, maximum, seed),
                    InputOf<STAGE>::kBytes / sizeof(IN), OutputOf<STAGE>::kBytes / sizeof(OUT),
                    seed);
            }};
}

/// Runs `PIPELINE` with merged forms and stage by stage, and expects the same bytes. `LANE` is what
/// the values of the input lie in, up to `maximum`.
template<class PIPELINE, class LANE>
void expectMergedLikeListed(std::uint64_t seed, const std::vector<LANE>& boundaries, LANE maximum)
{
    using namespace KSX::PixelConversion;
    using P = AsPipeline<PIPELINE>;
    using Stages = CompositionOf<P>;
    static_assert(
        !std::same_as<typename details::Merged<P, wideBlock<P>()>::type, typename P::Stages>,
        "no form takes the place of any of these stages");

    constexpr std::size_t kLanes = Stages::kInBytes / sizeof(LANE);
    const auto in = stageInput(kLanes, boundaries, maximum, seed);
    const std::size_t blocks = in.size() / kLanes;
    std::vector<std::uint8_t> expected(blocks * Stages::kOutBytes), got(expected.size());
    runBlocks<AsListed<P>>(in.data(), expected.data(), blocks);
    runBlocks<P>(in.data(), got.data(), blocks);
    EXPECT_TRUE(sameLanes(std::span<const std::uint8_t>(expected),
                          std::span<const std::uint8_t>(got), Stages::kOutBytes / P::kBlock, 0,
                          seed));
}

} // namespace kestrix::test
