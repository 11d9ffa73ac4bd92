/// The byte swap of 4-byte pixels, which two entries share since it is its own inverse.
#pragma once

#include "conversion/pipeline/Transform.h"
#include "conversion/stages/RGB8.h"

#include <cstdint>

namespace KSX::PixelConversion {

/// Reverses the bytes of every pixel; parameters as of a `ConversionFunction`. Rows of whole
/// vectors go two vectors a turn, with the same prefetch of 128 bytes.
inline void swapPackedRGB(unsigned width, unsigned height, void* dst, unsigned dstRowBytes,
                          void* src, unsigned srcRowBytes)
{
    const auto srcStride = static_cast<int>(srcRowBytes);
    const auto dstStride = static_cast<int>(dstRowBytes);
    if (width % 4 == 0)
        Transform<Nx<2, ENDIAN_SWAP_PACKED_RGB>, kAnyWidth, kPrefetchBlocks / 2>::apply(
            src, srcStride, dst, dstStride, width, height, nullptr);
    else
        Transform<ENDIAN_SWAP_PACKED_RGB, kAnyWidth, kPrefetchBlocks>::apply(
            src, srcStride, dst, dstStride, width, height, nullptr);
}

/// The same a pixel at a time: what the swap is, for whoever doubts the vectors.
inline void swapPackedRGBScalar(unsigned width, unsigned height, void* dst, unsigned dstRowBytes,
                                void* src, unsigned srcRowBytes)
{
    const auto* srcRow = static_cast<const std::byte*>(src);
    auto* dstRow = static_cast<std::byte*>(dst);
    for (int row = 0; row < static_cast<int>(height); ++row) {
        for (std::size_t x = 0; x < width; ++x) {
            __builtin_prefetch(srcRow + 4 * x + 32);
            std::uint32_t pixel;
            std::memcpy(&pixel, srcRow + 4 * x, sizeof(pixel));
            pixel = __builtin_bswap32(pixel);
            std::memcpy(dstRow + 4 * x, &pixel, sizeof(pixel));
        }
        srcRow += static_cast<int>(srcRowBytes);
        dstRow += static_cast<int>(dstRowBytes);
    }
}

} // namespace KSX::PixelConversion
