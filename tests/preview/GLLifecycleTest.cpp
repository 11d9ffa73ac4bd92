/// Both helpers in the situations that a host can cause: contexts that fail, end, and are made
/// again. The tests count every GL object.
#define GL_GLEXT_PROTOTYPES
#include "preview/ScreenPreviewLut.h"
#include "tests/common/CaseName.h"
#include "tests/preview/DriverFixture.h"

#include <GL/glext.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrix::test {
namespace {

GLRecorder& gl = GLRecorder::get();
constexpr const char* kPixelBuffers = "GL_ARB_texture_non_power_of_two GL_ARB_pixel_buffer_object";

Frame pictureOf(int width, int height)
{
    return noise({.width = width, .height = height, .format = kARGB}, 5);
}

// --- Objects -------------------------------------------------------------------------------------

// Look-ups that fail have a test of their own, in processes of their own.
TEST(GLObjects, AreDeletedAfterAnInitialisationThatFailed)
{
    const struct {
        const char* step;
        HRESULT status;
        const char* getInfoLog;
    } failures[] = {{"version", E_NOTIMPL, nullptr},
                    {"vertex shader", E_FAIL, "glGetShaderInfoLog"},
                    {"fragment shader", E_FAIL, "glGetShaderInfoLog"},
                    {"program", E_FAIL, "glGetProgramInfoLog"}};
    for (const auto& [step, status, getInfoLog] : failures)
        for (const char* const sequence :
             {"pf", "fpf", "fsp", "spfp", "sfpf", "sfps", "ssp", "spfnpsp", "sfpfps"}) {
            SCOPED_TRACE(testing::Message() << step << ' ' << sequence);
            gl.useFake();
            Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
            bool everInitialised = false;
            bool hasObjects = false;
            for (const char* action = sequence; *action; ++action) {
                const bool fails = *action == 'f';
                gl.fake.majorVersion = fails && status == E_NOTIMPL ? 2 : 4;
                gl.fake.doesNotBuild = fails ? step : "";
                gl.fake.infoLogLength = action <= sequence + 1 ? 123 : 0;
                gl.clear();
                if (*action == 'p' || *action == 'n') {
                    const Frame frame = *action == 'p' ? pictureOf(16, 8) : Frame();
                    EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
                    EXPECT_EQ(helper->PaintGL(), everInitialised ? S_OK : E_FAIL);
                    if (*action == 'n') {
                        EXPECT_EQ(gl.callNames(),
                                  (std::vector<std::string>{"glClearColor", "glClear"}));
                    } else if (hasObjects) {
                        EXPECT_EQ(gl.callsTo({"glDrawElements"}).size(), 1u);
                    } else {
                        EXPECT_THAT(gl.calls(), IsEmpty()) << "there is nothing to paint with";
                    }
                    helper->SetFrame(nullptr);
                    continue;
                }
                EXPECT_EQ(helper->InitializeGL(), fails ? status : S_OK);
                hasObjects = !fails;
                everInitialised |= !fails;
                if (!fails || !getInfoLog)
                    continue;
                // The helper fetches the log and drops it. It also asks for the length of the
                // program's log with the operation for shaders.
                const unsigned name = gl.fake.liveOf(step).back();
                const GLCall fetch = call(getInfoLog, name, gl.fake.infoLogLength, kAny, kAny);
                EXPECT_THAT(gl.calls(),
                            Contains(call("glGetShaderiv", name, GL_INFO_LOG_LENGTH, kAny)));
                EXPECT_EQ(std::ranges::count(gl.calls(), fetch), gl.fake.infoLogLength > 0);
            }
            helper.reset();
            EXPECT_THAT(gl.fake.live, IsEmpty());
        }
}

TEST(GL3Initialization, IsNeededBeforePaintingAndNeedsVersion32)
{
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
    // A helper that was initialised once has no failing paints any more.
    EXPECT_EQ(initialise(2, 1), E_NOTIMPL);
    EXPECT_EQ(helper->PaintGL(), S_OK);
}

// --- Entry points --------------------------------------------------------------------------------

// A process looks up entry points once and keeps them, so each round runs in a process of its own.
// The helpers there are never released: that would call entry points that were not found.
TEST(GL3EntryPointsDeathTest, AreLookedUpOnceAndMustAllBeThere)
{
    constexpr std::size_t kEntryPoints = 45;
    ScreenPreviewLut::Generate(LutFormat_RGBA32F); // once for all the processes below
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

// In processes of their own, because a process keeps the entry points that it has found.
TEST(GLEntryPointsDeathTest, OfPixelBuffersAreLookedUpOnceAndOnlyWithTheExtension)
{
    const std::vector<std::string> names = {
        "glGenBuffers",    "glBindBuffer",           "glBufferData", "glBufferSubData",
        "glDeleteBuffers", "glGetBufferParameteriv", "glMapBuffer",  "glUnmapBuffer"};
    const auto failAt = [&](std::size_t position) {
        gl.useFake();
        Helper helper(CreateOpenGLScreenPreviewHelper_0002());
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        EXPECT_EQ(gl.callNames(), std::vector<std::string>{"glGetString"});
        EXPECT_THAT(gl.lookups(), IsEmpty());
        gl.fake.extensions = kPixelBuffers;
        gl.failLookup(static_cast<int>(position));
        // If one of them is missing, the helper works without buffers, and looks again the next
        // time.
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(helper->InitializeGL(), S_OK);
            EXPECT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
            EXPECT_EQ(gl.fake.liveOf("buffer").size(), round == 0 ? 0u : 2u);
        }
        std::vector<std::string> twice = names;
        twice.insert(twice.end(), names.begin(), names.end());
        EXPECT_EQ(gl.lookups(), twice) << "the third time all are there";
        helper.reset();
        EXPECT_THAT(gl.fake.liveOf("buffer"), IsEmpty());
        exitWithOutcome();
    };
    for (std::size_t position = 0; position < names.size(); ++position)
        EXPECT_EXIT(failAt(position), testing::ExitedWithCode(0), "") << names[position];
}

// --- A driver in trouble -------------------------------------------------------------------------

TEST(GLTrouble, NoFenceAndNoEndOfTheWaitDoNoHarm)
{
    gl.useFake();
    Helper helper(CreateOpenGL3ScreenPreviewHelper_0002());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    const auto paint = [&] {
        const Frame frame = pictureOf(16, 8);
        gl.clear();
        EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_EQ(gl.callsTo({"glDrawElements"}).size(), 1u);
        EXPECT_THAT(gl.fake.liveOf("fence"), IsEmpty());
    };
    for (const auto& wait :
         {+[] { return GLenum{GL_TIMEOUT_EXPIRED}; }, +[] { return GLenum{GL_WAIT_FAILED}; }}) {
        gl.replace("glClientWaitSync", wait);
        paint();
        EXPECT_EQ(gl.callsTo({"glClientWaitSync", "glDeleteSync"}).size(), 2u) << "waits once";
    }
    gl.replace(
        "glFenceSync", +[] { return static_cast<void*>(nullptr); });
    paint();
    EXPECT_THAT(gl.callsTo({"glClientWaitSync", "glDeleteSync"}), IsEmpty());
}

// --- Contexts ------------------------------------------------------------------------------------

class Contexts : public testing::TestWithParam<HelperKind> {
protected:
    /// Makes a context current, with the recorder in front of it.
    void open()
    {
        context.emplace(GetParam().context);
        ASSERT_EQ(context->failure(), "");
        gl.useDriver();
    }

