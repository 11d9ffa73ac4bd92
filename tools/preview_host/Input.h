/// The sources of the frames' bytes.
#pragma once

#include "FrameLayout.h"
#include "PngFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace preview_host {

/// How an attempt to get a frame ended.
enum class Read {
    Frame,   ///< there is a new frame
    Pending, ///< a part of it has not come yet, try again
    End,     ///< there is no more
};

/// A source of frames.
class Input {
public:
    virtual ~Input() = default;

    /// In words.
    virtual std::string description() const = 0;

    /// Whether the input makes its frames. It can then make them in any layout and has no end.
    /// Frames that are not made but read keep their bytes in every layout.
    virtual bool isMade() const { return true; }

    /// How many frames there are, if that is known.
    virtual std::optional<std::uint64_t> frames() const { return std::nullopt; }

    /// Gets the next frame ready, if it is not. Waits a few milliseconds at most.
    virtual Read read() { return Read::Frame; }

    /// Writes frame `index`: the one that is ready, or again the one that was written last. `bytes`
    /// are those of a frame of `layout`; they hold an earlier frame or, if `isNew`, zeros.
    virtual void write(std::uint64_t index, const FrameLayout& layout, bool isNew,
                       std::uint8_t* bytes) = 0;

    /// What is wrong with the end of the input, one line; empty if nothing is.
    virtual std::string fault() const { return {}; }
};

/// A path with its picture, if it names one. An empty path is the test pattern.
struct Source {
    std::string path;
    std::optional<Image> picture;
};

/// Throws `std::runtime_error`.
Source openSource(const std::string& path);

/// The test pattern, a picture, or raw frames. The pattern's clock counts `rate` frames a second.
/// Throws `UsageError` and `std::runtime_error`.
std::unique_ptr<Input> makeInput(const Source& source, const FrameLayout& layout, double rate);

/// Raw frames one after the other in a file, or on standard input for "-".
std::unique_ptr<Input> makeRawInput(const std::string& path, std::size_t frameBytes);

} // namespace preview_host
