/// The store of colour tables, what they hold and the choice among them.
#include "preview/ScreenPreviewLut.h"
#include "tests/common/AllocationFaults.h"
#include "tests/common/PreviewFixture.h"
#include "tests/reference/Gamut.h"
#include "tests/reference/Levels.h"
#include "tests/reference/YUV.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

const float* table(unsigned id, unsigned format = 0)
{
    return ScreenPreviewLut::Get(static_cast<LutID>(id), static_cast<LutFormat>(format));
}

std::vector<const float*> allTables()
{
    std::vector<const float*> tables;
    for (unsigned id = 0; id < 15; ++id)
        tables.push_back(table(id));
    return tables;
}

void generate()
{
    ScreenPreviewLut::Generate(static_cast<LutFormat>(0));
}

TEST(TableStore, HoldsFifteenOpaqueTablesOfOneFormat)
{
    ScreenPreviewLut::Generate(static_cast<LutFormat>(1));
    std::vector<const float*> tables = allTables();
    ASSERT_EQ(std::ranges::count(tables, nullptr), 15) << "there is no second format";
    generate();
    tables = allTables();
    ASSERT_EQ(std::ranges::count(tables, nullptr), 0);
    for (const float* entries : tables)
        for (int i = 0; i < 33 * 33 * 33; ++i)
            ASSERT_EQ(entries[4 * i + 3], 1.0f);
    std::ranges::sort(tables);
    EXPECT_EQ(std::ranges::adjacent_find(tables), tables.end());

    EXPECT_EQ(table(15), nullptr);
    EXPECT_EQ(table(0xffffffff), nullptr);
    EXPECT_EQ(table(0, 1), nullptr);
    EXPECT_EQ(ScreenPreviewLut::Create(static_cast<LutID>(15), LutFormat_RGBA32F), nullptr);
    EXPECT_EQ(ScreenPreviewLut::Get(720, 576, code("r210"), code("r601"), LutFormat_RGBA32F),
              table(9));
}

// --- Contents ------------------------------------------------------------------------------------

using Entry = std::array<float, 3>;

/// What a table holds for a point, each step of its conversion by its scalar form.
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
        // The identity, of all components or of one.
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
            // An entry is a picture of its own, so its pixel is an even one.
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

class TableContents : public testing::TestWithParam<unsigned> {};

TEST_P(TableContents, AreThoseOfTheScalarForm)
{
    generate();
    const Conversion conversion(GetParam());
    const float* entry = table(GetParam());
    for (int z = 0; z < 33; ++z)
        for (int y = 0; y < 33; ++y)
            for (int x = 0; x < 33; ++x, entry += 4) {
                // Multiples of a power of two, exact in single precision.
                const Entry point{static_cast<float>(x) / 32, static_cast<float>(y) / 32,
                                  static_cast<float>(z) / 32};
                ASSERT_EQ((Entry{entry[0], entry[1], entry[2]}), conversion(point))
                    << x << ", " << y << ", " << z;
            }
}
INSTANTIATE_TEST_SUITE_P(Tables, TableContents, testing::Range(0u, 15u),
                         [](const auto& id) { return std::to_string(id.param); });

TEST(TableStore, HoldsValuesWorkedOutByHand)
{
    generate();
    const auto expect = [](unsigned id, const Entry& point, double r, double g, double b) {
        const double expected[] = {r, g, b};
        const float* const entry =
            table(id) + 4 * std::lround(32 * (point[0] + 33 * (point[1] + 33 * point[2])));
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(entry[c], expected[c], 5e-6) << "table " << id << ", component " << c;
    };
    expect(2, {2 / 32.0f, 0.5f, 0.5f}, 0, 0, 0); // black, and below it
    expect(2, {0, 0.5f, 0.5f}, 0, 0, 0);
    expect(2, {0.5f, 0.5f, 0.5f}, 0.51124, 0.51124, 0.51124);
    expect(2, {1, 0.5f, 0.5f}, 1, 1, 1);
    expect(10, {0.25f, 0.5f, 0.75f}, 0.21896, 0.51124, 0.80254);
    expect(7, {1, 0, 0}, 1, 0, 0);           // red that Rec. 709 does not reach
    expect(5, {0, 1, 0}, 0, 1, 54 / 1023.0); // a tint, and red limited
    expect(11, {1, 1, 1}, 1, 1, 1);
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
