/// Walks a picture row by row and runs a pipeline over each row, block by block.
#pragma once

#include "conversion/pipeline/Composition.h"
#include "conversion/pipeline/Overlap.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace KSX::PixelConversion {

/// Values of `FLAGS` of `Transform`.
enum WalkerFlags : unsigned {
    kWholeBlocks = 3, ///< the width is a multiple of the block; there is no code for a tail
    kAnyWidth = 7,    ///< a row may end in a partial block
};

/// How many blocks ahead of the one being read the source is prefetched.
constexpr unsigned kPrefetchBlocks = 8;

/// Handles the end of a row whose width is not a multiple of the block. The last pixels go through
/// scratch memory, so that no byte after the row is read or written. Prepared once per picture.
///
/// The scratch is not cleared. Its bytes after the row's pixels are left over from earlier rows or
/// were never set. Pixels made from them are dropped. They can only affect a row's last odd pixel,
/// which averages its chroma with the next pair; its value is not defined then.
template<class COMPOSITION, unsigned ROWS>
struct Tail {
    unsigned inBytes;  ///< to copy from the row first; 0 if a whole block can be read in place
    unsigned outBytes; ///< to copy into the row last; 0 if a whole block can be stored in place
    // One block each for every row that runs at a time.
    alignas(kUnitBytes) std::byte in[ROWS * COMPOSITION::kInBytes];
    alignas(kUnitBytes) std::byte out[ROWS * COMPOSITION::kOutBytes];

    /// For rows of `width` pixels that begin with `blocks` whole blocks.
    Tail(unsigned width, unsigned blocks)
        : inBytes(partOf(COMPOSITION::Input::rowBytes(width), blocks, COMPOSITION::kInBytes)),
          outBytes(partOf(COMPOSITION::Output::rowBytes(width), blocks, COMPOSITION::kOutBytes))
    {
    }

private:
    static unsigned partOf(unsigned row, unsigned blocks, unsigned blockBytes)
    {
        return (blocks + 1) * blockBytes <= row ? 0 : row - blocks * blockBytes;
    }
};

using Source = Separate<const std::byte>;
using Destination = Separate<std::byte>;

/// Runs consecutive blocks: `count` steps, at least one. `FIRST` and `END` are as in `Composition`.
/// `PREFETCH` is in blocks.
///
/// This is a separate function, so that all forms of `Transform` for a pipeline share one loop:
/// with tails, without tails and for rows of one width. It works on a copy of the stages, because
/// the compiler can keep a local object in registers.
template<bool FIRST, unsigned END, unsigned PREFETCH, class COMPOSITION, class SOURCE,
         class DESTINATION>
[[gnu::noinline]] void runBlocks(COMPOSITION& stages, SOURCE src, DESTINATION dst, unsigned count)
{
    COMPOSITION copy = stages;
    do {
        // Also issued past the end of the row: a prefetch is a hint and cannot fault.
        src.prefetch(PREFETCH * COMPOSITION::kInBytes);
        copy.template block<FIRST, END>(src, dst);
        src += SOURCE::kBlocks * COMPOSITION::kInBytes;
        dst += DESTINATION::kBlocks * COMPOSITION::kOutBytes;
    } while (--count != 0);
    if constexpr (COMPOSITION::kLooksBack)
        stages = copy;
}

/// Runs the few blocks at the end of a row. If the first stage looks ahead, each block runs in two
/// halves with memory between: first that stage, then the stages after it. Only the first stage has
/// forms for the end of a row, and all pipelines that begin with it share their code.
template<class COMPOSITION>
struct FewBlocks {
    template<unsigned END, unsigned PREFETCH>
    static void run(COMPOSITION& stages, Source src, Destination dst, unsigned count)
    {
        if (count != 0)
            runBlocks<false, END, PREFETCH>(stages, src, dst, count);
    }
};

template<unsigned BLOCK, class FIRST, class... REST>
requires(LooksAhead<FIRST> && sizeof...(REST) != 0 &&
         !(LooksBack<REST> ||
           ...)) struct FewBlocks<Composition<BLOCK, StageList<FIRST, REST...>>> {
    /// The units can be different rows: a stage can look back in a half after these stages.
    template<unsigned END, unsigned PREFETCH>
    static void run(Composition<BLOCK, StageList<FIRST, REST...>>& /*stages*/, Source src,
                    Destination dst, unsigned count)
    {
        Composition<BLOCK, StageList<FIRST>> first;
        Composition<BLOCK, StageList<REST...>> rest;
        for (; count != 0; --count) {
            alignas(kUnitBytes) std::byte between[kUnits * first.kOutBytes];
            runBlocks<false, END, PREFETCH>(
                first, src, Destination(between, first.kOutBytes, kUnits), 1);
            runBlocks<false, 0, PREFETCH>(rest, Source(between, first.kOutBytes, kUnits), dst, 1);
            src += first.kInBytes;
            dst += rest.kOutBytes;
        }
    }
};

