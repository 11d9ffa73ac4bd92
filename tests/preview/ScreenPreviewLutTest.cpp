/// The store of colour tables, what they hold and the choice among them.
#include "preview/ScreenPreviewLut.h"
#include "tests/common/PreviewFixture.h"
#include "tests/reference/Gamut.h"
#include "tests/reference/Levels.h"
#include "tests/reference/YUV.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <set>

#include <xmmintrin.h>

namespace kestrix::test {
namespace {

const float* table(unsigned id, unsigned format = 0)
{
    return ScreenPreviewLut::Get(static_cast<LutID>(id), static_cast<LutFormat>(format));
}

void generate()
{
    ScreenPreviewLut::Generate(static_cast<LutFormat>(0));
}

TEST(TableStore, HoldsFifteenOpaqueTablesOfOneFormat)
{
    ScreenPreviewLut::Generate(static_cast<LutFormat>(1));
    for (unsigned id = 0; id < 15; ++id)
        ASSERT_EQ(table(id), nullptr) << "there is no second format";
    generate();
    std::set<const float*> tables;
    for (unsigned id = 0; id < 15; ++id) {
        const float* const entries = table(id);
        ASSERT_TRUE(entries && tables.insert(entries).second);
        for (int i = 0; i < 33 * 33 * 33; ++i)
            ASSERT_EQ(entries[4 * i + 3], 1.0f);
    }

    EXPECT_EQ(table(15), nullptr);
    EXPECT_EQ(table(0xffffffff), nullptr);
    EXPECT_EQ(table(0, 1), nullptr);
    EXPECT_EQ(ScreenPreviewLut::Create(static_cast<LutID>(15), LutFormat_RGBA32F), nullptr);
    EXPECT_EQ(ScreenPreviewLut::Get(720, 576, code("r210"), code("r601"), LutFormat_RGBA32F),
              table(9));
}

// --- Contents ------------------------------------------------------------------------------------

using Entry = std::array<float, 3>;

/// What a table holds for a point. Computes each step of the conversion in its scalar form.
class Conversion {
public:
    explicit Conversion(unsigned id) : m_id(id)
    {
        using namespace KSX::PixelConversion;
        const Colorspace from[] = {Colorspace601, Colorspace601, Colorspace709, Colorspace2020};
        if (id % 4 != 2)
            m_gamut = {reference::gamutStep(from[id % 4], Colorspace709, id % 4 == 1 ? 576 : 486),
                       10, true};
    }

