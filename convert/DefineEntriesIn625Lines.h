/// Included in front of the engine's sources, makes each of them define its entries that tell the
/// line standards apart as those of EntriesIn625Lines.h. Their pipelines are the engine's own, so
/// the linker keeps one copy.
#pragma once

// Two entries have no pipeline. They get other names, because the engine has them already.
#define Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar Unused_8ARGB_FULL_To_8BGRA_FULL
#define Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar Unused_8BGRA_FULL_To_8ARGB_FULL

#include "convert/EntriesIn625Lines.h"

#include "conversion/pipeline/Convert.h"

namespace KSX::PixelConversion::lines625 {

/// The other entries are the same for all heights. Nothing calls them here, and the linker drops
/// them.
template<class PIPELINE>
struct Selection {
    static void convert(unsigned, unsigned, void*, unsigned, void*, unsigned) {}
};

template<class PAL, class NTSC>
struct Selection<By601Lines<PAL, NTSC>> {
    static void convert(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,
                        unsigned srcRowBytes)
    {
        details::Selection<PAL>::pick(width, height)(width, height, dst, dstRowBytes, src,
                                                     srcRowBytes);
    }
};

} // namespace KSX::PixelConversion::lines625

#undef CONVERSION
#define CONVERSION(NAME, ...)                                                                      \
    namespace lines625 {                                                                           \
    ConversionSignature NAME;                                                                      \
    void NAME(unsigned width, unsigned height, void* dst, unsigned dstRowBytes, void* src,         \
              unsigned srcRowBytes)                                                                \
    {                                                                                              \
        Selection<__VA_ARGS__>::convert(width, height, dst, dstRowBytes, src, srcRowBytes);        \
    }                                                                                              \
    }
