/// How an entry function picks the walker of its pipeline for the picture at hand.
#pragma once

#include "conversion/ConversionEntries.h"
#include "conversion/Transform.h"

namespace KSX::PixelConversion {

/// Runs `PIPELINE` by the walker without tails where the width is a multiple of its block, and by
/// the general one otherwise.
template<class PIPELINE>
void convert(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,
             unsigned srcRowBytes)
{
    const auto srcStride = static_cast<int>(srcRowBytes);
    const auto dstStride = static_cast<int>(dstRowBytes);
    if (width % AsPipeline<PIPELINE>::kBlock == 0)
        Transform<PIPELINE, kWholeBlocks, kPrefetchBlocks>::apply(src, srcStride, dst, dstStride,
                                                                  width, height, nullptr);
    else
        Transform<PIPELINE, kAnyWidth, kPrefetchBlocks>::apply(src, srcStride, dst, dstStride,
                                                               width, height, nullptr);
}

/// Defines the entry `NAME`; the pipeline is all that follows it.
#define CONVERSION(NAME, ...)                                                                      \
    void NAME(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,         \
              unsigned srcRowBytes)                                                                \
    {                                                                                              \
        convert<__VA_ARGS__>(width, height, dst, dstRowBytes, src, srcRowBytes);                   \
    }

} // namespace KSX::PixelConversion
