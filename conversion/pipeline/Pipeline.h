/// Chains of stages: how they are named, and how one block of pixels runs through them.
///
/// `BIND<A, B>`, `BIND3<A, B, C>` up to `BIND7<...>` join stages and other chains. However they
/// nest, the result is one flat `Pipeline`: its list of stages, and its block, the least common
/// multiple of the pixels that its stages take a step.
#pragma once

#include "conversion/pipeline/Kernel.h"

#include <cstddef>
#include <numeric>
#include <tuple>
#include <type_traits>
#include <utility>

namespace KSX::PixelConversion {

template<class... STAGES>
struct StageList {
};

/// A chain of stages that works on blocks of `BLOCK` pixels. `LINE` is the width of the rows if the
/// chain is made for one, else 0. `MERGE` lets composition put merged forms in the place of stages
/// (see `MergedForm`); tests switch it off to compare the two.
template<unsigned BLOCK, class LIST, unsigned LINE = 0, bool MERGE = true>
struct Pipeline;

template<unsigned BLOCK, class... STAGES, unsigned LINE, bool MERGE>
struct Pipeline<BLOCK, StageList<STAGES...>, LINE, MERGE> {
    static_assert((Stage<STAGES> && ...), "every member of a pipeline is a stage");
    static_assert(((BLOCK % STAGES::kIn == 0) && ...), "a block is a whole number of steps");

    using Stages = StageList<STAGES...>;
    static constexpr unsigned kBlock = BLOCK;
    static constexpr unsigned kLine = LINE;
    static constexpr bool kLooksBack = (LooksBack<STAGES> || ...);
    static constexpr bool kLooksAhead = (LooksAhead<STAGES> || ...);
    static constexpr bool kEndsAtLines = (EndsAtLines<STAGES> || ...);

