/// zimg. It works on planes. The time to split packed pixels and to pack them again is not
/// measured.
#include "benchmarks/peers/Libraries.h"

#include <zimg.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace kestrix::bench {

namespace {

/// A picture in planes.
struct Planes {
    zimg_color_family_e family;
    zimg_pixel_type_e type;
    unsigned depth;
    unsigned chromaShift; ///< horizontally, of planes 1 and 2
    zimg_matrix_coefficients_e matrix;
    zimg_color_primaries_e primaries;
    zimg_pixel_range_e range;
};

constexpr Planes yuv422(unsigned depth)
{
    return {ZIMG_COLOR_YUV,
            depth == 8 ? ZIMG_PIXEL_BYTE : ZIMG_PIXEL_WORD,
            depth,
            1,
            ZIMG_MATRIX_BT709,
            ZIMG_PRIMARIES_BT709,
            ZIMG_RANGE_LIMITED};
}
constexpr Planes rgb(zimg_color_primaries_e primaries)
{
    return {ZIMG_COLOR_RGB, ZIMG_PIXEL_BYTE, 8, 0, ZIMG_MATRIX_RGB, primaries, ZIMG_RANGE_FULL};
}

zimg_image_format formatOf(const Planes& planes, unsigned width, unsigned height)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = width;
    format.height = height;
    format.pixel_type = planes.type;
    format.subsample_w = planes.chromaShift;
    format.color_family = planes.family;
    format.matrix_coefficients = planes.matrix;
    format.transfer_characteristics = ZIMG_TRANSFER_BT709;
    format.color_primaries = planes.primaries;
    format.depth = planes.depth;
    format.pixel_range = planes.range;
    format.chroma_location = ZIMG_CHROMA_LEFT;
    return format;
}

std::size_t strideOf(const Planes& planes, unsigned width, unsigned plane)
{
    const unsigned samples = plane == 0 ? width : width >> planes.chromaShift;
    const std::size_t bytes = std::size_t{samples} * (planes.depth == 8 ? 1 : 2);
    return (bytes + 63) / 64 * 64;
}

std::size_t bytesOf(const Planes& planes, unsigned width, unsigned height)
{
    return height * (strideOf(planes, width, 0) + 2 * strideOf(planes, width, 1));
}

struct FreeGraph {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};

Peer planar(std::string row, const Planes& from, const Planes& to,
            std::string differs = "planes, not packed")
{
    return {std::move(row), "zimg", std::move(differs),
            [=](Level level, unsigned width, unsigned height) -> PeerJob {
                const zimg_image_format src = formatOf(from, width, height);
                const zimg_image_format dst = formatOf(to, width, height);
                zimg_graph_builder_params parameters;
                zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
                parameters.resample_filter = ZIMG_RESIZE_BILINEAR;
                parameters.resample_filter_uv = ZIMG_RESIZE_BILINEAR;
                parameters.dither_type = ZIMG_DITHER_NONE;
                parameters.cpu_type = level == Level::Free ? ZIMG_CPU_AUTO_64B : ZIMG_CPU_X86_SSSE3;
                const std::shared_ptr<zimg_filter_graph> graph(
                    zimg_filter_graph_build(&src, &dst, &parameters), FreeGraph());
                std::size_t scratchBytes = 0;
                if (!graph || zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes) != 0)
                    return {};
                const std::shared_ptr<void> scratch(
                    std::aligned_alloc(64, (scratchBytes + 63) / 64 * 64), std::free);
                const auto convert = [=](const unsigned char* in, unsigned char* out) {
                    zimg_image_buffer_const source{};
                    zimg_image_buffer destination{};
                    source.version = destination.version = ZIMG_API_VERSION;
                    for (unsigned p = 0; p < 3; ++p) {
                        source.plane[p].data = in;
                        source.plane[p].stride =
                            static_cast<std::ptrdiff_t>(strideOf(from, width, p));
                        source.plane[p].mask = ZIMG_BUFFER_MAX;
                        in += height * strideOf(from, width, p);
                        destination.plane[p].data = out;
                        destination.plane[p].stride =
                            static_cast<std::ptrdiff_t>(strideOf(to, width, p));
                        destination.plane[p].mask = ZIMG_BUFFER_MAX;
                        out += height * strideOf(to, width, p);
                    }
                    zimg_filter_graph_process(graph.get(), &source, &destination, scratch.get(),
                                              nullptr, nullptr, nullptr, nullptr);
                };
                return {bytesOf(from, width, height), bytesOf(to, width, height), convert};
            }};
}

} // namespace

std::vector<Peer> zimgPeers()
{
    constexpr Planes kRGB = rgb(ZIMG_PRIMARIES_BT709);
    return {
        planar("2vuy:709/BGRA:709", yuv422(8), kRGB),
        planar("v210:709/BGRA:709", yuv422(10), kRGB),
        planar("BGRA:709/2vuy:709", kRGB, yuv422(8)),
        planar("BGRA:709/v210:709", kRGB, yuv422(10)),
        planar("v210/2vuy", yuv422(10), yuv422(8)),
        planar("2vuy/v210", yuv422(8), yuv422(10)),
        planar("BGRA:2020/BGRA:709", rgb(ZIMG_PRIMARIES_BT2020), kRGB,
               "planes, not packed, linear by a power of 2.4"),
    };
}

std::string zimgVersion()
{
    unsigned version[3];
    zimg_get_version_info(&version[0], &version[1], &version[2]);
    return "zimg " + std::to_string(version[0]) + "." + std::to_string(version[1]) + "." +
           std::to_string(version[2]);
}

} // namespace kestrix::bench
