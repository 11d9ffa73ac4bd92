/// All GL state before and after each call, against the table of docs/embedding.md; and the same
/// within the guard for hosts, which is to leave nothing changed.
#define GL_GLEXT_PROTOTYPES
#include "examples/common/KestrixGLStateGuard.h"
#include "tests/common/CaseName.h"
#include "tests/preview/DriverFixture.h"

#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrix::test {
namespace {

#define KESTRIX_DRIVER(name) driverGL<decltype(::name)>(#name)

// --- What the calls leave, as it is published ----------------------------------------------------

/// One thing that a call leaves in another state than it found.
struct Left {
    const char* text; // as on the page
    const char* place;
    GLenum name;
    std::vector<double> values; // none: a name of the helper's own
};

const Left kClear{"`GL_COLOR_CLEAR_VALUE` (0, 0, 0, 0)", "", GL_COLOR_CLEAR_VALUE, {0, 0, 0, 0}};
const Left kProgram{"`GL_CURRENT_PROGRAM` 0", "", GL_CURRENT_PROGRAM, {0}};
const Left kNoArray{"`GL_VERTEX_ARRAY_BINDING` 0", "", GL_VERTEX_ARRAY_BINDING, {0}};
const Left kOwnArray{"`GL_VERTEX_ARRAY_BINDING` the helper's own", "", GL_VERTEX_ARRAY_BINDING, {}};
const Left kBuffer{"`GL_ARRAY_BUFFER_BINDING` 0", "", GL_ARRAY_BUFFER_BINDING, {0}};
const Left kUnit{"`GL_ACTIVE_TEXTURE` `GL_TEXTURE0`", "", GL_ACTIVE_TEXTURE, {GL_TEXTURE0}};
const Left k2DOfUnit0{"`GL_TEXTURE_BINDING_2D` of unit 0 0", "unit 0 ", GL_TEXTURE_BINDING_2D, {0}};
const Left k3DOfUnit0{"`GL_TEXTURE_BINDING_3D` of unit 0 0", "unit 0 ", GL_TEXTURE_BINDING_3D, {0}};
const Left k3DOfUnit1{"`GL_TEXTURE_BINDING_3D` of unit 1 0", "unit 1 ", GL_TEXTURE_BINDING_3D, {0}};
const Left kColour{"`GL_CURRENT_COLOR` (0, 0, 0, 1)", "", GL_CURRENT_COLOR, {0, 0, 0, 1}};
const Left kTexturing{"`GL_TEXTURE_2D` of unit 0 disabled", "unit 0 ", GL_TEXTURE_2D, {0}};
const Left kCoordinates{"`GL_CURRENT_TEXTURE_COORDS` of unit 0 (0, 0, 0, 1)",
                        "unit 0 ",
                        GL_CURRENT_TEXTURE_COORDS,
                        {0, 0, 0, 1}};

using Action = std::function<void(Helper&)>;

void initialise(Helper& helper)
{
    EXPECT_EQ(helper->InitializeGL(), S_OK);
}

void set(Helper& helper, std::uint32_t format, std::int64_t colourspace, int height)
{
    EXPECT_EQ(
        helper->SetFrame(
            noise({.width = 16, .height = height, .format = format, .colorspace = colourspace}, 2)
                .get()),
        S_OK);
}

void paint(Helper& helper)
{
    EXPECT_EQ(helper->PaintGL(), S_OK);
}

/// A call, what is to be done for it while nobody looks, and what it leaves.
struct Call {
    const char* text;
    Action before;
    std::vector<Action> actions;
    std::vector<Left> left;
};

const std::vector<Left> kInitialised{kClear, kOwnArray,  kBuffer,   kProgram,
                                     kUnit,  k2DOfUnit0, k3DOfUnit0};
const Call kDelivery{"`SetFrame`, `Set3DPreviewFormat`",
                     {},
                     {[](Helper& helper) { set(helper, kARGB, ColorspaceCodeRec2020, 8); },
                      [](Helper& helper) { helper->SetFrame(nullptr); },
                      [](Helper& helper) { helper->Set3DPreviewFormat(Preview3DSideBySide); }},
                     {}};
const Call kRelease{"the last `Release`", {}, {[](Helper& helper) { helper.reset(); }}, {}};
const Action kNextFrame = [](Helper& helper) { set(helper, kARGB, ColorspaceCodeRec2020, 12); };
const Action kNoFrame = [](Helper& helper) { helper->SetFrame(nullptr); };

const std::vector<Call> kOpenGL3Calls{
    {"`InitializeGL`", {}, {initialise, initialise}, kInitialised},
    kDelivery,
    {"`PaintGL` of a frame, and again",
     kNextFrame,
     {paint, paint},
     {kProgram, kNoArray, kBuffer, kUnit, k2DOfUnit0, k3DOfUnit1}},
    {"`PaintGL` after `SetFrame(nullptr)`", kNoFrame, {paint}, {kClear}},
    kRelease,
};

const std::vector<Call> kFixedFunctionCalls{
    {"`InitializeGL`", {}, {initialise, initialise}, {}},
    kDelivery,
    {"`PaintGL` of a frame, and again",
     kNextFrame,
     {paint, paint},
     {kTexturing, k2DOfUnit0, kCoordinates}},
    {"`PaintGL` without a frame", kNoFrame, {paint}, {kColour}},
    kRelease,
};

// --- The recorder --------------------------------------------------------------------------------

/// A place, empty for the context itself, and a name.
using Key = std::pair<std::string, GLenum>;
/// What a unit has as the context has it is written down once.
using State = std::map<Key, std::vector<double>>;

std::vector<double> valueOf(const State& state, const Key& key)
{
    const auto found = state.find(key);
    return found != state.end() ? found->second : state.at({"", key.second});
}

void expectSame(const State& after, const State& expected, const std::string& row)
{
    State all = expected;
    all.insert(after.begin(), after.end());
    for (const auto& [key, values] : all)
        EXPECT_EQ(valueOf(after, key), valueOf(expected, key))
            << row << key.first << std::hex << std::showbase << key.second;
}

/// Reads whatever the driver lets be read: names are found by asking for all that there can be.
class StateRecorder {
public:
    explicit StateRecorder(GLuint hostArray) : m_hostArray(hostArray)
    {
        for (const Family& family : m_families)
            m_names.push_back(answered(family.get));
        // What is never twice the same, such as the time.
        const State first = read();
        for (const auto& [key, values] : read())
            if (valueOf(first, key) != values)
                m_restless.push_back(key);
    }