/// The same for a stage that is `Alone`.
template<bool FIRST, unsigned END, unsigned PREFETCH, class COMPOSITION, class SOURCE,
         class DESTINATION>
requires(COMPOSITION::kSteps != 0) void runBlocks(COMPOSITION& stages, SOURCE src, DESTINATION dst,
                                                  unsigned count)
{
    using Step = typename COMPOSITION::Step;
    Step& steps = stages;
    runBlocks<false, 0, kPrefetchBlocks>(steps, stepsOf<Step::kInBytes>(src),
                                         stepsOf<Step::kOutBytes>(dst),
                                         count * COMPOSITION::kSteps);
}

/// The same for stages of which one is `Alone`.
template<bool FIRST, unsigned END, unsigned PREFETCH, class COMPOSITION, class SOURCE,
         class DESTINATION>
requires(COMPOSITION::kStripBlocks != 0) void runBlocks(COMPOSITION& stages, SOURCE src,
                                                        DESTINATION dst, unsigned count)
{
    using First = typename COMPOSITION::First;
    constexpr unsigned kBytes = COMPOSITION::kStripBlocks * First::kOutBytes;
    alignas(kUnitBytes) std::byte strip[kUnits * kBytes];
    const auto between = stripFor<First::kOutBytes, kBytes>(dst, strip);
    const auto betweenRead =
        stripFor<First::kOutBytes, kBytes>(src, static_cast<const std::byte*>(strip));
    while (count != 0) {
        const unsigned blocks = std::min(count, COMPOSITION::kStripBlocks);
        if constexpr (END != 0)
            FewBlocks<First>::template run<END, PREFETCH>(stages.first, src, between, blocks);
        else
            runBlocks<FIRST, 0, PREFETCH>(stages.first, src, between, blocks);
        runBlocks<FIRST, 0, PREFETCH>(stages.second, betweenRead, dst, blocks);
        src += blocks * SOURCE::kBlocks * COMPOSITION::kInBytes;
        dst += blocks * DESTINATION::kBlocks * COMPOSITION::kOutBytes;
        count -= blocks;
    }
}

/// Runs `PIPELINE` over a picture. `FLAGS` is one of `WalkerFlags`; `PREFETCH` is in blocks.
///
/// A row runs in one of four forms, which depend on the kinds of its stages:
///
/// | stages | first block | blocks between | last block |
/// |---|---|---|---|
/// | plain | step | step | step |
/// | look back | firstStep | step | step |
/// | look ahead | step | step | lastStep |
/// | both | firstStep | step | lastStep |
///
/// If the row ends in a partial block, this is its last block. A row needs at least one whole block
/// if the pipeline looks back, a second block, whole or partial, if it also looks ahead, and one
/// pixel if it only looks ahead. Nothing checks this.
///
/// The units of a vector hold neighbouring blocks of a row, or the same block of neighbouring rows
/// if a stage looks back. The blocks or rows that remain run with several units on one block, which
/// all give the same bytes. If a unit could write what another still has to read, as in some
/// conversions in place, one block or row runs at a time.
template<class PIPELINE, unsigned FLAGS, unsigned PREFETCH>
class Transform {
    using P = AsPipeline<PIPELINE>;
    using Stages = CompositionOf<P>;
    static_assert(FLAGS == kWholeBlocks || FLAGS == kAnyWidth);
    static_assert(P::kLine == 0 || FLAGS == kAnyWidth);

    static constexpr unsigned kRowsAtOnce = P::kLooksBack ? kUnits : 1;
    using RowTail = Tail<Stages, kRowsAtOnce>;

    static constexpr unsigned kWideBlock = wideBlock<P>();
    static constexpr unsigned kBlocksInWide = kWideBlock / P::kBlock;

