/// Conversions on many threads at once, with rows that end inside a block.
#include "tests/common/AllConversions.h"
#include "tests/common/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

TEST(Conversions, ShareNothingBetweenThreads)
{
    constexpr unsigned kThreads = 8;
    constexpr unsigned kHeight = 4;
    constexpr unsigned kRounds = 8;
    for (const Conversion& conversion : allConversions())
        for (const unsigned width : {98u, 122u}) { // blocks of more than 2 pixels end inside
            if (conversion.copies())
                continue;
            const auto srcRow = static_cast<unsigned>(rowBytes(conversion.src(), width)) + 64;
            const auto dstRow = static_cast<unsigned>(rowBytes(conversion.dst(), width));
            const auto convert = [&](std::vector<std::uint8_t> src) {
                std::vector<std::uint8_t> dst(std::size_t{dstRow} * kHeight);
                conversion.entry.function(width, kHeight, dst.data(), dstRow, src.data(), srcRow);
                // The chroma of the last pixels may not be defined.
                for (unsigned y = 0; y < kHeight; ++y)
                    std::fill(dst.begin() + y * dstRow + rowBytes(conversion.dst(), width - 2),
                              dst.begin() + (y + 1) * dstRow, std::uint8_t{0});
                return dst;
            };
            std::vector<std::vector<std::uint8_t>> sources;
            std::vector<std::vector<std::uint8_t>> expected;
            for (unsigned i = 0; i < kThreads; ++i) {
                std::vector<std::uint8_t>& src =
                    sources.emplace_back(std::size_t{srcRow} * kHeight);
                Random(i).fill(src, Content::Uniform);
                conversion.limit(src);
                expected.push_back(convert(src));
            }
            std::barrier start(kThreads);
            std::vector<std::thread> threads;
            for (unsigned i = 0; i < kThreads; ++i)
                threads.emplace_back([&, i] {
                    start.arrive_and_wait();
                    for (unsigned round = 0; round < kRounds; ++round)
                        EXPECT_TRUE(convert(sources[i]) == expected[i])
                            << conversion.name << ", width " << width;
                });
            for (std::thread& thread : threads)
                thread.join();
        }
}

} // namespace
} // namespace kestrix::test
