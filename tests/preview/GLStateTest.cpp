/// Compares all GL state before and after each call with the table of docs/embedding.md. With the
/// guard for hosts nothing may change.
#define GL_GLEXT_PROTOTYPES
#include "examples/common/KestrixGLStateGuard.h"
#include "tests/common/CaseName.h"
#include "tests/preview/DriverFixture.h"

#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrix::test {
namespace {

// --- What the calls leave, as it is published ----------------------------------------------------

/// A value that a call changes.
struct Left {
    const char* text; // as on the page
    const char* place;
    GLenum name;
    std::vector<float> values; // empty: a name that the helper made
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
const Left kTexel{"`GL_CURRENT_TEXTURE_COORDS` of unit 0 (0, 0, 0, 1)",
                  "unit 0 ",
                  GL_CURRENT_TEXTURE_COORDS,
                  {0, 0, 0, 1}};

using Action = std::function<void(Helper&)>;

const Action kInitialise = [](Helper& helper) { EXPECT_EQ(helper->InitializeGL(), S_OK); };
const Action kPaint = [](Helper& helper) { EXPECT_EQ(helper->PaintGL(), S_OK); };
const Action kNoFrame = [](Helper& helper) { EXPECT_EQ(helper->SetFrame(nullptr), S_OK); };
const Action kNothing = [](Helper&) {};

/// Sets a frame of noise.
Action set(int height)
{
    return [=](Helper& helper) {
        const Frame frame = noise(
            {.width = 16, .height = height, .format = kARGB, .colorspace = ColorspaceCodeRec2020},
            2);
        EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
    };
}

/// A call: what is done before it without a record, its variants, and the values that it changes.
struct Call {
    const char* text;
    Action before;
    std::vector<Action> actions;
    std::vector<Left> left;
};

const Call kDelivery{
    "`SetFrame`, `Set3DPreviewFormat`",
    kNothing,
    {set(8), kNoFrame, [](Helper& helper) { helper->Set3DPreviewFormat(Preview3DSideBySide); }},
    {}};
const Call kRelease{"the last `Release`", kNothing, {[](Helper& helper) { helper.reset(); }}, {}};

const std::vector<Call> kOpenGL3Calls{
    {"`InitializeGL`",
     kNothing,
     {kInitialise, kInitialise},
     {kClear, kOwnArray, kBuffer, kProgram, kUnit, k2DOfUnit0, k3DOfUnit0}},
    kDelivery,
    {"`PaintGL` of a frame, and again",
     set(12),
     {kPaint, kPaint},
     {kProgram, kNoArray, kBuffer, kUnit, k2DOfUnit0, k3DOfUnit1}},
    {"`PaintGL` after `SetFrame(nullptr)`", kNoFrame, {kPaint}, {kClear}},
    kRelease};
const std::vector<Call> kFixedFunctionCalls{
    {"`InitializeGL`", kNothing, {kInitialise, kInitialise}, {}},
    kDelivery,
    {"`PaintGL` of a frame, and again",
     set(12),
     {kPaint, kPaint},
     {kTexturing, k2DOfUnit0, kTexel}},
    {"`PaintGL` without a frame", kNoFrame, {kPaint}, {kColour}},
    kRelease};

// --- The recorder --------------------------------------------------------------------------------

/// A place and a name. The place is empty for the context itself.
using Key = std::pair<std::string, GLenum>;
/// A value of a texture unit is left out if it equals the context's.
using State = std::map<Key, std::vector<float>>;

std::vector<float> valueOf(const State& state, const Key& key)
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

/// Reads all state that the driver returns. It finds the names by asking for every possible one.
class StateRecorder {
public:
    explicit StateRecorder(GLuint hostArray) : m_hostArray(hostArray)
    {
        for (const Family& family : m_families)
            m_names.push_back(answered(family.get));
    }

