/// Whether blocks or rows of a picture can run side by side in the units of a vector.
///
/// The source and the destination of a conversion can share memory. One block at a time, in order,
/// then has a defined result. Several at a time have the same result only if none of them writes
/// what another still has to read.
#pragma once

#include "conversion/pipeline/Composition.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace KSX::PixelConversion {

/// The rows of a picture. Row bytes are signed.
struct Rows {
    const void* first;
    std::ptrdiff_t rowBytes;

    friend bool operator==(const Rows&, const Rows&) = default;

    /// Whether two pictures of `height` rows, of `bytes` and `otherBytes` a row, can share a byte.
    bool overlap(std::size_t bytes, const Rows& other, std::size_t otherBytes, int height) const
    {
        return lowest(height) < other.lowest(height) + other.span(height) + otherBytes &&
               other.lowest(height) < lowest(height) + span(height) + bytes;
    }

private:
    std::uintptr_t span(int height) const
    {
        return static_cast<std::uintptr_t>(std::abs(rowBytes) * (height - 1));
    }
    std::uintptr_t lowest(int height) const
    {
        const auto at = reinterpret_cast<std::uintptr_t>(first);
        return rowBytes < 0 ? at - span(height) : at;
    }
};

/// Whether pipeline `P` gives the same result with several blocks at a time, or with several rows
/// at a time if it looks back.
template<class P>
bool canRunSideBySide(const Rows& src, const Rows& dst, unsigned width, int height)
{
    using Composition = CompositionOf<P>;
    const std::size_t in = Composition::Input::rowBytes(width);
    const std::size_t out = Composition::Output::rowBytes(width);
    if constexpr (P::kLooksBack) {
        // Rows of the destination must be apart, because later ones overwrite earlier ones.
        const auto apart = static_cast<std::size_t>(std::abs(dst.rowBytes));
        if (height > 1 && apart < out)
            return false;
        return (src == dst && apart >= in) || !src.overlap(in, dst, out, height);
    } else {
        // In place, a block that keeps its size only writes what it has read.
        constexpr bool kKeepsPlace =
            !P::kLooksAhead && Composition::kInBytes == Composition::kOutBytes;
        return (kKeepsPlace && src == dst) || !src.overlap(in, dst, out, height);
    }
}

} // namespace KSX::PixelConversion
