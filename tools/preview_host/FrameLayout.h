/// Size and layout of the frames that are shown.
#pragma once

#include "Options.h"

#include <cstddef>
#include <cstdint>

namespace preview_host {

/// The properties that all frames of a run share.
struct FrameLayout {
    Size size;
    std::uint32_t format = 0;
    unsigned rowBytes = 0;
    /// The colourspace that the frames state, if any.
    std::optional<std::uint32_t> colorspace;
    bool flip = false;
    bool captured = false;

    std::size_t bytes() const { return std::size_t{rowBytes} * size.height; }
};

/// The layout of frames of `size`. Throws `UsageError` if a row does not fit in its bytes.
FrameLayout makeLayout(const Options& options, Size size);

/// The format with the same layout and the other range, full or studio; nothing if there is none.
std::optional<std::uint32_t> otherRange(std::uint32_t format);

} // namespace preview_host
