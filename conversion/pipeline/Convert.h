/// How an entry function picks the walker of its pipeline for the picture at hand.
#pragma once

#include "conversion/ConversionEntries.h"
#include "conversion/pipeline/Transform.h"

namespace KSX::PixelConversion {

/// The height of a picture of 625 lines. Nothing but the height tells the primaries of Rec. 601
/// for 625 lines from those for 525.
constexpr unsigned kPALHeight = 576;

/// Stands in the place of a pipeline where the conversion changes to or from Rec. 601: `PAL` has
/// the primaries of 625 lines, `NTSC` those of 525, which serve every other height too.
template<class PAL, class NTSC>
struct By601Lines;

namespace details {

/// Runs `P` with the arguments of a `ConversionFunction`.
template<class P, unsigned FLAGS>
void transform(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,
               unsigned srcRowBytes)
{
    Transform<P, FLAGS, kPrefetchBlocks>::apply(src, static_cast<int>(srcRowBytes), dst,
                                                static_cast<int>(dstRowBytes), width, height,
                                                nullptr);
}

/// The walker of `PIPELINE` for a picture: the one without tails where the width is a multiple of
/// the block, and the general one otherwise.
template<class PIPELINE>
struct Walker {
    static ConversionSignature* pick(unsigned width, unsigned /*height*/)
    {
        using P = AsPipeline<PIPELINE>;
        // Common widths that end inside a block.
        if constexpr (P::kEndsAtLines) {
            if (width == 4096)
                return transform<typename P::template AtLine<4096>, kAnyWidth>;
            if (width == 2048)
                return transform<typename P::template AtLine<2048>, kAnyWidth>;
            if (width == 1280)
                return transform<typename P::template AtLine<1280>, kAnyWidth>;
        }
        return width % P::kBlock == 0 ? transform<P, kWholeBlocks> : transform<P, kAnyWidth>;
    }
};

template<class PAL, class NTSC>
struct Walker<By601Lines<PAL, NTSC>> {
    static ConversionSignature* pick(unsigned width, unsigned height)
    {
        return height == kPALHeight ? Walker<PAL>::pick(width, height)
                                    : Walker<NTSC>::pick(width, height);
    }
};

} // namespace details

/// Defines the entry `NAME`; the pipeline is all that follows it.
#define CONVERSION(NAME, ...)                                                                      \
    void NAME(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,         \
              unsigned srcRowBytes)                                                                \
    {                                                                                              \
        details::Walker<__VA_ARGS__>::pick(width, height)(width, height, dst, dstRowBytes, src,    \
                                                          srcRowBytes);                            \
    }

} // namespace KSX::PixelConversion
