/// The colour tables of the OpenGL 3 helper's fragment shader.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

/// The tables, by input components and colourspace.
enum LutID : std::uint32_t {
    LutID_YCbCr_601_525 = 0,   ///< Y Cb Cr, ITU-R BT.601-7, 525 lines
    LutID_YCbCr_601_625 = 1,   ///< Y Cb Cr, ITU-R BT.601-7, 625 lines
    LutID_YCbCr_709 = 2,       ///< Y Cb Cr, ITU-R BT.709-6
    LutID_YCbCr_2020 = 3,      ///< Y Cb Cr, ITU-R BT.2020-2
    LutID_FullRGB_601_525 = 4, ///< R G B, full range; the next three as above
    LutID_FullRGB_601_625 = 5,
    LutID_FullRGB_709 = 6,
    LutID_FullRGB_2020 = 7,
    LutID_StudioRGB_601_525 = 8, ///< R G B, studio range; the next three as above
    LutID_StudioRGB_601_625 = 9,
    LutID_StudioRGB_709 = 10,
    LutID_StudioRGB_2020 = 11,
    LutID_RedOnly = 12, ///< any R G B, of which one component is shown; `GetID` never chooses it
    LutID_GreenOnly = 13,
    LutID_BlueOnly = 14,
};

/// The input of a table: the components of a pixel and their range. The value is the first of the
/// four tables for this input, in the order above: 601 525-line, 601 625-line, 709, 2020.
enum class LutInput : std::uint32_t {
    YCbCr = LutID_YCbCr_601_525,
    FullRGB = LutID_FullRGB_601_525,
    StudioRGB = LutID_StudioRGB_601_525,
};

/// Its name, for pages and messages.
constexpr const char* nameOf(LutInput input)
{
    switch (input) {
    case LutInput::YCbCr:
        return "Y'CbCr";
    case LutInput::StudioRGB:
        return "studio-range RGB";
    default:
        return "full-range RGB";
    }
}

/// The layout of a table in memory.
enum LutFormat : std::uint32_t {
    LutFormat_RGBA32F = 0, ///< four floats an entry: R, G, B, A
};

/// The process's store of colour tables. A table maps a pixel that the shader has unpacked, Y Cb Cr
/// or R G B from 0 to 1, to the full-range Rec. 709 R G B that is shown.
///
/// A table is a cube of `kEdge` points per side; entry (x, y, z), x for Y or R, y for Cb or G and z
/// for Cr or B, is at index x + y * kEdge + z * kEdge * kEdge, which is the order of a 3D texture.
/// Tables are made once, have 574,992 bytes each and stay until the library is unloaded.
class ScreenPreviewLut {
public:
    static constexpr unsigned kEdge = 33;
    static constexpr unsigned kEntries = kEdge * kEdge * kEdge;
    static constexpr unsigned kFloatsPerEntry = 4;
    static constexpr unsigned kTables = 15;
    static constexpr unsigned kFormats = 1;

    /// Makes all missing tables of a format. If allocation fails, the table stays missing. Any
    /// thread: a second call waits for the first.
    static void Generate(LutFormat format);

    /// A new table; null if the id does not exist or allocation fails. There is one format, so
    /// `format` has no effect.
    static std::unique_ptr<float[]> Create(LutID id, LutFormat format);

    /// The table, null if there is none of that id and format. Uses no lock: a call of `Generate`
    /// must have returned before, on this thread or on one that this thread has synchronised with.
    static const float* Get(LutID id, LutFormat format);

    /// The table for a frame, see `GetID`.
    static const float* Get(unsigned width, unsigned height, unsigned pixelFormat,
                            unsigned colourspaceCode, LutFormat format);

    /// Chooses the table for a frame by its size in pixels and lines, its `PixelFormat` and its
    /// `KestrixColorspaceCode`, 0 if it has none.
    ///
    /// Only a size of 720 by 576 means 625-line Rec. 601. Without a code 720 by 480, 486 and 576
    /// mean Rec. 601, and all other sizes Rec. 709.
    static LutID GetID(unsigned width, unsigned height, unsigned pixelFormat,
                       unsigned colourspaceCode);

private:
    static std::unique_ptr<const float[]> s_luts[kTables][kFormats];
    static std::mutex s_lutMutex[kFormats];
};
