/// Turns one or two inputs into frames to hand to a helper.
#pragma once

#include "Input.h"

#include "host/MemoryFrame.h"

#include <cstdint>
#include <deque>

namespace preview_host {

/// Reads frames, a pair of them where there is a right eye.
class FrameReader {
public:
    /// The inputs have to outlive the reader; `right` may be null. Frames are marked as captured if
    /// so asked.
    FrameReader(const FrameLayout& layout, bool captured, Input& left, Input* right);

    /// Goes on to the next frame; after `Read::Frame` it is there.
    Read next();

    /// Has the frames in another layout of the same size from now on, that of `frame` included, and
    /// marked as captured or not. Frames that are read rather than made keep their bytes, of which
    /// there are as many then as before.
    void setLayout(const FrameLayout& layout, bool captured);

    /// The newest frame, the left eye's. Valid until the next call of `next` or `setLayout`, and
    /// from then on for whoever holds a reference.
    IKestrixVideoFrame* frame() const { return m_shown->left.get(); }

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

    FrameLayout m_layout;
    bool m_captured;
    Input& m_left;
    Input* const m_right;
    std::deque<Pair> m_pairs;
    const Pair* m_filling = nullptr;
    const Pair* m_shown = nullptr;
    bool m_leftIsFilled = false;
    std::uint64_t m_index = 0;
};

} // namespace preview_host