    State read() const
    {
        const auto enable = KESTRIX_DRIVER(glEnable);
        const auto disable = KESTRIX_DRIVER(glDisable);
        const auto activeTexture = KESTRIX_DRIVER(glActiveTexture);
        const auto bindVertexArray = KESTRIX_DRIVER(glBindVertexArray);

        // A unit and an array that no helper knows, to look at the others from.
        const int unit = glState(GL_ACTIVE_TEXTURE);
        const int array = glState(GL_VERTEX_ARRAY_BINDING);
        disable(GL_DEBUG_OUTPUT);
        bindVertexArray(m_hostArray);
        State state;
        for (std::size_t i = 0; i < m_families.size(); ++i) {
            activeTexture(GL_TEXTURE0 + m_families[i].unit);
            for (const GLenum name : m_names[i])
                state[{m_families[i].place, name}] = value(m_families[i].get, name);
        }
        std::erase_if(state, [&](const auto& entry) {
            const auto& [place, name] = entry.first;
            return place.size() == sizeof("unit 0") && valueOf(state, {"", name}) == entry.second;
        });
        bindVertexArray(static_cast<GLuint>(array));
        activeTexture(static_cast<GLenum>(unit));
        enable(GL_DEBUG_OUTPUT);

        state[{"", GL_ACTIVE_TEXTURE}] = {static_cast<double>(unit)};
        state[{"", GL_VERTEX_ARRAY_BINDING}] = {static_cast<double>(array)};
        for (const auto& key : m_restless)
            state.erase(key);
        return state;
    }

private:
    using Get = std::function<void(GLenum, double*)>;

    struct Family {
        std::string place;
        GLenum unit;
        Get get;
    };

    static constexpr GLenum kFarUnit = 7;
    static constexpr double kUnanswered = -271828.25;

    static std::vector<double> value(const Get& get, GLenum name)
    {
        static std::vector<double> buffer(4096);
        std::fill_n(buffer.begin(), 256, kUnanswered);
        get(name, buffer.data());
        std::vector<double> values(buffer.begin(), buffer.begin() + 256);
        while (!values.empty() && values.back() == kUnanswered)
            values.pop_back();
        return values;
    }

