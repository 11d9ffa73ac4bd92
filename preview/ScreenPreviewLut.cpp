/// Makes, stores and chooses the colour tables.
#include "preview/ScreenPreviewLut.h"

#include "api/KestrixPreviewAPI.h"
#include "preview/ScreenPreviewLutFill.h"
#include "preview/ShaderFormats.h"

#include <cstddef>
#include <new>

namespace {

/// Maps every point to itself: entry (x, y, z) is (x/32, y/32, z/32, 1).
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

/// What the shader unpacks from a format. An unknown format is black with any table.
LutInput inputOf(unsigned pixelFormat)
{
    const ShaderFormat* const format = findShaderFormat(pixelFormat);
    return format ? format->input : LutInput::FullRGB;
}

/// The index of the table among the four for an input.
unsigned standardOf(unsigned width, unsigned height, unsigned colourspaceCode)
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
    return static_cast<LutID>(static_cast<unsigned>(inputOf(pixelFormat)) +
                              standardOf(width, height, colourspaceCode));
}
