/// Memory for the pixels of a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace kestrix::host {

/// The number of zeroed bytes after the last line, because conversions that interpolate chroma read
/// the pixels to the right of a line.
inline constexpr std::size_t kReadableBehind = 64;

struct FreeFrameBytes {
    void operator()(std::uint8_t* bytes) const;
};

/// Zeroed and 16-byte aligned.
using FrameBytes = std::unique_ptr<std::uint8_t, FreeFrameBytes>;

/// Makes memory for `height` lines of `rowBytes` bytes. Throws `std::invalid_argument` for negative
/// row bytes, `std::bad_alloc` if allocation fails.
FrameBytes allocateFrameBytes(std::int64_t rowBytes, std::int64_t height);

/// Bytes from one line to the next: as given, or the size of a line of the format. Throws
/// `std::invalid_argument` for a negative size, and for an unknown format if no row bytes are
/// given.
std::int64_t frameRowBytes(std::int64_t width, std::int64_t height, std::uint32_t format,
                           std::optional<std::int64_t> rowBytes);

} // namespace kestrix::host
