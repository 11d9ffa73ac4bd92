/// The sources of the frames' bytes.
#pragma once

#include "FrameLayout.h"
#include "PngFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace preview_host {

/// The result of an attempt to get a frame.
enum class Read {
    Frame,   ///< there is a new frame
    Pending, ///< a part of it has not arrived yet, try again
    End,     ///< there are no more frames
};

/// A source of frames.
class Input {
public:
    virtual ~Input() = default;

    /// The source as text.
    virtual std::string description() const = 0;

    /// Whether the input makes its frames. Then it can make them in any layout, and has no end.
    /// Frames that are read keep their bytes in every layout.
    virtual bool isMade() const { return true; }

    /// The number of frames, if it is known.
    virtual std::optional<std::uint64_t> frames() const { return std::nullopt; }

    /// Prepares the next frame, if it is not ready. Waits a few milliseconds at most.
    virtual Read read() { return Read::Frame; }

    /// Writes frame `index`: the one that is ready, or again the one that was written last. `bytes`
    /// are those of a frame of `layout`; they contain an earlier frame or, if `isNew`, zeros.
    virtual void write(std::uint64_t index, const FrameLayout& layout, bool isNew,
                       std::uint8_t* bytes) = 0;

    /// The fault at the end of the input, one line; empty if there is none.
    virtual std::string fault() const { return {}; }
};

/// A path, with its picture if it names one. An empty path is the test pattern.
struct Source {
    std::string path;
    std::optional<Image> picture;
};

/// Throws `std::runtime_error`.
Source openSource(const std::string& path);

/// The test pattern, a picture, or raw frames. The pattern's clock counts `rate` frames per second.
/// Throws `UsageError` and `std::runtime_error`.
std::unique_ptr<Input> makeInput(const Source& source, const FrameLayout& layout, double rate);

/// Raw frames one after the other in a file, or on standard input for "-".
std::unique_ptr<Input> makeRawInput(const std::string& path, std::size_t frameBytes);

} // namespace preview_host
