/// How one block of pixels runs through the stages of a pipeline.
#pragma once

#include "conversion/pipeline/Rewriting.h"

#include <concepts>
#include <cstddef>
#include <tuple>

namespace KSX::PixelConversion {

/// The stage objects of a pipeline, and how one block passes through them.
///
/// The last stage drives the work inside a block. Each group of a stage first runs the groups of
/// the previous stage that it needs and that have not run yet, and so on back to the loads. So only
/// the vectors of a few pixels are live at a time, and they stay in registers even in blocks of 24
/// to 96 pixels. The compiler resolves this order; what remains is code without branches.
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

    /// Reads a block for each unit of a vector at `src`, runs them through all stages and stores
    /// them at `dst`. `FIRST` and `END` say whether the blocks begin or end their row, for stages
    /// that look back or ahead; see `Nx`.
    template<bool FIRST, unsigned END, class SOURCE, class DESTINATION>
    KSX_INLINE void block(const SOURCE& src, const DESTINATION& dst)
    {
        Between between;
        unrolled<0, BLOCK / StageAt<kCount - 1>::kPart>([&]<unsigned GROUP>() KSX_INLINE_LAMBDA {
            run<kCount - 1, GROUP, FIRST, END>(src, dst, between);
        });
    }

private:
    /// The output of each stage for the part of the block that has run. All indices are constants,
    /// so it is in memory only if there are too few registers.
    using Between = std::tuple<Pixels<typename STAGES::Output, BLOCK>...>;

    static constexpr unsigned groupsFor(unsigned pixels, unsigned step)
    {
        return (pixels + step - 1) / step;
    }

    template<unsigned I, unsigned GROUP, bool FIRST, unsigned END, class SOURCE, class DESTINATION>
    KSX_INLINE void run(const SOURCE& src, const DESTINATION& dst, Between& between)
    {
        using Current = StageAt<I>;
        using In = InputOf<Current>;
        using Out = OutputOf<Current>;
        const SOURCE groupSrc = src + GROUP * In::kBytes;

        In in;
        if constexpr (I == 0) {
            unrolled<0, In::kVectors>([&]<unsigned V>() KSX_INLINE_LAMBDA {
                in[V] = load(groupSrc + In::template offset<V>());
            });
        } else {
            constexpr unsigned kStep = StageAt<I - 1>::kPart;
            unrolled<groupsFor(GROUP * Current::kPart, kStep),
                     groupsFor((GROUP + 1) * Current::kPart, kStep)>(
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

/// Stages of which one is `Alone`. They run in two halves over a strip of the row at a time: those
/// before that stage, then the rest. If that stage is the first one, it is the first half.
template<unsigned BLOCK, class... STAGES>
requires(sizeof...(STAGES) > 1 &&
         (kIsAlone<STAGES> || ...)) class Composition<BLOCK, StageList<STAGES...>> {
    static consteval std::size_t cut()
    {
        constexpr bool kAlone[] = {kIsAlone<STAGES>...};
        std::size_t first = 0;
        while (!kAlone[first])
            ++first;
        return first == 0 ? 1 : first;
    }

    using Halves = details::Split<cut(), StageList<>, StageList<STAGES...>>;

public:
    using First = Composition<BLOCK, typename Halves::Head>;
    using Second = Composition<BLOCK, typename Halves::Tail>;
    static_assert(std::same_as<typename First::Output, typename Second::Input>,
                  "the second half takes what the first one gives");

    using Input = typename First::Input;
    using Output = typename Second::Output;
    static constexpr unsigned kInBytes = First::kInBytes;
    static constexpr unsigned kOutBytes = Second::kOutBytes;
    static constexpr bool kLooksBack = First::kLooksBack || Second::kLooksBack;

    /// Blocks in a strip. The strips of all halves fit into the innermost cache, beside tables.
    static constexpr unsigned kStripBlocks = 384 / BLOCK;
    static_assert(kStripBlocks != 0);

    void setUserContext(const void* context)
    {
        first.setUserContext(context);
        second.setUserContext(context);
    }

    First first;
    Second second;
};

/// A stage that is `Alone`, in blocks of its own step. So all pipelines share its loop, whatever
/// their block.
template<unsigned BLOCK, class KERNEL>
class Composition<BLOCK, StageList<Alone<KERNEL>>>
    : public Composition<KERNEL::kIn, StageList<KERNEL>> {
public:
    using Step = Composition<KERNEL::kIn, StageList<KERNEL>>;
    static constexpr unsigned kSteps = BLOCK / KERNEL::kIn;
    static constexpr unsigned kInBytes = kSteps * Step::kInBytes;
    static constexpr unsigned kOutBytes = kSteps * Step::kOutBytes;
};

/// The stage objects that run `PIPELINE` in blocks of `BLOCK` pixels, after its rules are applied.
template<class PIPELINE, unsigned BLOCK = PIPELINE::kBlock>
using CompositionOf = Composition<BLOCK, typename RewrittenIn<PIPELINE, BLOCK>::Stages>;

} // namespace KSX::PixelConversion
