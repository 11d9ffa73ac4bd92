/// For tests of what helpers paint: a real context, frames of noise, and a picture to paint into.
#pragma once

#include "tests/common/GLContext.h"
#include "tests/common/PreviewFixture.h"
#include "tests/common/Random.h"

#include <GL/gl.h>

namespace kestrix::test {

/// Noise in the given size and format.
inline Frame noise(const host::MemoryFrameOptions& options, std::uint64_t seed)
{
    Frame frame = TestFrame::create(options);
    Random(seed).fill({frame->bytes(), frame->size()}, Content::Uniform);
    return frame;
}

/// A helper in a context of its own. The driver must have no message about what the helper does.
class DriverTest : public testing::Test {
protected:
    explicit DriverTest(GLContext::Kind kind) : context(kind) {}

    /// A class that overrides this function calls it first.
    void SetUp() override
    {
        ASSERT_EQ(context.failure(), "");
        gl.useDriver();
    }

    void TearDown() override
    {
        helper.reset();
        if (context.failure().empty()) {
            EXPECT_EQ(driverGL<decltype(::glGetError)>("glGetError")(), GLenum{GL_NO_ERROR});
            EXPECT_EQ(context.messages(), "");
        }
    }

    void paint(IKestrixVideoFrame* frame)
    {
        EXPECT_EQ(helper->SetFrame(frame), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
    }

    GLContext context;
    GLRecorder& gl = GLRecorder::get();
    Helper helper;
};

} // namespace kestrix::test