    State read() const
    {
        // A unit and an array that no helper uses, so that the state of the others can be read.
        const int unit = glState(GL_ACTIVE_TEXTURE);
        const int array = glState(GL_VERTEX_ARRAY_BINDING);
        glDisable(GL_DEBUG_OUTPUT);
        glBindVertexArray(m_hostArray);
        State state;
        for (std::size_t i = 0; i < m_families.size(); ++i) {
            glActiveTexture(GL_TEXTURE0 + m_families[i].unit);
            for (const GLenum name : m_names[i])
                state[{m_families[i].place, name}] = value(m_families[i].get, name);
        }
        std::erase_if(state, [&](const auto& entry) {
            const auto& [place, name] = entry.first;
            return place.size() == sizeof("unit 0") && valueOf(state, {"", name}) == entry.second;
        });
        glBindVertexArray(static_cast<GLuint>(array));
        glActiveTexture(static_cast<GLenum>(unit));
        glEnable(GL_DEBUG_OUTPUT);

        state[{"", GL_ACTIVE_TEXTURE}] = {static_cast<float>(unit)};
        state[{"", GL_VERTEX_ARRAY_BINDING}] = {static_cast<float>(array)};
        return state;
    }

private:
    using Get = std::function<void(GLenum, float*)>;

    struct Family {
        std::string place;
        GLenum unit;
        Get get;
    };

    static constexpr GLenum kFarUnit = 7;
    static constexpr float kUnanswered = -271828.25F;

    static std::vector<float> value(const Get& get, GLenum name)
    {
        static std::vector<float> buffer(4096);
        std::fill_n(buffer.begin(), 256, kUnanswered);
        get(name, buffer.data());
        std::vector<float> values(buffer.begin(), buffer.begin() + 256);
        while (!values.empty() && values.back() == kUnanswered)
            values.pop_back();
        return values;
    }

    static std::vector<GLenum> answered(const Get& get)
    {
        glDisable(GL_DEBUG_OUTPUT);
        std::vector<GLenum> names;
        for (GLenum name = 0; name < 0x10000; ++name) {
            // The time, and the device's memory and its names on the bus. A software driver has
            // none of these, and sometimes no function that would say so.
            if (name == GL_TIMESTAMP ||
                (name >= GL_VBO_FREE_MEMORY_ATI && name <= GL_RENDERBUFFER_FREE_MEMORY_ATI) ||
                (name >= GL_GPU_MEMORY_INFO_DEDICATED_VIDMEM_NVX &&
                 name <= GL_GPU_MEMORY_INFO_EVICTED_MEMORY_NVX) ||
                (name >= GL_NUM_DEVICE_UUIDS_EXT && name <= GL_DEVICE_NODE_MASK_EXT))
                continue;
            const bool answers = !value(get, name).empty();
            if (glGetError() == GL_NO_ERROR && answers)
                names.push_back(name);
        }
        glEnable(GL_DEBUG_OUTPUT);
        return names;
    }

    static std::vector<Family> families()
    {
        std::vector<Family> all{{"", kFarUnit, glGetFloatv}};
        const auto add = [&](const std::string& place, GLenum unit, auto* get, GLenum of) {
            all.push_back({place, unit, [=](GLenum name, float* out) { get(of, name, out); }});
        };
        for (const GLenum unit : {0u, 1u, 2u}) {
            const std::string place = "unit " + std::to_string(unit) + ' ';
            all.push_back({place, unit, glGetFloatv});
            add(place + "environment ", unit, glGetTexEnvfv, GL_TEXTURE_ENV);
            add(place + "bias ", unit, glGetTexEnvfv, GL_TEXTURE_FILTER_CONTROL);
            add(place + "S ", unit, glGetTexGenfv, GL_S);
        }
        add("texture 0 2D ", kFarUnit, glGetTexParameterfv, GL_TEXTURE_2D);
        add("texture 0 3D ", kFarUnit, glGetTexParameterfv, GL_TEXTURE_3D);
        for (const GLenum attribute : {0u, 1u, 2u, 3u, 15u})
            add("attribute " + std::to_string(attribute) + ' ', kFarUnit, glGetVertexAttribfv,
                attribute);
        add("light ", kFarUnit, glGetLightfv, GL_LIGHT0);
        add("material ", kFarUnit, glGetMaterialfv, GL_FRONT);
        return all;
    }

