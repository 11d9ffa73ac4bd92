/// What the OpenGL 3 helper asks of a context, and what it makes in it.
#include "preview/ScreenPreviewLut.h"
#include "tests/support/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <gmock/gmock.h>

#include <cstring>
#include <map>

namespace kestrix::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// --- Entry points --------------------------------------------------------------------------------

// Entry points are looked up once in a process and kept, so each of these runs in a process of its
// own. Helpers there are never released: that would call what was not found.

IKestrixGLScreenPreviewHelper* makeHelper()
{
    return CreateOpenGL3ScreenPreviewHelper_0002();
}

constexpr int kEntryPoints = 45;

TEST(GL3EntryPointsDeathTest, AreLookedUpOnce)
{
    GLRecorder& gl = GLRecorder::get();
    const auto body = [&] {
        gl.useFake();
        EXPECT_EQ(makeHelper()->InitializeGL(), S_OK);
        const std::set<std::string> asked(gl.lookups().begin(), gl.lookups().end());
        EXPECT_EQ(gl.lookups().size(), kEntryPoints);
        EXPECT_EQ(asked.size(), kEntryPoints);
        EXPECT_THAT(asked, AllOf(Contains("glFenceSync"), Contains("glUniform1ui")));
        // Nothing is called past the look-ups.
        for (const std::string& name : gl.callNames())
            EXPECT_THAT(asked, Contains(name));

        gl.clear();
        EXPECT_EQ(makeHelper()->InitializeGL(), S_OK);
        EXPECT_THAT(gl.lookups(), IsEmpty());
        exitWithOutcome();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST(GL3EntryPointsDeathTest, MustAllBeThere)
{
    ScreenPreviewLut::Generate(LutFormat_RGBA32F); // once for all the processes below
    for (int position = 0; position < kEntryPoints; ++position) {
        GLRecorder& gl = GLRecorder::get();
        const auto body = [&] {
            gl.useFake();
            auto* const helper = makeHelper();
            const auto& lookups = gl.lookups();

            gl.failLookup(position);
            EXPECT_EQ(helper->InitializeGL(), E_FAIL);
            // The look-up ends at the first that is missing.
            EXPECT_EQ(lookups.size(), static_cast<std::size_t>(position) + 1);
            EXPECT_THAT(gl.calls(), IsEmpty());
            EXPECT_EQ(helper->PaintGL(), E_FAIL);

            // What was found is kept, the rest is looked up at the next attempt.
            gl.clear();
            gl.failLookup(-1);
            EXPECT_EQ(helper->InitializeGL(), S_OK);
            EXPECT_EQ(lookups.size(), static_cast<std::size_t>(kEntryPoints - position));
            EXPECT_EQ(helper->PaintGL(), S_OK);
            exitWithOutcome();
        };
        EXPECT_EXIT(body(), testing::ExitedWithCode(0), "") << "look-up number " << position;
    }
}

// --- Failures ------------------------------------------------------------------------------------

class GL3Initialization : public FakeGLTest {
protected:
    /// Initialised once, for the pointers, and then told to answer as the test likes.
    Helper helper = initialisedGL3Helper();
};

class FreshGL3Helper : public FakeGLTest {
protected:
    ~FreshGL3Helper() override
    {
        // The destructor of a helper needs its entry points.
        gl.useFake();
        helper->InitializeGL();
    }

    Helper helper{CreateOpenGL3ScreenPreviewHelper_0002()};
};

TEST_F(FreshGL3Helper, PaintsNothingBeforeItIsInitialised)
{
    helper->SetFrame(nullptr);
    EXPECT_EQ(helper->PaintGL(), E_FAIL);
    EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(FreshGL3Helper, NeedsVersion32)
{
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
}

TEST_F(FreshGL3Helper, FailsWhereAShaderDoesNotBuild)
{
    for (bool FakeGL::*builds :
         {&FakeGL::vertexShaderCompiles, &FakeGL::fragmentShaderCompiles, &FakeGL::programLinks}) {
        gl.useFake();
        gl.fake.*builds = false;
        EXPECT_EQ(helper->InitializeGL(), E_FAIL);
        EXPECT_EQ(helper->PaintGL(), E_FAIL);
    }
}

TEST_F(FreshGL3Helper, FetchesAndDropsTheLogOfAShader)
{
    gl.fake.vertexShaderCompiles = false;
    gl.fake.infoLogLength = 123;
    EXPECT_EQ(helper->InitializeGL(), E_FAIL);
    const unsigned shader = gl.fake.liveOf("vertex shader").at(0);
    EXPECT_THAT(gl.calls(), Contains(call("glGetShaderiv", shader, GL_INFO_LOG_LENGTH, kAny)));
    EXPECT_THAT(gl.calls(), Contains(call("glGetShaderInfoLog", shader, 123, kAny, kAny)));
}

// The length of the program's log is asked as if it were a shader.
TEST_F(FreshGL3Helper, FetchesAndDropsTheLogOfTheProgram)
{
    gl.fake.programLinks = false;
    gl.fake.infoLogLength = 77;
    EXPECT_EQ(helper->InitializeGL(), E_FAIL);
    const unsigned program = gl.fake.liveOf("program").at(0);
    EXPECT_THAT(gl.calls(), Contains(call("glGetShaderiv", program, GL_INFO_LOG_LENGTH, kAny)));
    EXPECT_THAT(gl.calls(), Contains(call("glGetProgramInfoLog", program, 77, kAny, kAny)));

    gl.useFake();
    gl.fake.programLinks = false;
    gl.fake.infoLogLength = 0;
    EXPECT_EQ(helper->InitializeGL(), E_FAIL);
    EXPECT_THAT(gl.callNames(), Not(Contains("glGetProgramInfoLog")));
}

TEST_F(FreshGL3Helper, SucceedsAfterAFailedAttempt)
{
    gl.fake.programLinks = false;
    EXPECT_EQ(helper->InitializeGL(), E_FAIL);
    gl.fake.programLinks = true;
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_EQ(helper->PaintGL(), S_OK);
}

TEST_F(GL3Initialization, StaysInitialisedThroughALaterFailure)
{
    gl.fake.majorVersion = 2;
    EXPECT_EQ(helper->InitializeGL(), E_NOTIMPL);
    EXPECT_EQ(helper->PaintGL(), S_OK);
}

// --- Objects -------------------------------------------------------------------------------------

TEST_F(GL3Initialization, MakesItsObjectsOnceAndDeletesThemAll)
{
    const auto kinds = [&] {
        std::map<std::string, int> counts;
        for (const auto& [name, kind] : gl.fake.live)
            ++counts[kind];
        return counts;
    };
    const std::map<std::string, int> expected = {
        {"vertex array", 1},  {"buffer", 2},          {"program", 1},
        {"vertex shader", 1}, {"fragment shader", 1}, {"texture", 2},
    };
    EXPECT_EQ(kinds(), expected);
    const auto before = gl.fake.live;

    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_EQ(kinds(), expected);
    for (const auto& [name, kind] : before)
        EXPECT_EQ(gl.fake.live.count(name), 0u) << "the old " << kind << " is still there";

    helper.reset();
    EXPECT_THAT(gl.fake.live, IsEmpty());
}

TEST_F(GL3Initialization, ClearsAndKeepsItsVertexArrayBound)
{
    helper->InitializeGL();
    EXPECT_THAT(gl.calls(), Contains(call("glClearColor", 0.0, 0.0, 0.0, 0.0)));
    EXPECT_THAT(gl.callsTo({"glClear"}), ElementsAre(call("glClear", GL_COLOR_BUFFER_BIT)));
    EXPECT_THAT(gl.callsTo({"glBindVertexArray"}),
                ElementsAre(call("glBindVertexArray", gl.fake.liveOf("vertex array").at(0))));
}

TEST_F(GL3Initialization, BuildsOneProgramOfOneSourceEach)
{
    helper->InitializeGL();
    const unsigned program = gl.fake.liveOf("program").at(0);
    const unsigned vertex = gl.fake.liveOf("vertex shader").at(0);
    const unsigned fragment = gl.fake.liveOf("fragment shader").at(0);
    EXPECT_THAT(
        gl.callsTo({"glShaderSource", "glCompileShader", "glAttachShader", "glLinkProgram"}),
        ElementsAre(call("glShaderSource", vertex, 1, kAny, nullptr),
                    call("glCompileShader", vertex),
                    call("glShaderSource", fragment, 1, kAny, nullptr),
                    call("glCompileShader", fragment), call("glAttachShader", program, vertex),
                    call("glAttachShader", program, fragment), call("glLinkProgram", program)));
    EXPECT_THAT(gl.calls(), Contains(call("glUniform1i", FakeGL::location("fTex"), 0)));
    EXPECT_THAT(gl.calls(), Contains(call("glUniform1i", FakeGL::location("fLut"), 1)));
    EXPECT_EQ(gl.callsTo({"glUseProgram"}).back(), call("glUseProgram", 0));
}

TEST_F(GL3Initialization, DescribesAQuadThatFillsTheView)
{
    helper->InitializeGL();
    ASSERT_THAT(
        gl.callsTo({"glBufferData"}),
        ElementsAre(call("glBufferData", GL_ARRAY_BUFFER, 80, kAny, GL_STATIC_DRAW),
                    call("glBufferData", GL_ELEMENT_ARRAY_BUFFER, 12, kAny, GL_STATIC_DRAW)));
    EXPECT_THAT(gl.callsTo({"glVertexAttribPointer"}),
                ElementsAre(call("glVertexAttribPointer", FakeGL::location("vPosition"), 3,
                                 GL_FLOAT, GL_TRUE, 20, bufferOffset(0)),
                            call("glVertexAttribPointer", FakeGL::location("vTexCoord"), 2,
                                 GL_FLOAT, GL_TRUE, 20, bufferOffset(12))));
    for (const char* attribute : {"vPosition", "vTexCoord"})
        EXPECT_THAT(gl.calls(),
                    Contains(call("glEnableVertexAttribArray", FakeGL::location(attribute))));

    const std::vector<unsigned> buffers = gl.fake.liveOf("buffer");
    float vertices[4][5];
    std::uint16_t indices[6];
    std::memcpy(vertices, gl.fake.bufferBytes.at(buffers.at(0)).data(), sizeof(vertices));
    std::memcpy(indices, gl.fake.bufferBytes.at(buffers.at(1)).data(), sizeof(indices));
    for (const auto& [x, y, z, s, t] : vertices) {
        // The picture's first line is at the top.
        EXPECT_EQ(s, (x + 1) / 2);
        EXPECT_EQ(t, (1 - y) / 2);
        EXPECT_EQ(z, 0.0f);
    }
    // Two triangles, on either side of the diagonal that they share.
    float area = 0;
    for (int i = 0; i < 6; i += 3) {
        const float *a = vertices[indices[i]], *b = vertices[indices[i + 1]],
                    *c = vertices[indices[i + 2]];
        const float twice = (b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]);
        EXPECT_GT(twice, 0.0f);
        area += twice / 2;
    }
    EXPECT_EQ(area, 4.0f);
}

TEST_F(GL3Initialization, MakesTheTableTextureOfRec709)
{
    helper->InitializeGL();
    const float* const table = ScreenPreviewLut::Get(LutID_YCbCr_709, LutFormat_RGBA32F);
    ASSERT_NE(table, nullptr);
    EXPECT_THAT(gl.callsTo({"glTexImage2D", "glTexImage3D", "glTexSubImage3D"}),
                ElementsAre(call("glTexImage3D", GL_TEXTURE_3D, 0, GL_RGBA, 33, 33, 33, 0, GL_RGBA,
                                 GL_FLOAT, table)));
    for (const GLenum target : {GL_TEXTURE_2D, GL_TEXTURE_3D}) {
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            EXPECT_THAT(gl.calls(), Contains(call("glTexParameteri", target, filter, GL_LINEAR)));
        for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            EXPECT_THAT(gl.calls(),
                        Contains(call("glTexParameteri", target, wrap, GL_CLAMP_TO_EDGE)));
    }
}

} // namespace
} // namespace kestrix::test
