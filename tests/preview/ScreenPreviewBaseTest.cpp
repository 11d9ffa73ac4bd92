/// The colourspace of a frame, the choice of its conversion, and the CPU's passes over it.
#include "preview/ScreenPreviewBase.h"
#include "tests/common/GuardedPicture.h"
#include "tests/common/PreviewFixture.h"
#include "tests/common/Random.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <vector>

namespace kestrix::test {
namespace {

using KSX::PixelConversion::PixelFormat;

bool setUp(ScreenPreviewBase& preview, const MemoryFrameOptions& options, std::uint32_t destination)
{
    const Frame frame = TestFrame::create(options);
    const bool found = preview.setup(frame.get(), static_cast<PixelFormat>(destination));
    EXPECT_EQ(frame->references(), 1u);
    return found;
}

// --- Colourspace ---------------------------------------------------------------------------------

TEST(FrameColourspace, IsToldByMetadataAndElseByTheWidth)
{
    struct {
        std::int64_t width;
        std::optional<std::int64_t> code;
        std::uint32_t colourspace;
        HRESULT getIntStatus = S_OK;
    } const cases[] = {
        {720, {}, 0},
        {719, {}, 1},
        {721, {}, 1},
        {1920, {}, 1},
        {720, code("r601"), 0},
        {720, code("r709"), 1},
        {720, code("2020"), 2},
        {720, 0, code("unsp")},
        {720, code("r602"), code("unsp")},
        // The code is in the low 32 bits.
        {720, std::int64_t{7} << 32 | code("r709"), 1},
        // Any status that is not a failure is accepted. After a failure the width decides.
        {720, code("2020"), 2, 1},
        {720, code("2020"), 0, E_FAIL},
    };
    for (const std::int64_t height : {2, 486, 576, 1080})
        for (const auto& c : cases) {
            const Frame frame = TestFrame::create(
                {.width = c.width, .height = height, .format = kARGB, .colorspace = c.code});
            frame->getIntStatus = c.getIntStatus;
            EXPECT_EQ(ScreenPreviewBase::frameColourspace(frame.get()), c.colourspace)
                << "case " << &c - cases;
            EXPECT_EQ(frame->references(), 1u);
        }
}

// --- Choice of the conversion --------------------------------------------------------------------

TEST(PreviewSetup, RefusesWhatItCanNotShow)
{
    ScreenPreviewBase preview;
    EXPECT_FALSE(preview.setup(nullptr, KSX::PixelConversion::PixelFormat_RGBA));
    const MemoryFrameOptions refused[] = {
        {.width = 4, .height = 2, .format = code("BGRA"), .colorspace = 0},
        {.width = 4, .height = 2, .format = code("none"), .rowBytes = 16},
        // A copy would show wrong colours, and no conversion starts from RGBA in these
        // colourspaces.
        {.width = 4, .height = 2, .format = code("RGBA"), .colorspace = code("r601")},
        {.width = 720, .height = 2, .format = code("RGBA")},
        {.width = 4, .height = 2, .format = code("RGBA"), .colorspace = code("2020")},
    };
    for (const MemoryFrameOptions& options : refused)
        EXPECT_FALSE(setUp(preview, options, code("RGBA"))) << "case " << &options - refused;
    EXPECT_EQ(preview.previewColourspace(), 2u) << "remembered all the same";
}

// In a captured frame, full-range codes count as studio-range codes. If the studio-range code is
// asked for, there is nothing to convert then, and the test sees which code the frame counts as.
TEST(PreviewSetup, TakesCapturedRGBAsStudioRange)
{
    ScreenPreviewBase preview;
    const auto isStudio = [&](std::uint32_t format, std::uint32_t studio, bool captured) {
        return setUp(preview, {.width = 4, .height = 2, .format = format, .captured = captured},
                     studio);
    };
    for (const auto& [full, studio] :
         {std::pair{kARGB, code("vRGB")}, {code("BGRA"), code("BGRv")}}) {
        EXPECT_TRUE(isStudio(full, studio, true));
        EXPECT_TRUE(isStudio(studio, studio, true));
    }
    // There is no conversion from full to studio range in this order of bytes.
    EXPECT_FALSE(isStudio(kARGB, code("vRGB"), false));
}

// --- Passes over the lines -----------------------------------------------------------------------

TEST(PreviewRender, HoldsCapturedRGBWithinStudioRangeAndCopiesTheRest)
{
    ScreenPreviewBase preview; // one for all: a frame leaves nothing for the next
    const auto expectLines = [&](unsigned width, unsigned height, bool clamps, bool flipped,
                                 Content content) {
        GuardedPicture source(height, width * 4, {.padding = 13, .bottomUp = flipped});
        GuardedPicture destination(height, width * 4, {.padding = 21});
        Random random(width * 31 + height);
        std::vector<std::vector<std::uint8_t>> lines;
        for (unsigned y = 0; y < height; ++y) {
            random.fill(source.row(y), content);
            lines.emplace_back(source.row(y).begin(), source.row(y).end());
        }
        preview.render(width, height, destination.top(), destination.rowStep(), source.top(),
                       source.rowStep());
        EXPECT_TRUE(source.guardsIntact());
        EXPECT_TRUE(destination.guardsIntact());
        for (unsigned y = 0; y < height; ++y) {
            EXPECT_TRUE(std::ranges::equal(source.row(y), lines[y])) << "the source is written";
            for (std::uint8_t& value : lines[y])
                value = clamps ? std::clamp<std::uint8_t>(value, 16, 235) : value;
            EXPECT_TRUE(sameBytes(lines[y], destination.row(y), 4, y, width));
        }
    };
    // RGBA is the same captured or not: cards do not capture it in studio range.
    for (const auto& [format, shown, captured] : {std::tuple{kARGB, code("vRGB"), true},
                                                  {code("RGBA"), code("RGBA"), true},
                                                  {code("RGBA"), code("RGBA"), false}})
        for (unsigned width = 1; width <= 21; ++width)
            for (const unsigned height : {0u, 1u, 3u}) {
                ASSERT_TRUE(setUp(
                    preview,
                    {.width = width, .height = height, .format = format, .captured = captured},
                    shown));
                for (const Content content : kContents)
                    for (const bool flipped : {false, true})
                        expectLines(width, height, format == kARGB, flipped, content);
            }
}

} // namespace
} // namespace kestrix::test
