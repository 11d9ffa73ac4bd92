/// All that the engine converts: the rows of the table, and the entries that no row leads to.
#pragma once

#include "conversion/ConversionEntries.h"
#include "conversion/PixelFormats.h"

#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace kestrix::test {

struct Conversion {
    std::string name;
    KSX::PixelConversion::ConversionEntry entry;
    /// Of an entry for one line standard, a height of which the entry for all does the same.
    unsigned standsForHeight = 0;

    const KSX::PixelConversion::PixelFormatInfo& src() const
    {
        return *KSX::PixelConversion::findPixelFormat(entry.srcFormat);
    }
    const KSX::PixelConversion::PixelFormatInfo& dst() const
    {
        return *KSX::PixelConversion::findPixelFormat(entry.dstFormat);
    }
    bool copies() const { return entry.function == KSX::PixelConversion::CopyWithoutConversion; }
    /// The conversion has a form for each line standard, told apart by the height.
    bool changes601() const
    {
        using KSX::PixelConversion::Colorspace601;
        return entry.srcColorspace != entry.dstColorspace &&
               (entry.srcColorspace == Colorspace601 || entry.dstColorspace == Colorspace601);
    }
    unsigned heightForPrimaries(unsigned height) const
    {
        return standsForHeight != 0 ? standsForHeight : height;
    }

    /// Makes any bytes samples that the source can have: 10 bits in words of 16 have nothing above.
    void limit(std::span<std::uint8_t> row) const
    {
        using namespace KSX::PixelConversion;
        if (entry.srcFormat == PixelFormat_A04l || entry.srcFormat == PixelFormat_A04L)
            for (std::size_t i = 1; i < row.size(); i += 2)
                row[i] &= 3;
    }
};

inline void PrintTo(const Conversion& conversion, std::ostream* out)
{
    *out << conversion.name;
}

/// The rows in the order of the table come first, so that the index of each is its number.
inline std::vector<Conversion> allConversions()
{
    using namespace KSX::PixelConversion;
    std::vector<Conversion> all;
    for (const ConversionEntry& entry : conversions) {
        const Conversion row{{}, entry};
        all.push_back({"Row" + std::to_string(all.size()) + "_" + row.src().engineName + "_To_" +
                           row.dst().engineName,
                       entry});
    }
    const auto add = [&](const std::string& name, PixelFormat src, PixelFormat dst,
                         ConversionFunction function, Colorspace from = ColorspaceUnspecified,
                         Colorspace to = ColorspaceUnspecified, unsigned height = 0) {
        all.push_back({name, {src, from, dst, to, function}, height});
    };
    add("ARGBToBGRA_Scalar", PixelFormat_ARGB, PixelFormat_BGRA,
        Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar);
    add("BGRAToARGB_Scalar", PixelFormat_BGRA, PixelFormat_ARGB,
        Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar);
    add("ARGBToRGB3", PixelFormat_ARGB, PixelFormat_RGB3, Convert_8ARGB_FULL_To_8RGB_FULL);
    add("BGRAToRGB3", PixelFormat_BGRA, PixelFormat_RGB3, Convert_8BGRA_FULL_To_8RGB_FULL);
    add("R210ToBGRA_2020To709", PixelFormat_R210, PixelFormat_BGRA,
        Convert_10XRGB_BE_FULL_2020_To_8BGRA_FULL_709, Colorspace2020, Colorspace709);
    add("R210ToRGBA_2020To709", PixelFormat_R210, PixelFormat_RGBA,
        Convert_10XRGB_BE_FULL_2020_To_8RGBA_FULL_709, Colorspace2020, Colorspace709);
    const auto addLines = [&](const std::string& name, PixelFormat format,
                              ConversionFunction fromPAL, ConversionFunction fromNTSC,
                              ConversionFunction toPAL, ConversionFunction toNTSC) {
        add(name + "_PALTo709", format, format, fromPAL, Colorspace601, Colorspace709, 576);
        add(name + "_NTSCTo709", format, format, fromNTSC, Colorspace601, Colorspace709, 486);
        add(name + "_709ToPAL", format, format, toPAL, Colorspace709, Colorspace601, 576);
        add(name + "_709ToNTSC", format, format, toNTSC, Colorspace709, Colorspace601, 486);
    };
    addLines("2vuy", PixelFormat_2vuy, Convert_8YUV422_PAL601_To_8YUV422_709,
             Convert_8YUV422_NTSC601_To_8YUV422_709, Convert_8YUV422_709_To_8YUV422_PAL601,
             Convert_8YUV422_709_To_8YUV422_NTSC601);
    addLines("v210", PixelFormat_v210, Convert_10YUV422_LE_PAL601_To_10YUV422_LE_709,
             Convert_10YUV422_LE_NTSC601_To_10YUV422_LE_709,
             Convert_10YUV422_LE_709_To_10YUV422_LE_PAL601,
             Convert_10YUV422_LE_709_To_10YUV422_LE_NTSC601);
    return all;
}

} // namespace kestrix::test