    GLuint m_hostArray;
    const std::vector<Family> m_families = families();
    std::vector<std::vector<GLenum>> m_names;
};

// --- The host ------------------------------------------------------------------------------------

/// A host that sets everything to values that are not the initial ones.
class Host {
public:
    explicit Host(bool fixedPipeline) : m_fixedPipeline(fixedPipeline)
    {
        glGenTextures(9, m_textures);
        glGenBuffers(5, m_buffers);
        glGenSamplers(2, m_samplers);
        glGenVertexArrays(1, &m_array);
        // These calls read memory through the unpack state, which is still the initial one.
        const GLubyte nothing[128] = {};
        if (fixedPipeline)
            glPolygonStipple(nothing);
        const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
        const GLchar* source = "#version 150\nvoid main() { gl_Position = vec4(0); }";
        glShaderSource(shader, 1, &source, nullptr);
        glCompileShader(shader);
        m_program = glCreateProgram();
        glAttachShader(m_program, shader);
        glLinkProgram(m_program);
    }

    GLuint array() const { return m_array; }

    void setState(GLenum activeUnit) const
    {
        glBindVertexArray(m_array);
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, m_buffers[2]);
        glBindBuffer(GL_UNIFORM_BUFFER, m_buffers[3]);
        glVertexAttribPointer(3, 2, GL_SHORT, GL_TRUE, 12, nullptr);
        glEnableVertexAttribArray(3);
        glUseProgram(m_program);
        for (GLenum unit = 0; unit < 3; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_1D, m_textures[3 * unit]);
            glBindTexture(GL_TEXTURE_2D, m_textures[3 * unit + 1]);
            glBindTexture(GL_TEXTURE_3D, m_textures[3 * unit + 2]);
            if (!m_fixedPipeline)
                continue;
            glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_BLEND);
            glMultiTexCoord4f(GL_TEXTURE0 + unit, 0.5f, 0.25f, 3, 2);
            enable({GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_GEN_R});
        }
        if (m_fixedPipeline) {
            glEnableClientState(GL_NORMAL_ARRAY);
            enable({GL_ALPHA_TEST, GL_FOG, GL_LIGHTING, GL_LIGHT3, GL_NORMALIZE});
            glColor4f(0.5f, 0.75f, 0.25f, 0.5f);
            glMatrixMode(GL_TEXTURE);
            glLoadIdentity();
            glScalef(2, 3, 4);
        }
        glActiveTexture(GL_TEXTURE0 + activeUnit);
        enable({GL_BLEND, GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_DITHER,
                GL_COLOR_LOGIC_OP, GL_POLYGON_OFFSET_FILL, GL_LINE_SMOOTH, GL_SAMPLE_COVERAGE});
        glViewport(3, 5, 40, 30);
        glScissor(1, 2, 20, 21);
        glClearColor(0.25f, 0.5f, 0.75f, 1);
        glPixelStorei(GL_PACK_ALIGNMENT, 2);
    }

    /// Also changes the state that the helpers rely on.
    void spoilState() const
    {
        const std::pair<GLenum, GLint> unpack[] = {
            {GL_UNPACK_SWAP_BYTES, 1},   {GL_UNPACK_LSB_FIRST, 1}, {GL_UNPACK_ROW_LENGTH, 7},
            {GL_UNPACK_IMAGE_HEIGHT, 3}, {GL_UNPACK_SKIP_ROWS, 2}, {GL_UNPACK_SKIP_PIXELS, 5},
            {GL_UNPACK_SKIP_IMAGES, 1},  {GL_UNPACK_ALIGNMENT, 8}};
        for (const auto& [name, value] : unpack)
            glPixelStorei(name, value);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, m_buffers[4]);
        for (GLuint unit = 0; unit < 2; ++unit) {
            glSamplerParameteri(m_samplers[unit], GL_TEXTURE_MAG_FILTER, GL_NEAREST);
            glBindSampler(unit, m_samplers[unit]);
        }
        enable({GL_FRAMEBUFFER_SRGB, GL_RASTERIZER_DISCARD, GL_PRIMITIVE_RESTART, GL_SAMPLE_MASK,
                GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_CLIP_DISTANCE0,
                GL_CLIP_DISTANCE5, GL_CLIP_DISTANCE7, GL_POLYGON_SMOOTH});
        glPrimitiveRestartIndex(2);
        glStencilFunc(GL_NEVER, 0, 0xFF);
        glDepthFunc(GL_NEVER);
        if (!m_fixedPipeline)
            return;
        for (GLenum unit = 4; unit-- > 0;) {
            glActiveTexture(GL_TEXTURE0 + unit);
            enable({GL_TEXTURE_1D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T,
                    GL_TEXTURE_GEN_Q});
        }
        enable({GL_POLYGON_STIPPLE, GL_COLOR_SUM});
        glAlphaFunc(GL_NEVER, 0.5f);
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW, GL_TEXTURE}) {
            glMatrixMode(matrix);
            glLoadIdentity();
            glScalef(0.5f, 0.25f, 4);
        }
        const GLdouble plane[] = {0, 0, 0, -1};
        glClipPlane(GL_CLIP_PLANE5, plane);
        for (const GLenum scale : {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
            glPixelTransferf(scale, 0.5f);
        for (const GLenum bias : {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
            glPixelTransferf(bias, 0.25f);
        glPixelTransferi(GL_MAP_COLOR, 1);
    }

private:
    static void enable(std::initializer_list<GLenum> capabilities)
    {
        for (const GLenum capability : capabilities)
            glEnable(capability);
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
    GLContext::Kind context;
    CreateScreenPreviewHelperFunction create;
    GLenum activeUnit;
    const char* text; // as on the page
    const std::vector<Call>& calls;
};

class GLState : public DriverTest, public testing::WithParamInterface<Case> {
protected:
    GLState() : DriverTest(GetParam().context) {}
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

constexpr auto kMakeOpenGL3 = CreateOpenGL3ScreenPreviewHelper_0002;
const Case kOpenGL3{"OpenGL3", GLContext::Kind::Legacy, kMakeOpenGL3, 2, "OpenGL 3", kOpenGL3Calls};
const Case kOpenGL3InACoreProfile{
    "OpenGL3InACoreProfile", GLContext::Kind::Core32, kMakeOpenGL3, 2, nullptr, kOpenGL3Calls};
const Case kFixedFunction{
    "FixedFunction",  GLContext::Kind::Legacy, CreateOpenGLScreenPreviewHelper_0002, 0,
    "fixed-function", kFixedFunctionCalls};
INSTANTIATE_TEST_SUITE_P(Helpers, GLState, testing::Values(kOpenGL3, kFixedFunction), caseName);

// --- The guard -----------------------------------------------------------------------------------

using Picture = std::vector<std::array<float, 4>>;

/// The largest difference between two pictures. In another state, the driver may interpolate with
/// other arithmetic.
float difference(const Picture& a, const Picture& b)
{
    float largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t component = 0; component < 4; ++component)
            largest = std::max(largest, std::abs(a[i][component] - b.at(i)[component]));
    return largest;
}

class GLStateGuard : public GLState {};

TEST_P(GLStateGuard, KeepsHostAndHelperApart)
{
    // The helper alone, in the initial state except for the viewport. The scissor box limits the
    // clearing to the viewport, as a host would.
    std::vector<Picture> expected;
    {
        const Canvas canvas(64, 64);
        glViewport(3, 5, 40, 30);
        glScissor(3, 5, 40, 30);
        glEnable(GL_SCISSOR_TEST);
        Helper alone(GetParam().create());
        for (const Call& call : GetParam().calls) {
            call.before(alone);
            for (const Action& action : call.actions) {
                action(alone);
                expected.push_back(canvas.read());
            }
        }
        glDisable(GL_SCISSOR_TEST);
    }
    ASSERT_NE(expected[5], expected[0]) << "a frame is seen";
    ASSERT_NE(expected[5], expected[7]) << "and then none";

    const Canvas canvas(64, 64);
    const Host host(GetParam().context == GLContext::Kind::Legacy);
    const StateRecorder recorder(host.array());
    helper.reset(GetParam().create());
    auto alone = expected.begin();
    for (const Call& call : GetParam().calls) {
        call.before(helper);
        for (const Action& action : call.actions) {
            host.setState(2);
            host.spoilState();
            const State before = recorder.read();
            Picture painted;
            {
                const KestrixGLStateGuard guard(driverEntryPoint);
                action(helper);
                const int packBuffer = glState(GL_PIXEL_PACK_BUFFER_BINDING);
                glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
                painted = canvas.read();
                glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
            }
            expectSame(recorder.read(), before, call.text);
            EXPECT_LT(difference(painted, *alone++), 1e-5F) << call.text;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Helpers, GLStateGuard,
                         testing::Values(kOpenGL3InACoreProfile, kOpenGL3, kFixedFunction),
                         caseName);

} // namespace
} // namespace kestrix::test
