/// Which stages run in the place of those that a pipeline lists.
///
/// The list that an entry gives is what a conversion means. Another list can give the same bits in
/// fewer instructions, and rules say so. A rule is a type with
///
///     static StageList<FORM...> form(StageList<RUN...>);
///
/// declared for every run of adjoining stages that it fits, and never called. The form gives the
/// same bits as the run for every input that the stages before the run can make, and looks back or
/// ahead as the run does. The block of the listed stages and the rules for the ends of a row stay
/// what they are.
#pragma once

#include "conversion/pipeline/Pipeline.h"

#include <concepts>
#include <cstddef>
#include <numeric>
#include <type_traits>

namespace KSX::PixelConversion {

/// Rules in their order: the first that fits a run is taken.
template<class... RULES>
struct RuleList {
};

template<class RULE, class RUN>
concept Fits = requires(RUN run)
{
    RULE::form(run);
};

/// The list that `RULE` puts in the place of `RUN`.
template<class RULE, class RUN>
using FormBy = decltype(RULE::form(RUN{}));

/// A rule that was taken, and the run that it fitted.
template<class RULE, class RUN>
struct Taken {
};

/// A list of stages, and a list of what was `Taken` to make it.
template<class STAGES, class STEPS>
struct Rewritten {
    using Stages = STAGES;
    using Steps = STEPS;
};

namespace details {

/// The first `COUNT` stages of a list, and those after them.
template<std::size_t COUNT, class HEAD, class TAIL>
struct Split;

template<class... HEAD, class... TAIL>
struct Split<0, StageList<HEAD...>, StageList<TAIL...>> {
    using Head = StageList<HEAD...>;
    using Tail = StageList<TAIL...>;
};

template<std::size_t COUNT, class... HEAD, class NEXT, class... TAIL>
requires(COUNT > 0) struct Split<COUNT, StageList<HEAD...>, StageList<NEXT, TAIL...>>
    : Split<COUNT - 1, StageList<HEAD..., NEXT>, StageList<TAIL...>> {
};

template<unsigned BLOCK, class... STAGES>
consteval bool divides(StageList<STAGES...>)
{
    return ((BLOCK % STAGES::kIn == 0) && ...);
}

/// The first of the rules that fits the run with a form whose steps divide the block, or void.
template<unsigned BLOCK, class RUN>
consteval auto firstThatFits(RuleList<>, RUN) -> std::type_identity<void>
{
    return {};
}

template<unsigned BLOCK, class RUN, class RULE, class... RULES>
consteval auto firstThatFits(RuleList<RULE, RULES...>, RUN run)
{
    if constexpr (Fits<RULE, RUN>) {
        if constexpr (divides<BLOCK>(FormBy<RULE, RUN>{}))
            return std::type_identity<RULE>{};
        else
            return firstThatFits<BLOCK>(RuleList<RULES...>{}, run);
    } else {
        return firstThatFits<BLOCK>(RuleList<RULES...>{}, run);
    }
}

/// Moves stages from `todo` to `done`, trying runs of `LENGTH` stages and fewer.
template<unsigned BLOCK, class RULES, std::size_t LENGTH, class... DONE, class... TODO,
         class... USED>
consteval auto rewriteOnce(StageList<DONE...> done, StageList<TODO...> todo,
                           StageList<USED...> used)
{
    if constexpr (sizeof...(TODO) == 0) {
        return Rewritten<StageList<DONE...>, StageList<USED...>>{};
    } else if constexpr (LENGTH == 0) {
        using Rest = Split<1, StageList<>, StageList<TODO...>>;
        using Grown = typename Concatenate<StageList<DONE...>, typename Rest::Head>::type;
        return rewriteOnce<BLOCK, RULES, sizeof...(TODO) - 1>(Grown{}, typename Rest::Tail{}, used);
    } else {
        using Rest = Split<LENGTH, StageList<>, StageList<TODO...>>;
        using Run = typename Rest::Head;
        using Rule = typename decltype(firstThatFits<BLOCK>(RULES{}, Run{}))::type;
        if constexpr (std::is_void_v<Rule>) {
            return rewriteOnce<BLOCK, RULES, LENGTH - 1>(done, todo, used);
        } else {
            using Grown = typename Concatenate<StageList<DONE...>, FormBy<Rule, Run>>::type;
            return rewriteOnce<BLOCK, RULES, sizeof...(TODO) - LENGTH>(
                Grown{}, typename Rest::Tail{}, StageList<USED..., Taken<Rule, Run>>{});
        }
    }
}

/// Goes through the list until no rule fits.
template<unsigned BLOCK, class RULES, class... STAGES, class USED>
consteval auto rewrite(StageList<STAGES...> stages, USED used)
{
    using Once =
        decltype(rewriteOnce<BLOCK, RULES, sizeof...(STAGES)>(StageList<>{}, stages, used));
    if constexpr (std::same_as<typename Once::Stages, StageList<STAGES...>>)
        return Once{};
    else
        return rewrite<BLOCK, RULES>(typename Once::Stages{}, typename Once::Steps{});
}

template<class PIPELINE, unsigned BLOCK>
struct Rewrite;

template<unsigned LISTED, class LIST, unsigned LINE, class RULES, unsigned BLOCK>
struct Rewrite<Pipeline<LISTED, LIST, LINE, RULES>, BLOCK> {
    using type = decltype(rewrite<BLOCK, RULES>(LIST{}, StageList<>{}));
};

} // namespace details

/// What runs in blocks of `BLOCK` pixels for `PIPELINE`. Of the runs that begin at a stage the
/// longest that a rule fits is taken, and the list is gone through until none is left.
template<class PIPELINE, unsigned BLOCK>
using RewrittenIn = typename details::Rewrite<AsPipeline<PIPELINE>, BLOCK>::type;

/// The same chain with every stage run as it is listed.
template<class PIPELINE>
using AsListed = typename AsPipeline<PIPELINE>::template ByRules<RuleList<>>;

/// The block in which the inside of a row runs. To stages that look at nothing but their own pixels
/// it is all one, so short blocks are joined, for the loop costs as much as a few of their
/// instructions. Those that look ahead run wider if more rules fit then. Those that look back carry
/// pixels from block to block, and keep to the one.
template<class PIPELINE>
constexpr unsigned wideBlock()
{
    using P = AsPipeline<PIPELINE>;
    if constexpr (P::kLooksBack) {
        return P::kBlock;
    } else if constexpr (P::kLooksAhead) {
        constexpr unsigned kWide = std::lcm(P::kBlock, 8u);
        constexpr bool kSame = std::same_as<typename RewrittenIn<P, kWide>::Stages,
                                            typename RewrittenIn<P, P::kBlock>::Stages>;
        return kSame ? P::kBlock : kWide;
    } else {
        return P::kBlock < 16 ? std::lcm(P::kBlock, 16u) : P::kBlock;
    }
}

} // namespace KSX::PixelConversion