    /// The same chain for rows of `WIDTH` pixels.
    template<unsigned WIDTH>
    using AtLine = Pipeline<BLOCK, Stages, WIDTH, MERGE>;
};

/// Applies `KERNEL` to `N` consecutive groups of pixels, in pixel order. It is one object, so that
/// what it carries from a group to the next passes through the repetitions as it does from step to
/// step. Standing in a list, it asks for a block of at least `N` groups.
template<unsigned N, Stage KERNEL>
class Nx : public KERNEL {
public:
    /// Runs group number `GROUP` of a block of `N`. `FIRST` says that the block is the first of its
    /// row. `END` is 0 but in the last one, of which it counts the pixels that belong to the row,
    /// or all if their count is not known. `src` points at the group where a stage that looks ahead
    /// finds the bytes behind it.
    template<unsigned GROUP, bool FIRST, unsigned END>
    KSX_INLINE OutputOf<KERNEL> group(const InputOf<KERNEL>& in, const std::byte* src)
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

namespace details {

template<class MEMBER>
struct Flatten {
    using type = Pipeline<MEMBER::kIn, StageList<MEMBER>>;
};

template<class MEMBER>
requires requires
{
    typename MEMBER::AnyLine;
}
struct Flatten<MEMBER> {
    using type = Pipeline<MEMBER::kIn, StageList<typename MEMBER::AnyLine>, MEMBER::kLine>;
};

template<unsigned BLOCK, class LIST, unsigned LINE, bool MERGE>
struct Flatten<Pipeline<BLOCK, LIST, LINE, MERGE>> {
    using type = Pipeline<BLOCK, LIST, LINE, MERGE>;
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

/// A stage, an `Nx` or a pipeline as a pipeline.
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

/// The same chain with every stage run as it is listed.
template<class PIPELINE>
using AsListed = Pipeline<AsPipeline<PIPELINE>::kBlock, typename AsPipeline<PIPELINE>::Stages,
                          AsPipeline<PIPELINE>::kLine, false>;

// --- Merged forms --------------------------------------------------------------------------------

/// Faster stages in the place of adjoining ones.
///
/// A specialisation for a run of stages names, as `type`, a list that gives the same bits as the
/// run for every input that the stages before it can make, and that looks back or ahead as the run
/// does. Composition takes the longest run that has such a form whose steps divide the block, and
/// goes on until no run has one; the list that an entry gives, its block and the rules for the ends
/// of a row stay those of the stages as listed. A form stands beside the stages that it merges, and
/// a test compares it with them.
template<class... STAGES>
struct MergedForm {
};

/// A stage's twin: the same arithmetic on planes with 8 lanes of 16 bits, where the stage has
/// representations with emptier or repeated lanes.
template<class STAGE>
struct Twin {
};

namespace details {

template<class STAGE>
concept HasTwin = requires
{
    typename Twin<STAGE>::type;
};

template<class... RUN>
consteval bool canRunAsTwins()
{
    if constexpr (sizeof...(RUN) >= 2 && (HasTwin<RUN> && ...)) {
        using First = std::tuple_element_t<0, std::tuple<RUN...>>;
        using Last = std::tuple_element_t<sizeof...(RUN) - 1, std::tuple<RUN...>>;
        return std::same_as<typename First::Input, typename Twin<First>::type::Input> &&
               std::same_as<typename Last::Output, typename Twin<Last>::type::Output>;
    } else {
        return false;
    }
}

} // namespace details

/// Stages that all have twins, from one that reads another representation to one that gives
/// another, run as their twins.
template<class... RUN>
requires(details::canRunAsTwins<RUN...>()) struct MergedForm<RUN...> {
    using type = StageList<typename Twin<RUN>::type...>;
};

namespace details {

/// The first `N` stages of a list, and those behind them.
template<std::size_t N, class HEAD, class TAIL>
struct Split;

template<class... HEAD, class... TAIL>
struct Split<0, StageList<HEAD...>, StageList<TAIL...>> {
    using Head = StageList<HEAD...>;
    using Tail = StageList<TAIL...>;
};

template<std::size_t N, class... HEAD, class NEXT, class... TAIL>
requires(N > 0) struct Split<N, StageList<HEAD...>, StageList<NEXT, TAIL...>>
    : Split<N - 1, StageList<HEAD..., NEXT>, StageList<TAIL...>> {
};

template<unsigned BLOCK, class... STAGES>
consteval bool divides(StageList<STAGES...>)
{
    return ((BLOCK % STAGES::kIn == 0) && ...);
}

template<unsigned BLOCK, class... RUN>
consteval bool hasMergedForm(StageList<RUN...>)
{
    if constexpr (requires { typename MergedForm<RUN...>::type; })
        return divides<BLOCK>(typename MergedForm<RUN...>::type{});
    else
        return false;
}

template<class... RUN>
auto mergedForm(StageList<RUN...>) -> typename MergedForm<RUN...>::type;

/// Moves stages from `TODO` to `DONE`, trying runs of `RUN` stages and fewer.
template<unsigned BLOCK, std::size_t RUN, class... DONE, class... TODO>
consteval auto mergeOnce(StageList<DONE...> done, StageList<TODO...> todo)
{
    if constexpr (sizeof...(TODO) == 0) {
        return done;
    } else if constexpr (RUN == 0) {
        using Rest = Split<1, StageList<>, StageList<TODO...>>;
        using Grown = typename Concatenate<StageList<DONE...>, typename Rest::Head>::type;
        return mergeOnce<BLOCK, sizeof...(TODO) - 1>(Grown{}, typename Rest::Tail{});
    } else {
        using Rest = Split<RUN, StageList<>, StageList<TODO...>>;
        if constexpr (hasMergedForm<BLOCK>(typename Rest::Head{})) {
            using Form = decltype(mergedForm(typename Rest::Head{}));
            using Grown = typename Concatenate<StageList<DONE...>, Form>::type;
            return mergeOnce<BLOCK, sizeof...(TODO) - RUN>(Grown{}, typename Rest::Tail{});
        } else {
            return mergeOnce<BLOCK, RUN - 1>(done, todo);
        }
    }
}

template<unsigned BLOCK, class... STAGES>
consteval auto mergeStages(StageList<STAGES...> stages)
{
    using Once = decltype(mergeOnce<BLOCK, sizeof...(STAGES)>(StageList<>{}, stages));
    if constexpr (std::same_as<Once, StageList<STAGES...>>)
        return stages;
    else
        return mergeStages<BLOCK>(Once{});
}

/// The stages that run in blocks of `BLOCK` pixels.
template<class PIPELINE, unsigned BLOCK>
struct Merged;

template<unsigned LISTED, class LIST, unsigned LINE, unsigned BLOCK>
struct Merged<Pipeline<LISTED, LIST, LINE, false>, BLOCK> {
    using type = LIST;
};

template<unsigned LISTED, class LIST, unsigned LINE, unsigned BLOCK>
struct Merged<Pipeline<LISTED, LIST, LINE, true>, BLOCK> {
    using type = decltype(mergeStages<BLOCK>(LIST{}));
};

} // namespace details

// --- Running a block -----------------------------------------------------------------------------

/// The stage objects of a pipeline, and the step of one block through them.
///
/// Work inside a block is ordered by need: a group of the last stage calls for the groups before it
/// that it lacks, and so on down to the loads. So only what a few pixels need lives at once, which
/// in blocks of 24 to 96 pixels is what keeps the vectors in registers. All of that is settled when
/// the pipeline is compiled; what is left is straight code.
template<unsigned BLOCK, class LIST>
class Composition;

template<unsigned BLOCK, class... STAGES>
class Composition<BLOCK, StageList<STAGES...>> {
    static constexpr unsigned kCount = sizeof...(STAGES);

    template<unsigned I>
    using StageAt = std::tuple_element_t<I, std::tuple<STAGES...>>;

