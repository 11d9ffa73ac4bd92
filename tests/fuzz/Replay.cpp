/// Runs a fuzz target over the files in a folder, and over a number of random inputs.
#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

/// A fault ends the process, so the name of the input comes first.
void run(const std::string& name, const std::vector<std::uint8_t>& bytes)
{
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3 || !std::filesystem::is_directory(argv[1])) {
        std::fprintf(stderr, "usage: %s FOLDER COUNT\n", argv[0]);
        return 1;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        run(entry.path(), {std::istreambuf_iterator<char>(file), {}});
        if (!file) {
            std::fprintf(stderr, "can't read %s\n", entry.path().c_str());
            return 1;
        }
    }
    std::mt19937 random(1); // inputs that are the same in every run
    std::vector<std::uint8_t> bytes(1024);
    for (long number = 0; number < std::atol(argv[2]); ++number) {
        std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
        run("noise " + std::to_string(number), bytes);
    }
}
