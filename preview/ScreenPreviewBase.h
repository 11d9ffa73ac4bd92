/// The CPU part of the fixed-function preview: finds the conversion that a frame needs, and runs
/// it.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "conversion/KSXPixelConversion.h"

#include <cstdint>
#include <limits>

/// Converts a frame to a picture in the texture's pixel format in Rec. 709. `setup` examines the
/// frame and chooses the conversion. Each `render` after it makes one picture with this conversion,
/// such as one for each eye.
///
/// Uses no GL, allocates nothing and has no lock: make the calls for one frame on one thread.
class ScreenPreviewBase {
public:
    virtual ~ScreenPreviewBase() = default;

    /// The colourspace of `frame`, which is not null, by its metadata; `ColorspaceUnspecified` for
    /// a code that is not in `KestrixColorspaceCode`. If the metadata are missing or state no
    /// colourspace, a width of 720 pixels means Rec. 601 and any other width Rec. 709.
    static KSX::PixelConversion::Colorspace frameColourspace(IKestrixVideoFrame* frame);

    /// Chooses the conversion of `frame` to a Rec. 709 picture of `destinationFormat`. A frame that
    /// already is such a picture is only copied, at most `mostCopiedRowBytes` bytes per row.
    ///
    /// False for a null frame, for one in an unspecified colourspace, and for one without a
    /// conversion.
    bool setup(IKestrixVideoFrame* frame, KSX::PixelConversion::PixelFormat destinationFormat,
               std::uint64_t mostCopiedRowBytes = std::numeric_limits<std::uint64_t>::max());

    /// The colourspace that the last `setup` found.
    [[nodiscard]] KSX::PixelConversion::Colorspace previewColourspace() const
    {
        return m_colourspace;
    }

    /// The pixel format that the frame of the last `setup` returned then.
    [[nodiscard]] KSX::PixelConversion::PixelFormat previewFormat() const { return m_format; }

    /// The conversion that the last `setup` chose, null for a plain copy. Valid only if that
    /// `setup` returned true.
    [[nodiscard]] KSX::PixelConversion::ConversionFunction previewConversion() const
    {
        return m_conversion;
    }

    /// Whether `render` clips the frame's samples to studio range before it converts them: true for
    /// captured 8-bit RGB.
    [[nodiscard]] bool clampsToStudioRange() const { return m_studioRangeRGB; }

    /// Makes the picture, `width` pixels by `height` rows, as `setup` chose. Row sizes are in
    /// bytes; values above 2147483647 are negative strides.
    ///
    /// A plain copy copies all bytes of a row of the frame, including padding, up to the limit that
    /// was passed to `setup`: the destination must have room for them.
    void render(unsigned width, unsigned height, void* destination, unsigned destinationRowBytes,
                void* source, unsigned sourceRowBytes) const;

private:
    KSX::PixelConversion::PixelFormat m_format{};
    /// Null for a plain copy.
    KSX::PixelConversion::ConversionFunction m_conversion = nullptr;
    KSX::PixelConversion::Colorspace m_colourspace = KSX::PixelConversion::ColorspaceUnspecified;
    /// The frame is captured 8-bit RGB.
    bool m_studioRangeRGB = false;
    /// Of a row, for the plain copy.
    std::uint64_t m_copiedRowBytes = 0;
};
