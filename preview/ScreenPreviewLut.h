/// The colour tables of the OpenGL 3 helper's fragment shader.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

/// What goes into a table and in which colours.
enum LutID : std::uint32_t {
    LutID_YCbCr_601_525 = 0,   ///< Y Cb Cr, ITU-R BT.601-7, 525 lines
    LutID_YCbCr_601_625 = 1,   ///< Y Cb Cr, ITU-R BT.601-7, 625 lines
    LutID_YCbCr_709 = 2,       ///< Y Cb Cr, ITU-R BT.709-6
    LutID_YCbCr_2020 = 3,      ///< Y Cb Cr, ITU-R BT.2020-2
    LutID_FullRGB_601_525 = 4, ///< R G B, full range, and so on as above
    LutID_FullRGB_601_625 = 5,
    LutID_FullRGB_709 = 6,
    LutID_FullRGB_2020 = 7,
    LutID_StudioRGB_601_525 = 8, ///< R G B, studio range, and so on as above
    LutID_StudioRGB_601_625 = 9,
    LutID_StudioRGB_709 = 10,
    LutID_StudioRGB_2020 = 11,
    LutID_RedOnly = 12, ///< any R G B, one component shown; never chosen for a frame
    LutID_GreenOnly = 13,
    LutID_BlueOnly = 14,
};

/// What goes into a table: the components of a pixel and their range. The value is the first of
/// the four tables for it, which follow each other as above: 601 525-line, 601 625-line, 709, 2020.
enum class LutInput : std::uint32_t {
    YCbCr = LutID_YCbCr_601_525,
    FullRGB = LutID_FullRGB_601_525,
    StudioRGB = LutID_StudioRGB_601_525,
};

/// In words, for pages and messages.
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

/// How a table lies in memory.
enum LutFormat : std::uint32_t {
    LutFormat_RGBA32F = 0, ///< four floats an entry: R, G, B, A
};

/// The process's store of colour tables. A table takes a pixel as the shader has unpacked it, Y Cb
/// Cr or R G B from 0 to 1, to the full-range Rec. 709 R G B to show.
///
/// A table is a cube of `kEdge` points a side; entry (x, y, z), x for Y or R, y for Cb or G and z
/// for Cr or B, lies at index x + y * kEdge + z * kEdge * kEdge, as a 3D texture takes it. Tables
/// are made once, are 574,992 bytes each and stay until the library is unloaded.
class ScreenPreviewLut {
public:
    static constexpr unsigned kEdge = 33;
    static constexpr unsigned kEntries = kEdge * kEdge * kEdge;
    static constexpr unsigned kTables = 15;
    static constexpr unsigned kFormats = 1;

    /// Makes all tables of a format that are not there yet; one for which there is no memory stays
    /// missing. Any thread: a second call waits for the first.
    static void Generate(LutFormat format);

    /// A new table, null for an id that there is not or where memory is short. There is one format,
    /// so `format` is not looked at.
    static std::unique_ptr<float[]> Create(LutID id, LutFormat format);

    /// The table, null where there is none by that id and format. `Generate` must have returned on
    /// this thread, or the like.
    static const float* Get(LutID id, LutFormat format);

    /// The table for a frame, see `GetID`.
    static const float* Get(unsigned width, unsigned height, unsigned pixelFormat,
                            unsigned colourspaceCode, LutFormat format);

    /// Chooses the table for a frame by its size in pixels and lines, its `PixelFormat` and its
    /// `KestrixColorspaceCode`, 0 where it has none.
    ///
    /// Only 720 by 576 is taken as 625-line Rec. 601. Without a code 720 by 480, 486 or 576 is
    /// Rec. 601 and all else Rec. 709.
    static LutID GetID(unsigned width, unsigned height, unsigned pixelFormat,
                       unsigned colourspaceCode);

private:
    static std::unique_ptr<const float[]> s_luts[kTables][kFormats];
    static std::mutex s_lutMutex[kFormats];
};
