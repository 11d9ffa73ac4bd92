/// Names for the cases of parameterised tests.
#pragma once

#include <string>

#include <gtest/gtest.h>

namespace kestrix::test {

/// The `name` of a case, for what CTest shows.
inline constexpr auto caseName = [](const auto& info) -> std::string { return info.param.name; };

} // namespace kestrix::test