    /// `END` for the last block, if a stage looks ahead.
    static constexpr unsigned kEnd = P::kLine == 0 ? P::kBlock : (P::kLine - 1) % P::kBlock + 1;

public:
    /// Runs the pipeline. The source comes first, unlike in a `ConversionFunction`. Row sizes are
    /// signed: with a negative size the walk goes upwards. If `height`, read as signed, is below 1,
    /// nothing happens.
    static void apply(const void* src, int srcRowBytes, void* dst, int dstRowBytes, unsigned width,
                      unsigned height, const void* userContext)
    {
        Stages stages;
        stages.setUserContext(userContext);

        const unsigned blocks = width / P::kBlock;
        const bool partial = FLAGS == kAnyWidth && width % P::kBlock != 0;
        RowTail tail(width, blocks);

        const bool sideBySide =
            kUnits != 1 && canRunSideBySide<P>({src, srcRowBytes}, {dst, dstRowBytes}, width,
                                               static_cast<int>(height));
        const int rows = sideBySide ? kRowsAtOnce : 1;

        const auto* srcRow = static_cast<const std::byte*>(src);
        auto* dstRow = static_cast<std::byte*>(dst);
        for (int left = static_cast<int>(height); left > 0; left -= rows) {
            const auto used = static_cast<unsigned>(std::min(left, rows));
            walkRow(stages, tail, Source(srcRow, srcRowBytes, used),
                    Destination(dstRow, dstRowBytes, used), blocks, partial, sideBySide);
            srcRow += std::ptrdiff_t{srcRowBytes} * rows;
            dstRow += std::ptrdiff_t{dstRowBytes} * rows;
        }
    }

private:
    static void walkRow(Stages& stages, RowTail& tail, Source src, Destination dst, unsigned blocks,
                        bool partial, [[maybe_unused]] bool sideBySide)
    {
        // If a stage looks ahead, a row's last block runs separately; otherwise only a partial
        // block does.
        unsigned steps = P::kLooksAhead && !partial ? blocks - 1 : blocks;

        if constexpr (P::kLooksBack) {
            runBlocks<true, 0, PREFETCH>(stages, src, dst, 1);
            src += Stages::kInBytes;
            dst += Stages::kOutBytes;
            --steps;
        } else if constexpr (kUnits != 1) {
            if (sideBySide)
                runNeighbours(src, dst, steps);
        }
        if constexpr (kBlocksInWide > 1) {
            if (const unsigned wideSteps = steps / kBlocksInWide; wideSteps != 0) {
                CompositionOf<P, kWideBlock> wideStages;
                runBlocks<false, 0, PREFETCH / kBlocksInWide>(wideStages, src, dst, wideSteps);
                src += std::size_t{wideSteps} * wideStages.kInBytes;
                dst += std::size_t{wideSteps} * wideStages.kOutBytes;
                steps -= wideSteps * kBlocksInWide;
            }
            FewBlocks<Stages>::template run<0, PREFETCH>(stages, src, dst, steps);
        } else if (steps != 0) {
            runBlocks<false, 0, PREFETCH>(stages, src, dst, steps);
        }
        src += std::size_t{steps} * Stages::kInBytes;
        dst += std::size_t{steps} * Stages::kOutBytes;
        if (partial)
            tailBlock(stages, tail, src, dst);
        else if constexpr (P::kLooksAhead)
            FewBlocks<Stages>::template run<kEnd, PREFETCH>(stages, src, dst, 1);
    }

    /// Runs a block in each unit as long as there are enough, then the ones that remain. Advances
    /// the addresses and takes the blocks off `steps`.
    static void runNeighbours(Source& src, Destination& dst, unsigned& steps)
    {
        constexpr unsigned kBlock = unitBlock<P>();
        constexpr unsigned kBlocks = kBlock / P::kBlock;
        using Units = CompositionOf<P, kBlock>;
        Units units;

        const unsigned all = steps / kBlocks;
        steps -= all * kBlocks;
        if (const unsigned groups = all / kUnits; groups != 0) {
            runBlocks<false, 0, PREFETCH>(
                units, Neighbours<const std::byte, Units::kInBytes>{src.unit(0)},
                Neighbours<std::byte, Units::kOutBytes>{dst.unit(0)}, groups);
            src += std::size_t{groups} * kUnits * Units::kInBytes;
            dst += std::size_t{groups} * kUnits * Units::kOutBytes;
        }
        if (const unsigned used = all % kUnits; used != 0) {
            runBlocks<false, 0, PREFETCH>(units, Source(src.unit(0), Units::kInBytes, used),
                                          Destination(dst.unit(0), Units::kOutBytes, used), 1);
            src += std::size_t{used} * Units::kInBytes;
            dst += std::size_t{used} * Units::kOutBytes;
        }
    }

    static void tailBlock(Stages& stages, RowTail& tail, Source src, Destination dst)
    {
        Source in = src;
        if (tail.inBytes != 0) {
            in = Source(tail.in, Stages::kInBytes, kRowsAtOnce);
            for (unsigned row = 0; row < kRowsAtOnce; ++row)
                std::memcpy(tail.in + row * Stages::kInBytes, src.unit(row), tail.inBytes);
        }
        const Destination out =
            tail.outBytes != 0 ? Destination(tail.out, Stages::kOutBytes, kRowsAtOnce) : dst;
        FewBlocks<Stages>::template run<P::kLooksAhead ? kEnd : 0, PREFETCH>(stages, in, out, 1);
        if (tail.outBytes != 0)
            for (unsigned row = 0; row < kRowsAtOnce; ++row)
                std::memcpy(dst.unit(row), tail.out + row * Stages::kOutBytes, tail.outBytes);
    }
};

} // namespace KSX::PixelConversion
