/// Runs a fuzz target over the files that are named, or over those in the folders that are, and
/// over so many inputs of noise.
#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

namespace {

bool replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "can't read %s\n", path.c_str());
        return false;
    }
    // A fault ends the process, so the name comes first.
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return true;
}

/// Inputs that are the same in every run.
void runNoise(long count)
{
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(1024);
    for (long number = 0; number < count; ++number) {
        std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
        // A fault ends the process, so the number of the input comes first.
        std::printf("noise %ld\n", number);
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t inputs = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--noise" && i + 1 < argc) {
            runNoise(std::atol(argv[++i]));
            ++inputs;
            continue;
        }
        if (!std::filesystem::is_directory(argv[i])) {
            if (!replay(argv[i]))
                return 1;
            ++inputs;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            if (!replay(entry.path()))
                return 1;
            ++inputs;
        }
    }
    if (inputs == 0) {
        std::fprintf(stderr, "usage: %s FILE|FOLDER|--noise COUNT ...\n", argv[0]);
        return 1;
    }
}
