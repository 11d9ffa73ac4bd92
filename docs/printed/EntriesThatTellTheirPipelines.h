/// Included before the engine's sources, it makes every entry report the rows that its pipeline
/// requires and the stages that run, instead of converting. Entries without a pipeline report
/// nothing, because they are called with no rows.
#pragma once

#include "conversion/pipeline/Convert.h"
#include "conversion/pipeline/RowLimits.h"

#include <span>
#include <typeinfo>

namespace KSX::PixelConversion {

using Types = std::span<const std::type_info* const>;

/// A list of stages, the pixels of the blocks that it runs in, and the rules that made it.
struct ToldStages {
    unsigned block = 0;
    Types stages;
    Types rules;
};

/// What an entry stores at `dst`.
struct ToldPipeline {
    const char* entry = nullptr;
    unsigned block = 0;
    unsigned leastWidth = 0;
    std::size_t (*bytesRead)(unsigned width) = nullptr;
    ToldStages listed, inside, end;
};

template<class... TYPES>
Types typesOf(StageList<TYPES...>)
{
    static const std::type_info* const types[] = {&typeid(TYPES)..., nullptr};
    return Types(types, sizeof...(TYPES));
}

/// The rule that was applied; after `OnPlanes` those for the single stages.
template<class STEP>
struct RulesOf;

template<class RULE, class... RUN>
struct RulesOf<Taken<RULE, StageList<RUN...>>> {
    using type = StageList<RULE>;
};

template<class... RUN>
struct RulesOf<Taken<fast::OnPlanes, StageList<RUN...>>> {
    using type = StageList<fast::OnPlanes, fast::planes::RuleFor<RUN>...>;
};

template<class... STEPS>
Types rulesOf(StageList<STEPS...>)
{
    return typesOf(
        typename details::Concatenate<StageList<>, typename RulesOf<STEPS>::type...>::type{});
}

template<class PIPELINE, unsigned BLOCK>
ToldStages tellStages()
{
    using Rewriting = RewrittenIn<PIPELINE, BLOCK>;
    return {BLOCK, typesOf(typename Rewriting::Stages{}), rulesOf(typename Rewriting::Steps{})};
}

template<class PIPELINE>
struct Tell {
    static void pipeline(ToldPipeline& told)
    {
        using P = AsPipeline<PIPELINE>;
        told.block = P::kBlock;
        told.leastWidth = RowLimits<P>::kLeastWidth;
        told.bytesRead = RowLimits<P>::bytesRead;
        told.listed = {P::kBlock, typesOf(typename P::Stages{}), {}};
        told.inside = tellStages<P, wideBlock<P>()>();
        told.end = tellStages<P, P::kBlock>();
    }
};

template<class PAL, class NTSC>
struct Tell<By601Lines<PAL, NTSC>> : Tell<PAL> {
};

} // namespace KSX::PixelConversion

#undef CONVERSION
#define CONVERSION(NAME, ...)                                                                      \
    void NAME(unsigned /*width*/, unsigned /*height*/, void* dst, unsigned /*dstRowBytes*/,        \
              void* /*src*/, unsigned /*srcRowBytes*/)                                             \
    {                                                                                              \
        auto& told = *static_cast<ToldPipeline*>(dst);                                             \
        told.entry = #NAME;                                                                        \
        Tell<__VA_ARGS__>::pipeline(told);                                                         \
    }
