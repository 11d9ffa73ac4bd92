/// The contents of the colour tables. R, G and B of an entry are a pixel of the float layouts, at a
/// working depth of 10 bits; A stays 1.
#include "preview/ScreenPreviewLutFill.h"

#include "conversion/colour/ColourspaceConversion.h"
#include "conversion/colour/Rescale.h"
#include "conversion/colour/YUVToRGB.h"
#include "conversion/fast/Rules.h"
#include "conversion/pipeline/Transform.h"
#include "conversion/stages/Deep.h"
#include "conversion/stages/RGB8.h"

#include <algorithm>

using namespace KSX::PixelConversion;

namespace {

using Fill = void (*)(float* table);

/// From the primaries of the table to those of Rec. 709.
template<class MATRIX>
using ToRec709 = COLOURSPACE_CONV_RGBv4<Rec709OETF<10u, V1>, MATRIX, Rec709OETF<10u, V1>>;

using StudioToFull = RGBv4_RESCALE<10, false, 10, true, P1>;

/// Runs stages over every entry. For the stages, a plane of the table is a row of pixels. The row
/// is in memory of its own, because the pixels of the float layouts have no A.
template<class... STAGES>
void convert(float* table)
{
    constexpr unsigned kFloats = ScreenPreviewLut::kFloatsPerEntry;
    constexpr unsigned kPlane = ScreenPreviewLut::kEdge * ScreenPreviewLut::kEdge;
    float row[3 * kPlane];
    for (unsigned plane = 0; plane < ScreenPreviewLut::kEdge; ++plane) {
        for (unsigned i = 0; i < kPlane; ++i)
            std::copy_n(table + kFloats * i, 3, row + 3 * i);
        Transform<BindAll<STAGES...>, kAnyWidth, kPrefetchBlocks>::apply(row, 0, row, 0, kPlane, 1,
                                                                         nullptr);
        for (unsigned i = 0; i < kPlane; ++i)
            std::copy_n(row + 3 * i, 3, table + kFloats * i);
        table += kFloats * kPlane;
    }
}

template<class RANGE, class... GAMUT>
constexpr Fill kFromYCbCr = convert<UNPACK_YUV44432F_TO_UYVY444v8<10>, //
                                    UYVY444v8_TO_RGBv4<RANGE, 10, 10, P1>, StudioToFull, GAMUT...,
                                    PACK_RGBv4_TO_RGB32F<10>>;

template<class... STAGES>
constexpr Fill kFromRGB =
    convert<UNPACK_RGB32F_TO_BGRAv8<10>, BGRAv8_TO_RGBv4, STAGES..., PACK_RGBv4_TO_RGB32F<10>>;

void leaveIdentity(float*) {}

template<unsigned COMPONENT>
void keepOnly(float* table)
{
    for (unsigned entry = 0; entry < ScreenPreviewLut::kEntries; ++entry)
        for (unsigned c = 0; c < 3; ++c)
            if (c != COMPONENT)
                table[ScreenPreviewLut::kFloatsPerEntry * entry + c] = 0;
}

constexpr Fill kFills[ScreenPreviewLut::kTables] = {
    kFromYCbCr<StudioRange601, ToRec709<RGB_601NTSC_TO_709>>,
    kFromYCbCr<StudioRange601, ToRec709<RGB_601PAL_TO_709>>,
    kFromYCbCr<StudioRange709>,
    kFromYCbCr<StudioRange2020, ToRec709<RGB_2020_TO_709>>,

    kFromRGB<ToRec709<RGB_601NTSC_TO_709>>,
    kFromRGB<ToRec709<RGB_601PAL_TO_709>>,
    leaveIdentity,
    kFromRGB<ToRec709<RGB_2020_TO_709>>,

    kFromRGB<StudioToFull, ToRec709<RGB_601NTSC_TO_709>>,
    kFromRGB<StudioToFull, ToRec709<RGB_601PAL_TO_709>>,
    kFromRGB<StudioToFull>,
    kFromRGB<StudioToFull, ToRec709<RGB_2020_TO_709>>,

    keepOnly<0>,
    keepOnly<1>,
    keepOnly<2>,
};

/// Floating point as every process starts with it, until the end of the object: round to nearest,
/// denormal numbers as they are, no traps. A host may have set other modes on its thread, but the
/// tables belong to the process. These are the modes of SSE. <cfenv> would also set those of the
/// x87, which nothing here uses, and would add the mathematical library to what the library needs.
class DefaultFloatingPoint {
public:
    DefaultFloatingPoint() { __builtin_ia32_ldmxcsr(kDefault); }
    ~DefaultFloatingPoint() { __builtin_ia32_ldmxcsr(m_before); }
    DefaultFloatingPoint(const DefaultFloatingPoint&) = delete;
    DefaultFloatingPoint& operator=(const DefaultFloatingPoint&) = delete;

private:
    static constexpr unsigned kDefault = 0x1F80;
    const unsigned m_before = __builtin_ia32_stmxcsr();
};

} // namespace

void fillScreenPreviewLut(LutID id, float* table)
{
    const DefaultFloatingPoint scope;
    kFills[id](table);
}
