/// The list of the shader's formats beside the shader's text.
#include "preview/ShaderFormats.h"
#include "preview/PreviewShaders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <regex>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

TEST(ShaderFormats, AreTheCasesOfTheShadersSwitch)
{
    const std::string shader = kFragmentShader;
    const std::regex label(R"(\bcase\s+(\w+)u\s*:)");
    std::vector<std::uint32_t> cases;
    for (std::sregex_iterator at(shader.begin(), shader.end(), label), end; at != end; ++at)
        cases.push_back(static_cast<std::uint32_t>(std::stoul(at->str(1), nullptr, 0)));

    std::vector<std::uint32_t> listed;
    for (const ShaderFormat& format : kShaderFormats)
        listed.push_back(format.code);
    std::ranges::sort(cases);
    std::ranges::sort(listed);
    EXPECT_EQ(cases, listed);
}

} // namespace
} // namespace kestrix::test
