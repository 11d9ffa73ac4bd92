/// Makes, keeps and chooses the colour tables.
#include "preview/ScreenPreviewLut.h"

#include "api/KestrixPreviewAPI.h"
#include "conversion/KSXPixelConversion.h"
#include "preview/ScreenPreviewLutFill.h"

#include <cstddef>
#include <new>

using namespace KSX::PixelConversion;

namespace {

constexpr unsigned kFloatsPerEntry = 4;

/// Every point shows as it came in: entry (x, y, z) is (x/32, y/32, z/32, 1).
void fillWithIdentity(float* table)
{
    constexpr double kStep = 1.0 / (ScreenPreviewLut::kEdge - 1);
    for (unsigned z = 0; z < ScreenPreviewLut::kEdge; ++z) {
        for (unsigned y = 0; y < ScreenPreviewLut::kEdge; ++y) {
            for (unsigned x = 0; x < ScreenPreviewLut::kEdge; ++x) {
                *table++ = static_cast<float>(x * kStep);
                *table++ = static_cast<float>(y * kStep);
                *table++ = static_cast<float>(z * kStep);
                *table++ = 1.0F;
            }
        }
    }
}

/// The first of the four tables, 601 525-line, 601 625-line, 709, 2020, for a format's components
/// and range.
LutID firstTableFor(unsigned pixelFormat)
{
    switch (pixelFormat) {
    case PixelFormat_2vuy:
    case PixelFormat_Ay10:
    case PixelFormat_v210:
        return LutID_YCbCr_601_525;
    case PixelFormat_BGRv:
    case PixelFormat_R10b:
    case PixelFormat_R10l:
    case fourCC("R12b"): // not among the engine's formats
    case PixelFormat_R12l:
    case PixelFormat_r210:
    case PixelFormat_vRGB:
        return LutID_StudioRGB_601_525;
    default:
        return LutID_FullRGB_601_525;
    }
}

/// Which of the four it is.
LutID standardOf(unsigned width, unsigned height, unsigned colourspaceCode)
{
    const bool is625Line = width == 720 && height == 576;
    const bool is525Line = width == 720 && (height == 480 || height == 486);
    switch (colourspaceCode) {
    case ColorspaceCodeRec2020:
        return LutID_YCbCr_2020;
    case ColorspaceCodeRec709:
        return LutID_YCbCr_709;
    case ColorspaceCodeRec601:
        return is625Line ? LutID_YCbCr_601_625 : LutID_YCbCr_601_525;
    default:
        return is525Line ? LutID_YCbCr_601_525 : is625Line ? LutID_YCbCr_601_625 : LutID_YCbCr_709;
    }
}

} // namespace

std::unique_ptr<const float[]> ScreenPreviewLut::s_luts[kTables][kFormats];
std::mutex ScreenPreviewLut::s_lutMutex[kFormats];

void ScreenPreviewLut::Generate(LutFormat format)
{
    if (format >= kFormats)
        return;
    const std::lock_guard lock(s_lutMutex[format]);
    for (unsigned id = 0; id < kTables; ++id)
        if (!s_luts[id][format])
            s_luts[id][format] = Create(static_cast<LutID>(id), format);
}

std::unique_ptr<float[]> ScreenPreviewLut::Create(LutID id, LutFormat)
{
    if (id >= kTables)
        return nullptr;
    std::unique_ptr<float[]> table(
        new (std::nothrow) float[std::size_t{kEntries} * kFloatsPerEntry]);
    if (table) {
        fillWithIdentity(table.get());
        fillScreenPreviewLut(id, table.get());
    }
    return table;
}

const float* ScreenPreviewLut::Get(LutID id, LutFormat format)
{
    if (id >= kTables || format >= kFormats)
        return nullptr;
    return s_luts[id][format].get();
}

const float* ScreenPreviewLut::Get(unsigned width, unsigned height, unsigned pixelFormat,
                                   unsigned colourspaceCode, LutFormat format)
{
    return Get(GetID(width, height, pixelFormat, colourspaceCode), format);
}

LutID ScreenPreviewLut::GetID(unsigned width, unsigned height, unsigned pixelFormat,
                              unsigned colourspaceCode)
{
    return static_cast<LutID>(firstTableFor(pixelFormat) +
                              standardOf(width, height, colourspaceCode));
}
