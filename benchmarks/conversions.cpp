/// Times every live conversion of the table at 1920 by 1080, each beside a memcpy that moves as
/// many bytes in the same run.
///
/// "hot" works on one pair of pictures, "cold" on a rotating set that no cache holds. The counters
/// are the time a pixel takes and bytes a second, in and out together.
#include "conversion/KSXPixelConversion.h"
#include "conversion/PixelFormats.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace KSX::PixelConversion;

constexpr unsigned kWidth = 1920;
constexpr unsigned kHeight = 1080;
constexpr std::size_t kColdBytes = std::size_t{512} << 20;

/// Pairs of pictures that a benchmark goes round.
class Pictures {
public:
    Pictures(std::size_t srcBytes, std::size_t dstBytes, bool cold)
        : m_src(srcBytes),
          m_dst(dstBytes),
          m_count(cold ? kColdBytes / (srcBytes + dstBytes) : 1),
          m_memory(m_count * (srcBytes + dstBytes) + kReadableBehind)
    {
        for (std::size_t i = 0; i < m_memory.size(); ++i)
            m_memory[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
    }

    unsigned char* next()
    {
        m_at = (m_at + 1) % m_count;
        return m_memory.data() + m_at * (m_src + m_dst);
    }

private:
    static constexpr std::size_t kReadableBehind = 64;
    std::size_t m_src;
    std::size_t m_dst;
    std::size_t m_count;
    std::size_t m_at = 0;
    std::vector<unsigned char> m_memory;
};

/// Runs `work` on source and destination of pair after pair.
template<class WORK>
void timePictures(benchmark::State& state, std::size_t srcBytes, std::size_t dstBytes, bool cold,
                  WORK work)
{
    Pictures pictures(srcBytes, dstBytes, cold);
    for (auto _ : state) {
        unsigned char* const src = pictures.next();
        work(src + srcBytes, src);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(srcBytes + dstBytes));
    state.counters["per_pixel"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kWidth * kHeight,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

std::string name(PixelFormat format)
{
    if (format == PixelFormat_ARGB)
        return "ARGB";
    std::string code;
    for (int shift = 24; shift >= 0; shift -= 8)
        code += static_cast<char>(format >> shift & 0xff);
    return code;
}

const char* name(Colorspace colorspace)
{
    switch (colorspace) {
    case Colorspace601:
        return ":601";
    case Colorspace709:
        return ":709";
    case Colorspace2020:
        return ":2020";
    default:
        return "";
    }
}

void registerRow(unsigned index)
{
    const ConversionEntry& row = conversions[index];
    const auto srcRow = rowBytes(*findPixelFormat(row.srcFormat), kWidth);
    const auto dstRow = rowBytes(*findPixelFormat(row.dstFormat), kWidth);
    const std::string title = "row" + std::to_string(index) + "/" + name(row.srcFormat) +
                              name(row.srcColorspace) + "/" + name(row.dstFormat) +
                              name(row.dstColorspace);

    for (const bool cold : {false, true}) {
        const std::string suffix = cold ? "/cold" : "/hot";
        benchmark::RegisterBenchmark((title + suffix).c_str(), [=](benchmark::State& state) {
            timePictures(state, srcRow * kHeight, dstRow * kHeight, cold,
                         [&](unsigned char* dst, unsigned char* src) {
                             row.function(kWidth, kHeight, dst, static_cast<unsigned>(dstRow), src,
                                          static_cast<unsigned>(srcRow));
                         });
        });
        // As many bytes in all: a copy reads half of them and writes half.
        const std::size_t half = (srcRow + dstRow) * kHeight / 2;
        benchmark::RegisterBenchmark(
            (title + suffix + "/memcpy").c_str(), [=](benchmark::State& state) {
                timePictures(state, half, half, cold, [=](unsigned char* dst, unsigned char* src) {
                    std::memcpy(dst, src, half);
                });
            });
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    for (unsigned i = 0; i < kConversionCount; ++i)
        if (conversions[i].function != nullptr)
            registerRow(i);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
