/// Times the C library beside the engine's own entries: kestrix_convert_bench [OPTION...], with the
/// options of Google Benchmark. The counter `overhead_ns` is the time of a call of the C library
/// less that of the entry, and `ratio` is its quotient; both are measured in turns in one run. With
/// threads, `ratio` is the time of one thread divided by the time of two.
#include "convert/KestrixPixelConversion.h"

#include "conversion/PixelFormats.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace KSX::PixelConversion;
using Clock = std::chrono::steady_clock;

struct Pair {
    PixelFormat src;
    Colorspace srcColorspace;
    PixelFormat dst;
    Colorspace dstColorspace;
};

struct Pictures {
    kestrix_picture src;
    kestrix_picture dst;
    std::vector<std::uint8_t> srcBytes;
    std::vector<std::uint8_t> dstBytes;
    ConversionFunction function;

    Pictures(const Pair& pair, unsigned width, unsigned height)
        : function(
              GetConversionFunction(pair.src, pair.dst, pair.srcColorspace, pair.dstColorspace))
    {
        const std::size_t srcRow = rowBytes(*findPixelFormat(pair.src), width);
        const std::size_t dstRow = rowBytes(*findPixelFormat(pair.dst), width);
        srcBytes.resize(srcRow * height + 64, 60); // the entries read after the last row
        dstBytes.resize(dstRow * height);
        src = {sizeof(src),     pair.src,       pair.srcColorspace,
               width,           height,         static_cast<std::ptrdiff_t>(srcRow),
               srcBytes.data(), srcRow * height};
        dst = {sizeof(dst),     pair.dst,       pair.dstColorspace,
               width,           height,         static_cast<std::ptrdiff_t>(dstRow),
               dstBytes.data(), dstRow * height};
    }

    void bare()
    {
        function(src.width, src.height, dst.bytes, static_cast<unsigned>(dst.row_bytes), src.bytes,
                 static_cast<unsigned>(src.row_bytes));
    }
    void checked() { kestrix_convert(&src, &dst, 0); }
    void byThreads(unsigned threads) { kestrix_convert_by_threads(&src, &dst, threads, 0); }
};

template<class WORK>
double seconds(unsigned calls, const WORK& work)
{
    const auto start = Clock::now();
    for (unsigned i = 0; i < calls; ++i)
        work();
    return std::chrono::duration<double>(Clock::now() - start).count() / calls;
}

/// The least time of each, because noise only adds to it.
template<class A, class B>
void compare(benchmark::State& state, unsigned calls, const A& first, const B& second)
{
    double leastOfFirst = 1e9;
    double leastOfSecond = 1e9;
    for (auto _ : state) {
        leastOfFirst = std::min(leastOfFirst, seconds(calls, first));
        leastOfSecond = std::min(leastOfSecond, seconds(calls, second));
    }
    state.counters["ratio"] = leastOfSecond / leastOfFirst;
    state.counters["overhead_ns"] = (leastOfSecond - leastOfFirst) * 1e9;
    state.counters["least_us"] = leastOfSecond * 1e6;
}

void add(const std::string& name, const Pair& pair, unsigned width, unsigned height)
{
    const unsigned calls = width * height < 100000 ? 200 : 1;
    const std::string base = name + '/' + std::to_string(width) + 'x' + std::to_string(height);
    benchmark::RegisterBenchmark((base + "/checked").c_str(), [=](benchmark::State& state) {
        Pictures pictures(pair, width, height);
        compare(
            state, calls, [&] { pictures.bare(); }, [&] { pictures.checked(); });
    });
    benchmark::RegisterBenchmark((base + "/2_threads").c_str(), [=](benchmark::State& state) {
        Pictures pictures(pair, width, height);
        compare(
            state, calls, [&] { pictures.byThreads(2); }, [&] { pictures.byThreads(1); });
    });
}

} // namespace

int main(int argc, char** argv)
{
    constexpr Pair kUyvyToBgra{PixelFormat_2vuy, Colorspace709, PixelFormat_BGRA, Colorspace709};
    constexpr Pair kV210ToR210{PixelFormat_v210, Colorspace709, PixelFormat_r210, Colorspace709};
    constexpr Pair kPrimaries{PixelFormat_BGRA, Colorspace2020, PixelFormat_BGRA, Colorspace709};
    constexpr Pair kUyvyToV210{PixelFormat_2vuy, ColorspaceUnspecified, PixelFormat_v210,
                               ColorspaceUnspecified};
    for (const auto& [width, height] : {std::pair{1920u, 1080u}, std::pair{64u, 64u}}) {
        add("2vuy_BGRA", kUyvyToBgra, width, height);
        add("v210_r210", kV210ToR210, width, height);
        add("2020_709", kPrimaries, width, height);
        add("2vuy_v210", kUyvyToV210, width, height);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
