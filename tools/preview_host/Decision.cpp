/// Describes the helpers' decisions as text.
#include "Decision.h"

#include "conversion/PixelFormats.h"
#include "examples/common/KestrixFrameCheck.h"
#include "preview/ScreenPreviewBase.h"
#include "preview/ScreenPreviewLut.h"
#include "preview/ShaderFormats.h"

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

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
    base.setup(frame, PixelFormat_RGBA);
    return conversionFor(base);
}

std::string openGL3Decision(const KestrixFrameProperties& frame)
{
    const LutID table = ScreenPreviewLut::GetID(static_cast<unsigned>(frame.width),
                                                static_cast<unsigned>(frame.height), frame.format,
                                                frame.colourspace);
    return "colour table " + std::to_string(table) + ", " +
           nameOf(findShaderFormat(frame.format)->input);
}

KestrixHelperKind kindOf(HelperKind helper)
{
    return helper == HelperKind::OpenGL3 ? KestrixHelperKind::OpenGL3
                                         : KestrixHelperKind::FixedFunction;
}

} // namespace

Decision decisionFor(HelperKind helper, IKestrixVideoFrame* frame)
{
    const KestrixFrameProperties properties = KestrixPropertiesOf(kindOf(helper), frame);
    const KestrixFrameAnswer answer = KestrixWouldBeShown(kindOf(helper), properties);
    const bool isShown = answer.outcome != KestrixFrameAnswer::NotShown;
    std::string words = KestrixColourspaceOf(kindOf(helper), properties) + "; ";
    if (!isShown)
        words += answer.words;
    else if (helper == HelperKind::OpenGL3)
        words += openGL3Decision(properties);
    else
        words += fixedFunctionDecision(frame);
    return {isShown, words};
}

bool canShow(HelperKind helper, const FrameLayout& layout)
{
    KestrixFrameProperties frame;
    frame.width = layout.size.width;
    frame.height = layout.size.height;
    frame.rowBytes = layout.rowBytes;
    frame.format = layout.format;
    frame.statesColourspace = layout.colorspace.has_value();
    frame.colourspace = layout.colorspace.value_or(0);
    frame.captured = layout.captured;
    return KestrixWouldBeShown(kindOf(helper), frame).outcome != KestrixFrameAnswer::NotShown;
}

std::string helpersFor(std::uint32_t format)
{
    const KestrixFormatFacts* const facts = KestrixFormatFacts::find(format);
    if (!facts)
        return {};
    return std::string(facts->standard ? "gl" : "  ") + (facts->openGL3 ? " gl3" : "    ");
}

} // namespace preview_host
