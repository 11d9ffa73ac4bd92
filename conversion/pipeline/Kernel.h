/// What a stage of a pipeline is, and how it declares its kind.
///
/// A stage derives from `Kernel<N, N>`, names its `Input` and `Output` representations, and has
///
///     Pixels<Output, N> step(const Pixels<Input, N>& in)            // plain
///
/// Stages of two other kinds have one more operation. This operation declares the kind:
///
///     Pixels<Output, N> firstStep(const Pixels<Input, N>& in)       // looks back
///     Pixels<Output, N> step(const Pixels<Input, N>& in, Vector next)
///     Pixels<Output, N> lastStep(const Pixels<Input, N>& in)        // looks ahead
///
/// A stage that looks back keeps pixels of the previous group in its members; `firstStep` takes a
/// row's first group, which has no previous one. A stage that looks ahead gets the first 16 bytes
/// of the next group as `next`; `lastStep` takes a row's last group. A stage that looks ahead reads
/// the row itself, so it can only be the first stage of a pipeline.
///
/// A stage with long steps can do a step in parts, so that fewer vectors are live at a time.
/// `kPart` is then the number of pixels that its operations take. A block is still a multiple of N.
///
/// A stage that looks ahead can support pipelines for rows of one width that end inside a group
/// (`Pipeline::kLine`). It then also has
///
///     template<unsigned PIXELS> Pixels<Output, N> lastStepOf(const Pixels<Input, N>& in)
///
/// which takes a last group in which only the first `PIXELS` pixels belong to the row.
#pragma once

#include "conversion/pipeline/Representations.h"

#include <concepts>
#include <utility>

/// Stages and the code around them have to be inlined into one loop: a call costs more than a step
/// does, and compilers inline only small functions by themselves. Builds for debugging and for
/// sanitizers do not inline. They check each function once instead of every copy of it, and compile
/// in a twentieth of the time.
#if defined(__OPTIMIZE__) && !defined(KSX_KEEP_FUNCTIONS)
#define KSX_INLINE [[gnu::always_inline]] inline
#define KSX_INLINE_LAMBDA __attribute__((always_inline))
#else
#define KSX_INLINE inline
#define KSX_INLINE_LAMBDA
#endif

namespace KSX::PixelConversion {

/// Calls `f.operator()<I>()` for each I from `BEGIN` to `END` - 1: a loop whose index is a constant
/// in every round, so that the compiler can keep the vectors of an array in registers.
template<unsigned BEGIN, unsigned END, class FUNCTION>
KSX_INLINE void unrolled(FUNCTION&& f)
{
    [&]<unsigned... I>(std::integer_sequence<unsigned, I...>) KSX_INLINE_LAMBDA
    {
        (f.template operator()<BEGIN + I>(), ...);
    }
    (std::make_integer_sequence<unsigned, END - BEGIN>{});
}

/// What a stage promises about the codes that it gives. The promise does not include alpha.
enum class Range {
    Any,   ///< nothing
    Kept,  ///< within the range of their depth, if the codes that it takes are
    Given, ///< within the range of their depth, for any input
};

/// The base of every stage: a step takes `IN` pixels and gives `OUT`.
template<unsigned IN, unsigned OUT>
class Kernel {
public:
    static constexpr unsigned kIn = IN;
    static constexpr unsigned kOut = OUT;
    static constexpr unsigned kPart = IN;
    /// A stage that keeps or gives a range declares it. This default promises nothing.
    static constexpr Range kRange = Range::Any;

    /// For stages that take parameters at run time. There are none at present.
    virtual void setUserContext(const void* /*context*/) {}
};

template<class STAGE>
using InputOf = Pixels<typename STAGE::Input, STAGE::kPart>;

template<class STAGE>
using OutputOf = Pixels<typename STAGE::Output, STAGE::kPart>;

template<class STAGE>
concept LooksBack = requires(STAGE& stage, const InputOf<STAGE>& in)
{
    {
        stage.step(in)
        } -> std::same_as<OutputOf<STAGE>>;
    {
        stage.firstStep(in)
        } -> std::same_as<OutputOf<STAGE>>;
};

template<class STAGE>
concept LooksAhead = requires(STAGE& stage, const InputOf<STAGE>& in, Vector next)
{
    {
        stage.step(in, next)
        } -> std::same_as<OutputOf<STAGE>>;
    {
        stage.lastStep(in)
        } -> std::same_as<OutputOf<STAGE>>;
};

/// Looks ahead, and supports rows of one width that end inside a group.
template<class STAGE>
concept EndsAtLines = LooksAhead<STAGE> && requires(STAGE& stage, const InputOf<STAGE>& in)
{
    {
        stage.template lastStepOf<1>(in)
        } -> std::same_as<OutputOf<STAGE>>;
};

template<class STAGE>
concept HasFirstStep = requires
{
    &STAGE::firstStep;
};

template<class STAGE>
concept HasLastStep = requires
{
    &STAGE::lastStep;
};

template<class STAGE>
concept Plain =
    !HasFirstStep<STAGE> && !HasLastStep<STAGE> && requires(STAGE & stage, const InputOf<STAGE>& in)
{
    {
        stage.step(in)
        } -> std::same_as<OutputOf<STAGE>>;
};

/// A stage is of exactly one kind, and no stage changes the number of pixels.
template<class STAGE>
concept Stage = std::derived_from<STAGE, Kernel<STAGE::kIn, STAGE::kOut>> &&
                (STAGE::kIn == STAGE::kOut) &&
                (STAGE::kIn % STAGE::kPart == 0) &&
                (Plain<STAGE> || LooksBack<STAGE> || LooksAhead<STAGE>);

} // namespace KSX::PixelConversion
