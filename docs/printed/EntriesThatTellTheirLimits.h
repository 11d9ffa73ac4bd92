/// Included in front of the engine's sources, makes every entry tell what its pipeline asks of rows
/// in the place of converting. Entries that call others pass that on; those without a pipeline say
/// nothing, for they are called with no rows.
#pragma once

#include "conversion/pipeline/Convert.h"
#include "conversion/pipeline/RowLimits.h"

namespace KSX::PixelConversion {

/// What an entry puts where `dst` points.
struct ToldLimits {
    unsigned block = 0;
    unsigned leastWidth = 0;
    std::size_t (*bytesRead)(unsigned width) = nullptr;
};

template<class PIPELINE>
struct TellLimits {
    using Limits = RowLimits<AsPipeline<PIPELINE>>;
    static ToldLimits tell()
    {
        return {AsPipeline<PIPELINE>::kBlock, Limits::kLeastWidth, Limits::bytesRead};
    }
};

template<class PAL, class NTSC>
struct TellLimits<By601Lines<PAL, NTSC>> : TellLimits<PAL> {
};

} // namespace KSX::PixelConversion

#undef CONVERSION
#define CONVERSION(NAME, ...)                                                                      \
    void NAME(unsigned /*width*/, unsigned /*height*/, void* dst, unsigned /*dstRowBytes*/,        \
              void* /*src*/, unsigned /*srcRowBytes*/)                                             \
    {                                                                                              \
        *static_cast<ToldLimits*>(dst) = TellLimits<__VA_ARGS__>::tell();                          \
    }
