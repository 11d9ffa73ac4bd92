/// Makes frames from the inputs, for a helper.
#pragma once

#include "Input.h"

#include "host/MemoryFrame.h"

#include <cstdint>
#include <deque>
#include <memory>

namespace preview_host {

/// Reads frames, and their right eyes if there is an input for these.
class FrameReader {
public:
    /// Opens the inputs. Throws `UsageError` and `std::runtime_error`.
    explicit FrameReader(const Options& options);

    const FrameLayout& layout() const { return m_layout; }

    /// Gives this frame and the next ones another layout of the same size.
    void setLayout(const FrameLayout& layout);

    const Input& left() const { return *m_left; }

    /// Null if frames have one eye.
    const Input* right() const { return m_right.get(); }

    /// Gets the next frame; `frame` is valid after `Read::Frame`.
    Read next();

    /// The newest frame of the left eye. Valid until the next call of `next` or `setLayout`, or as
    /// long as the caller has a reference.
    IKestrixVideoFrame* frame() const { return m_frame; }

    /// The fault at the end of the inputs, one line; empty if there is none.
    std::string fault() const;

private:
    using FramePointer = kestrix::host::Owned<kestrix::host::MemoryFrame>;

    /// The frames of both eyes. The left one has a reference to the right one.
    struct Pair {
        FramePointer left;
        FramePointer right;
    };

    Pair makePair() const;
    void writeFrame();

    FrameLayout m_layout;
    std::unique_ptr<Input> m_left;
    std::unique_ptr<Input> m_right;
    /// Frames are reused after the helper has released them.
    std::deque<Pair> m_pairs;
    IKestrixVideoFrame* m_frame = nullptr;
    std::uint64_t m_frames = 0;
};

} // namespace preview_host
