/// The CPU's half of the fixed-function preview: finds the conversion that a frame needs, and runs
/// it.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "conversion/KSXPixelConversion.h"

#include <cstdint>
#include <limits>

/// Turns a frame into a picture of the texture's pixel format in Rec. 709. `setup` looks at the
/// frame and chooses the way. Each `render` after it makes one picture in that way, such as one for
/// each eye.
///
/// Touches no GL, allocates nothing and takes no lock: the calls for one frame belong together on
/// one thread.
class ScreenPreviewBase {
public:
    virtual ~ScreenPreviewBase() = default;

    /// The colourspace of `frame`, which is not null, as its metadata say; `ColorspaceUnspecified`
    /// for a code that is not in `KestrixColorspaceCode`. If the frame has no metadata, or they
    /// have no colourspace, a width of 720 pixels means Rec. 601 and any other width Rec. 709.
    static KSX::PixelConversion::Colorspace frameColourspace(IKestrixVideoFrame* frame);

    /// Chooses the way from `frame` to a Rec. 709 picture of `destinationFormat`. A frame that is
    /// such a picture already is only copied, at most `mostCopiedRowBytes` bytes a row.
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

    /// The conversion that the last `setup` chose, null for a plain copy. Of use only if that
    /// `setup` returned true.
    [[nodiscard]] KSX::PixelConversion::ConversionFunction previewConversion() const
    {
        return m_conversion;
    }

    /// Whether `render` holds the frame's samples within studio range before it converts them: true
    /// for captured 8-bit RGB.
    [[nodiscard]] bool clampsToStudioRange() const { return m_studioRangeRGB; }

    /// Makes the picture, `width` pixels by `height` rows, as `setup` chose. Row sizes are in bytes
    /// and act as negative strides above 2147483647.
    ///
    /// A plain copy moves as many bytes a row as the frame has from one row to the next, padding
    /// included, up to the limit that `setup` was given: the destination must have room for them.
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