    static std::vector<GLenum> answered(const Get& get)
    {
        const auto getError = KESTRIX_DRIVER(glGetError);
        KESTRIX_DRIVER(glDisable)(GL_DEBUG_OUTPUT);
        std::vector<GLenum> names;
        for (GLenum name = 0; name < 0x10000; ++name) {
            // The device's memory and its names on the bus: a software driver has none, and at
            // times no function that would say so.
            if ((name >= GL_VBO_FREE_MEMORY_ATI && name <= GL_RENDERBUFFER_FREE_MEMORY_ATI) ||
                (name >= GL_GPU_MEMORY_INFO_DEDICATED_VIDMEM_NVX &&
                 name <= GL_GPU_MEMORY_INFO_EVICTED_MEMORY_NVX) ||
                (name >= GL_NUM_DEVICE_UUIDS_EXT && name <= GL_DEVICE_NODE_MASK_EXT))
                continue;
            const bool answers = !value(get, name).empty();
            if (getError() == GL_NO_ERROR && answers)
                names.push_back(name);
        }
        KESTRIX_DRIVER(glEnable)(GL_DEBUG_OUTPUT);
        return names;
    }

    /// The form in doubles of a function that gives floats about one of several things.
    template<class FUNCTION>
    static Get floats(FUNCTION* function, GLenum of)
    {
        return [=](GLenum name, double* out) {
            static std::vector<float> buffer(4096);
            std::fill_n(buffer.begin(), 64, static_cast<float>(kUnanswered));
            function(of, name, buffer.data());
            for (int i = 0; i < 64 && buffer[static_cast<std::size_t>(i)] != kUnanswered; ++i)
                out[i] = buffer[static_cast<std::size_t>(i)];
        };
    }

    static std::vector<Family> families()
    {
        const Get get = KESTRIX_DRIVER(glGetDoublev);
        std::vector<Family> all{{"", kFarUnit, get}};
        for (const GLenum unit : {0u, 1u, 2u}) {
            const std::string place = "unit " + std::to_string(unit) + ' ';
            all.push_back({place, unit, get});
            const auto environment = KESTRIX_DRIVER(glGetTexEnvfv);
            all.push_back({place + "environment ", unit, floats(environment, GL_TEXTURE_ENV)});
            all.push_back({place + "bias ", unit, floats(environment, GL_TEXTURE_FILTER_CONTROL)});
            all.push_back({place + "S ", unit, floats(KESTRIX_DRIVER(glGetTexGenfv), GL_S)});
        }
        const auto texture = KESTRIX_DRIVER(glGetTexParameterfv);
        all.push_back({"texture 0 2D ", kFarUnit, floats(texture, GL_TEXTURE_2D)});
        all.push_back({"texture 0 3D ", kFarUnit, floats(texture, GL_TEXTURE_3D)});
        for (const GLenum attribute : {0u, 1u, 2u, 3u, 15u})
            all.push_back({"attribute " + std::to_string(attribute) + ' ', kFarUnit,
                           floats(KESTRIX_DRIVER(glGetVertexAttribfv), attribute)});
        all.push_back({"light ", kFarUnit, floats(KESTRIX_DRIVER(glGetLightfv), GL_LIGHT0)});
        all.push_back({"material ", kFarUnit, floats(KESTRIX_DRIVER(glGetMaterialfv), GL_FRONT)});
        return all;
    }

    GLuint m_hostArray;
    const std::vector<Family> m_families = families();
    std::vector<std::vector<GLenum>> m_names;
    std::vector<Key> m_restless;
};

// --- The host ------------------------------------------------------------------------------------

/// A host with everything set to what nobody starts with.
class Host {
public:
    explicit Host(bool fixedPipeline) : m_fixedPipeline(fixedPipeline)
    {
        KESTRIX_DRIVER(glGenTextures)(9, m_textures);
        KESTRIX_DRIVER(glGenBuffers)(5, m_buffers);
        KESTRIX_DRIVER(glGenSamplers)(2, m_samplers);
        KESTRIX_DRIVER(glGenVertexArrays)(1, &m_array);
        // While what is read through the unpack state is read right.
        const GLubyte nothing[128] = {};
        if (fixedPipeline)
            KESTRIX_DRIVER(glPolygonStipple)(nothing);
        const auto createShader = KESTRIX_DRIVER(glCreateShader);
        const GLuint shader = createShader(GL_VERTEX_SHADER);
        const GLchar* source = "#version 150\nvoid main() { gl_Position = vec4(0); }";
        KESTRIX_DRIVER(glShaderSource)(shader, 1, &source, nullptr);
        KESTRIX_DRIVER(glCompileShader)(shader);
        m_program = KESTRIX_DRIVER(glCreateProgram)();
        KESTRIX_DRIVER(glAttachShader)(m_program, shader);
        KESTRIX_DRIVER(glLinkProgram)(m_program);
    }

