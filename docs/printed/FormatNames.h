/// Formats as the pages in docs/ name them.
#pragma once

#include "conversion/PixelFormats.h"

#include <string>

namespace kestrix::test {

/// The code in Markdown: four characters as code, or 32.
inline std::string nameOf(KSX::PixelConversion::PixelFormat format)
{
    using namespace KSX::PixelConversion;
    const std::string code = codeText(*findPixelFormat(format));
    return format == PixelFormat_ARGB ? code : "`" + code + "`";
}

} // namespace kestrix::test
