/// Prints examples/common/KestrixFrameFacts.h: what the helpers know of each pixel format. The
/// helpers' own code decides.
#include "conversion/PixelFormats.h"
#include "host/MemoryFrame.h"
#include "preview/ScreenPreviewBase.h"
#include "preview/ShaderFormats.h"

#include <iostream>
#include <string>

namespace {

using namespace KSX::PixelConversion;
using kestrix::host::MemoryFrame;
using kestrix::host::MemoryFrameOptions;

/// The colourspaces in which the fixed-function helper has a conversion, as bits by name.
std::string conversionsOf(PixelFormat format, bool captured)
{
    constexpr struct {
        KestrixColorspaceCode code;
        const char* name;
    } kColourspaces[] = {
        {ColorspaceCodeRec601, "Rec601"},
        {ColorspaceCodeRec709, "Rec709"},
        {ColorspaceCodeRec2020, "Rec2020"},
    };
    std::string names;
    for (const auto& colourspace : kColourspaces) {
        MemoryFrameOptions options;
        options.width = 8;
        options.height = 2;
        options.format = format;
        options.captured = captured;
        options.colorspace = colourspace.code;
        const auto frame = MemoryFrame::create(options);
        if (ScreenPreviewBase().setup(frame.get(), PixelFormat_RGBA))
            names.append(names.empty() ? "" : " | ").append(colourspace.name);
    }
    return names.empty() ? "0" : names == "Rec601 | Rec709 | Rec2020" ? "All" : names;
}

void printRow(std::uint32_t code, const std::string& name, const PixelFormatInfo& layout,
              unsigned leastWidth, const std::string& conversions, const std::string& ofCaptured)
{
    std::cout << "        {0x" << std::hex << code << std::dec << "u, \"" << name << "\", "
              << layout.groupPixels << ", " << layout.groupBytes << ", " << leastWidth << ", "
              << (findShaderFormat(code) ? "true" : "false") << ", " << conversions << ", "
              << ofCaptured << "},\n";
}

constexpr char kHead[] =
    R"(/// What the two preview helpers know of each pixel format, for KestrixFrameCheck.h. The program
/// print_frame_facts of the library's sources prints this file from the code of the helpers, and a
/// test compares it.
///
/// Compiles as C++11 and later.
#ifndef KESTRIX_FRAME_FACTS_H
#define KESTRIX_FRAME_FACTS_H

#include <cstdint>

/// One format. `KestrixFormatFacts::find` has all that at least one of the helpers shows or the
/// conversions know.
struct KestrixFormatFacts {
    /// Colourspaces, as bits.
    enum Colourspaces : unsigned { Rec601 = 1, Rec709 = 2, Rec2020 = 4, All = 7 };

    std::uint32_t code; ///< As `GetPixelFormat` returns it.
    const char* name;   ///< Four characters; "ARGB" for 32.
    int groupPixels;    ///< Pixels lie in groups of this number of pixels,
    int groupBytes;     ///< and of this number of bytes.
    int leastWidth;     ///< Pixels that the fixed-function helper needs in a row.
    bool openGL3;       ///< The shader of the OpenGL 3 helper knows the format.
    unsigned standard;  ///< Colourspaces of which the fixed-function helper has a conversion.
    unsigned captured;  ///< The same for frames with `IKestrixVideoInputFrame`.

    /// The facts of a format, or null if neither helper shows it and no conversion knows it.
    static const KestrixFormatFacts* find(std::uint32_t code);
};

inline const KestrixFormatFacts* KestrixFormatFacts::find(std::uint32_t code)
{
    // clang-format off
    static const KestrixFormatFacts all[] = {
        // code, name, pixels and bytes of a group, least width, OpenGL 3, fixed function, captured
)";

constexpr char kEnd[] = R"(    };
    // clang-format on
    for (const KestrixFormatFacts& facts : all)
        if (facts.code == code)
            return &facts;
    return nullptr;
}

#endif // KESTRIX_FRAME_FACTS_H
)";

} // namespace

int main()
{
    std::cout << kHead;
    for (const PixelFormatInfo& info : kPixelFormats)
        printRow(info.code, info.name, info, leastWidthToRGB(info.code),
                 conversionsOf(info.code, false), conversionsOf(info.code, true));
    // The shader knows one format more, in the groups of the other 12-bit RGB.
    for (const ShaderFormat& format : kShaderFormats)
        if (!findPixelFormat(format.code)) {
            std::string name;
            for (int shift = 24; shift >= 0; shift -= 8)
                name += static_cast<char>(format.code >> shift);
            printRow(format.code, name, *findPixelFormat(PixelFormat_R12B), 0, "0", "0");
        }
    std::cout << kEnd;
}
