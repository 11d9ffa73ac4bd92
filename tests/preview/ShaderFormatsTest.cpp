/// Compares the list of the shader's formats with the shader's text.
#include "preview/ShaderFormats.h"
#include "preview/PreviewShaders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

TEST(ShaderFormats, AreTheCasesOfTheShadersSwitch)
{
    std::istringstream words(kFragmentShader);
    std::vector<std::uint32_t> cases;
    for (std::string word, code; words >> word;)
        if (word == "case" && words >> code)
            cases.push_back(static_cast<std::uint32_t>(std::stoul(code, nullptr, 0)));

    std::vector<std::uint32_t> listed;
    for (const ShaderFormat& format : kShaderFormats)
        listed.push_back(format.code);
    std::ranges::sort(cases);
    std::ranges::sort(listed);
    EXPECT_EQ(cases, listed);
}

} // namespace
} // namespace kestrix::test
