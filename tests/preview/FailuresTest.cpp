/// Both helpers with drivers and frames that do what they must not: initialisations that fail
/// later, sizes beyond the driver's limit, frames that throw, frames that call the helper.
#include "tests/common/CaseName.h"
#include "tests/common/GuardedBytes.h"
#include "tests/preview/DriverFixture.h"

#include <GL/glext.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

constexpr MemoryFrameOptions kSmall{.width = 16, .height = 8, .format = code("BGRA")};

// --- Initialisations that fail after one that succeeded ------------------------------------------

struct LaterFailure {
    const char* name;
    GLContext::Kind context;
    HRESULT status;
    const char* replaced;
    void (*answer)(GLuint, GLenum, GLint*);
};

void answerNothing(GLuint, GLenum, GLint*) {}

class LaterFailures : public DriverTest, public testing::WithParamInterface<LaterFailure> {
protected:
    LaterFailures() : DriverTest(GetParam().context) {}
};

TEST_P(LaterFailures, LeaveNothingToPaintWith)
{
    helper.reset(CreateOpenGL3ScreenPreviewHelper_0002());
    ASSERT_EQ(helper->InitializeGL(), S_OK);
    const Frame frame = noise(kSmall, 1);
    paint(frame.get());
    // With `glGetIntegerv`, the version stays 0.0; with the others, nothing builds.
    gl.replace(GetParam().replaced, GetParam().answer);
    EXPECT_EQ(helper->InitializeGL(), GetParam().status);
    gl.clear();
    paint(frame.get());
    EXPECT_EQ(helper->PaintGL(), S_OK);
    EXPECT_THAT(gl.calls(), IsEmpty());
    EXPECT_EQ(frame->references(), 1u);
    paint(nullptr);

    gl.useDriver();
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    paint(frame.get());
    EXPECT_EQ(gl.callsTo({"glDrawElements"}).size(), 1u);
}

constexpr auto kCore = GLContext::Kind::Core32;
constexpr auto kCompatibility = GLContext::Kind::Legacy;
INSTANTIATE_TEST_SUITE_P(
    OpenGL3, LaterFailures,
    testing::Values(LaterFailure{"VersionInCore", kCore, E_NOTIMPL, "glGetIntegerv", answerNothing},
                    LaterFailure{"VersionInCompatibility", kCompatibility, E_NOTIMPL,
                                 "glGetIntegerv", answerNothing},
                    LaterFailure{"ShaderInCore", kCore, E_FAIL, "glGetShaderiv", answerNothing},
                    LaterFailure{"ShaderInCompatibility", kCompatibility, E_FAIL, "glGetShaderiv",
                                 answerNothing}),
    caseName);

// --- Sizes beyond the driver's limit -------------------------------------------------------------

class Sizes : public testing::TestWithParam<HelperKind> {
protected:
    // Mesa ends the process in `glTexImage2D` for 2^25 texels in a row, so a child paints.
    Sizes() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Paints a frame with these answers, whose rows have `bytes` for reading. True if the driver
    /// was given a new texture. It must never have a complaint.
    bool isUploaded(std::int64_t width, std::int64_t height, const TestFrame* right = nullptr)
    {
        const std::int64_t rowBytes = width * 4;
        MemoryFrameOptions options{.width = 1, .height = 1, .format = code("RGBA")};
        options.colorspace = ColorspaceCodeRec709;
        options.bytes = bytes.begin();
        if (right) {
            options.packing3D = Packing3DLeftOnly;
            options.rightEye = const_cast<TestFrame*>(right);
        }
        const Frame frame = TestFrame::create(options);
        answer(frame, width, height, rowBytes);
        gl.clear();
        EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(frame->references(), 1u);
        return !gl.callsTo({"glTexImage2D"}).empty();
    }

    static void answer(const Frame& frame, std::int64_t width, std::int64_t height,
                       std::int64_t rowBytes)
    {
        frame->answers = {{Question::Width, {width}},
                          {Question::Height, {height}},
                          {Question::RowBytes, {rowBytes}}};
    }

