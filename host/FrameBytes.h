/// Memory for the pixels of a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace kestrix::host {

/// Memory goes on this many zeroed bytes behind the last line: conversions that rebuild chroma look
/// at the pixels to the right of a line's last ones.
inline constexpr std::size_t kReadableBehind = 64;

struct FreeFrameBytes {
    void operator()(std::uint8_t* bytes) const;
};

/// Zeroed and 16-byte aligned.
using FrameBytes = std::unique_ptr<std::uint8_t, FreeFrameBytes>;

/// Makes memory for `height` lines of `rowBytes` bytes. Throws `std::invalid_argument` for negative
/// row bytes, `std::bad_alloc` where memory is short.
FrameBytes allocateFrameBytes(std::int64_t rowBytes, std::int64_t height);

/// Bytes from one line to the next: as given, or else what a line of the format takes. Throws
/// `std::invalid_argument` for a negative size, or a format with no row size where none is given.
std::int64_t frameRowBytes(std::int64_t width, std::int64_t height, std::uint32_t format,
                           std::optional<std::int64_t> rowBytes);

} // namespace kestrix::host
