/// Chains of stages, and how they are composed.
///
/// `BIND<A, B>`, `BIND3<A, B, C>` up to `BIND7<...>` join stages and other chains. The result is
/// always one flat `Pipeline`, at any depth of nesting: a list of stages and a block. The block is
/// the least common multiple of the pixels that the stages take a step.
#pragma once

#include "conversion/pipeline/Addresses.h"
#include "conversion/pipeline/Kernel.h"

#include <cstddef>
#include <numeric>
#include <type_traits>
#include <utility>

namespace KSX::PixelConversion {

template<class... STAGES>
struct StageList {
};

/// The rules that put fast forms in the place of listed stages: a `RuleList`, defined in
/// conversion/fast/Rules.h.
struct FastRules;

/// A chain of stages that works on blocks of `BLOCK` pixels. `LINE` is the width of the rows if the
/// chain is for one width only, else 0. `RULES` is a `RuleList`, see Rewriting.h.
template<unsigned BLOCK, class LIST, unsigned LINE = 0, class RULES = FastRules>
struct Pipeline;

template<unsigned BLOCK, class... STAGES, unsigned LINE, class RULES>
struct Pipeline<BLOCK, StageList<STAGES...>, LINE, RULES> {
    static_assert((Stage<STAGES> && ...), "every member of a pipeline is a stage");
    static_assert(((BLOCK % STAGES::kIn == 0) && ...), "a block is a whole number of steps");

    using Stages = StageList<STAGES...>;
    static constexpr unsigned kBlock = BLOCK;
    static constexpr unsigned kLine = LINE;
    static constexpr bool kLooksBack = (LooksBack<STAGES> || ...);
    static constexpr bool kLooksAhead = (LooksAhead<STAGES> || ...);
    static constexpr bool kEndsAtLines = (EndsAtLines<STAGES> || ...);

    /// This chain for rows of `WIDTH` pixels.
    template<unsigned WIDTH>
    using AtLine = Pipeline<BLOCK, Stages, WIDTH, RULES>;

    /// This chain with other rules.
    template<class OTHERS>
    using ByRules = Pipeline<BLOCK, Stages, LINE, OTHERS>;
};

/// Applies `KERNEL` to `N` consecutive groups of pixels, in pixel order. It is one object, so what
/// the stage keeps from one group passes to the next as it does from step to step. In a list of
/// stages, it makes the block at least `N` groups long.
template<unsigned N, Stage KERNEL>
class Nx : public KERNEL {
public:
    /// Runs group number `GROUP` of a block of `N`. `FIRST` says whether the block is the first of
    /// its row. `END` is 0 for every block but the row's last. For the last block it is the number
    /// of its pixels that belong to the row, or the whole block if that number is not known. `src`
    /// is where the group lies in memory; a stage that looks ahead reads the bytes after the group.
    template<unsigned GROUP, bool FIRST, unsigned END, class SOURCE>
    KSX_INLINE OutputOf<KERNEL> group(const InputOf<KERNEL>& in, const SOURCE& src)
    {
        constexpr unsigned kBegin = GROUP * KERNEL::kPart;
        if constexpr (LooksAhead<KERNEL>) {
            if constexpr (END > kBegin && END < kBegin + KERNEL::kPart)
                return this->template lastStepOf<END - kBegin>(in);
            else if constexpr (END != 0 && END <= kBegin + KERNEL::kPart)
                return this->lastStep(in);
            else
                return this->step(in, load(src + InputOf<KERNEL>::kBytes));
        } else if constexpr (LooksBack<KERNEL> && FIRST && GROUP == 0) {
            return this->firstStep(in);
        } else {
            return this->step(in);
        }
    }
};

/// A stage that runs in a loop of its own, with memory before and after it. Fast forms use this for
/// look-ups in tables: addresses that come straight from memory are ready long before the processor
/// needs them, while those that come out of other stages hold it up.
template<Stage KERNEL>
class Alone : public KERNEL {
};

template<class STAGE>
inline constexpr bool kIsAlone = false;
template<class KERNEL>
inline constexpr bool kIsAlone<Alone<KERNEL>> = true;

namespace details {

template<class MEMBER>
struct Flatten {
    using type = Pipeline<MEMBER::kIn, StageList<MEMBER>>;
};

template<unsigned BLOCK, class LIST, unsigned LINE, class RULES>
struct Flatten<Pipeline<BLOCK, LIST, LINE, RULES>> {
    using type = Pipeline<BLOCK, LIST, LINE, RULES>;
};

template<unsigned N, class KERNEL>
struct Flatten<Nx<N, KERNEL>> {
    using type = Pipeline<N * KERNEL::kIn, StageList<KERNEL>>;
};

template<class... LISTS>
struct Concatenate;

template<class... A>
struct Concatenate<StageList<A...>> {
    using type = StageList<A...>;
};

template<class... A, class... B, class... REST>
struct Concatenate<StageList<A...>, StageList<B...>, REST...> {
    using type = typename Concatenate<StageList<A..., B...>, REST...>::type;
};

constexpr unsigned lcm(unsigned a)
{
    return a;
}

template<class... REST>
constexpr unsigned lcm(unsigned a, unsigned b, REST... rest)
{
    return lcm(std::lcm(a, b), rest...);
}

} // namespace details

/// A stage, an `Nx` or a pipeline, as a pipeline.
template<class MEMBER>
using AsPipeline = typename details::Flatten<MEMBER>::type;

template<class... MEMBERS>
using BindAll =
    Pipeline<details::lcm(AsPipeline<MEMBERS>::kBlock...),
             typename details::Concatenate<typename AsPipeline<MEMBERS>::Stages...>::type,
             (AsPipeline<MEMBERS>::kLine | ...)>;

template<class A, class B>
using BIND = BindAll<A, B>;
template<class A, class B, class C>
using BIND3 = BindAll<A, B, C>;
template<class A, class B, class C, class D>
using BIND4 = BindAll<A, B, C, D>;
template<class A, class B, class C, class D, class E>
using BIND5 = BindAll<A, B, C, D, E>;
template<class A, class B, class C, class D, class E, class F>
using BIND6 = BindAll<A, B, C, D, E, F>;
template<class A, class B, class C, class D, class E, class F, class G>
using BIND7 = BindAll<A, B, C, D, E, F, G>;

} // namespace KSX::PixelConversion
