/// libswscale between packed formats, with libavcodec's coders for v210 and r210.
#include "benchmarks/peers/Libraries.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/cpu.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <cstring>
#include <memory>

namespace kestrix::bench {

namespace {

void hold(Level level)
{
    av_force_cpu_flags(level == Level::Free
                           ? -1
                           : AV_CPU_FLAG_MMX | AV_CPU_FLAG_MMXEXT | AV_CPU_FLAG_SSE |
                                 AV_CPU_FLAG_SSE2 | AV_CPU_FLAG_SSE3 | AV_CPU_FLAG_SSSE3 |
                                 AV_CPU_FLAG_CMOV);
}

struct Free {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

/// An AVFrame whose lines have no padding between them.
struct Picture {
    std::uint8_t* planes[4];
    int strides[4];
};

Picture pictureAt(const unsigned char* bytes, AVPixelFormat format, unsigned width, unsigned height)
{
    Picture picture;
    av_image_fill_arrays(picture.planes, picture.strides, bytes, format, static_cast<int>(width),
                         static_cast<int>(height), 1);
    return picture;
}

std::size_t bytesOf(AVPixelFormat format, unsigned width, unsigned height)
{
    return static_cast<std::size_t>(
        av_image_get_buffer_size(format, static_cast<int>(width), static_cast<int>(height), 1));
}

/// Converts between two formats of libswscale by Rec. 709.
class Scaler {
public:
    Scaler(AVPixelFormat from, AVPixelFormat to, unsigned width, unsigned height)
        : m_height(static_cast<int>(height)),
          m_context(sws_getContext(static_cast<int>(width), m_height, from, static_cast<int>(width),
                                   m_height, to, SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr,
                                   nullptr),
                    Free())
    {
        if (!m_context)
            return;
        const int* const matrix = sws_getCoefficients(SWS_CS_ITU709);
        const auto isFull = [](AVPixelFormat format) {
            return format != AV_PIX_FMT_UYVY422 && format != AV_PIX_FMT_YUYV422 &&
                   format != AV_PIX_FMT_YUV422P10;
        };
        sws_setColorspaceDetails(m_context.get(), matrix, isFull(from), matrix, isFull(to), 0,
                                 1 << 16, 1 << 16);
    }

    explicit operator bool() const { return m_context != nullptr; }

