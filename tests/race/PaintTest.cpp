/// Four threads set frames while a fifth one paints, as the OpenGL 3 helper allows. With the
/// fixed-function helper, the host must make sure that no two calls overlap.
#include "tests/common/CaseName.h"
#include "tests/common/GLContext.h"
#include "tests/common/PreviewFixture.h"

#include <GL/gl.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

struct Counts {
    const char* name;
    int setFrames;  ///< by all threads together
    int setFormats; ///< by all threads together
    int paints;
};

class PaintRace : public testing::TestWithParam<Counts> {};

TEST_P(PaintRace, LeavesEveryFrameAsItWas)
{
    constexpr int kThreads = 4;
    constexpr std::uint32_t kFormats[] = {Preview3DLeftOnly, Preview3DRightOnly,
                                          Preview3DSideBySide, Preview3DTopBottom};
    const Counts& counts = GetParam();
    const GLContext context(GLContext::Kind::Core32);
    ASSERT_EQ(context.failure(), "");
    GLRecorder& gl = GLRecorder::get();
    gl.useDriver();
    int uploads = 0;
    gl.observe("glTexSubImage2D", [&](const GLCall&) { ++uploads; });
    const Canvas canvas(8, 8);
    Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    ASSERT_EQ(helper->InitializeGL(), S_OK);

    // Frames of two sizes and three formats, single frames and pairs.
    std::vector<Frame> rights;
    std::vector<Frame> lefts;
    for (const std::uint32_t format : {code("BGRA"), code("2vuy"), kARGB}) {
        const std::int64_t width = format == kARGB ? 8 : 16;
        const host::MemoryFrameOptions options{.width = width, .height = 8, .format = format};
        rights.push_back(TestFrame::create(options));
        lefts.push_back(TestFrame::create(options));
        lefts.push_back(TestFrame::create(stereo(options, rights.back())));
    }

    std::atomic<int> painted{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            const int frames = counts.setFrames / kThreads;
            const int perFormat = counts.setFrames / counts.setFormats;
            const int framesPerPaint = std::max(frames / counts.paints, 1);
            for (int i = 0; i < frames; ++i) {
                const auto index = static_cast<std::size_t>(i + thread) % (lefts.size() + 1);
                IKestrixVideoFrame* const frame =
                    index == lefts.size() ? nullptr : lefts[index].get();
                EXPECT_EQ(helper->SetFrame(frame), S_OK);
                if (i % perFormat == 0) {
                    const auto format = static_cast<std::size_t>(i / perFormat + thread) % 4;
                    EXPECT_EQ(helper->Set3DPreviewFormat(kFormats[format]), S_OK);
                }
                // Keeps step with the paints. Relaxed, so that it orders no other access.
                while (painted.load(std::memory_order_relaxed) <
                       std::min(i / framesPerPaint, counts.paints))
                    std::this_thread::yield();
            }
        });
    for (int i = 0; i < counts.paints; ++i) {
        EXPECT_EQ(helper->PaintGL(), S_OK);
        gl.clear();
        painted.fetch_add(1, std::memory_order_relaxed);
    }
    for (std::thread& thread : threads)
        thread.join();
    helper.reset();
    EXPECT_EQ(driverGL<decltype(::glGetError)>("glGetError")(), GLenum{GL_NO_ERROR});

    EXPECT_GT(uploads, 0);
    for (const auto* frames : {&lefts, &rights})
        for (const Frame& frame : *frames) {
            EXPECT_EQ(frame->references(), frames == &rights ? 2U : 1U);
            EXPECT_EQ(frame->openAccesses(), 0);
        }
}

INSTANTIATE_TEST_SUITE_P(Race, PaintRace, testing::Values(Counts{"Short", 20'000, 200, 2'000}),
                         caseName);
INSTANTIATE_TEST_SUITE_P(RaceFull, PaintRace,
                         testing::Values(Counts{"Full", 1'000'000, 10'000, 100'000}), caseName);

} // namespace
} // namespace kestrix::test
