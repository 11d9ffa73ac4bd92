/// Seeded contents for the pictures that tests give to the engine.
#pragma once

#include <algorithm>
#include <cstdint>
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

    /// Fills bytes. An impulse is one byte of 255 among zeros.
    void fill(std::span<std::uint8_t> bytes, Content content)
    {
        std::ranges::generate(bytes, [&]() -> std::uint8_t {
            switch (content) {
            case Content::Uniform:
                return static_cast<std::uint8_t>(upTo(255));
            case Content::NearZero:
                return static_cast<std::uint8_t>(upTo(3));
            case Content::NearMaximum:
                return static_cast<std::uint8_t>(255 - upTo(3));
            default:
                return 0;
            }
        });
        if (content == Content::Impulse && !bytes.empty())
            bytes[upTo(bytes.size() - 1)] = 255;
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace kestrix::test
