/// Which colourspace a frame stands in, which way it is converted, and the CPU's passes over it.
#include "preview/ScreenPreviewBase.h"
#include "tests/support/Difference.h"
#include "tests/support/GuardedPicture.h"
#include "tests/support/PreviewFixture.h"
#include "tests/support/Random.h"
#include "tests/support/TestFrame.h"

#include <algorithm>
#include <vector>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;
using KSX::PixelConversion::Colorspace;
using KSX::PixelConversion::PixelFormat;

constexpr std::uint32_t kARGB = 32;

std::uint8_t clampToStudioRange(std::uint8_t value)
{
    return std::clamp(value, std::uint8_t{16}, std::uint8_t{235});
}

bool setUp(ScreenPreviewBase& preview, IKestrixVideoFrame* frame, std::uint32_t destination)
{
    return preview.setup(frame, static_cast<PixelFormat>(destination));
}

// --- Colourspace ---------------------------------------------------------------------------------

Colorspace colourspaceOf(const MemoryFrameOptions& options, HRESULT getIntStatus = S_OK)
{
    const auto frame = TestFrame::create(options);
    frame->getIntStatus = getIntStatus;
    const Colorspace colourspace = ScreenPreviewBase::frameColourspace(frame.get());
    EXPECT_EQ(frame->references(), 1u);
    return colourspace;
}

TEST(FrameColourspace, IsToldByTheWidthAloneWithoutMetadata)
{
    for (const std::int64_t height : {2, 486, 576, 1080}) {
        EXPECT_EQ(colourspaceOf({.width = 720, .height = height, .format = code("2vuy")}), 0u);
        EXPECT_EQ(colourspaceOf({.width = 719, .height = height, .format = code("2vuy")}), 1u);
        EXPECT_EQ(colourspaceOf({.width = 721, .height = height, .format = code("2vuy")}), 1u);
    }
    EXPECT_EQ(colourspaceOf({.width = 1920, .height = 1080, .format = kARGB}), 1u);
}

TEST(FrameColourspace, IsToldByMetadataWhereThereAreAny)
{
    const auto with = [](std::int64_t value, HRESULT status = S_OK) {
        return colourspaceOf({.width = 720, .height = 2, .format = kARGB, .colorspace = value},
                             status);
    };
    EXPECT_EQ(with(code("r601")), 0u);
    EXPECT_EQ(with(code("r709")), 1u);
    EXPECT_EQ(with(code("2020")), 2u);
    EXPECT_EQ(with(0), code("unsp"));
    EXPECT_EQ(with(code("r602")), code("unsp"));
    // The code is in the low 32 bits.
    EXPECT_EQ(with(std::int64_t{7} << 32 | code("r709")), 1u);
    // Any status that is no failure will do; a failure leaves it to the width.
    EXPECT_EQ(with(code("2020"), 1), 2u);
    EXPECT_EQ(with(code("2020"), E_FAIL), 0u);
}

// --- Choice of the conversion --------------------------------------------------------------------

TEST(PreviewSetup, RefusesWhatItCanNotShow)
{
    ScreenPreviewBase preview;
    EXPECT_FALSE(setUp(preview, nullptr, code("RGBA")));

    const auto refuses = [&](const MemoryFrameOptions& options) {
        const auto frame = TestFrame::create(options);
        const bool refused = !setUp(preview, frame.get(), code("RGBA"));
        EXPECT_EQ(frame->references(), 1u);
        return refused;
    };
    EXPECT_TRUE(refuses({.width = 4, .height = 2, .format = code("BGRA"), .colorspace = 0}));
    EXPECT_TRUE(refuses({.width = 4, .height = 2, .format = code("none"), .rowBytes = 16}));
    // A copy would show the wrong colours, and no conversion starts from RGBA in these.
    for (const std::uint32_t other : {code("r601"), code("2020")})
        EXPECT_TRUE(
            refuses({.width = 4, .height = 2, .format = code("RGBA"), .colorspace = other}));
    EXPECT_TRUE(refuses({.width = 720, .height = 2, .format = code("RGBA")}));
}

TEST(PreviewSetup, RemembersTheColourspace)
{
    ScreenPreviewBase preview;
    const auto frame = TestFrame::create(
        {.width = 4, .height = 2, .format = code("RGBA"), .colorspace = code("2020")});
    setUp(preview, frame.get(), code("RGBA"));
    EXPECT_EQ(preview.previewColourspace(), 2u);
}

