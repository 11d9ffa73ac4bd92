/// How stages become a pipeline: nesting, repetition, rewriting.
#include "conversion/pipeline/Transform.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using KSX::PixelConversion::Kernel;
using KSX::PixelConversion::Packed;
using KSX::PixelConversion::Pixels;

/// How often the stage of each ID has run.
thread_local std::array<int, 10> s_steps;

/// A stage that makes `N` new numbers from `N` numbers, one a pixel.
template<int ID, unsigned N>
class PLAIN : public Kernel<N, N> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    static constexpr std::uint32_t number(std::uint32_t in) { return 3 * in + ID; }

    [[gnu::noinline]] Pixels<Output, N> step(const Pixels<Input, N>& in)
    {
        return made(ID, in, number);
    }

    /// A step of the stage `id`, which applies `number` to each pixel.
    template<class NUMBER>
    static Pixels<Output, N> made(int id, const Pixels<Input, N>& in, const NUMBER& number)
    {
        ++s_steps[id];
        std::uint32_t numbers[sizeof(in) / sizeof(std::uint32_t)];
        std::memcpy(numbers, &in, sizeof(numbers));
        for (std::uint32_t& each : numbers)
            each = number(each);
        Pixels<Output, N> out;
        std::memcpy(&out, numbers, sizeof(numbers));
        return out;
    }
};

/// A fast form of such stages.
template<int ID, unsigned N, class... PARTS>
class FORM : public PLAIN<ID, N> {
public:
    [[gnu::noinline]] Pixels<Packed<4>, N> step(const Pixels<Packed<4>, N>& in)
    {
        return this->made(ID, in, [](std::uint32_t number) {
            ((number = PARTS::number(number)), ...);
            return number;
        });
    }
};

using A = PLAIN<1, 4>;
using B = PLAIN<2, 4>;
using C = PLAIN<3, 4>;
using Eights = PLAIN<4, 8>;
using Twelves = PLAIN<5, 12>;
using Single = PLAIN<6, 4>;
using AThenB = FORM<7, 4, A, B>;
using AThenBThenC = FORM<8, 8, A, B, C>;
using SingleOnEights = FORM<9, 8, Single>;
using BOnEights = FORM<0, 8, B>;

using KSX::PixelConversion::StageList;

struct Pair {
    static StageList<AThenB> form(StageList<A, B>);
};
struct Triple {
    static StageList<AThenBThenC> form(StageList<A, B, C>);
};
struct SecondOfTwo {
    static StageList<C, BOnEights> form(StageList<C, B>);
};
struct Alone {
    static StageList<SingleOnEights> form(StageList<Single>);
};
/// Never taken: the rule before it fits the same run.
struct LaterPair {
    static StageList<B> form(StageList<A, B>);
};
using Rules = KSX::PixelConversion::RuleList<Pair, Triple, SecondOfTwo, Alone, LaterPair>;

using namespace KSX::PixelConversion;

TEST(Composition, NestedPipelinesAreTheirFlatList)
{
    using Flat = BIND7<A, B, C, Eights, Twelves, A, B>;
    static_assert(std::same_as<BIND<BIND3<A, B, C>, BIND4<Eights, Twelves, A, B>>, Flat>);
    static_assert(std::same_as<BIND5<A, BIND<B, BIND<C, Eights>>, Twelves, A, B>, Flat>);
    static_assert(std::same_as<BIND6<A, B, C, BIND<Eights, Twelves>, A, B>, Flat>);
    static_assert(Flat::kBlock == 24);
    // A repeated stage makes the block longer, and is otherwise the same stage.
    static_assert(BIND<Nx<3, A>, Eights>::kBlock == 24);
    static_assert(BIND<Nx<2, A>, Eights>::kBlock == 8);
}

TEST(Composition, HandsTheUserContextToEveryStage)
{
    static thread_local std::vector<const void*> contexts;
    contexts.clear();
    class Listener : public PLAIN<1, 4> {
    public:
        void setUserContext(const void* context) override { contexts.push_back(context); }
    };
    const int context = 0;
    Transform<AsListed<BIND<Listener, Listener>>, kWholeBlocks, 8>::apply(nullptr, 0, nullptr, 0, 0,
                                                                          0, &context);
    EXPECT_EQ(contexts, (std::vector<const void*>{&context, &context}));
}

/// Runs `PIPELINE` over one block, as listed and by the rules, and returns the IDs of the stages
/// that ran by the rules.
template<class PIPELINE>
std::string idsThatRan()
{
    constexpr unsigned kWidth = PIPELINE::kBlock;
    std::vector<std::uint32_t> src(kWidth), listed(kWidth), rewritten(kWidth);
    std::iota(src.begin(), src.end(), 1000u);

    s_steps.fill(0);
    Transform<AsListed<PIPELINE>, kWholeBlocks, 8>::apply(src.data(), 0, listed.data(), 0, kWidth,
                                                          1, nullptr);
    for (const int form : {7, 8, 9})
        EXPECT_EQ(s_steps[form], 0);

    s_steps.fill(0);
    Transform<typename PIPELINE::template ByRules<Rules>, kWholeBlocks, 8>::apply(
        src.data(), 0, rewritten.data(), 0, kWidth, 1, nullptr);
    EXPECT_EQ(rewritten, listed);

    std::string ids;
    for (std::size_t id = 0; id < s_steps.size(); ++id)
        if (s_steps[id] != 0)
            ids += std::to_string(id);
    return ids;
}

TEST(Rewriting, TakesTheLongestRunWhoseStepDividesTheBlock)
{
    EXPECT_EQ((idsThatRan<BIND<A, B>>()), "7");
    EXPECT_EQ((idsThatRan<BIND3<A, B, C>>()), "37") << "8 does not divide a block of 4";
    EXPECT_EQ((idsThatRan<BIND4<A, B, C, Eights>>()), "48");
    EXPECT_EQ((idsThatRan<BIND3<C, A, B>>()), "37") << "not at the front only";
    EXPECT_EQ((idsThatRan<BIND4<A, B, A, B>>()), "7") << "more than once";
    EXPECT_EQ((idsThatRan<BIND<B, A>>()), "12") << "in this order alone";
    EXPECT_EQ((idsThatRan<BIND<C, B>>()), "23") << "8 does not divide 4, though 4 does";
    EXPECT_EQ((idsThatRan<BIND3<C, B, Eights>>()), "034");
    EXPECT_EQ((idsThatRan<BIND<A, BIND<B, C>>>()), "37") << "across nested pipelines";
    EXPECT_EQ((idsThatRan<BIND<Single, Eights>>()), "49");
    EXPECT_EQ((idsThatRan<BIND<Single, Twelves>>()), "56") << "8 does not divide 12";
    EXPECT_EQ((idsThatRan<BIND3<Single, Twelves, Eights>>()), "459");
}

} // namespace
} // namespace kestrix::test
