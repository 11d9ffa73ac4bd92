/// Picks and runs the conversion of a frame for the fixed-function preview.
#include "preview/ScreenPreviewBase.h"

#include "api/InterfaceRef.h"

#include <cstddef>
#include <cstring>
#include <emmintrin.h>

using namespace KSX::PixelConversion;

namespace {

constexpr std::size_t kBlockBytes = 16;
constexpr std::size_t kPrefetchBytes = 128;

/// The byte distance between rows behind a row size.
std::ptrdiff_t strideOf(unsigned rowBytes)
{
    return static_cast<std::int32_t>(rowBytes);
}

bool is8BitRGB(PixelFormat format)
{
    return format == PixelFormat_ARGB || format == PixelFormat_vRGB || format == PixelFormat_BGRA ||
           format == PixelFormat_BGRv;
}

bool isCaptured(IKestrixVideoFrame* frame)
{
    InterfaceRef<IKestrixVideoInputFrame> mark;
    mark.query(frame, IID_IKestrixVideoInputFrame);
    return static_cast<bool>(mark);
}

/// The studio-range format of the same layout as an 8-bit RGB format.
PixelFormat studioRangeForm(PixelFormat format)
{
    switch (format) {
    case PixelFormat_ARGB:
        return PixelFormat_vRGB;
    case PixelFormat_BGRA:
        return PixelFormat_BGRv;
    default:
        return format;
    }
}

/// Limits 16 bytes to 16..235, the studio range of 8-bit RGB (ITU-R BT.709-6). Alpha is held to it
/// as well.
__m128i clampToStudioRange(__m128i bytes)
{
    return _mm_min_epu8(_mm_max_epu8(bytes, _mm_set1_epi8(16)),
                        _mm_set1_epi8(static_cast<char>(235)));
}

void clampRowToStudioRange(std::size_t rowBytes, std::uint8_t* destination,
                           const std::uint8_t* source)
{
    std::size_t at = 0;
    for (; at + kBlockBytes <= rowBytes; at += kBlockBytes) {
        _mm_prefetch(reinterpret_cast<const char*>(source + at + kPrefetchBytes), _MM_HINT_NTA);
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + at), clampToStudioRange(bytes));
    }
    if (at == rowBytes)
        return;

    // One to three pixels are left; what lies behind them belongs to somebody else.
    alignas(kBlockBytes) std::uint8_t scratch[kBlockBytes] = {};
    auto* const block = reinterpret_cast<__m128i*>(scratch);
    _mm_prefetch(reinterpret_cast<const char*>(source + at + kPrefetchBytes), _MM_HINT_NTA);
    std::memcpy(scratch, source + at, rowBytes - at);
    _mm_store_si128(block, clampToStudioRange(_mm_load_si128(block)));
    std::memcpy(destination + at, scratch, rowBytes - at);
}

void clampToStudioRange(unsigned width, unsigned height, void* destination,
                        unsigned destinationRowBytes, const void* source, unsigned sourceRowBytes)
{
    auto* destinationRow = static_cast<std::uint8_t*>(destination);
    const auto* sourceRow = static_cast<const std::uint8_t*>(source);
    const auto rows = static_cast<std::int32_t>(height);
    for (std::int32_t row = 0; row < rows; ++row) {
        clampRowToStudioRange(std::size_t{width} * 4, destinationRow, sourceRow);
        destinationRow += strideOf(destinationRowBytes);
        sourceRow += strideOf(sourceRowBytes);
    }
}

void copyRows(std::size_t copiedBytes, unsigned height, void* destination,
              unsigned destinationRowBytes, const void* source, unsigned sourceRowBytes)
{
    auto* destinationRow = static_cast<std::uint8_t*>(destination);
    const auto* sourceRow = static_cast<const std::uint8_t*>(source);
    for (unsigned row = 0; row < height; ++row) {
        std::memcpy(destinationRow, sourceRow, copiedBytes);
        destinationRow += strideOf(destinationRowBytes);
        sourceRow += strideOf(sourceRowBytes);
    }
}

} // namespace

Colorspace ScreenPreviewBase::frameColourspace(IKestrixVideoFrame* frame)
{
    InterfaceRef<IKestrixVideoFrameMetadata> metadata;
    metadata.query(frame, IID_IKestrixVideoFrameMetadata);

    std::int64_t code = 0;
    if (metadata && metadata->GetInt(MetadataColorspace, &code) >= 0) {
        switch (static_cast<std::uint32_t>(code)) {
        case ColorspaceCodeRec2020:
            return Colorspace2020;
        case ColorspaceCodeRec601:
            return Colorspace601;
        case ColorspaceCodeRec709:
            return Colorspace709;
        default:
            return ColorspaceUnspecified;
        }
    }
    return frame->GetWidth() == 720 ? Colorspace601 : Colorspace709;
}

bool ScreenPreviewBase::setup(IKestrixVideoFrame* frame, PixelFormat destinationFormat)
{
    if (!frame)
        return false;
    m_colourspace = frameColourspace(frame);
    if (m_colourspace == ColorspaceUnspecified)
        return false;

    auto format = static_cast<PixelFormat>(frame->GetPixelFormat());
    m_format = format;
    m_studioRangeRGB = is8BitRGB(format) && isCaptured(frame);
    if (m_studioRangeRGB)
        format = studioRangeForm(format);

    if (format == destinationFormat && m_colourspace == Colorspace709) {
        m_conversion = nullptr;
        m_copiedRowBytes = static_cast<std::uint64_t>(frame->GetRowBytes());
        return true;
    }
    m_conversion = GetConversionFunction(format, destinationFormat, m_colourspace, Colorspace709);
    return m_conversion != nullptr;
}

void ScreenPreviewBase::render(unsigned width, unsigned height, void* destination,
                               unsigned destinationRowBytes, void* source,
                               unsigned sourceRowBytes) const
{
    if (m_studioRangeRGB) {
        clampToStudioRange(width, height, destination, destinationRowBytes, source, sourceRowBytes);
        source = destination;
        sourceRowBytes = destinationRowBytes;
    }
    if (m_conversion) {
        m_conversion(width, height, destination, destinationRowBytes, source, sourceRowBytes);
        return;
    }
    copyRows(m_copiedRowBytes, height, destination, destinationRowBytes, source, sourceRowBytes);
}
