/// What the OpenGL 3 helper needs of a context, and what it makes in it.
#include "preview/ScreenPreviewLut.h"
#include "tests/common/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <gmock/gmock.h>

#include <set>

namespace kestrix::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// A process looks up entry points once and keeps them, so each round runs in a process of its own.
// The helpers there are never released: that would call entry points that were not found.
TEST(GL3EntryPointsDeathTest, AreLookedUpOnceAndMustAllBeThere)
{
    constexpr std::size_t kEntryPoints = 45;
    ScreenPreviewLut::Generate(LutFormat_RGBA32F); // once for all the processes below
    GLRecorder& gl = GLRecorder::get();
    const auto failAt = [&](std::size_t position) {
        gl.useFake();
        auto* const helper = CreateOpenGL3ScreenPreviewHelper_0002();
        gl.failLookup(static_cast<int>(position));
        EXPECT_EQ(helper->InitializeGL(), E_FAIL);
        // The look-up ends at the first entry point that is missing.
        EXPECT_EQ(gl.lookups().size(), position + 1);
        EXPECT_THAT(gl.calls(), IsEmpty());
        EXPECT_EQ(helper->PaintGL(), E_FAIL);
        std::set<std::string> asked(gl.lookups().begin(), gl.lookups().end());

        // The entry points that were found are kept. The next attempt looks up the rest.
        gl.clear();
        gl.failLookup(-1);
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        EXPECT_EQ(gl.lookups().size(), kEntryPoints - position);
        EXPECT_EQ(helper->PaintGL(), S_OK);

        // The helper calls no function that it has not looked up.
        asked.insert(gl.lookups().begin(), gl.lookups().end());
        EXPECT_EQ(asked.size(), kEntryPoints);
        for (const std::string& name : gl.callNames())
            EXPECT_THAT(asked, Contains(name));

        gl.clear();
        EXPECT_EQ(CreateOpenGL3ScreenPreviewHelper_0002()->InitializeGL(), S_OK);
        EXPECT_THAT(gl.lookups(), IsEmpty());
        exitWithOutcome();
    };
    for (std::size_t position = 0; position < kEntryPoints; ++position)
        EXPECT_EXIT(failAt(position), testing::ExitedWithCode(0), "") << "look-up " << position;
}

TEST(GL3Initialization, IsNeededBeforePaintingAndNeedsVersion32)
{
    GLRecorder& gl = GLRecorder::get();
    gl.useFake();
    const Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
    EXPECT_EQ(helper->PaintGL(), E_FAIL);
    EXPECT_THAT(gl.calls(), IsEmpty());
    const auto initialise = [&](int major, int minor) {
        gl.fake.majorVersion = major;
        gl.fake.minorVersion = minor;
        return helper->InitializeGL();
    };
    for (const auto& [major, minor] : {std::pair{1, 5}, {2, 1}, {3, 0}, {3, 1}, {2, 9}}) {
        EXPECT_EQ(initialise(major, minor), E_NOTIMPL) << major << '.' << minor;
        EXPECT_EQ(helper->PaintGL(), E_FAIL);
    }
    EXPECT_THAT(gl.fake.live, IsEmpty());
    for (const auto& [major, minor] : {std::pair{3, 2}, {3, 3}, {4, 0}, {4, 6}})
        EXPECT_EQ(initialise(major, minor), S_OK) << major << '.' << minor;
    // A helper that was initialised once goes on painting.
    EXPECT_EQ(initialise(2, 1), E_NOTIMPL);
    EXPECT_EQ(helper->PaintGL(), S_OK);
}

} // namespace
} // namespace kestrix::test
