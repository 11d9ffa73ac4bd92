/// Prints docs/pipelines.md: print_pipelines BUDGETS, the file with the instructions per pixel.
/// Fails if a rule matches no row of the table, and if a budget is missing.
#include "docs/printed/EntriesThatTellTheirPipelines.h"
#include "docs/printed/FormatNames.h"
#include "tests/common/AllConversions.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <cxxabi.h>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

constexpr char kHead[] = R"(# Pipelines

This page lists the stages that define each conversion, and the stages that run. The program
`print_pipelines` prints it from the code. Rows of the table that share an entry share a section.

- *listed*: the stages of the entry, which define the conversion.
- *inside*: the stages that run for the blocks of a row, after the rules of `conversion/fast/Rules.h`
  replaced some of them.
- *end*: the stages that run for the rest of a row after those blocks, and for its partial block.
- *block*: the number of pixels that go through the stages at a time.
- *instructions*: instructions per pixel, at 1920 pixels per row, compiled by g++ 12.

A conversion to or from Rec. 601 has two pipelines, which differ only in the matrix of primaries; this page
shows the one for 625 lines. No entry lists stages in `fast::` and `details::`. The test `FastForms` runs
every row both ways and compares the bytes.
)";

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

/// A type as the source spells it.
std::string spelt(const std::type_info& type)
{
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), std::free);
    std::string text = replaced(name.get(), "KSX::PixelConversion::", "");
    text = replaced(text, "> >", ">>");
    for (const char* flag : {"P0", "P1"})
        text = replaced(text, std::string("(PrecisionFlag)") + flag[1], flag);
    for (const char* flag : {"V0", "V1"})
        text = replaced(text, std::string("(VectorTypeFlag)") + flag[1], flag);
    text = replaced(text, "(PixelCenterFlag)0", "C0");
    text = replaced(text, "(SseFlag)1", "kVectors");
    text = replaced(text, "(unsigned short)", "");
    for (const char* standard : {"601", "709", "2020"})
        for (const char* bits : {"8", "10", "12"})
            text = replaced(
                text, std::string("FullRange<") + bits + "u, StudioRange" + standard + ">",
                bits == std::string("8") ? std::string("ComputerRange") + standard
                                         : std::string("FullRange") + standard + "<" + bits + ">");
    text = replaced(text, "Rec709OETF<8u, ", "Rec709OETF<8, ");
    text = replaced(text, "Rec709OETF<10u, ", "Rec709OETF<10, ");
    return text;
}

/// Instructions per pixel by the number of the row, from a file of "rowN/from/to instructions".
std::map<unsigned, std::string> readBudgets(const char* path)
{
    std::map<unsigned, std::string> budgets;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("row"))
            budgets[static_cast<unsigned>(std::stoul(line.substr(3)))] =
                line.substr(line.find_last_of(' ') + 1);
    return budgets;
}

std::string titleOf(const std::vector<unsigned>& rows, const std::vector<Conversion>& all)
{
    std::string title = rows.size() == 1 ? "Row " : "Rows ";
    for (std::size_t i = 0; i < rows.size(); ++i)
        title += (i == 0 ? "" : ", ") + std::to_string(rows[i]);
    std::string formats;
    std::set<std::string> seen;
    for (const unsigned row : rows) {
        const auto& [src, from, dst, to, function] = all[row].entry;
        const std::string pair = nameOf(src) + " to " + nameOf(dst);
        if (seen.insert(pair).second)
            formats += (formats.empty() ? ": " : ", ") + pair;
        if (from != to && from != ColorspaceUnspecified)
            formats += std::string(", ") + colorspaceName(from) + " to " + colorspaceName(to);
        else if (rows.size() == 1 && from != ColorspaceUnspecified)
            formats += std::string(", ") + colorspaceName(from);
    }
    return title + formats;
}

void printStages(const char* head, const ToldStages& told)
{
    std::printf("%s, block %u\n", head, told.block);
    for (const std::type_info* stage : told.stages)
        std::printf("    %s\n", spelt(*stage).c_str());
}

bool same(const ToldStages& a, const ToldStages& b)
{
    return std::ranges::equal(a.stages, b.stages);
}

template<class... RULES>
std::vector<std::string> allRules(RuleList<RULES...>)
{
    return {spelt(typeid(RULES))...};
}

} // namespace

int main(int argc, char** argv)
{
    const auto budgets = readBudgets(argc == 2 ? argv[1] : "");
    const std::vector<Conversion> all = allConversions();
    std::fputs(kHead, stdout);

    std::map<ConversionFunction, std::vector<unsigned>> rowsOf;
    for (unsigned row = 0; row < kConversionCount; ++row)
        if (!all[row].copies())
            rowsOf[all[row].entry.function].push_back(row);

    std::map<std::string, std::set<unsigned>> rowsByRule;
    std::set<std::string> listed, run;
    for (unsigned row = 0; row < kConversionCount; ++row) {
        const auto& rows = rowsOf[all[row].entry.function];
        if (rows.empty() || rows.front() != row)
            continue;
        ToldPipeline told;
        all[row].entry.function(0, 0, &told, 0, nullptr, 0);
        const auto budget = budgets.find(row);
        if (budget == budgets.end()) {
            std::fprintf(stderr, "row %u has no count of instructions\n", row);
            return 1;
        }
        std::printf("\n## %s\n\n`%s`: %s instructions\n\n```text\n", titleOf(rows, all).c_str(),
                    told.entry, budget->second.c_str());
        printStages("listed", told.listed);
        if (same(told.inside, told.listed))
            std::printf("inside, block %u: as listed\n", told.inside.block);
        else
            printStages("inside", told.inside);
        if (same(told.end, told.inside) && told.end.block == told.inside.block)
            std::puts("end: as inside");
        else if (same(told.end, told.inside))
            std::printf("end, block %u: as inside\n", told.end.block);
        else if (same(told.end, told.listed))
            std::printf("end, block %u: as listed\n", told.end.block);
        else
            printStages("end", told.end);
        std::puts("```");

        for (const ToldStages* stages : {&told.inside, &told.end}) {
            for (const std::type_info* rule : stages->rules)
                rowsByRule[spelt(*rule)].insert(rows.begin(), rows.end());
            for (const std::type_info* stage : stages->stages)
                run.insert(spelt(*stage));
        }
        for (const std::type_info* stage : told.listed.stages)
            listed.insert(spelt(*stage));
    }

    std::puts(
        "\n## Rules\n\nThe rules in the order in which they are tried, with the rows that they "
        "match. A rule in `fast::planes`\ngives the form of one stage for `fast::OnPlanes`.\n\n"
        "| Rule | Rows | First row |\n|---|---|---|");
    auto rules = allRules(FastRules{});
    const auto planes = allRules(fast::planes::Rules{});
    rules.insert(rules.end(), planes.begin(), planes.end());
    for (const std::string& rule : rules) {
        const auto& rows = rowsByRule[rule];
        if (rows.empty()) {
            std::fprintf(stderr, "the rule %s matches no row\n", rule.c_str());
            return 1;
        }
        std::printf("| `%s` | %zu | %u |\n", rule.c_str(), rows.size(), *rows.begin());
    }

    std::puts(
        "\n## Stages that no row runs\n\nIn every row that lists one of these stages, another form "
        "runs in its place.\n");
    for (const std::string& stage : listed)
        if (!run.contains(stage))
            std::printf("- `%s`\n", stage.c_str());
}