// The mark of a captured frame turns full-range codes into studio-range ones, which shows where the
// studio-range code itself is asked for: then there is nothing to convert.
TEST(PreviewSetup, TakesCapturedRGBAsStudioRange)
{
    struct {
        std::uint32_t format;
        std::uint32_t studio;
    } const pairs[] = {
        {kARGB, code("vRGB")},
        {code("vRGB"), code("vRGB")},
        {code("BGRA"), code("BGRv")},
        {code("BGRv"), code("BGRv")},
    };
    ScreenPreviewBase preview;
    for (const auto& pair : pairs) {
        const auto captured =
            TestFrame::create({.width = 4, .height = 2, .format = pair.format, .captured = true});
        EXPECT_TRUE(setUp(preview, captured.get(), pair.studio));
        EXPECT_EQ(captured->references(), 1u);
    }
    // There is no conversion from full to studio range in this order of bytes.
    const auto unmarked = TestFrame::create({.width = 4, .height = 2, .format = kARGB});
    EXPECT_FALSE(setUp(preview, unmarked.get(), code("vRGB")));
}

// --- Passes over the lines -----------------------------------------------------------------------

/// Runs `render` from rows of exact size to rows of exact size, and compares each byte with what
/// `expected` makes of the source's.
template<class EXPECTED>
void checkLines(const ScreenPreviewBase& preview, unsigned width, unsigned height, bool flipped,
                EXPECTED expected)
{
    for (const Content content : {Content::Uniform, Content::NearZero, Content::NearMaximum}) {
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
            EXPECT_TRUE(std::ranges::equal(source.row(y), lines[y])) << "the source was written";
            std::ranges::transform(lines[y], lines[y].begin(), expected);
            EXPECT_TRUE(sameLanes<std::uint8_t>(lines[y], destination.row(y), 4, y, width));
        }
    }
}

ScreenPreviewBase previewOf(const MemoryFrameOptions& options, std::uint32_t destination)
{
    ScreenPreviewBase preview;
    EXPECT_TRUE(setUp(preview, TestFrame::create(options).get(), destination));
    return preview;
}

TEST(PreviewRender, HoldsCapturedRGBWithinStudioRange)
{
    for (unsigned width = 1; width <= 17; ++width)
        for (const unsigned height : {1u, 3u})
            for (const bool flipped : {false, true}) {
                const ScreenPreviewBase preview =
                    previewOf({.width = width, .height = height, .format = kARGB, .captured = true},
                              code("vRGB"));
                checkLines(preview, width, height, flipped, clampToStudioRange);
            }
}

TEST(PreviewRender, CopiesWhatNeedsNoConversion)
{
    for (unsigned width = 1; width <= 9; ++width)
        for (const bool flipped : {false, true}) {
            // Captured or not: RGBA is not a format that cards capture in studio range.
            const ScreenPreviewBase preview = previewOf(
                {.width = width, .height = 3, .format = code("RGBA"), .captured = flipped},
                code("RGBA"));
            checkLines(preview, width, 3, flipped, [](std::uint8_t value) { return value; });
        }
}

TEST(PreviewRender, DoesNotRememberThatTheFrameBeforeWasCaptured)
{
    ScreenPreviewBase preview =
        previewOf({.width = 4, .height = 3, .format = kARGB, .captured = true}, code("vRGB"));
    const auto next = TestFrame::create({.width = 4, .height = 3, .format = code("RGBA")});
    ASSERT_TRUE(setUp(preview, next.get(), code("RGBA")));
    checkLines(preview, 4, 3, false, [](std::uint8_t value) { return value; });
}

TEST(PreviewRender, TouchesNothingWithoutLines)
{
    std::uint8_t destination[16] = {};
    std::uint8_t source[16];
    std::ranges::fill(source, 99);
    const MemoryFrameOptions captured{
        .width = 4, .height = 0, .format = code("BGRA"), .captured = true};
    const MemoryFrameOptions plain{.width = 4, .height = 0, .format = code("RGBA")};
    previewOf(captured, code("BGRv")).render(4, 0, destination, 16, source, 16);
    previewOf(plain, code("RGBA")).render(4, 0, destination, 16, source, 16);
    EXPECT_EQ(std::ranges::count(destination, 0), 16);
}

TEST(PreviewRender, Converts)
{
    const ScreenPreviewBase preview =
        previewOf({.width = 5, .height = 1, .format = code("BGRA")}, code("RGBA"));
    std::uint8_t source[20];
    std::uint8_t destination[20] = {};
    for (int i = 0; i < 20; ++i)
        source[i] = static_cast<std::uint8_t>(3 + 7 * i);
    preview.render(5, 1, destination, 20, source, 20);
    for (int pixel = 0; pixel < 20; pixel += 4) {
        EXPECT_EQ(destination[pixel], source[pixel + 2]);
        EXPECT_EQ(destination[pixel + 1], source[pixel + 1]);
        EXPECT_EQ(destination[pixel + 2], source[pixel]);
        EXPECT_EQ(destination[pixel + 3], 255);
    }
}

} // namespace
} // namespace kestrix::test