    GLuint array() const { return m_array; }

    void setState(GLenum activeUnit) const
    {
        KESTRIX_DRIVER(glBindVertexArray)(m_array);
        const auto bindBuffer = KESTRIX_DRIVER(glBindBuffer);
        bindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
        bindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
        bindBuffer(GL_PIXEL_PACK_BUFFER, m_buffers[2]);
        bindBuffer(GL_UNIFORM_BUFFER, m_buffers[3]);
        KESTRIX_DRIVER(glVertexAttribPointer)(3, 2, GL_SHORT, GL_TRUE, 12, nullptr);
        KESTRIX_DRIVER(glEnableVertexAttribArray)(3);
        KESTRIX_DRIVER(glUseProgram)(m_program);

        for (GLenum unit = 0; unit < 3; ++unit) {
            KESTRIX_DRIVER(glActiveTexture)(GL_TEXTURE0 + unit);
            const auto bindTexture = KESTRIX_DRIVER(glBindTexture);
            bindTexture(GL_TEXTURE_1D, m_textures[3 * unit]);
            bindTexture(GL_TEXTURE_2D, m_textures[3 * unit + 1]);
            bindTexture(GL_TEXTURE_3D, m_textures[3 * unit + 2]);
        }
        if (m_fixedPipeline)
            setFixedPipeline();
        KESTRIX_DRIVER(glActiveTexture)(GL_TEXTURE0 + activeUnit);
        for (const GLenum capability :
             {GL_BLEND, GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_DITHER,
              GL_COLOR_LOGIC_OP, GL_POLYGON_OFFSET_FILL, GL_LINE_SMOOTH, GL_SAMPLE_COVERAGE})
            KESTRIX_DRIVER(glEnable)(capability);
        KESTRIX_DRIVER(glViewport)(3, 5, 40, 30);
        KESTRIX_DRIVER(glScissor)(1, 2, 20, 21);
        KESTRIX_DRIVER(glBlendFunc)(GL_DST_COLOR, GL_SRC_ALPHA);
        KESTRIX_DRIVER(glColorMask)(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
        KESTRIX_DRIVER(glDepthMask)(GL_FALSE);
        KESTRIX_DRIVER(glStencilMask)(0x55);
        KESTRIX_DRIVER(glDepthFunc)(GL_NOTEQUAL);
        KESTRIX_DRIVER(glPolygonMode)(GL_FRONT_AND_BACK, GL_LINE);
        KESTRIX_DRIVER(glClearColor)(0.25f, 0.5f, 0.75f, 1);
        KESTRIX_DRIVER(glPixelStorei)(GL_PACK_ALIGNMENT, 2);
    }

    /// And what the helpers count on is otherwise too.
    void spoilState() const
    {
        const auto pixelStore = KESTRIX_DRIVER(glPixelStorei);
        pixelStore(GL_UNPACK_SWAP_BYTES, 1);
        pixelStore(GL_UNPACK_LSB_FIRST, 1);
        pixelStore(GL_UNPACK_ROW_LENGTH, 7);
        pixelStore(GL_UNPACK_IMAGE_HEIGHT, 3);
        pixelStore(GL_UNPACK_SKIP_ROWS, 2);
        pixelStore(GL_UNPACK_SKIP_PIXELS, 5);
        pixelStore(GL_UNPACK_SKIP_IMAGES, 1);
        pixelStore(GL_UNPACK_ALIGNMENT, 8);
        KESTRIX_DRIVER(glBindBuffer)(GL_PIXEL_UNPACK_BUFFER, m_buffers[4]);
        for (GLuint unit = 0; unit < 2; ++unit) {
            KESTRIX_DRIVER(glSamplerParameteri)
            (m_samplers[unit], GL_TEXTURE_MAG_FILTER, GL_NEAREST);
            KESTRIX_DRIVER(glBindSampler)(unit, m_samplers[unit]);
        }
        for (const GLenum capability :
             {GL_FRAMEBUFFER_SRGB, GL_RASTERIZER_DISCARD, GL_PRIMITIVE_RESTART, GL_SAMPLE_MASK,
              GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_CLIP_DISTANCE0,
              GL_CLIP_DISTANCE5, GL_CLIP_DISTANCE7, GL_POLYGON_SMOOTH})
            KESTRIX_DRIVER(glEnable)(capability);
        KESTRIX_DRIVER(glPrimitiveRestartIndex)(2);
        KESTRIX_DRIVER(glStencilFunc)(GL_NEVER, 0, 0xFF);
        KESTRIX_DRIVER(glDepthFunc)(GL_NEVER);
        if (m_fixedPipeline)
            spoilFixedPipeline();
    }

private:
    void setFixedPipeline() const
    {
        const auto enable = KESTRIX_DRIVER(glEnable);
        KESTRIX_DRIVER(glEnableClientState)(GL_NORMAL_ARRAY);
        for (GLenum unit = 0; unit < 3; ++unit) {
            KESTRIX_DRIVER(glActiveTexture)(GL_TEXTURE0 + unit);
            KESTRIX_DRIVER(glTexEnvi)(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_BLEND);
            KESTRIX_DRIVER(glMultiTexCoord4f)(GL_TEXTURE0 + unit, 0.5f, 0.25f, 3, 2);
            enable(GL_TEXTURE_2D);
            enable(GL_TEXTURE_3D);
            enable(GL_TEXTURE_GEN_R);
        }
        for (const GLenum capability :
             {GL_ALPHA_TEST, GL_FOG, GL_LIGHTING, GL_LIGHT3, GL_NORMALIZE})
            enable(capability);
        KESTRIX_DRIVER(glColor4f)(0.5f, 0.75f, 0.25f, 0.5f);
        KESTRIX_DRIVER(glMatrixMode)(GL_TEXTURE);
        KESTRIX_DRIVER(glLoadIdentity)();
        KESTRIX_DRIVER(glScalef)(2, 3, 4);
    }

    static void spoilFixedPipeline()
    {
        const auto enable = KESTRIX_DRIVER(glEnable);
        for (GLenum unit = 4; unit-- > 0;) {
            KESTRIX_DRIVER(glActiveTexture)(GL_TEXTURE0 + unit);
            for (const GLenum capability : {GL_TEXTURE_1D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_GEN_S,
                                            GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_Q})
                enable(capability);
        }
        enable(GL_POLYGON_STIPPLE);
        enable(GL_COLOR_SUM);
        KESTRIX_DRIVER(glAlphaFunc)(GL_NEVER, 0.5f);
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW, GL_TEXTURE}) {
            KESTRIX_DRIVER(glMatrixMode)(matrix);
            KESTRIX_DRIVER(glLoadIdentity)();
            KESTRIX_DRIVER(glScalef)(0.5f, 0.25f, 4);
        }
        const GLdouble plane[] = {0, 0, 0, -1};
        KESTRIX_DRIVER(glClipPlane)(GL_CLIP_PLANE5, plane);
        for (const GLenum scale : {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
            KESTRIX_DRIVER(glPixelTransferf)(scale, 0.5f);
        for (const GLenum bias : {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
            KESTRIX_DRIVER(glPixelTransferf)(bias, 0.25f);
        KESTRIX_DRIVER(glPixelTransferi)(GL_MAP_COLOR, 1);
    }

    bool m_fixedPipeline;
    GLuint m_textures[9] = {};
    GLuint m_buffers[5] = {};
    GLuint m_samplers[2] = {};
    GLuint m_array = 0;
    GLuint m_program = 0;
};

// --- The test ------------------------------------------------------------------------------------

struct Case {
    const char* name;
    const char* text; // as on the page
    CreateScreenPreviewHelperFunction create;
    GLenum activeUnit;
    const std::vector<Call>& calls;
};

class GLState : public DriverTest, public testing::WithParamInterface<Case> {
protected:
    GLState() : DriverTest(GLContext::Kind::Legacy) {}
};

TEST_P(GLState, IsLeftAsThePageSays)
{
    std::ifstream file(KESTRIX_SOURCE_DIR "/docs/embedding.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};

    const Canvas canvas(64, 64);
    const Host host(true);
    const StateRecorder recorder(host.array());
    helper.reset(GetParam().create());
    for (const Call& call : GetParam().calls) {
        std::string row = std::string("| ") + GetParam().text + " | " + call.text + " | ";
        const char* separator = "";
        for (const Left& left : call.left)
            row += std::exchange(separator, ", ") + std::string(left.text);
        row += call.left.empty() ? "nothing |\n" : " |\n";
        EXPECT_NE(page.find(row), std::string::npos) << "docs/embedding.md has no row\n" << row;

        if (call.before)
            call.before(helper);
        for (const Action& action : call.actions) {
            host.setState(GetParam().activeUnit);
            State expected = recorder.read();
            ASSERT_GT(expected.size(), 800u);
            action(helper);
            const State after = recorder.read();
            for (const Left& left : call.left) {
                const Key key{left.place, left.name};
                ASSERT_NE(left.values, valueOf(expected, key)) << left.text << " shows nothing";
                expected[key] = left.values.empty() ? valueOf(after, key) : left.values;
            }
            expectSame(after, expected, row);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Helpers, GLState,
    testing::Values(Case{"OpenGL3", "OpenGL 3", CreateOpenGL3ScreenPreviewHelper_0002, 2,
                         kOpenGL3Calls},
                    Case{"FixedFunction", "fixed-function", CreateOpenGLScreenPreviewHelper_0002, 0,
                         kFixedFunctionCalls}),
    caseName);

// --- The guard -----------------------------------------------------------------------------------

const std::vector<std::pair<const char*, Action>> kSteps{
    {"InitializeGL ", initialise},
    {"PaintGL of a frame ",
     [](Helper& it) {
         set(it, kARGB, ColorspaceCodeRec2020, 8);
         paint(it);
     }},
    {"PaintGL again ", paint},
    {"PaintGL without a frame ",
     [](Helper& it) {
         kNoFrame(it);
         paint(it);
     }},
};

using Picture = std::vector<std::array<float, 4>>;

/// The largest difference between two pictures; the driver may interpolate by other arithmetic in
/// another state.
float difference(const Picture& a, const Picture& b)
{
    float largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t component = 0; component < 4; ++component)
            largest = std::max(largest, std::abs(a[i][component] - b.at(i)[component]));
    return largest;
}

struct GuardCase {
    const char* name;
    GLContext::Kind context;
    CreateScreenPreviewHelperFunction create;
    GLenum activeUnit;
};

class GLStateGuard : public DriverTest, public testing::WithParamInterface<GuardCase> {
protected:
    GLStateGuard() : DriverTest(GetParam().context) {}
};

TEST_P(GLStateGuard, KeepsHostAndHelperApart)
{
    // By itself, all as a context has it at first but for the viewport, in which a host would also
    // have what is cleared.
    std::vector<Picture> expected;
    {
        const Canvas canvas(64, 64);
        KESTRIX_DRIVER(glViewport)(3, 5, 40, 30);
        KESTRIX_DRIVER(glScissor)(3, 5, 40, 30);
        KESTRIX_DRIVER(glEnable)(GL_SCISSOR_TEST);
        Helper alone(GetParam().create());
        for (const auto& [text, step] : kSteps) {
            step(alone);
            expected.push_back(canvas.read());
        }
        KESTRIX_DRIVER(glDisable)(GL_SCISSOR_TEST);
    }
    ASSERT_NE(expected[1], expected[0]);
    ASSERT_NE(expected[1], expected[3]);

    const Canvas canvas(64, 64);
    const Host host(GetParam().context == GLContext::Kind::Legacy);
    const StateRecorder recorder(host.array());
    const auto bindBuffer = KESTRIX_DRIVER(glBindBuffer);
    helper.reset(GetParam().create());
    for (std::size_t i = 0; i < kSteps.size(); ++i) {
        host.setState(GetParam().activeUnit);
        host.spoilState();
        const State before = recorder.read();
        Picture painted;
        {
            const KestrixGLStateGuard guard(driverEntryPoint);
            kSteps[i].second(helper);
            const int packBuffer = glState(GL_PIXEL_PACK_BUFFER_BINDING);
            bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
            painted = canvas.read();
            bindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
        }
        expectSame(recorder.read(), before, kSteps[i].first);
        EXPECT_LT(difference(painted, expected[i]), 1e-5F) << kSteps[i].first;
    }
}

INSTANTIATE_TEST_SUITE_P(Helpers, GLStateGuard,
                         testing::Values(GuardCase{"OpenGL3InACoreProfile", GLContext::Kind::Core32,
                                                   CreateOpenGL3ScreenPreviewHelper_0002, 2},
                                         GuardCase{"OpenGL3", GLContext::Kind::Legacy,
                                                   CreateOpenGL3ScreenPreviewHelper_0002, 2},
                                         GuardCase{"FixedFunction", GLContext::Kind::Legacy,
                                                   CreateOpenGLScreenPreviewHelper_0002, 2}),
                         caseName);

} // namespace
} // namespace kestrix::test
