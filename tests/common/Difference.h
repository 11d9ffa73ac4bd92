/// The first place where what was computed is not what was expected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include <gtest/gtest.h>

namespace kestrix::test {

/// Compares `LANE`s of which `lanesPerPixel` make a pixel. A failure names the row, the pixel, the
/// component, both values and the seed of the input.
template<class LANE>
testing::AssertionResult sameLanes(std::span<const LANE> expected, std::span<const LANE> got,
                                   std::size_t lanesPerPixel, unsigned row, std::uint64_t seed)
{
    if (expected.size() != got.size())
        return testing::AssertionFailure()
               << "row " << row << ": " << expected.size() << " lanes expected, got " << got.size();
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (expected[i] != got[i])
            return testing::AssertionFailure()
                   << "row " << row << ", pixel " << i / lanesPerPixel << ", component "
                   << i % lanesPerPixel << ": expected " << std::uint64_t{expected[i]} << ", got "
                   << std::uint64_t{got[i]} << "; seed " << seed;
    return testing::AssertionSuccess();
}

} // namespace kestrix::test
