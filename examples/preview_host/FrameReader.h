/// Turns one or two inputs into frames to hand to a helper.
#pragma once

#include "Input.h"

#include "host/MemoryFrame.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace preview_host {

/// Reads frames, a pair of them where there is a right eye.
class FrameReader {
public:
    /// `right` may be null. Frames are marked as captured if so asked.
    FrameReader(const FrameLayout& layout, bool captured, std::unique_ptr<Input> left,
                std::unique_ptr<Input> right);

    /// Goes on to the next frame; after `Read::Frame` it is there.
    Read next();

    /// The newest frame, the left eye's. Valid until the next call of `next`, and from then on for
    /// whoever holds a reference.
    IKestrixVideoFrame* frame() const { return m_frame; }

    /// What was wrong with the inputs' end, one line; empty where nothing was.
    std::string fault() const;

private:
    using FramePointer = kestrix::host::Owned<kestrix::host::MemoryFrame>;

    /// The frames of both eyes; the left one leads to the right one.
    struct Pair {
        FramePointer left;
        FramePointer right;
    };

    Pair makePair() const;
    Pair& unusedPair();

    const FrameLayout m_layout;
    const bool m_captured;
    const std::unique_ptr<Input> m_left;
    const std::unique_ptr<Input> m_right;
    std::vector<Pair> m_pairs;
    const Pair* m_filling = nullptr;
    bool m_leftIsFilled = false;
    std::uint64_t m_index = 0;
    IKestrixVideoFrame* m_frame = nullptr;
};

} // namespace preview_host
