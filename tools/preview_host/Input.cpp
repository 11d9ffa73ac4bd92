/// Encodes the test pattern and pictures as frames of any format.
#include "Input.h"

#include "host/RowEncoder.h"
#include "host/TestPattern.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>
#include <utility>
#include <vector>

namespace preview_host {
namespace {

using kestrix::host::Color;
using kestrix::host::TestPattern;
using namespace KSX::PixelConversion;

/// The colourspace that a helper assumes for the frame: the stated one, or otherwise that of its
/// width.
Colorspace encodingOf(const FrameLayout& layout)
{
    if (!layout.colorspace)
        return layout.size.width == 720 ? Colorspace601 : Colorspace709;
    return *layout.colorspace == ColorspaceCodeRec601    ? Colorspace601
           : *layout.colorspace == ColorspaceCodeRec2020 ? Colorspace2020
                                                         : Colorspace709;
}

/// Frames that are made row by row, row 0 the top one.
class MadeInput : public Input {
public:
    /// Fills a row of a frame with colours.
    using FillRow = std::function<void(std::uint64_t index, unsigned y, std::span<Color> row)>;

    /// The rows above `firstMovingRow` are the same in every frame.
    MadeInput(std::string description, unsigned firstMovingRow, FillRow fillRow)
        : m_description(std::move(description)),
          m_firstMovingRow(firstMovingRow),
          m_fillRow(std::move(fillRow))
    {
    }

    std::string description() const override { return m_description; }

    void write(std::uint64_t index, const FrameLayout& layout, bool isNew,
               std::uint8_t* bytes) override
    {
        const auto [width, height] = layout.size;
        kestrix::host::RowEncoder encoder(layout.format, encodingOf(layout), width);
        std::vector<Color> row(width);
        for (unsigned y = isNew ? 0 : m_firstMovingRow; y < height; ++y) {
            m_fillRow(index, y, row);
            const std::size_t line = layout.flip ? height - 1 - y : y;
            encoder.encode(row, bytes + line * layout.rowBytes);
        }
    }

private:
    const std::string m_description;
    const unsigned m_firstMovingRow;
    const FillRow m_fillRow;
};

} // namespace

Source openSource(const std::string& path)
{
    const bool isPicture = !path.empty() && path != "-" && isPng(path);
    return {path, isPicture ? std::optional(readPng(path)) : std::nullopt};
}

std::unique_ptr<Input> makeInput(const Source& source, const FrameLayout& layout, double rate)
{
    const Size size = layout.size;
    if (source.path.empty()) {
        const TestPattern pattern(size.width, size.height,
                                  static_cast<unsigned>(std::max(1.0, std::round(rate))));
        return std::make_unique<MadeInput>(
            "test pattern", pattern.firstMovingRow(),
            [pattern](auto index, auto y, auto row) { pattern.fillRow(index, y, row); });
    }
    if (!source.picture)
        return makeRawInput(source.path, layout.bytes());
    if (source.picture->size != size)
        throw UsageError(source.path + " does not have the size of the frames");
    return std::make_unique<MadeInput>(
        "picture " + source.path, size.height,
        [image = *source.picture](std::uint64_t, unsigned y, std::span<Color> row) {
            const std::uint8_t* pixel = image.rgba.data() + std::size_t{4} * image.size.width * y;
            for (Color& color : row) {
                color = {pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0, pixel[3] / 255.0};
                pixel += 4;
            }
        });
}

} // namespace preview_host
