/// Opens the inputs, and makes frames from them.
#include "FrameReader.h"

#include <algorithm>

namespace preview_host {

using kestrix::host::MemoryFrame;
using kestrix::host::MemoryFrameOptions;

namespace {

constexpr Size kPatternSize{1920, 1080};

Size frameSize(const Options& options, const Source& source)
{
    if (options.size)
        return *options.size;
    if (source.picture)
        return source.picture->size;
    if (source.path.empty())
        return kPatternSize;
    throw UsageError("raw frames need --size");
}

} // namespace

FrameReader::FrameReader(const Options& options)
{
    const Source left = openSource(options.input);
    m_layout = makeLayout(options, frameSize(options, left));
    m_left = makeInput(left, m_layout, options.rate);
    if (!options.rightEye.empty())
        m_right = makeInput(openSource(options.rightEye), m_layout, options.rate);
}

Read FrameReader::next()
{
    for (Input* input : {m_left.get(), m_right.get()})
        if (const Read result = input ? input->read() : Read::Frame; result != Read::Frame)
            return result;
    ++m_frames;
    writeFrame();
    return Read::Frame;
}

void FrameReader::setLayout(const FrameLayout& layout)
{
    m_layout = layout;
    m_pairs.clear();
    if (m_frames > 0)
        writeFrame();
}

void FrameReader::writeFrame()
{
    auto pair = std::find_if(m_pairs.begin(), m_pairs.end(), [](const Pair& each) {
        return each.left->references() == 1 && (!each.right || each.right->references() == 2);
    });
    const bool isNew = pair == m_pairs.end();
    if (isNew)
        pair = m_pairs.insert(pair, makePair());
    m_left->write(m_frames - 1, m_layout, isNew, pair->left->bytes());
    if (m_right)
        m_right->write(m_frames - 1, m_layout, isNew, pair->right->bytes());
    m_frame = pair->left.get();
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
        .captured = m_layout.captured,
    };
    Pair pair;
    if (m_right) {
        pair.right = MemoryFrame::create(options);
        options.packing3D = Packing3DLeftOnly;
        options.rightEye = pair.right.get();
    }
    pair.left = MemoryFrame::create(options);
    return pair;
}

std::string FrameReader::fault() const
{
    const std::string fault = m_left->fault();
    return fault.empty() && m_right ? m_right->fault() : fault;
}

} // namespace preview_host
