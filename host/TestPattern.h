/// A moving test pattern: colour bars, ramps, a zone plate and a clock.
#pragma once

#include "host/RowEncoder.h"

#include <cstdint>
#include <span>

namespace kestrix::host {

/// The pattern as a function of frame number and row. From the top:
///
/// - colour bars 100/0/75/0 over 3/8 of the height, then 100/0/100/0 over 1/8 (ITU-R BT.471-1);
/// - ramps from black to full in grey, red, green and blue, 1/32 each;
/// - a zone plate over 1/4, whose frequency grows from 0 in its middle to half the sampling rate at
///   the left and right edges;
/// - over the last 1/8, the moving parts: a clock of hours, minutes, seconds and frames, and a
///   marker under it that crosses the picture in two seconds.
class TestPattern {
public:
    /// Sizes in pixels and rows, above 0; `framesPerSecond`, above 0, is the rate of the clock.
    TestPattern(unsigned width, unsigned height, unsigned framesPerSecond);

    /// Fills `row`, `width` colours, with row `y` of frame `frame`.
    void fillRow(std::uint64_t frame, unsigned y, std::span<Color> row) const;

    /// The first moving row; all rows below it move too. The rows above it are the same in every
    /// frame.
    unsigned firstMovingRow() const { return m_clockTop; }

private:
    void fillZonePlate(unsigned y, std::span<Color> row) const;
    void fillClock(std::uint64_t frame, unsigned y, std::span<Color> row) const;
    void fillMarker(std::uint64_t frame, std::span<Color> row) const;

    unsigned m_width;
    unsigned m_framesPerSecond;
    unsigned m_fullBarsTop;
    unsigned m_rampsTop;
    unsigned m_zonePlateTop;
    unsigned m_clockTop;
    unsigned m_markerTop;
};

} // namespace kestrix::host