    /// Ends the child with the outcome.
    void paintAll()
    {
        const GLContext context(GetParam().context);
        gl.useDriver();
        helper.reset(GetParam().create());
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        const int limit = glState(GL_MAX_TEXTURE_SIZE);
        const bool fixed = GetParam().context == GLContext::Kind::Legacy;
        EXPECT_TRUE(isUploaded(16, 8));
        EXPECT_TRUE(isUploaded(limit, 8));
        EXPECT_FALSE(isUploaded(limit + 1, 8));
        EXPECT_FALSE(isUploaded(1 << 25, 2));
        EXPECT_TRUE(isUploaded(16, 8)) << "the next frame is shown";
        if (!fixed) { // the other helper would have to be given all these lines
            for (const auto& [width, height] : {std::pair<std::int64_t, std::int64_t>{1 << 25, 8},
                                                {16, 1 << 26},
                                                {16, INT32_MAX},
                                                {INT32_MAX / 2, 8},
                                                {INT32_MAX / 2, INT32_MAX}})
                EXPECT_FALSE(isUploaded(width, height)) << width << " x " << height;
            // Two eyes of which each alone would fit.
            const Frame right = TestFrame::create(
                {.width = 1, .height = 1, .format = code("RGBA"), .bytes = bytes.begin()});
            answer(right, limit, 8, std::int64_t{limit} * 4);
            helper->Set3DPreviewFormat(Preview3DSideBySide);
            EXPECT_FALSE(isUploaded(limit, 8, right.get()));
            EXPECT_TRUE(isUploaded(limit, 8)) << "one eye has no storage yet";
            helper->Set3DPreviewFormat(Preview3DTopBottom);
            EXPECT_TRUE(isUploaded(limit, 8, right.get()));
        }
        EXPECT_EQ(driverGL<decltype(::glGetError)>("glGetError")(), GLenum{GL_NO_ERROR});
        EXPECT_EQ(context.messages(), "");
        exitWithOutcome();
    }

    GLRecorder& gl = GLRecorder::get();
    GuardedBytes bytes{std::size_t{1} << 28};
    Helper helper;
};

