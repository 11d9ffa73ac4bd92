/// What a stage of a pipeline is, and how it declares its kind.
///
/// A stage derives from `Kernel<N, N>`, names its `Input` and `Output` representations, and has
///
///     Pixels<Output, N> step(const Pixels<Input, N>& in)            // plain
///
/// Two kinds have one operation more, and that operation is the declaration:
///
///     Pixels<Output, N> firstStep(const Pixels<Input, N>& in)       // looks back
///     Pixels<Output, N> step(const Pixels<Input, N>& in, Vector next)
///     Pixels<Output, N> lastStep(const Pixels<Input, N>& in)        // looks ahead
///
/// A stage that looks back keeps pixels of the group before in its members; `firstStep` takes a
/// row's first group, which has none. A stage that looks ahead gets the first 16 bytes of the group
/// behind as `next`; `lastStep` takes a row's last group. It reads the row itself, so it can only
/// stand first in a pipeline.
///
/// A stage with long steps can do them in parts, which keeps fewer vectors alive: `kPart` is the
/// pixels that its operations take then, and N stays what a block is a multiple of.
///
/// A stage that looks ahead can have copies made for rows of one width, which end inside a group:
/// `kLine` is that width, `AnyLine` the stage for all others, and that one's
///
///     template<unsigned PIXELS> Pixels<Output, N> lastStepOf(const Pixels<Input, N>& in)
///
/// takes a last group of which only the first `PIXELS` pixels belong to the row.
#pragma once

#include "conversion/pipeline/Representations.h"

#include <concepts>
#include <utility>

/// Stages and the machinery around them melt into one loop. Compilers do that for small functions
/// only, and a step that is called costs more than it does. Builds for debugging and for sanitizers
/// keep the functions apart: they check each one once instead of every copy of it, which takes a
/// twentieth of the time to compile.
#if defined(__OPTIMIZE__) && !defined(KSX_KEEP_FUNCTIONS)
#define KSX_INLINE [[gnu::always_inline]] inline
#define KSX_INLINE_LAMBDA __attribute__((always_inline))
#else
#define KSX_INLINE inline
#define KSX_INLINE_LAMBDA
#endif

namespace KSX::PixelConversion {

/// Calls `f.operator()<I>()` for each I from `BEGIN` to `END` - 1: a loop whose index is a constant
/// in every round, which is what lets vectors in arrays become registers.
template<unsigned BEGIN, unsigned END, class FUNCTION>
KSX_INLINE void unrolled(FUNCTION&& f)
{
    [&]<unsigned... I>(std::integer_sequence<unsigned, I...>) KSX_INLINE_LAMBDA
    {
        (f.template operator()<BEGIN + I>(), ...);
    }
    (std::make_integer_sequence<unsigned, END - BEGIN>{});
}

/// What a stage promises of the codes that it gives, alpha left out.
enum class Range {
    Any,   ///< nothing
    Kept,  ///< within the range of their depth, if those that it takes are
    Given, ///< within the range of their depth, whatever it takes
};

/// The base of every stage: a step takes `IN` pixels and gives `OUT`.
template<unsigned IN, unsigned OUT>
class Kernel {
public:
    static constexpr unsigned kIn = IN;
    static constexpr unsigned kOut = OUT;
    static constexpr unsigned kPart = IN;
    /// A stage that keeps its range says so; silence promises nothing.
    static constexpr Range kRange = Range::Any;

    /// For stages that are steered from outside. There is none at present.
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

/// Looks ahead, and has copies for rows of one width.
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

/// A stage is of exactly one kind, and no stage changes the count of pixels.
template<class STAGE>
concept Stage = std::derived_from<STAGE, Kernel<STAGE::kIn, STAGE::kOut>> &&
                (STAGE::kIn == STAGE::kOut) &&
                (STAGE::kIn % STAGE::kPart == 0) &&
                (Plain<STAGE> || LooksBack<STAGE> || LooksAhead<STAGE>);

} // namespace KSX::PixelConversion
