/// What the tests of the helpers share: matchers, codes, helpers, frames of two eyes, the fake GL.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"
#include "tests/common/GLContext.h"
#include "tests/common/GLRecorder.h"
#include "tests/common/TestFrame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kestrix::test {

using host::MemoryFrameOptions;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Helper = host::Owned<IKestrixGLScreenPreviewHelper>;
using Frame = host::Owned<TestFrame>;

/// Both helpers, for the tests of what they have in common.
struct HelperKind {
    const char* name;
    CreateScreenPreviewHelperFunction create;
    CreateScreenPreviewHelperFunction_v14_2_1 createOld;
    GLContext::Kind context;
};
inline const HelperKind kHelperKinds[] = {
    {"FixedFunction", CreateOpenGLScreenPreviewHelper_0002, CreateOpenGLScreenPreviewHelper_0001,
     GLContext::Kind::Legacy},
    {"OpenGL3", CreateOpenGL3ScreenPreviewHelper_0002, CreateOpenGL3ScreenPreviewHelper_0001,
     GLContext::Kind::Core32},
};

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
inline MemoryFrameOptions stereo(MemoryFrameOptions options, const Frame& right,
                                 std::uint32_t packing = Packing3DLeftOnly)
{
    options.packing3D = packing;
    options.rightEye = right.get();
    return options;
}

/// Ends a test's child process with the outcome of its expectations. No destructor runs.
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
