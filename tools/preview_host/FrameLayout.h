/// Size and layout of the frames that are shown, and how made pictures get into them.
#pragma once

#include "Options.h"

#include "host/RowEncoder.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace preview_host {

/// What all frames of a run have in common.
struct FrameLayout {
    Size size;
    std::uint32_t format = 0;
    unsigned rowBytes = 0;
    /// What the frames state, if they do.
    std::optional<std::uint32_t> colorspace;
    bool flip = false;

    std::size_t bytes() const { return std::size_t{rowBytes} * size.height; }
};

/// The layout of frames of `size`. Throws `UsageError` where a row does not fit its bytes.
FrameLayout makeLayout(const Options& options, Size size);

/// The format of the same layout and the other range, full or studio; nothing where there is none.
std::optional<std::uint32_t> otherRange(std::uint32_t format);

/// Puts rows of colours into a frame, row 0 the top one as seen.
class RowWriter {
public:
    explicit RowWriter(const FrameLayout& layout);

    /// Rows of a frame.
    unsigned height() const { return m_layout.size.height; }

    /// The row to fill before `write`.
    std::span<kestrix::host::Color> row() { return m_row; }

    /// Encodes the row at its place in the frame at `bytes`.
    void write(unsigned y, std::uint8_t* bytes);

private:
    FrameLayout m_layout;
    kestrix::host::RowEncoder m_encoder;
    std::vector<kestrix::host::Color> m_row;
};

} // namespace preview_host