    Entry operator()(const Entry& point) const
    {
        // The identity, for all components or for one.
        if (m_id == 6)
            return point;
        if (m_id >= 12)
            return {m_id == 12 ? point[0] : 0, m_id == 13 ? point[1] : 0,
                    m_id == 14 ? point[2] : 0};

        std::array<int, 3> codes;
        std::ranges::transform(point, codes.begin(), [](float x) {
            return static_cast<int>(std::nearbyint(x * 1023.0f));
        });
        if (m_id < 4) {
            const reference::Matrix matrices[] = {
                reference::kYUVToStudio601, reference::kYUVToStudio601, reference::kYUVToStudio709,
                reference::kYUVToStudio2020};
            // At these points the formula for odd pixels gives the same codes.
            codes =
                reference::toRGB({matrices[m_id], 10, 10}, {codes[0], codes[1], codes[2]}, false);
        }
        if (m_id < 4 || m_id >= 8)
            for (int& code : codes)
                code = m_rescale(static_cast<std::uint16_t>(code));
        if (m_gamut)
            codes = reference::changeGamut(*m_gamut, codes);
        Entry entry;
        std::ranges::transform(codes, entry.begin(), [](int code) {
            const float scaled = static_cast<float>(code) * std::bit_cast<float>(0x3a802008);
            return std::clamp(scaled, 0.0f, 1.0f);
        });
        return entry;
    }

private:
    unsigned m_id;
    reference::Rescale m_rescale{{10, false}, {10, true}};
    std::optional<reference::GamutChange> m_gamut;
};

TEST(TableStore, HoldsThoseOfTheScalarForm)
{
    generate();
    for (unsigned id = 0; id < 15; ++id) {
        const Conversion conversion(id);
        const float* entry = table(id);
        for (int i = 0; i < 33 * 33 * 33; ++i, entry += 4) {
            // Multiples of a power of two are exact in single precision.
            const Entry point{static_cast<float>(i % 33) / 32, static_cast<float>(i / 33 % 33) / 32,
                              static_cast<float>(i / 33 / 33) / 32};
            ASSERT_EQ((Entry{entry[0], entry[1], entry[2]}), conversion(point))
                << "table " << id << ", entry " << i;
        }
    }
    // Worked out by hand: a point, and black below the range.
    const float* const middle = table(2) + 4 * (16 + 33 * (16 + 33 * 16));
    EXPECT_NEAR(middle[0], 0.51124, 5e-6);
    EXPECT_EQ(table(2)[4 * (1 + 33 * (16 + 33 * 16))], 0);
}

TEST(TableStore, DoesNotDependOnTheModesOfTheThread)
{
    generate();
    const unsigned before = _mm_getcsr();
    for (const unsigned mode : {_MM_ROUND_DOWN, _MM_ROUND_UP, _MM_ROUND_TOWARD_ZERO, 0x8040})
        for (unsigned id = 0; id < 15; ++id) {
            _mm_setcsr(before | mode);
            const auto made = ScreenPreviewLut::Create(static_cast<LutID>(id), LutFormat_RGBA32F);
            const unsigned after = _mm_getcsr();
            _mm_setcsr(before);
            EXPECT_EQ(after, before | mode) << "the modes and flags of the thread";
            ASSERT_TRUE(std::equal(made.get(), made.get() + 4 * 33 * 33 * 33, table(id)))
                << "table " << id << ", mode " << std::hex << mode;
        }
}

// --- Choice --------------------------------------------------------------------------------------

TEST(TableChoice, GoesByTheFormatsRange)
{
    const auto base = [](std::uint32_t format) {
        return ScreenPreviewLut::GetID(1920, 1080, format, code("r709")) - 2u;
    };
    for (const char* format : {"2vuy", "v210", "Ay10"})
        EXPECT_EQ(base(code(format)), 0u) << format;
    for (const char* format : {"BGRv", "vRGB", "r210", "R10b", "R10l", "R12b", "R12l"})
        EXPECT_EQ(base(code(format)), 8u) << format;
    // Codes that differ in the case of a letter differ in range.
    for (const char* format :
         {"BGRA", "RGBA", "R210", "R10B", "R10L", "R12B", "R12L", "ay10", "YUY2", "none"})
        EXPECT_EQ(base(code(format)), 4u) << format;
    EXPECT_EQ(base(kARGB), 4u);
}

TEST(TableChoice, GoesByTheCodeAndElseByTheSize)
{
    struct {
        unsigned width, height;
        std::uint32_t colourspace;
        unsigned id;
    } const cases[] = {
        {720, 576, code("2020"), 3},
        {720, 576, code("r709"), 2},
        {1920, 1080, code("2020"), 3},
        {720, 576, code("r601"), 1},
        {720, 486, code("r601"), 0},
        {721, 576, code("r601"), 0},
        {720, 575, code("r601"), 0},
        {1920, 1080, code("r601"), 0},
        {720, 480, 0, 0},
        {720, 486, 0, 0},
        {720, 576, 0, 1},
        {720, 500, 0, 2},
        {704, 576, 0, 2},
        {1920, 1080, 0, 2},
        {720, 576, code("unsp"), 1},
        {720, 486, code("R709"), 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ScreenPreviewLut::GetID(c.width, c.height, code("2vuy"), c.colourspace), c.id)
            << c.width << " by " << c.height << ", code " << std::hex << c.colourspace;
}

} // namespace
} // namespace kestrix::test