    void run(const std::uint8_t* const* src, const int* srcStrides, const Picture& dst) const
    {
        sws_scale(m_context.get(), src, srcStrides, 0, m_height, dst.planes, dst.strides);
    }

private:
    int m_height;
    std::shared_ptr<SwsContext> m_context;
};

Peer scaled(std::string row, AVPixelFormat from, AVPixelFormat to, std::string differs = "")
{
    return {std::move(row), "swscale", std::move(differs),
            [=](Level level, unsigned width, unsigned height) -> PeerJob {
                hold(level);
                const Scaler scaler(from, to, width, height);
                if (!scaler)
                    return {};
                return {bytesOf(from, width, height), bytesOf(to, width, height),
                        [=](const unsigned char* src, unsigned char* dst) {
                            const Picture in = pictureAt(src, from, width, height);
                            scaler.run(in.planes, in.strides, pictureAt(dst, to, width, height));
                        }};
            }};
}

/// A format that FFmpeg implements as a codec.
struct Coded {
    AVCodecID codec;
    AVPixelFormat planes;
    std::size_t (*bytes)(unsigned width, unsigned height);
};
constexpr Coded kV210{AV_CODEC_ID_V210, AV_PIX_FMT_YUV422P10,
                      [](unsigned w, unsigned h) { return (w + 47) / 48 * std::size_t{128} * h; }};
constexpr Coded kR210{AV_CODEC_ID_R210, AV_PIX_FMT_GBRP10,
                      [](unsigned w, unsigned h) { return (w + 63) / 64 * std::size_t{256} * h; }};

/// A buffer of the caller as an AVBufferRef. The bytes after it are the padding that decoders need.
AVBufferRef* borrowed(std::uint8_t* bytes, std::size_t size)
{
    return av_buffer_create(
        bytes, size + AV_INPUT_BUFFER_PADDING_SIZE, [](void*, std::uint8_t*) {}, nullptr, 0);
}

/// Lets an encoder write to the address in `opaque`, so that no allocation and no copy is timed.
int encodeInPlace(AVCodecContext* context, AVPacket* packet, int /*flags*/)
{
    packet->data = static_cast<std::uint8_t*>(context->opaque);
    packet->buf = borrowed(packet->data, static_cast<std::size_t>(packet->size));
    return packet->buf ? 0 : AVERROR(ENOMEM);
}

std::shared_ptr<AVCodecContext> open(const AVCodec* codec, AVPixelFormat format, unsigned width,
                                     unsigned height)
{
    std::shared_ptr<AVCodecContext> context(avcodec_alloc_context3(codec), Free());
    context->width = static_cast<int>(width);
    context->height = static_cast<int>(height);
    context->pix_fmt = format;
    context->time_base = {1, 50};
    context->thread_count = 1;
    context->get_encode_buffer = encodeInPlace;
    if (avcodec_open2(context.get(), codec, nullptr) < 0)
        return nullptr;
    return context;
}

Peer decoded(std::string row, const Coded& from, AVPixelFormat to, std::string differs)
{
    return {std::move(row), "avcodec", std::move(differs),
            [=](Level level, unsigned width, unsigned height) -> PeerJob {
                hold(level);
                const auto codec =
                    open(avcodec_find_decoder(from.codec), from.planes, width, height);
                const Scaler scaler(from.planes, to, width, height);
                if (!codec || !scaler)
                    return {};
                const std::shared_ptr<AVFrame> frame(av_frame_alloc(), Free());
                const std::shared_ptr<AVPacket> packet(av_packet_alloc(), Free());
                const std::size_t bytes = from.bytes(width, height);
                return {bytes, bytesOf(to, width, height),
                        [=](const unsigned char* src, unsigned char* dst) {
                            // With a reference count, so that it is not copied.
                            auto* const data = const_cast<std::uint8_t*>(src);
                            packet->buf = borrowed(data, bytes);
                            packet->data = data;
                            packet->size = static_cast<int>(bytes);
                            avcodec_send_packet(codec.get(), packet.get());
                            av_packet_unref(packet.get());
                            if (avcodec_receive_frame(codec.get(), frame.get()) == 0)
                                scaler.run(frame->data, frame->linesize,
                                           pictureAt(dst, to, width, height));
                            av_frame_unref(frame.get());
                        }};
            }};
}

Peer encoded(std::string row, AVPixelFormat from, const Coded& to, std::string differs)
{
    return {std::move(row), "avcodec", std::move(differs),
            [=](Level level, unsigned width, unsigned height) -> PeerJob {
                hold(level);
                const auto codec = open(avcodec_find_encoder(to.codec), to.planes, width, height);
                const Scaler scaler(from, to.planes, width, height);
                const std::shared_ptr<AVFrame> frame(av_frame_alloc(), Free());
                const std::shared_ptr<AVPacket> packet(av_packet_alloc(), Free());
                frame->width = static_cast<int>(width);
                frame->height = static_cast<int>(height);
                frame->format = to.planes;
                if (!codec || !scaler || av_frame_get_buffer(frame.get(), 0) < 0)
                    return {};
                return {bytesOf(from, width, height), to.bytes(width, height),
                        [=](const unsigned char* src, unsigned char* dst) {
                            codec->opaque = dst;
                            const Picture in = pictureAt(src, from, width, height);
                            Picture planes;
                            std::memcpy(planes.planes, frame->data, sizeof planes.planes);
                            std::memcpy(planes.strides, frame->linesize, sizeof planes.strides);
                            scaler.run(in.planes, in.strides, planes);
                            avcodec_send_frame(codec.get(), frame.get());
                            avcodec_receive_packet(codec.get(), packet.get());
                            av_packet_unref(packet.get());
                        }};
            }};
}

} // namespace

std::vector<Peer> swscalePeers()
{
    const char* const kTwoPasses = "two passes";
    return {
        scaled("2vuy:709/BGRA:709", AV_PIX_FMT_UYVY422, AV_PIX_FMT_BGRA, "chroma repeated"),
        scaled("BGRA:709/2vuy:709", AV_PIX_FMT_BGRA, AV_PIX_FMT_UYVY422),
        decoded("v210:709/BGRA:709", kV210, AV_PIX_FMT_BGRA, "two passes, chroma repeated"),
        encoded("BGRA:709/v210:709", AV_PIX_FMT_BGRA, kV210, kTwoPasses),
        decoded("v210/2vuy", kV210, AV_PIX_FMT_UYVY422, kTwoPasses),
        encoded("2vuy/v210", AV_PIX_FMT_UYVY422, kV210, kTwoPasses),
        scaled("2vuy/YUY2", AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422),
        scaled("YUY2/2vuy", AV_PIX_FMT_YUYV422, AV_PIX_FMT_UYVY422),
        scaled("BGRA/ARGB", AV_PIX_FMT_BGRA, AV_PIX_FMT_ARGB),
        scaled("BGRA/RGBA", AV_PIX_FMT_BGRA, AV_PIX_FMT_RGBA, "keeps alpha"),
        scaled("ARGB/BGRA", AV_PIX_FMT_ARGB, AV_PIX_FMT_BGRA),
        scaled("RGBA/BGRA", AV_PIX_FMT_RGBA, AV_PIX_FMT_BGRA),
        scaled("RGB3/RGBA", AV_PIX_FMT_RGB24, AV_PIX_FMT_RGBA),
        scaled("RGB3/BGRA", AV_PIX_FMT_RGB24, AV_PIX_FMT_BGRA),
        scaled("RGBA/RGB3", AV_PIX_FMT_RGBA, AV_PIX_FMT_RGB24),
        scaled("R10L/BGRA", AV_PIX_FMT_X2RGB10LE, AV_PIX_FMT_BGRA, "bits at other positions"),
        scaled("BGRA/R10L", AV_PIX_FMT_BGRA, AV_PIX_FMT_X2RGB10LE,
               "bits at other positions, up to 19 codes off"),
        decoded("r210/BGRA", kR210, AV_PIX_FMT_BGRA, "two passes, full range"),
        encoded("BGRA/r210", AV_PIX_FMT_BGRA, kR210, "two passes, full range"),
        scaled("b64a/BGRA", AV_PIX_FMT_RGBA64BE, AV_PIX_FMT_BGRA, "components in another order"),
    };
}

std::string swscaleVersion()
{
    return std::string("swscale ") + av_version_info();
}

} // namespace kestrix::bench
