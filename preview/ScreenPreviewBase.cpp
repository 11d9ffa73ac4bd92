/// Chooses and runs the conversion of a frame for the fixed-function preview.
#include "preview/ScreenPreviewBase.h"

#include "api/InterfaceRef.h"
#include "conversion/colour/StudioClamp.h"
#include "conversion/fast/Rules.h"
#include "conversion/pipeline/Transform.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

using namespace KSX::PixelConversion;

namespace {

/// A row size as the signed distance to the next row.
int strideOf(unsigned rowBytes)
{
    return static_cast<int>(rowBytes);
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

void copyRows(std::size_t copiedBytes, unsigned height, void* destination,
              unsigned destinationRowBytes, const void* source, unsigned sourceRowBytes)
{
    auto* destinationRow = static_cast<std::byte*>(destination);
    const auto* sourceRow = static_cast<const std::byte*>(source);
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

bool ScreenPreviewBase::setup(IKestrixVideoFrame* frame, PixelFormat destinationFormat,
                              std::uint64_t mostCopiedRowBytes)
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
        m_copiedRowBytes =
            std::min(static_cast<std::uint64_t>(frame->GetRowBytes()), mostCopiedRowBytes);
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
        Transform<CLAMP_PACKED_RGB_TO_STUDIO, kAnyWidth, kPrefetchBlocks>::apply(
            source, strideOf(sourceRowBytes), destination, strideOf(destinationRowBytes), width,
            height, nullptr);
        source = destination;
        sourceRowBytes = destinationRowBytes;
    }
    if (m_conversion) {
        m_conversion(width, height, destination, destinationRowBytes, source, sourceRowBytes);
        return;
    }
    copyRows(m_copiedRowBytes, height, destination, destinationRowBytes, source, sourceRowBytes);
}
