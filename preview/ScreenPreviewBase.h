/// The CPU's half of the fixed-function preview: which conversion a frame needs, and running it.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "conversion/KSXPixelConversion.h"

#include <algorithm>
#include <cstdint>

/// Turns a frame into a picture of the texture's pixel format in Rec. 709: `setup` looks at the
/// frame, and each `render` after that makes one picture the way it chose, say one of each eye.
///
/// Touches no GL, allocates nothing and takes no lock: the calls for one frame belong together on
/// one thread.
class ScreenPreviewBase {
public:
    virtual ~ScreenPreviewBase() = default;

    /// The colourspace of `frame`, which is not null: as its metadata say,
    /// `ColorspaceUnspecified` for a code that is none of the known. Where it has no metadata or
    /// they don't tell, 720 pixels a line mean Rec. 601 and any other width Rec. 709.
    static KSX::PixelConversion::Colorspace frameColourspace(IKestrixVideoFrame* frame);

    /// Chooses the way from `frame` to a Rec. 709 picture of `destinationFormat`. False where there
    /// is none: for a null frame, one in an unspecified colourspace, one without a conversion.
    bool setup(IKestrixVideoFrame* frame, KSX::PixelConversion::PixelFormat destinationFormat);

    /// The colourspace that the last `setup` found.
    [[nodiscard]] KSX::PixelConversion::Colorspace previewColourspace() const
    {
        return m_colourspace;
    }

    /// The format of the frame of the last `setup`, as the frame told it then.
    [[nodiscard]] KSX::PixelConversion::PixelFormat previewFormat() const { return m_format; }

    /// The conversion that the last `setup` chose, null for a plain copy; as `setup` found it only
    /// where that gave true.
    [[nodiscard]] KSX::PixelConversion::ConversionFunction previewConversion() const
    {
        return m_conversion;
    }

    /// Whether frames as that of the last `setup` are held within studio range before they are
    /// converted: captured 8-bit RGB.
    [[nodiscard]] bool clampsToStudioRange() const { return m_studioRangeRGB; }

    /// Makes the picture, `width` pixels by `height` rows, as `setup` chose. Row sizes are in bytes
    /// and act as negative strides above 2147483647.
    ///
    /// A plain copy moves as many bytes a row as the frame has from one row to the next, its
    /// padding included: the destination must have room for them.
    void render(unsigned width, unsigned height, void* destination, unsigned destinationRowBytes,
                void* source, unsigned sourceRowBytes) const;

protected:
    /// Makes a plain copy leave out what lies behind the first `bytes` of a row. After `setup`.
    void limitCopiedRowBytes(std::uint64_t bytes)
    {
        m_copiedRowBytes = std::min(m_copiedRowBytes, bytes);
    }

private:
    KSX::PixelConversion::PixelFormat m_format{};
    /// Null for a plain copy.
    KSX::PixelConversion::ConversionFunction m_conversion = nullptr;
    KSX::PixelConversion::Colorspace m_colourspace = KSX::PixelConversion::ColorspaceUnspecified;
    /// The frame is captured 8-bit RGB, to be held within studio range before it is converted.
    bool m_studioRangeRGB = false;
    /// Of a row, for the plain copy.
    std::uint64_t m_copiedRowBytes = 0;
};
