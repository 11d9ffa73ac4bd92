/// Row sizes and pairs of formats.
#include "FrameLayout.h"

#include "conversion/PixelFormats.h"

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

/// A frame of 8 bytes per pixel and 8192 x 8192 pixels: every real frame is smaller.
constexpr std::size_t kLargestFrame = std::size_t{8} * 8192 * 8192;

} // namespace

FrameLayout makeLayout(const Options& options, Size size)
{
    const auto& format = *findPixelFormat(options.format);
    const std::size_t needed = rowBytes(format, size.width);
    const std::size_t given = options.rowBytes.value_or(needed);
    if (given < needed)
        throw UsageError("--row-bytes: " + std::to_string(size.width) + " pixels of " +
                         format.name + " need " + std::to_string(needed) + " bytes per row, not " +
                         std::to_string(given));
    if (given > kLargestFrame / size.height)
        throw UsageError("frames of " + std::to_string(given * size.height) +
                         " bytes are too large, the limit is " + std::to_string(kLargestFrame));
    return {size,         options.format,  static_cast<unsigned>(given), options.colorspace,
            options.flip, options.captured};
}

std::optional<std::uint32_t> otherRange(std::uint32_t format)
{
    // The names of a pair differ in the range: 10XRGB_BE_FULL and 10XRGB_BE_SMPTE.
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

} // namespace preview_host
