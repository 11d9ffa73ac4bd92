/// Changes of range and of depth, for one lane of 16 bits.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace kestrix::test::reference {

/// Black and white of RGB.
struct Levels {
    int bits;
    bool full;

    bool operator==(const Levels&) const = default;

    int black() const { return full ? 0 : 16 << (bits - 8); }
    int white() const { return full ? (1 << bits) - 1 : 235 << (bits - 8); }
};

/// Converts levels. The gain follows from the levels. It has 16 bits of fraction. If it does not
/// fit, it is halved until it does, and the value is doubled as often.
class Rescale {
public:
    Rescale(Levels in, Levels out, bool rounds = true) : m_in(in), m_out(out), m_rounds(rounds)
    {
        double gain = static_cast<double>(out.white() - out.black()) / (in.white() - in.black());
        for (; gain >= 1; gain /= 2)
            ++m_doublings;
        m_gain = static_cast<std::uint32_t>(std::lround(gain * 65536));
    }

    std::uint16_t operator()(std::uint16_t x) const
    {
        if (!m_in.full) {
            // As signed values. If both are video levels, codes above white stay.
            if (m_out.full && static_cast<std::int16_t>(x) > m_in.white())
                x = static_cast<std::uint16_t>(m_in.white());
            x = static_cast<std::uint16_t>(std::max(x - m_in.black(), 0));
        }
        const auto doubled = static_cast<std::uint16_t>(x << m_doublings);
        const std::uint32_t y = (doubled * m_gain + (m_rounds ? 32768 : 0)) >> 16;
        return static_cast<std::uint16_t>(
            std::min(y + static_cast<std::uint32_t>(m_out.black()), 65535u));
    }

private:
    Levels m_in;
    Levels m_out;
    bool m_rounds;
    int m_doublings = 0;
    std::uint32_t m_gain;
};

/// A code value with `shift` bits more. If `shift` is negative, it has fewer bits: it is rounded,
/// and limited to the highest code of `width` bits shifted down.
inline std::uint32_t atDepth(std::uint32_t x, int shift, int width)
{
    if (shift > 0)
        return x << shift;
    return std::min((x + (1u << (-shift - 1))) >> -shift, ((1u << width) - 1) >> -shift);
}

/// Limits a lane, read as signed, to black and white.
inline std::uint16_t limited(std::uint16_t x, Levels to)
{
    return static_cast<std::uint16_t>(
        std::clamp<int>(static_cast<std::int16_t>(x), to.black(), to.white()));
}

/// One change of a row's lanes. Between 8-bit levels, alpha keeps its value.
struct LevelStep {
    std::function<std::uint16_t(std::uint16_t)> of;
    bool sparesAlpha = false;
};
using LevelSteps = std::vector<LevelStep>;

inline LevelStep rescale(Levels from, Levels to, bool rounds = true)
{
    return {Rescale(from, to, rounds), from.bits == 8 && to.bits == 8};
}

inline LevelStep shift(int by, int width = 16)
{
    return {[=](std::uint16_t x) { return static_cast<std::uint16_t>(atDepth(x, by, width)); }};
}

/// The steps from some levels to others. If the range stays, they are shifts.
inline LevelSteps stepsBetween(Levels from, Levels to, bool rounds = true)
{
    if (from == to)
        return {};
    if (from.full == to.full)
        return {shift(to.bits - from.bits)};
    if (from == Levels{12, false})
        return {{[=](std::uint16_t x) { return limited(x, from); }}, rescale(from, to)};
    return {rescale(from, to, rounds)};
}

} // namespace kestrix::test::reference
