/// How the bands of the test pattern are drawn.
#include "host/TestPattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <string_view>

namespace kestrix::host {
namespace {

constexpr Color kBlack{0, 0, 0};
constexpr Color kWhite{1, 1, 1};

/// White, yellow, cyan, green, magenta, red, blue, black: each of the three is 0 or 1.
constexpr Color kBars[] = {{1, 1, 1}, {1, 1, 0}, {0, 1, 1}, {0, 1, 0},
                           {1, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}};

constexpr Color kRamps[] = {{1, 1, 1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

Color scaled(const Color& color, double level)
{
    return {color.r * level, color.g * level, color.b * level};
}

/// Bars: white has the level 1, the colours have `level`.
void fillBars(double level, std::span<Color> row)
{
    for (std::size_t x = 0; x < row.size(); ++x) {
        const std::size_t bar = x * std::size(kBars) / row.size();
        row[x] = bar == 0 ? kWhite : scaled(kBars[bar], level);
    }
}

void fillRamp(const Color& full, std::span<Color> row)
{
    const double last = std::max<double>(1, static_cast<double>(row.size()) - 1);
    for (std::size_t x = 0; x < row.size(); ++x)
        row[x] = scaled(full, static_cast<double>(x) / last);
}

/// The segments of a digit as bits: top, upper left, upper right, middle, lower left, lower right,
/// bottom, from bit 0.
constexpr std::array<std::uint8_t, 10> kSegments = {0x77, 0x24, 0x5d, 0x6d, 0x2e,
                                                    0x6b, 0x7b, 0x25, 0x7f, 0x6f};

/// Whether a character of the clock is lit at (x, y), both 0 to 1 over a cell twice as high as
/// wide.
bool isLit(char character, double x, double y)
{
    constexpr double kSide = 0.15;
    constexpr double kThickX = 0.16;
    constexpr double kThickY = kThickX / 2;
    const bool upperDot = std::abs(y - 0.33) < kThickY / 2;
    const bool lowerDot = std::abs(y - 0.67) < kThickY / 2;
    if (character == ':')
        return std::abs(x - 0.5) < kThickX / 2 && (upperDot || lowerDot);
    if (x < kSide || x > 1 - kSide || y < kThickY || y > 1 - kThickY)
        return false;

    const unsigned segments = kSegments.at(static_cast<std::size_t>(character - '0'));
    const bool left = x < kSide + kThickX;
    const bool right = x > 1 - kSide - kThickX;
    const bool upper = y < 0.5;
    const bool top = y < 2 * kThickY;
    const bool middle = std::abs(y - 0.5) < kThickY / 2;
    const bool bottom = y > 1 - 2 * kThickY;
    return (segments & 1 && top) || (segments & 2 && upper && left) ||
           (segments & 4 && upper && right) || (segments & 8 && middle) ||
           (segments & 16 && !upper && left) || (segments & 32 && !upper && right) ||
           (segments & 64 && bottom);
}

} // namespace

TestPattern::TestPattern(unsigned width, unsigned height, unsigned framesPerSecond)
    : m_width(width),
      m_framesPerSecond(framesPerSecond)
{
    const auto at = [=](std::uint64_t sixteenths) {
        return static_cast<unsigned>(height * sixteenths / 16);
    };
    m_fullBarsTop = at(6);
    m_rampsTop = at(8);
    m_zonePlateTop = at(10);
    m_clockTop = at(14);
    m_markerTop = height - (height - m_clockTop) / 8;
}

void TestPattern::fillRow(std::uint64_t frame, unsigned y, std::span<Color> row) const
{
    if (y < m_fullBarsTop)
        fillBars(0.75, row);
    else if (y < m_rampsTop)
        fillBars(1, row);
    else if (y < m_zonePlateTop)
        fillRamp(kRamps[(y - m_rampsTop) * std::size(kRamps) / (m_zonePlateTop - m_rampsTop)], row);
    else if (y < m_clockTop)
        fillZonePlate(y, row);
    else if (y < m_markerTop)
        fillClock(frame, y, row);
    else
        fillMarker(frame, row);
}

void TestPattern::fillZonePlate(unsigned y, std::span<Color> row) const
{
    // A phase of pi x^2 / width changes by pi per pixel at x = width / 2. The pattern is centred on
    // a pixel, so that the samples there are at the peaks and not at the zeros between them.
    const double dy = static_cast<double>(y) - (m_zonePlateTop + m_clockTop) / 2;
    for (unsigned x = 0; x < m_width; ++x) {
        const double dx = static_cast<double>(x) - m_width / 2;
        const double phase = std::numbers::pi / m_width * (dx * dx + dy * dy);
        row[x] = scaled(kWhite, 0.5 + 0.5 * std::cos(phase));
    }
}

void TestPattern::fillClock(std::uint64_t frame, unsigned y, std::span<Color> row) const
{
    const std::uint64_t seconds = frame / m_framesPerSecond;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02u:%02u:%02u:%02u",
                  static_cast<unsigned>(seconds / 3600 % 24),
                  static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60),
                  static_cast<unsigned>(frame % m_framesPerSecond));
    const std::string_view clock(text.data());

    const double cellHeight = m_markerTop - m_clockTop;
    const double cellWidth = std::min(cellHeight / 2, static_cast<double>(m_width) / clock.size());
    const double left = (m_width - cellWidth * clock.size()) / 2;
    const double inCellY = (y + 0.5 - m_clockTop) / cellHeight;
    for (unsigned x = 0; x < m_width; ++x) {
        const double cell = (x + 0.5 - left) / cellWidth;
        const bool inText = cell >= 0 && cell < clock.size();
        const auto index = inText ? static_cast<std::size_t>(cell) : 0;
        row[x] = inText && isLit(clock[index], cell - index, inCellY) ? kWhite : kBlack;
    }
}

void TestPattern::fillMarker(std::uint64_t frame, std::span<Color> row) const
{
    std::fill(row.begin(), row.end(), kBlack);
    const std::uint64_t crossing = 2ULL * m_framesPerSecond;
    const std::uint64_t left = frame % crossing * m_width / crossing;
    const std::uint64_t right = std::min<std::uint64_t>(left + std::max(m_width / 32, 1U), m_width);
    std::fill(row.begin() + left, row.begin() + right, kWhite);
}

} // namespace kestrix::host
