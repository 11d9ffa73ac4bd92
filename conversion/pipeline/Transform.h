/// Walks a picture row by row and runs a pipeline over each row, block by block.
#pragma once

#include "conversion/pipeline/Composition.h"

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
template<class COMPOSITION>
struct Tail {
    unsigned inBytes;  ///< to copy from the row first; 0 if a whole block can be read in place
    unsigned outBytes; ///< to copy into the row last; 0 if a whole block can be stored in place
    alignas(16) std::byte in[COMPOSITION::kInBytes];
    alignas(16) std::byte out[COMPOSITION::kOutBytes];

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

/// Runs `count` consecutive blocks, at least one. `FIRST` and `END` are as in `Composition`.
/// `PREFETCH` is in blocks.
///
/// This is a separate function, so that all forms of `Transform` for a pipeline share one loop:
/// with tails, without tails and for rows of one width. It works on a copy of the stages, because
/// the compiler can keep a local object in registers.
template<bool FIRST, unsigned END, unsigned PREFETCH, class COMPOSITION>
[[gnu::noinline]] void runBlocks(COMPOSITION& stages, const std::byte* src, std::byte* dst,
                                 unsigned count)
{
    COMPOSITION copy = stages;
    do {
        // Also issued past the end of the row: a prefetch is a hint and cannot fault.
        prefetchNonTemporal(src + PREFETCH * COMPOSITION::kInBytes);
        copy.template block<FIRST, END>(src, dst);
        src += COMPOSITION::kInBytes;
        dst += COMPOSITION::kOutBytes;
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
    static void run(COMPOSITION& stages, const std::byte* src, std::byte* dst, unsigned count)
    {
        if (count != 0)
            runBlocks<false, END, PREFETCH>(stages, src, dst, count);
    }
};

template<unsigned BLOCK, class FIRST, class... REST>
requires(LooksAhead<FIRST> && sizeof...(REST) != 0 &&
         !(LooksBack<REST> ||
           ...)) struct FewBlocks<Composition<BLOCK, StageList<FIRST, REST...>>> {
    template<unsigned END, unsigned PREFETCH>
    static void run(Composition<BLOCK, StageList<FIRST, REST...>>& /*stages*/, const std::byte* src,
                    std::byte* dst, unsigned count)
    {
        Composition<BLOCK, StageList<FIRST>> first;
        Composition<BLOCK, StageList<REST...>> rest;
        for (; count != 0; --count) {
            alignas(16) std::byte between[first.kOutBytes];
            runBlocks<false, END, PREFETCH>(first, src, between, 1);
            runBlocks<false, 0, PREFETCH>(rest, between, dst, 1);
            src += first.kInBytes;
            dst += rest.kOutBytes;
        }
    }
};

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
template<class PIPELINE, unsigned FLAGS, unsigned PREFETCH>
class Transform {
    using P = AsPipeline<PIPELINE>;
    using Stages = CompositionOf<P>;
    static_assert(FLAGS == kWholeBlocks || FLAGS == kAnyWidth);
    static_assert(P::kLine == 0 || FLAGS == kAnyWidth);

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
        Tail<Stages> tail(width, blocks);

        const auto* srcRow = static_cast<const std::byte*>(src);
        auto* dstRow = static_cast<std::byte*>(dst);
        for (int row = 0; row < static_cast<int>(height); ++row) {
            walkRow(stages, tail, srcRow, dstRow, blocks, partial);
            srcRow += srcRowBytes;
            dstRow += dstRowBytes;
        }
    }

private:
    static void walkRow(Stages& stages, Tail<Stages>& tail, const std::byte* src, std::byte* dst,
                        unsigned blocks, bool partial)
    {
        // If a stage looks ahead, a row's last block runs separately; otherwise only a partial
        // block does.
        unsigned steps = P::kLooksAhead && !partial ? blocks - 1 : blocks;

        if constexpr (P::kLooksBack) {
            runBlocks<true, 0, PREFETCH>(stages, src, dst, 1);
            src += Stages::kInBytes;
            dst += Stages::kOutBytes;
            --steps;
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

    static void tailBlock(Stages& stages, Tail<Stages>& tail, const std::byte* src, std::byte* dst)
    {
        const std::byte* in = src;
        if (tail.inBytes != 0) {
            std::memcpy(tail.in, src, tail.inBytes);
            in = tail.in;
        }
        std::byte* const out = tail.outBytes != 0 ? tail.out : dst;
        FewBlocks<Stages>::template run<P::kLooksAhead ? kEnd : 0, PREFETCH>(stages, in, out, 1);
        if (tail.outBytes != 0)
            std::memcpy(dst, tail.out, tail.outBytes);
    }
};

} // namespace KSX::PixelConversion
