/// libyuv. It names formats as words of the processor: its ARGB is B G R A in memory.
#include "benchmarks/peers/Libraries.h"

#include <libyuv.h>

#include <memory>

namespace kestrix::bench {

namespace {

void hold(Level level)
{
    libyuv::MaskCpuFlags(level == Level::Free ? -1
                                              : libyuv::kCpuInitialized | libyuv::kCpuHasX86 |
                                                    libyuv::kCpuHasSSE2 | libyuv::kCpuHasSSSE3);
}

using Function = int (*)(const std::uint8_t* src, int srcStride, std::uint8_t* dst, int dstStride,
                         int width, int height);

/// A conversion between packed formats, with the bytes of a pixel in each.
Peer packed(std::string row, Function function, int srcBytes, int dstBytes,
            std::string differs = "")
{
    return {std::move(row), "libyuv", std::move(differs),
            [=](Level level, unsigned w, unsigned h) -> PeerJob {
                hold(level);
                const int width = static_cast<int>(w), height = static_cast<int>(h);
                return {std::size_t{w} * h * static_cast<unsigned>(srcBytes),
                        std::size_t{w} * h * static_cast<unsigned>(dstBytes),
                        [=](const unsigned char* src, unsigned char* dst) {
                            function(src, srcBytes * width, dst, dstBytes * width, width, height);
                        }};
            }};
}

int swapBytes(const std::uint8_t* src, int srcStride, std::uint8_t* dst, int dstStride, int width,
              int height)
{
    constexpr std::uint8_t kOrder[] = {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14};
    return libyuv::ARGBShuffle(src, srcStride, dst, dstStride, kOrder, width / 2, height);
}

int fromWords(const std::uint8_t* src, int srcStride, std::uint8_t* dst, int dstStride, int width,
              int height)
{
    return libyuv::AR64ToARGB(reinterpret_cast<const std::uint16_t*>(src), srcStride / 2, dst,
                              dstStride, width, height);
}

/// For Rec. 709, libyuv converts from planes only. Rows are split one at a time, so the planes stay
/// in the nearest cache.
Peer overPlanes(std::string name)
{
    return {std::move(name), "libyuv planes", "two steps over planes, chroma repeated",
            [](Level level, unsigned w, unsigned h) -> PeerJob {
                hold(level);
                const int width = static_cast<int>(w);
                const auto planes = std::make_shared<std::vector<std::uint8_t>>(std::size_t{w} * 2);
                const auto convert = [=](const unsigned char* src, unsigned char* dst) {
                    std::uint8_t* const y = planes->data();
                    std::uint8_t* const u = y + w;
                    std::uint8_t* const v = u + w / 2;
                    for (unsigned row = 0; row < h; ++row) {
                        libyuv::UYVYToI422(src + std::size_t{row} * w * 2, 2 * width, y, width, u,
                                           width / 2, v, width / 2, width, 1);
                        libyuv::I422ToARGBMatrix(y, width, u, width / 2, v, width / 2,
                                                 dst + std::size_t{row} * w * 4, 4 * width,
                                                 &libyuv::kYuvH709Constants, width, 1);
                    }
                };
                return {std::size_t{w} * h * 2, std::size_t{w} * h * 4, convert};
            }};
}

} // namespace

std::vector<Peer> libyuvPeers()
{
    using namespace libyuv;
    return {
        packed("2vuy:709/BGRA:709", UYVYToARGB, 2, 4, "constants of Rec. 601, chroma repeated"),
        overPlanes("2vuy:709/BGRA:709"),
        packed("BGRA:709/2vuy:709", ARGBToUYVY, 4, 2, "constants of Rec. 601, chroma of pairs"),
        packed("2vuy/YUY2", swapBytes, 2, 2),
        packed("YUY2/2vuy", swapBytes, 2, 2),
        packed("BGRA/ARGB", ARGBToBGRA, 4, 4),
        packed("BGRA/RGBA", ARGBToABGR, 4, 4, "keeps alpha"),
        packed("ARGB/BGRA", BGRAToARGB, 4, 4),
        packed("RGBA/BGRA", ABGRToARGB, 4, 4),
        packed("RGB3/RGBA", RGB24ToARGB, 3, 4),
        packed("RGB3/BGRA", RAWToARGB, 3, 4),
        packed("RGBA/RGB3", ARGBToRGB24, 4, 3),
        packed("R10L/BGRA", AR30ToARGB, 4, 4, "bits at other positions, truncates"),
        packed("BGRA/R10L", ARGBToAR30, 4, 4, "bits at other positions, 255 becomes 1023"),
        packed("R210/BGRA", AR30ToARGB, 4, 4, "little-endian, truncates"),
        packed("BGRA/R210", ARGBToAR30, 4, 4, "little-endian, 255 becomes 1023"),
        packed("b64a/BGRA", fromWords, 8, 4, "little-endian, truncates"),
    };
}

std::string libyuvVersion()
{
    return "libyuv " + std::to_string(LIBYUV_VERSION);
}

} // namespace kestrix::bench
