/// Describes the helpers' decisions as text.
#include "Decision.h"

#include "conversion/PixelFormats.h"
#include "host/Owned.h"
#include "preview/ScreenPreviewBase.h"
#include "preview/ScreenPreviewLut.h"
#include "preview/ShaderFormats.h"

#include <array>

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

/// The code that the frame states for its colourspace, if it states any.
std::optional<std::uint32_t> statedCode(IKestrixVideoFrame* frame)
{
    const auto metadata =
        kestrix::host::query<IKestrixVideoFrameMetadata>(frame, IID_IKestrixVideoFrameMetadata);
    std::int64_t code = 0;
    if (!metadata || metadata->GetInt(MetadataColorspace, &code) != S_OK)
        return std::nullopt;
    return static_cast<std::uint32_t>(code);
}

std::string nameOf(Colorspace colorspace)
{
    return colorspace == ColorspaceUnspecified ? "no known colourspace"
                                               : std::string("Rec. ") + colorspaceName(colorspace);
}

/// The row of the table with this conversion to RGBA, a row of `format` if there is one: captured
/// frames are converted by a row of another format.
const ConversionEntry* rowOf(ConversionFunction conversion, PixelFormat format)
{
    const ConversionEntry* found = nullptr;
    for (const ConversionEntry& row : conversions) {
        if (row.function != conversion || row.dstFormat != PixelFormat_RGBA)
            continue;
        if (row.srcFormat == format)
            return &row;
        found = &row;
    }
    return found;
}

std::string conversionFor(const ScreenPreviewBase& base)
{
    const std::string clamped =
        base.clampsToStudioRange() ? "captured, so clipped to 16..235; " : "";
    if (!base.previewConversion())
        return clamped + "no conversion, the rows are copied";
    const auto* row = rowOf(base.previewConversion(), base.previewFormat());
    std::string words = clamped + "row " + std::to_string(row - conversions) +
                        " of the conversions, " + findPixelFormat(row->srcFormat)->name + " to " +
                        findPixelFormat(row->dstFormat)->name;
    words += row->srcColorspace == ColorspaceUnspecified ? ", the same in every colourspace"
                                                         : " of " + nameOf(row->dstColorspace);
    return words;
}

std::string fixedFunctionDecision(IKestrixVideoFrame* frame)
{
    ScreenPreviewBase base;
    const bool canBeShown = base.setup(frame, PixelFormat_RGBA);
    const std::string colorspace =
        nameOf(base.previewColourspace()) +
        (statedCode(frame) ? " as stated" : " by width " + std::to_string(frame->GetWidth()));
    return colorspace + "; " +
           (canBeShown
                ? conversionFor(base)
                : std::string("not shown: no row of the conversions converts ") +
                      findPixelFormat(frame->GetPixelFormat())->name + " to RGBA of Rec. 709");
}

std::string openGL3Decision(IKestrixVideoFrame* frame)
{
    // Tables are in the order of their inputs, and then of their colourspaces.
    constexpr std::array kColorspaces = {"Rec. 601 of 525 lines", "Rec. 601 of 625 lines",
                                         "Rec. 709", "Rec. 2020"};

    const auto width = static_cast<unsigned>(frame->GetWidth());
    const auto height = static_cast<unsigned>(frame->GetHeight());
    const auto format = frame->GetPixelFormat();
    const auto code = statedCode(frame);
    const LutID table = ScreenPreviewLut::GetID(width, height, format, code.value_or(0));
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const ShaderFormat* const known = findShaderFormat(format);
    std::string reason = " by size " + size;
    if (code)
        reason = *code == ColorspaceCodeRec601 ? " as stated and by size " + size : " as stated";
    return kColorspaces[table % kColorspaces.size()] + reason + "; " +
           (known
                ? "colour table " + std::to_string(table) + ", " + nameOf(known->input)
                : std::string("black: the shader does not know ") + findPixelFormat(format)->name);
}

} // namespace

std::string decisionFor(HelperKind helper, IKestrixVideoFrame* frame)
{
    return helper == HelperKind::OpenGL3 ? openGL3Decision(frame) : fixedFunctionDecision(frame);
}

} // namespace preview_host
