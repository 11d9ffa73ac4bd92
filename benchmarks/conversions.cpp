/// Times every conversion of the table, a memcpy that moves as many bytes, and the conversions of
/// other libraries. kestrix_bench [ROWS [SIZE]] selects the rows whose names match the regular
/// expression ROWS, and the sizes whose names begin with SIZE.
///
/// Names are ROW/SIZE/TEMPERATURE/WHO, such as "row41/2vuy:709/BGRA:709/1920x1080/hot/kestrix".
/// "memcpy/BYTES/TEMPERATURE" moves BYTES in all, half of them read and half written. The counters
/// are seconds a pixel, and bytes a second, read and written together.
#include "benchmarks/Peers.h"
#include "benchmarks/Pictures.h"
#include "benchmarks/Rows.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <regex>
#include <set>
#include <string>

namespace {

using namespace kestrix::bench;
using KSX::PixelConversion::conversions;
using KSX::PixelConversion::kConversionCount;

constexpr Size kSizes[] = {{1920, 1080}, {3840, 2160}};
constexpr Temperature kTemperatures[] = {Temperature::Hot, Temperature::Cold};

std::string nameOf(Size size)
{
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::string nameOf(Temperature temperature)
{
    return temperature == Temperature::Hot ? "hot" : "cold";
}

std::string nameOf(Level level)
{
    return level == Level::Ssse3 ? "ssse3" : "free";
}

/// Calls `work` with pair after pair. The first call is not timed: it may be the first to touch
/// memory.
template<class WORK>
void timePictures(benchmark::State& state, std::size_t srcBytes, std::size_t dstBytes,
                  Temperature temperature, std::size_t pixels, WORK work)
{
    Pictures pictures(srcBytes, dstBytes, temperature);
    work(pictures.next());
    for (auto _ : state) {
        work(pictures.next());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(srcBytes + dstBytes));
    if (pixels == 0)
        return;
    state.counters["per_pixel"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * static_cast<double>(pixels),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes"] = static_cast<double>(srcBytes + dstBytes);
}

/// False if a peer names no conversion of the table. Such a peer would never run, and nobody would
/// notice.
bool allPeersHaveRows()
{
    bool all = true;
    for (const Peer& peer : peers()) {
        unsigned rows = 0;
        for (unsigned i = 0; i < kConversionCount; ++i)
            rows += shortName(i) == peer.row;
        if (rows == 0)
            std::fprintf(stderr,
                         "kestrix_bench: %s is no conversion, but %s has one of that name\n",
                         peer.row.c_str(), peer.library.c_str());
        all = all && rows != 0;
    }
    return all;
}

void registerRow(unsigned index, Size size, Temperature temperature, std::set<std::string>& copies)
{
    const auto& row = conversions[index];
    const std::size_t srcRow = rowBytes(row.srcFormat, size.width);
    const std::size_t dstRow = rowBytes(row.dstFormat, size.width);
    const std::size_t srcBytes = srcRow * size.height;
    const std::size_t dstBytes = dstRow * size.height;
    const std::string where = nameOf(size) + "/" + nameOf(temperature) + "/";

    benchmark::RegisterBenchmark(
        (rowName(index) + "/" + where + "kestrix").c_str(), [=](benchmark::State& state) {
            timePictures(
                state, srcBytes, dstBytes, temperature, size.pixels(), [&](Pictures::Pair pair) {
                    row.function(size.width, size.height, pair.dst, static_cast<unsigned>(dstRow),
                                 pair.src, static_cast<unsigned>(srcRow));
                });
        });

    for (const Peer& peer : peers()) {
        if (peer.row != shortName(index))
            continue;
        for (const Level level : {Level::Ssse3, Level::Free})
            benchmark::RegisterBenchmark(
                (rowName(index) + "/" + where + peer.library + "-" + nameOf(level)).c_str(),
                [=](benchmark::State& state) {
                    const PeerJob job = peer.make(level, size.width, size.height);
                    if (!job.convert) {
                        state.SkipWithError("the peer has no such conversion here");
                        return;
                    }
                    state.SetLabel(peer.differs);
                    timePictures(state, job.srcBytes, job.dstBytes, temperature, size.pixels(),
                                 [&](Pictures::Pair pair) { job.convert(pair.src, pair.dst); });
                });
    }

    const std::string copy =
        "memcpy/" + std::to_string(srcBytes + dstBytes) + "/" + nameOf(temperature);
    if (copies.insert(copy).second)
        benchmark::RegisterBenchmark(copy.c_str(), [=](benchmark::State& state) {
            const std::size_t half = (srcBytes + dstBytes) / 2;
            timePictures(state, half, half, temperature, 0,
                         [=](Pictures::Pair pair) { std::memcpy(pair.dst, pair.src, half); });
        });
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc > 3 || (argc > 1 && argv[1][0] == '-')) {
        std::fprintf(stderr, "usage: kestrix_bench [--benchmark_...] [ROWS [SIZE]]\n");
        return 1;
    }
    if (!allPeersHaveRows())
        return 1;
    const std::regex rows(argc > 1 ? argv[1] : "");
    const std::string sizes = argc > 2 ? argv[2] : "";

    benchmark::AddCustomContext("compiler", KESTRIX_COMPILER);
    benchmark::AddCustomContext("last_cache_bytes", std::to_string(lastCacheBytes()));
    for (const std::string& version : peerVersions())
        benchmark::AddCustomContext("peer " + version.substr(0, version.find(' ')), version);

    std::set<std::string> copies;
    for (const Size size : kSizes)
        for (const Temperature temperature : kTemperatures)
            for (unsigned i = 0; i < kConversionCount; ++i)
                if (nameOf(size).starts_with(sizes) && std::regex_search(rowName(i), rows))
                    registerRow(i, size, temperature, copies);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
