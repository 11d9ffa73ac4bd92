/// Frames are made once and used again as soon as the helper has let go of them.
#include "FrameReader.h"

#include <algorithm>
#include <utility>

namespace preview_host {

using kestrix::host::MemoryFrame;
using kestrix::host::MemoryFrameOptions;

FrameReader::FrameReader(const FrameLayout& layout, bool captured, Input& left, Input* right)
    : m_layout(layout),
      m_captured(captured),
      m_left(left),
      m_right(right)
{
}

Read FrameReader::next()
{
    if (!m_filling)
        m_filling = &unusedPair();

    if (!m_leftIsFilled) {
        const Read result = m_left.read(m_index, m_filling->left->bytes());
        if (result != Read::Frame)
            return result;
        m_leftIsFilled = true;
    }
    if (m_right) {
        const Read result = m_right->read(m_index, m_filling->right->bytes());
        if (result != Read::Frame)
            return result;
    }
    m_shown = m_filling;
    m_filling = nullptr;
    m_leftIsFilled = false;
    ++m_index;
    return Read::Frame;
}

void FrameReader::setLayout(const FrameLayout& layout, bool captured)
{
    m_layout = layout;
    m_captured = captured;
    const auto fill = [&](Input& input, bool isShown, MemoryFrame& from, MemoryFrame& to) {
        if (!input.isEndless())
            std::copy_n(from.bytes(), from.size(), to.bytes());
        else if (isShown)
            input.read(m_index - 1, to.bytes());
    };
    m_left.setLayout(layout);
    if (m_right)
        m_right->setLayout(layout);
    for (Pair& pair : m_pairs) {
        Pair old = std::exchange(pair, makePair());
        fill(m_left, &pair == m_shown, *old.left, *pair.left);
        if (m_right)
            fill(*m_right, &pair == m_shown, *old.right, *pair.right);
    }
    // A frame that was being filled is made anew where it is made.
    m_leftIsFilled = m_leftIsFilled && !m_left.isEndless();
}

FrameReader::Pair& FrameReader::unusedPair()
{
    const auto unused = std::find_if(m_pairs.begin(), m_pairs.end(), [](const Pair& pair) {
        // The left frame holds a reference to the right one.
        return pair.left->references() == 1 && (!pair.right || pair.right->references() == 2);
    });
    if (unused != m_pairs.end())
        return *unused;
    return m_pairs.emplace_back(makePair());
}

FrameReader::Pair FrameReader::makePair() const
{
    MemoryFrameOptions options = {
        .width = m_layout.size.width,
        .height = m_layout.size.height,
        .format = m_layout.format,
        .rowBytes = m_layout.rowBytes,
        .flags = m_layout.flip ? FrameFlagFlipVertical : FrameFlagDefault,
        .colorspace = m_layout.colorspace,
        .captured = m_captured,
    };
    Pair pair;
    if (m_right) {
        pair.right = MemoryFrame::create(options);
        m_right->prepare(pair.right->bytes());
        options.packing3D = Packing3DLeftOnly;
        options.rightEye = pair.right.get();
    }
    pair.left = MemoryFrame::create(options);
    m_left.prepare(pair.left->bytes());
    return pair;
}

std::string FrameReader::fault() const
{
    const std::string fault = m_left.fault();
    return fault.empty() && m_right ? m_right->fault() : fault;
}

} // namespace preview_host