TEST_P(Sizes, BeyondTheLimitOfTheDriverNeverReachIt)
{
    EXPECT_EXIT(paintAll(), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(DeathTest, Sizes, testing::ValuesIn(kHelperKinds), caseName);

// Calls for usual sizes are the same for every driver: the limit is not asked for.
TEST_F(FakeGLTest, AsksForTheLimitOnlyForATextureThatIsLongerThanAllDriversTake)
{
    for (const HelperKind& kind : kHelperKinds) {
        const Helper helper(kind.create());
        gl.fake.extensions = "GL_ARB_texture_non_power_of_two";
        EXPECT_EQ(helper->InitializeGL(), S_OK);
        for (const int width : {16, 8192, 8193, 16385}) {
            const Frame frame =
                TestFrame::create({.width = width, .height = 16, .format = code("BGRA")});
            gl.clear();
            EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
            EXPECT_EQ(
                std::ranges::count(gl.calls(), call("glGetIntegerv", GL_MAX_TEXTURE_SIZE, kAny)),
                width > 8192)
                << kind.name << ' ' << width;
            EXPECT_EQ(gl.callsTo({"glTexImage2D"}).size(), width <= 16384);
        }
    }
}

// --- Frames that throw ---------------------------------------------------------------------------

class BadFrames : public testing::TestWithParam<HelperKind> {
protected:
    BadFrames()
    {
        GLRecorder::get().useFake();
        EXPECT_EQ(helper->InitializeGL(), S_OK);
    }

    GLRecorder& gl = GLRecorder::get();
    Helper helper{GetParam().create()};
};

TEST_P(BadFrames, ThatThrowLeaveTheHelperIntact)
{
    std::set<std::string> thrown;
    bool done = false;
    for (int position = 0; !done; ++position) {
        const Frame right = noise(kSmall, 2);
        const Frame frame = noise(stereo(kSmall, right), 1);
        int calls = 0;
        std::string operation;
        for (const Frame& each : {std::cref(right), std::cref(frame)})
            each->called = [&](const char* name) {
                if (calls++ == position)
                    throw std::runtime_error(operation = name);
            };
        gl.clear();
        bool threw = false;
        try {
            EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
        } catch (const std::runtime_error&) {
            threw = true;
        }
        done = operation.empty();
        EXPECT_EQ(threw, !done && operation != "EndAccess") << operation;
        thrown.insert(operation);
        SCOPED_TRACE(operation);
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_EQ(right->references(), 2u);
        EXPECT_EQ(frame->openAccesses() + right->openAccesses(), 0);
        if (GetParam().context == GLContext::Kind::Core32) {
            EXPECT_EQ(gl.calls().back().name, threw ? "glUseProgram" : "glDeleteSync");
        }
        // No lock is held, and all slots are there.
        for (int i = 0; i < 3; ++i)
            std::thread([&] { EXPECT_EQ(helper->SetFrame(noise(kSmall, 3).get()), S_OK); }).join();
        gl.clear();
        EXPECT_EQ(helper->PaintGL(), S_OK);
        EXPECT_EQ(gl.callsTo({"glTexImage2D", "glTexSubImage2D"}).empty(), false);
    }
    EXPECT_GE(thrown.size(), 7u) << "all kinds of operations";
}

TEST_P(BadFrames, LoseTheAccessBeforeTheReference)
{
    std::vector<std::string> log;
    const Frame frame = noise(kSmall, 1);
    frame->log = &log;
    EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
    EXPECT_EQ(helper->PaintGL(), S_OK);
    // The OpenGL 3 helper has a reference of its own to the frame.
    std::vector<std::string> last = {"EndAccess 1", "Release"};
    if (GetParam().context == GLContext::Kind::Core32)
        last.emplace_back("Release");
    ASSERT_GE(log.size(), last.size());
    log.erase(log.begin(), log.end() - static_cast<std::ptrdiff_t>(last.size()));
    EXPECT_EQ(log, last);
}

// --- Frames that call the helper -----------------------------------------------------------------

TEST_P(BadFrames, ThatCallTheHelperLeaveItIntact)
{
    const bool fixed = GetParam().context == GLContext::Kind::Legacy;
    // Larger than the outer frame, and in a format with more bytes per row.
    const Frame inner = noise({.width = 512, .height = 64, .format = code("R12B")}, 4);
    const std::function<void()> actions[] = {
        [&] { EXPECT_EQ(helper->SetFrame(inner.get()), fixed ? E_OUTOFMEMORY : S_OK); },
        [&] { EXPECT_EQ(helper->SetFrame(nullptr), S_OK); },
        [&] { EXPECT_EQ(helper->PaintGL(), S_OK); },
        [&] {
            EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
            EXPECT_EQ(helper->SetFrame(inner.get()), fixed ? E_OUTOFMEMORY : S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
            EXPECT_EQ(helper->Set3DPreviewFormat(Preview3DSideBySide), S_OK);
        }};
    for (const auto& action : actions)
        for (const int position : {0, 3, 7, 11, 15}) {
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(helper->SetFrame(noise(kSmall, 3).get()), S_OK);
                EXPECT_EQ(helper->PaintGL(), S_OK);
            }
            // The memory of the frame ends at a page that cannot be read.
            GuardedBytes memory(16 * 8 * 4);
            MemoryFrameOptions options = kSmall;
            options.bytes = memory.begin();
            const Frame frame = TestFrame::create(options);
            int calls = 0;
            frame->called = [&](const char*) {
                if (calls++ == position)
                    action();
            };
            EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
            EXPECT_EQ(helper->SetFrame(nullptr), S_OK);
            EXPECT_EQ(helper->PaintGL(), S_OK);
            EXPECT_EQ(frame->references(), 1u);
            EXPECT_EQ(inner->references(), 1u);
            EXPECT_EQ(frame->openAccesses() + inner->openAccesses(), 0);
        }
    // Both slots are still there.
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(helper->SetFrame(noise(kSmall, 3).get()), S_OK);
}

INSTANTIATE_TEST_SUITE_P(Helpers, BadFrames, testing::ValuesIn(kHelperKinds), caseName);

} // namespace
} // namespace kestrix::test