    std::vector<std::array<float, 4>> painted(int width, int height)
    {
        Canvas canvas(width, height);
        EXPECT_EQ(helper->PaintGL(), S_OK);
        return canvas.read();
    }

    std::optional<GLContext> context;
    Helper helper{GetParam().create()};
};

// If the host makes no objects of its own, the names in the next context are those of the last one.
TEST_P(Contexts, ComeAgainWithTheSamePicture)
{
    const char* const number = std::getenv("KESTRIX_TEST_CONTEXTS");
    const int contexts = number ? std::atoi(number) : 50;
    const Frame frame = pictureOf(16, 8);
    std::vector<std::array<float, 4>> first;
    for (int i = 0; i < contexts; ++i) {
        open();
        if (HasFatalFailure())
            return;
        ASSERT_EQ(helper->InitializeGL(), S_OK);
        ASSERT_EQ(helper->SetFrame(frame.get()), S_OK);
        const auto picture = painted(16, 4);
        if (first.empty())
            first = picture;
        ASSERT_NE(picture.front(), picture.back()) << "a picture, not black";
        ASSERT_EQ(picture, first) << "context " << i;
        if (i % 2 == 1)
            context.reset(); // otherwise the next context is made first
    }
}

TEST_P(Contexts, GoBeforeTheHelperOrAreNotThere)
{
    // Initialised; the context is no longer current when the helper ends.
    open();
    if (HasFatalFailure())
        return;
    ASSERT_EQ(helper->InitializeGL(), S_OK);
    ASSERT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    context.reset();
    EXPECT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    helper.reset();

    // Without any context.
    helper.reset(GetParam().create());
    EXPECT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
    const HRESULT status = helper->InitializeGL();
    const bool fixed = GetParam().context == GLContext::Kind::Legacy;
    EXPECT_EQ(status, fixed ? S_OK : E_NOTIMPL);
    EXPECT_EQ(helper->PaintGL(), fixed ? S_OK : E_FAIL);
    helper.reset();

    // With a context, but never initialised.
    open();
    helper.reset(GetParam().create());
    helper.reset();
    EXPECT_EQ(context->messages(), "");
}

// Textures, buffers and programs are shared, vertex arrays are not.
TEST_P(Contexts, ThatShareObjectsShowTheFixedFunctionPictureOnly)
{
    open();
    if (HasFatalFailure())
        return;
    const bool fixed = GetParam().context == GLContext::Kind::Legacy;
    ASSERT_EQ(helper->InitializeGL(), S_OK);
    ASSERT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
    const auto first = painted(16, 4);
    {
        const GLContext other(GetParam().context, &*context);
        ASSERT_EQ(other.failure(), "");
        Canvas canvas(16, 4);
        const auto untouched = canvas.read();
        EXPECT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(canvas.read(), fixed ? first : untouched);
        EXPECT_EQ(other.messages().empty(), fixed) << "the vertex array does not exist";
    }
    context->makeCurrent();
    EXPECT_EQ(painted(16, 4), first);
    helper.reset();
    EXPECT_EQ(context->messages(), "");
}

// What a host binds, unbinds and sets between the calls, as its own drawing does.
TEST_P(Contexts, WhoseStateChangesBetweenFrameAndPaintShowTheSamePicture)
{
    open();
    if (HasFatalFailure())
        return;
    const Frame frame = pictureOf(16, 8);
    ASSERT_EQ(helper->InitializeGL(), S_OK);
    ASSERT_EQ(helper->SetFrame(frame.get()), S_OK);
    const auto first = painted(16, 4);
    for (int round = 0; round < 3; ++round) {
        unsigned names[3] = {};
        driverGL<decltype(::glGenTextures)>("glGenTextures")(3, names);
        ASSERT_EQ(helper->SetFrame(frame.get()), S_OK);
        for (int unit = 2; unit >= 0; --unit) {
            driverGL<decltype(::glActiveTexture)>("glActiveTexture")(GL_TEXTURE0 +
                                                                     static_cast<unsigned>(unit));
            driverGL<decltype(::glBindTexture)>("glBindTexture")(GL_TEXTURE_2D, names[unit]);
        }
        driverGL<decltype(::glClearColor)>("glClearColor")(1, 0, 1, 0);
        driverGL<decltype(::glDrawBuffer)>("glDrawBuffer")(GL_NONE);
        EXPECT_EQ(painted(16, 4), first) << round;
        driverGL<decltype(::glDeleteTextures)>("glDeleteTextures")(3, names);
    }
    EXPECT_EQ(context->messages(), "");
}

INSTANTIATE_TEST_SUITE_P(Helpers, Contexts, testing::ValuesIn(kHelperKinds), caseName);

TEST(WrongContexts, ACoreProfileDoesNoHarmToTheFixedFunctionHelper)
{
    const GLContext context(GLContext::Kind::Core32);
    ASSERT_EQ(context.failure(), "");
    gl.useDriver();
    const Helper helper(CreateOpenGLScreenPreviewHelper_0002());
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(helper->SetFrame(pictureOf(16, 8).get()), S_OK);
    }
}

} // namespace
} // namespace kestrix::test