    template<unsigned I>
    static consteval bool connects()
    {
        if constexpr (I + 1 < kCount)
            return std::same_as<typename StageAt<I>::Output, typename StageAt<I + 1>::Input> &&
                   !LooksAhead<StageAt<I + 1>> && connects<I + 1>();
        else
            return true;
    }
    static_assert(connects<0>(), "a stage takes what the one before it gives, and only the first, "
                                 "which reads the row, can look ahead");

public:
    using Input = typename StageAt<0>::Input;
    using Output = typename StageAt<kCount - 1>::Output;
    static constexpr unsigned kInBytes = Pixels<Input, BLOCK>::kBytes;
    static constexpr unsigned kOutBytes = Pixels<Output, BLOCK>::kBytes;
    static constexpr bool kLooksBack = (LooksBack<STAGES> || ...);

    void setUserContext(const void* context)
    {
        std::apply([&](auto&... stage) { (stage.setUserContext(context), ...); }, m_stages);
    }

    /// Reads a block at `src`, runs it through all stages and stores it at `dst`. `FIRST` and `END`
    /// tell the stages that look back or ahead that the block begins or ends its row, as in `Nx`.
    template<bool FIRST, unsigned END>
    KSX_INLINE void block(const std::byte* src, std::byte* dst)
    {
        Between between;
        unrolled<0, BLOCK / StageAt<kCount - 1>::kPart>([&]<unsigned GROUP>() KSX_INLINE_LAMBDA {
            run<kCount - 1, GROUP, FIRST, END>(src, dst, between);
        });
    }

private:
    /// What each stage has given so far, a block long. Constant indices only, so none of it is ever
    /// in memory unless registers run out.
    using Between = std::tuple<Pixels<typename STAGES::Output, BLOCK>...>;

    static constexpr unsigned groupsFor(unsigned pixels, unsigned step)
    {
        return (pixels + step - 1) / step;
    }

    template<unsigned I, unsigned GROUP, bool FIRST, unsigned END>
    KSX_INLINE void run(const std::byte* src, std::byte* dst, Between& between)
    {
        using S = StageAt<I>;
        using In = InputOf<S>;
        using Out = OutputOf<S>;
        const std::byte* const groupSrc = src + GROUP * In::kBytes;

        In in;
        if constexpr (I == 0) {
            unrolled<0, In::kVectors>([&]<unsigned V>() KSX_INLINE_LAMBDA {
                in[V] = load(groupSrc + In::template offset<V>());
            });
        } else {
            constexpr unsigned kStep = StageAt<I - 1>::kPart;
            unrolled<groupsFor(GROUP * S::kPart, kStep), groupsFor((GROUP + 1) * S::kPart, kStep)>(
                [&]<unsigned BEFORE>()
                    KSX_INLINE_LAMBDA { run<I - 1, BEFORE, FIRST, END>(src, dst, between); });
            unrolled<0, In::kVectors>([&]<unsigned V>() KSX_INLINE_LAMBDA {
                in[V] = std::get<I - 1>(between)[GROUP * In::kVectors + V];
            });
        }

        const Out out = std::get<I>(m_stages).template group<GROUP, FIRST, END>(in, groupSrc);

        unrolled<0, Out::kVectors>([&]<unsigned V>() KSX_INLINE_LAMBDA {
            if constexpr (I == kCount - 1)
                store(dst + GROUP * Out::kBytes + Out::template offset<V>(), out[V]);
            else
                std::get<I>(between)[GROUP * Out::kVectors + V] = out[V];
        });
    }

    std::tuple<Nx<BLOCK / STAGES::kPart, STAGES>...> m_stages;
};

/// The stage objects that run `PIPELINE` in blocks of `BLOCK` pixels, merged forms in place.
template<class PIPELINE, unsigned BLOCK = PIPELINE::kBlock>
using CompositionOf = Composition<BLOCK, typename details::Merged<PIPELINE, BLOCK>::type>;

/// The block in which the inside of a row runs. To stages that look at nothing but their own pixels
/// it is all one, so short blocks are joined, for the loop costs as much as a few of their
/// instructions. Those that look ahead run wider where more of them can then run as twins. Those
/// that look back carry pixels from block to block, and keep to the one.
template<class P>
constexpr unsigned wideBlock()
{
    if constexpr (P::kLooksBack) {
        return P::kBlock;
    } else if constexpr (P::kLooksAhead) {
        constexpr unsigned kWide = std::lcm(P::kBlock, 8u);
        constexpr bool kSame = std::same_as<typename details::Merged<P, kWide>::type,
                                            typename details::Merged<P, P::kBlock>::type>;
        return kSame ? P::kBlock : kWide;
    } else {
        return P::kBlock < 16 ? std::lcm(P::kBlock, 16u) : P::kBlock;
    }
}

} // namespace KSX::PixelConversion
