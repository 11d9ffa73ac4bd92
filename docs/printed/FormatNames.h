/// Formats and colourspaces as the pages in docs/ name them.
#pragma once

#include "conversion/PixelFormats.h"

#include <string>

namespace kestrix::test {

/// The four characters, or "32".
inline std::string codeOf(KSX::PixelConversion::PixelFormat format)
{
    using namespace KSX::PixelConversion;
    return format == PixelFormat_ARGB ? "32" : findPixelFormat(format)->name;
}

/// The same as Markdown.
inline std::string nameOf(KSX::PixelConversion::PixelFormat format)
{
    const std::string code = codeOf(format);
    return code == "32" ? code : "`" + code + "`";
}

inline const char* nameOf(KSX::PixelConversion::Colorspace colorspace)
{
    using namespace KSX::PixelConversion;
    return colorspace == Colorspace601 ? "601" : colorspace == Colorspace709 ? "709" : "2020";
}

} // namespace kestrix::test
