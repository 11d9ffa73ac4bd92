/// What the two preview helpers know of each pixel format, for KestrixFrameCheck.h. The program
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
        {0x32767579u, "2vuy", 2, 4, 1, true, All, All},
        {0x59555932u, "YUY2", 2, 4, 1, false, 0, 0},
        {0x76323130u, "v210", 6, 16, 13, true, All, All},
        {0x76323132u, "v212", 1, 4, 0, false, 0, 0},
        {0x76323136u, "v216", 1, 4, 0, false, 0, 0},
        {0x61793130u, "ay10", 4, 16, 5, false, 0, 0},
        {0x41793130u, "Ay10", 4, 16, 5, true, Rec709, Rec709},
        {0x20u, "ARGB", 1, 4, 0, true, All, All},
        {0x76524742u, "vRGB", 1, 4, 0, true, All, All},
        {0x42475241u, "BGRA", 1, 4, 0, true, All, All},
        {0x42475276u, "BGRv", 1, 4, 0, true, All, All},
        {0x42475258u, "BGRX", 1, 4, 0, false, 0, 0},
        {0x52474241u, "RGBA", 1, 4, 0, false, Rec709, Rec709},
        {0x52474233u, "RGB3", 1, 3, 0, false, Rec709, Rec709},
        {0x72323130u, "r210", 1, 4, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x52323130u, "R210", 1, 4, 0, false, Rec709, Rec709},
        {0x5231306cu, "R10l", 1, 4, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x5231304cu, "R10L", 1, 4, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x52313062u, "R10b", 1, 4, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x52313042u, "R10B", 1, 4, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x52313041u, "R10A", 1, 4, 0, false, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x4130346cu, "A04l", 1, 8, 0, false, 0, 0},
        {0x4130344cu, "A04L", 1, 8, 0, false, 0, 0},
        {0x52313242u, "R12B", 8, 36, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x5231324cu, "R12L", 8, 36, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x5231326cu, "R12l", 8, 36, 0, true, Rec709 | Rec2020, Rec709 | Rec2020},
        {0x5331324cu, "S12L", 1, 8, 0, false, 0, 0},
        {0x62363461u, "b64a", 1, 8, 0, false, 0, 0},
        {0x4c363441u, "L64A", 1, 8, 0, false, 0, 0},
        {0x6c363461u, "l64a", 1, 8, 0, false, 0, 0},
        {0x52313262u, "R12b", 8, 36, 0, true, 0, 0},
    };
    // clang-format on
    for (const KestrixFormatFacts& facts : all)
        if (facts.code == code)
            return &facts;
    return nullptr;
}

#endif // KESTRIX_FRAME_FACTS_H
