/// The store of colour tables and the choice among them.
#include "preview/ScreenPreviewLut.h"
#include "tests/support/AllocationFaults.h"
#include "tests/support/PreviewFixture.h"

#include <algorithm>
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

// In a process of its own, in which nothing has made a table yet.
TEST(EmptyTableStoreDeathTest, IsFilledAsFarAsMemoryGoes)
{
    const auto body = [] {
        EXPECT_EQ(table(6), nullptr);
        ScreenPreviewLut::Generate(static_cast<LutFormat>(1));
        EXPECT_EQ(table(6), nullptr);
        {
            const auto faults = AllocationFaults::number(3);
            generate();
            EXPECT_EQ(faults.failed(), 1);
        }
        const std::vector<const float*> first = allTables();
        EXPECT_EQ(std::ranges::count(first, nullptr), 1);

        generate();
        const std::vector<const float*> second = allTables();
        EXPECT_EQ(std::ranges::count(second, nullptr), 0);
        for (std::size_t id = 0; id < first.size(); ++id)
            EXPECT_TRUE(!first[id] || first[id] == second[id]) << "table " << id;
        exitWithOutcome();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST(EmptyTableStoreDeathTest, IsFilledOnceByManyThreads)
{
    const auto body = [] {
        std::vector<const float*> seen[3];
        std::vector<std::thread> threads;
        for (auto& tables : seen)
            threads.emplace_back([&tables] {
                generate();
                tables = allTables();
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(std::ranges::count(seen[0], nullptr), 0);
        EXPECT_EQ(seen[0], seen[1]);
        EXPECT_EQ(seen[0], seen[2]);
        exitWithOutcome();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST(TableStore, HoldsFifteenOpaqueTablesOfOneFormat)
{
    generate();
    std::vector<const float*> tables = allTables();
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

TEST(TableStore, ShowsFullRangeRec709AsItIs)
{
    generate();
    const float* entry = table(6);
    for (int z = 0; z < 33; ++z)
        for (int y = 0; y < 33; ++y)
            for (int x = 0; x < 33; ++x, entry += 4) {
                // A sum of powers of two, exact in single precision.
                ASSERT_EQ(entry[0], static_cast<float>(x) / 32);
                ASSERT_EQ(entry[1], static_cast<float>(y) / 32);
                ASSERT_EQ(entry[2], static_cast<float>(z) / 32);
            }
}

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
