/// Helpers from the factories, set up on the recording GL.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"
#include "tests/support/GLRecorder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kestrix::test {

using Helper = host::Owned<IKestrixGLScreenPreviewHelper>;

/// The code that a FourCC stands for, its first character in the top byte.
constexpr std::uint32_t code(std::string_view text)
{
    std::uint32_t value = 0;
    for (const char character : text)
        value = value << 8 | static_cast<unsigned char>(character);
    return value;
}

/// Ends a test's child process with the outcome of the expectations in it, past all destructors.
[[noreturn]] inline void exitWithOutcome()
{
    std::fflush(nullptr);
    std::_Exit(testing::Test::HasFailure());
}

/// Tests without a driver: every call is answered by the fake.
class FakeGLTest : public testing::Test {
protected:
    FakeGLTest() { gl.useFake(); }

    GLRecorder& gl = GLRecorder::get();
};

/// An OpenGL 3 helper on the fake, initialised, with the record of that cleared. The destructor of
/// the helper makes GL calls, so it has to be initialised.
inline Helper initialisedGL3Helper()
{
    Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    EXPECT_NE(helper, nullptr);
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    GLRecorder::get().clear();
    return helper;
}

/// The same for the fixed-function helper.
inline Helper initialisedLegacyHelper()
{
    Helper helper(CreateOpenGLScreenPreviewHelper_0002());
    EXPECT_NE(helper, nullptr);
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    GLRecorder::get().clear();
    return helper;
}

} // namespace kestrix::test
