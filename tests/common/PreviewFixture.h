/// What the tests of the helpers share: codes, helpers, frames of two eyes, the fake GL.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"
#include "tests/common/GLRecorder.h"
#include "tests/common/TestFrame.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kestrix::test {

using Helper = host::Owned<IKestrixGLScreenPreviewHelper>;
using Frame = host::Owned<TestFrame>;

/// The code that a FourCC stands for, its first character in the top byte.
constexpr std::uint32_t code(std::string_view text)
{
    std::uint32_t value = 0;
    for (const char character : text)
        value = value << 8 | static_cast<unsigned char>(character);
    return value;
}

/// The one format whose code is no FourCC.
inline constexpr std::uint32_t kARGB = 32;

/// `options` of the left eye of a pair.
inline host::MemoryFrameOptions stereo(host::MemoryFrameOptions options, const Frame& right,
                                       std::uint32_t packing = Packing3DLeftOnly)
{
    options.packing3D = packing;
    options.rightEye = right.get();
    return options;
}

/// Ends a test's child process with the outcome of the expectations in it, past all destructors.
[[noreturn]] inline void exitWithOutcome()
{
    std::fflush(nullptr);
    std::_Exit(testing::Test::HasFailure());
}

/// Tests without a driver: every call is answered by the fake. The destructor of a helper makes GL
/// calls, so one that was made has to be initialised by the test's end.
class FakeGLTest : public testing::Test {
protected:
    FakeGLTest() { gl.useFake(); }

    GLRecorder& gl = GLRecorder::get();
};

} // namespace kestrix::test
