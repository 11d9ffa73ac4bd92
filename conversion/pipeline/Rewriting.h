/// Which stages run in the place of those that a pipeline lists.
///
/// The stages that an entry lists define what a conversion means. Another list can give the same
/// bits in fewer instructions. Such a list is a fast form, and a rule puts it in the place of the
/// listed stages. A rule is a type with
///
///     static StageList<FORM...> form(StageList<RUN...>);
///
/// declared, and never called, for every run of adjoining stages that it fits. The form gives the
/// same bits as the run for every input that the stages before the run can give, and looks back or
/// ahead as the run does. The block, the row limits and the handling of a row's ends follow from
/// the listed stages; rules do not change them.
#pragma once

#include "conversion/pipeline/Pipeline.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <numeric>
#include <type_traits>

namespace KSX::PixelConversion {

/// Rules in the order in which they are tried: the first that fits a run is taken.
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

/// A rule that was taken, and the run that it replaced.
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

/// The first rule that fits the run and whose form has steps that divide the block; void if there
/// is none.
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

/// Moves stages from `todo` to `done`. At each stage it tries a run of `LENGTH` stages, then
/// shorter ones.
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

/// Rewrites the list again and again until no rule fits.
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

/// The stages that run for `PIPELINE` in blocks of `BLOCK` pixels, as a `Rewritten`. At each stage,
/// the longest run that a rule fits is replaced. This repeats until no rule fits.
template<class PIPELINE, unsigned BLOCK>
using RewrittenIn = typename details::Rewrite<AsPipeline<PIPELINE>, BLOCK>::type;

/// `PIPELINE` without rules: every stage runs as it is listed.
template<class PIPELINE>
using AsListed = typename AsPipeline<PIPELINE>::template ByRules<RuleList<>>;

/// The block in which the inside of a row runs. If all stages are plain, any multiple of the block
/// gives the same result. Short blocks are then joined, because the loop itself costs as much as a
/// few of their instructions. A pipeline that looks ahead also reads less then, and more rules can
/// fit. A pipeline that looks back carries pixels from block to block and keeps its block.
template<class PIPELINE>
constexpr unsigned wideBlock()
{
    using P = AsPipeline<PIPELINE>;
    if constexpr (P::kLooksBack) {
        return P::kBlock;
    } else if constexpr (P::kLooksAhead) {
        return std::max(std::lcm(P::kBlock, 8u), 16u);
    } else {
        return P::kBlock < 16 ? std::lcm(P::kBlock, 16u) : P::kBlock;
    }
}

/// The block that a unit of a vector runs if units are neighbouring blocks: the shortest in which
/// the same stages run as in `wideBlock`. Longer ones spread the units of a vector further in
/// memory.
template<class PIPELINE>
constexpr unsigned unitBlock()
{
    using P = AsPipeline<PIPELINE>;
    constexpr unsigned kWide = wideBlock<P>();
    constexpr auto runsAsInWide = []<unsigned BLOCK>() {
        return kWide % BLOCK == 0 && std::same_as<typename RewrittenIn<P, BLOCK>::Stages,
                                                  typename RewrittenIn<P, kWide>::Stages>;
    };
    constexpr unsigned kEights = std::lcm(P::kBlock, 8u);
    if constexpr (runsAsInWide.template operator()<P::kBlock>())
        return P::kBlock;
    else if constexpr (runsAsInWide.template operator()<kEights>())
        return kEights;
    else
        return kWide;
}

} // namespace KSX::PixelConversion
