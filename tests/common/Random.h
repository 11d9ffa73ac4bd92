/// Seeded contents for the pictures and lanes that tests feed to the engine.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <span>

namespace kestrix::test {

/// How random values are drawn. Arithmetic fails at its ends and where neighbours differ, so those
/// are drawn as often as the middle.
enum class Content { Uniform, NearZero, NearMaximum, Impulse };

inline constexpr Content kContents[] = {Content::Uniform, Content::NearZero, Content::NearMaximum,
                                        Content::Impulse};

class Random {
public:
    explicit Random(std::uint64_t seed) : m_engine(seed) {}

    /// A number from 0 to `last`.
    std::uint64_t upTo(std::uint64_t last)
    {
        return std::uniform_int_distribution<std::uint64_t>(0, last)(m_engine);
    }

    /// Fills lanes with values from 0 to `maximum`; an impulse is one lane of it among zeros.
    template<class LANE>
    void fill(std::span<LANE> lanes, Content content, LANE maximum = static_cast<LANE>(~LANE{}))
    {
        const auto close = std::min<std::uint64_t>(3, maximum);
        for (LANE& lane : lanes) {
            switch (content) {
            case Content::Uniform:
                lane = static_cast<LANE>(upTo(maximum));
                break;
            case Content::NearZero:
                lane = static_cast<LANE>(upTo(close));
                break;
            case Content::NearMaximum:
                lane = static_cast<LANE>(maximum - upTo(close));
                break;
            case Content::Impulse:
                lane = 0;
                break;
            }
        }
        if (content == Content::Impulse && !lanes.empty())
            lanes[upTo(lanes.size() - 1)] = maximum;
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace kestrix::test
