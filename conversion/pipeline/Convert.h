/// How an entry function selects the `Transform` for a picture.
#pragma once

#include "conversion/ConversionEntries.h"
#include "conversion/fast/Rules.h"
#include "conversion/pipeline/By601Lines.h"
#include "conversion/pipeline/Transform.h"

namespace KSX::PixelConversion::details {

/// Runs `PIPELINE` with the arguments of a `ConversionFunction`.
template<class PIPELINE, unsigned FLAGS>
void transform(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,
               unsigned srcRowBytes)
{
    Transform<PIPELINE, FLAGS, kPrefetchBlocks>::apply(src, static_cast<int>(srcRowBytes), dst,
                                                       static_cast<int>(dstRowBytes), width, height,
                                                       nullptr);
}

/// Selects the `Transform` of `PIPELINE` for a picture: the one without code for tails if the width
/// is a multiple of the block, and the general one otherwise.
template<class PIPELINE>
struct Selection {
    static ConversionSignature* pick(unsigned width, unsigned /*height*/)
    {
        using P = AsPipeline<PIPELINE>;
        // Common widths that end inside a block have pipelines of their own.
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
struct Selection<By601Lines<PAL, NTSC>> {
    static ConversionSignature* pick(unsigned width, unsigned height)
    {
        return height == kPALHeight ? Selection<PAL>::pick(width, height)
                                    : Selection<NTSC>::pick(width, height);
    }
};

} // namespace KSX::PixelConversion::details

/// Defines the entry `NAME`. All arguments after it are the pipeline.
#define CONVERSION(NAME, ...)                                                                      \
    void NAME(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,         \
              unsigned srcRowBytes)                                                                \
    {                                                                                              \
        details::Selection<__VA_ARGS__>::pick(width, height)(width, height, dst, dstRowBytes, src, \
                                                             srcRowBytes);                         \
    }
