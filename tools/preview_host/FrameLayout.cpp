/// Row sizes and the colourspace that made pictures are encoded in.
#include "FrameLayout.h"

#include "conversion/PixelFormats.h"

namespace preview_host {
namespace {

/// A frame of 8 bytes a pixel and 8192 pixels each way: any real one is smaller.
constexpr std::size_t kLargestFrame = std::size_t{8} * 8192 * 8192;

using namespace KSX::PixelConversion;

/// The colourspace that a preview takes the frame to be in: the stated one, or else that of its
/// width.
Colorspace encodingOf(const FrameLayout& layout)
{
    if (!layout.colorspace)
        return layout.size.width == 720 ? Colorspace601 : Colorspace709;
    switch (*layout.colorspace) {
    case ColorspaceCodeRec601:
        return Colorspace601;
    case ColorspaceCodeRec2020:
        return Colorspace2020;
    default:
        return Colorspace709;
    }
}

} // namespace

FrameLayout makeLayout(const Options& options, Size size)
{
    const auto& format = *findPixelFormat(options.format);
    const std::size_t needed = rowBytes(format, size.width);
    const std::size_t given = options.rowBytes.value_or(needed);
    if (given < needed)
        throw UsageError("--row-bytes: " + std::to_string(size.width) + " pixels of " +
                         format.name + " take " + std::to_string(needed) + " bytes a row, not " +
                         std::to_string(given));
    if (given > kLargestFrame / size.height)
        throw UsageError("frames of " + std::to_string(given * size.height) +
                         " bytes are too large, " + std::to_string(kLargestFrame) + " is the most");
    return {size, options.format, static_cast<unsigned>(given), options.colorspace, options.flip};
}

std::optional<std::uint32_t> otherRange(std::uint32_t format)
{
    // The formats' names tell a pair: 10XRGB_BE_FULL is 10XRGB_BE_SMPTE in full range.
    const std::string name = findPixelFormat(format)->engineName;
    const std::size_t layout = name.rfind('_');
    if (layout == name.npos)
        return std::nullopt;
    const std::string other =
        name.substr(0, layout) + (name.ends_with("_FULL") ? "_SMPTE" : "_FULL");
    for (const auto& info : kPixelFormats)
        if (info.engineName == other)
            return info.code;
    return std::nullopt;
}

RowWriter::RowWriter(const FrameLayout& layout)
    : m_layout(layout),
      m_encoder(layout.format, encodingOf(layout), layout.size.width),
      m_row(layout.size.width)
{
}

void RowWriter::write(unsigned y, std::uint8_t* bytes)
{
    const std::size_t line = m_layout.flip ? m_layout.size.height - 1 - y : y;
    m_encoder.encode(m_row, bytes + line * m_layout.rowBytes);
}

} // namespace preview_host
