/// Where the bytes of frames come from.
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
    Pending, ///< not all of it has come yet, try again
    End,     ///< there is no more
};

/// A source of frames of one layout.
class Input {
public:
    virtual ~Input() = default;

    /// In words.
    virtual std::string description() const = 0;

    /// Whether it goes on for ever. Such an input makes its frames itself, and may be asked for one
    /// again.
    virtual bool isEndless() const = 0;

    /// How many frames there are, if that is known beforehand.
    virtual std::optional<std::uint64_t> frames() const { return std::nullopt; }

    /// Makes further frames in another layout of the same size. Frames that are not made but read
    /// stay the bytes that they are, and have as many in both layouts.
    virtual void setLayout(const FrameLayout& /*layout*/) {}

    /// Writes what is the same in all frames to the zeroed bytes of a new one.
    virtual void prepare(std::uint8_t* /*bytes*/) {}

    /// Makes prepared bytes frame `index`; frames are asked for in order. Waits a few milliseconds
    /// at most: after `Read::Pending` it is to be called again with the same arguments.
    virtual Read read(std::uint64_t index, std::uint8_t* bytes) = 0;

    /// What was wrong with the input's end, one line; empty where nothing was.
    virtual std::string fault() const { return {}; }
};

/// The inputs of a run, and the layout of their frames.
struct Inputs {
    FrameLayout layout;
    std::unique_ptr<Input> left;
    /// Null without a right eye.
    std::unique_ptr<Input> right;
};

/// Opens what the options name. Throws `UsageError` and `std::runtime_error`.
Inputs openInputs(const Options& options);

/// Raw frames one after the other in a file, or on standard input for "-".
std::unique_ptr<Input> openRawInput(const std::string& path, const FrameLayout& layout);

/// One still picture for ever.
std::unique_ptr<Input> makePictureInput(const std::string& path, const Image& image,
                                        const FrameLayout& layout);

/// The test pattern for ever, its clock counting `rate` frames a second.
std::unique_ptr<Input> makePatternInput(const FrameLayout& layout, double rate);

} // namespace preview_host
