/// The entry points that the library finds in a test program, by link and by look-up.
#define GL_GLEXT_PROTOTYPES
#include "tests/common/GLRecorder.h"

#include "preview/GL3Functions.h"
#include "tests/common/AllocationFaults.h"

#include <GL/glx.h>

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <utility>

namespace kestrix::test {
namespace {

template<std::size_t SIZE>
struct Name {
    char text[SIZE]{};
    consteval Name(const char (&name)[SIZE]) { std::copy_n(name, SIZE, text); }
};

/// The recording form of one GL function.
template<Name NAME, class FUNCTION>
struct Recorded;

// Some parameters of fakes are numbers and not pointers. The caller passes both in the same way.
#ifdef __clang__
#define KESTRIX_CALLS_ALIKE __attribute__((no_sanitize("function")))
#else
#define KESTRIX_CALLS_ALIKE
#endif

template<Name NAME, class RESULT, class... ARGUMENTS>
struct Recorded<NAME, RESULT(ARGUMENTS...)> {
    KESTRIX_CALLS_ALIKE static RESULT call(ARGUMENTS... arguments)
    {
        const WithoutAllocationFaults ownMemory;
        GLRecorder& recorder = GLRecorder::get();
        recorder.record(test::call(NAME.text, arguments...));
        if (void* target = recorder.target(NAME.text))
            return reinterpret_cast<RESULT (*)(ARGUMENTS...)>(target)(arguments...);
        return RESULT();
    }
};

using Functions = std::map<std::string, void*>;

void* find(const Functions& functions, const std::string& name)
{
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
}

/// The address of a function, or of a lambda without captures.
template<class FUNCTION>
void* address(FUNCTION function)
{
    return reinterpret_cast<void*>(+function);
}

/// What look-ups return, with the fake and with the driver: all that the helpers look up.
const Functions& recordedFunctions()
{
    // clang-format off
#define KESTRIX_RECORDED(name, type) \
    {"gl" #name, address(Recorded<"gl" #name, decltype(::gl##name)>::call)},
    static const Functions functions = {
        KESTRIX_GL3_FUNCTIONS(KESTRIX_RECORDED)
        KESTRIX_RECORDED(BufferSubData, )
        KESTRIX_RECORDED(GetBufferParameteriv, )
        KESTRIX_RECORDED(MapBuffer, )
        KESTRIX_RECORDED(UnmapBuffer, )
    };
    // clang-format on
#undef KESTRIX_RECORDED
    return functions;
}

// --- The fake ------------------------------------------------------------------------------------

FakeGL& fakeGL()
{
    return GLRecorder::get().fake;
}

template<Name KIND>
void generate(GLsizei count, GLuint* names)
{
    for (GLsizei i = 0; i < count; ++i)
        names[i] = fakeGL().make(KIND.text);
}

void deleteAll(GLsizei count, const GLuint* names)
{
    for (GLsizei i = 0; i < count; ++i)
        fakeGL().live.erase(names[i]);
}

void deleteOne(GLuint name)
{
    deleteAll(1, &name);
}

void getIntegerv(GLenum name, GLint* out)
{
    const FakeGL& fake = fakeGL();
    const std::map<GLenum, GLint> answers = {{GL_MAJOR_VERSION, fake.majorVersion},
                                             {GL_MINOR_VERSION, fake.minorVersion},
                                             {GL_MAX_TEXTURE_SIZE, fake.maxTextureSize},
                                             {GL_UNPACK_ROW_LENGTH, fake.unpackRowLength}};
    *out = answers.at(name);
}

// Serves shaders and programs alike.
void getObjectiv(GLuint object, GLenum name, GLint* out)
{
    const FakeGL& fake = fakeGL();
    const auto found = fake.live.find(object);
    if (name == GL_INFO_LOG_LENGTH)
        *out = fake.infoLogLength;
    else if (found != fake.live.end())
        *out = found->second != fake.doesNotBuild;
}

GLint namedLocation(GLuint, const GLchar* name)
{
    return FakeGL::location(name);
}

void bufferData(GLenum target, GLsizeiptr size, const void* data, GLenum)
{
    auto& bytes = fakeGL().bufferBytes[fakeGL().boundBuffers[target]];
    bytes.assign(static_cast<std::size_t>(size), 0);
    if (data)
        std::copy_n(static_cast<const std::uint8_t*>(data), size, bytes.begin());
}

void* mapBuffer(GLenum target, GLenum)
{
    FakeGL& fake = fakeGL();
    return fake.buffersMap ? fake.bufferBytes[fake.boundBuffers[target]].data() : nullptr;
}

/// Functions with an answer or an effect. The others do nothing.
const Functions& fakeFunctions()
{
    static const Functions functions = {
        {"glBindBuffer",
         address([](GLenum target, GLuint name) { fakeGL().boundBuffers[target] = name; })},
        {"glBufferData", address(bufferData)},
        {"glCreateProgram", address([] { return fakeGL().make("program"); })},
        {"glCreateShader", address([](GLenum type) {
             return fakeGL().make(type == GL_VERTEX_SHADER ? "vertex shader" : "fragment shader");
         })},
        {"glDeleteBuffers", address(deleteAll)},
        {"glDeleteProgram", address(deleteOne)},
        {"glDeleteShader", address(deleteOne)},
        {"glDeleteSync",
         address([](std::uintptr_t fence) { deleteOne(static_cast<GLuint>(fence)); })},
        {"glDeleteTextures", address(deleteAll)},
        {"glDeleteVertexArrays", address(deleteAll)},
        {"glFenceSync",
         address([](GLenum, GLbitfield) { return std::uintptr_t{fakeGL().make("fence")}; })},
        {"glGenBuffers", address(generate<"buffer">)},
        {"glGenTextures", address(generate<"texture">)},
        {"glGenVertexArrays", address(generate<"vertex array">)},
        {"glGetAttribLocation", address(namedLocation)},
        {"glGetIntegerv", address(getIntegerv)},
        {"glGetProgramiv", address(getObjectiv)},
        {"glGetShaderiv", address(getObjectiv)},
        {"glGetString", address([](GLenum) { return fakeGL().extensions; })},
        {"glGetTexEnviv",
         address([](GLenum, GLenum, GLint* out) { *out = fakeGL().textureEnvironmentMode; })},
        {"glGetUniformLocation", address(namedLocation)},
        {"glMapBuffer", address(mapBuffer)},
        {"glPixelStorei", address([](GLenum, GLint value) { fakeGL().unpackRowLength = value; })},
        {"glTexEnvi",
         address([](GLenum, GLenum, GLint value) { fakeGL().textureEnvironmentMode = value; })},
    };
    return functions;
}

} // namespace

unsigned FakeGL::make(const char* kind)
{
    static unsigned last = 0;
    live[++last] = kind;
    return last;
}

int FakeGL::location(const char* name)
{
    int location = 0;
    for (; *name; ++name)
        location = (location * 31 + *name) % 9973;
    return location;
}

std::vector<unsigned> FakeGL::liveOf(const std::string& kind) const
{
    std::vector<unsigned> names;
    for (const auto& [name, itsKind] : live)
        if (itsKind == kind)
            names.push_back(name);
    return names;
}

// --- The recorder --------------------------------------------------------------------------------

bool GLCall::operator==(const GLCall& other) const
{
    const auto same = [](double a, double b) { return a == b || std::isnan(a) || std::isnan(b); };
    return name == other.name && std::ranges::equal(arguments, other.arguments, same);
}

std::ostream& operator<<(std::ostream& out, const GLCall& call)
{
    out << call.name << '(';
    const char* separator = "";
    for (const double argument : call.arguments) {
        out << std::exchange(separator, ", ");
        if (argument >= 0x500) // enumerants and addresses
            out << std::hex << std::showbase << static_cast<std::uint64_t>(argument) << std::dec;
        else
            out << argument;
    }
    return out << ')';
}

GLRecorder& GLRecorder::get()
{
    static GLRecorder recorder(false);
    return recorder;
}

std::vector<GLCall> GLRecorder::callsTo(const std::set<std::string>& names) const
{
    std::vector<GLCall> found = m_calls;
    std::erase_if(found, [&](const GLCall& call) { return !names.contains(call.name); });
    return found;
}

std::vector<std::string> GLRecorder::callNames() const
{
    std::vector<std::string> names;
    for (const GLCall& call : m_calls)
        names.push_back(call.name);
    return names;
}

void GLRecorder::clear()
{
    m_calls.clear();
    m_lookups.clear();
}

void GLRecorder::record(GLCall call)
{
    const auto [begin, end] = m_observers.equal_range(call.name);
    for (auto observer = begin; observer != end; ++observer)
        observer->second(call);
    m_calls.push_back(std::move(call));
}

void* GLRecorder::target(const char* name)
{
    if (void* replacement = find(m_replacements, name))
        return replacement;
    return m_driver ? driverEntryPoint(name) : find(fakeFunctions(), name);
}

void* GLRecorder::lookUp(const char* name)
{
    const bool fails = static_cast<int>(m_lookups.size()) == m_failingLookup;
    m_lookups.emplace_back(name);
    return fails ? nullptr : find(recordedFunctions(), name);
}

void* driverEntryPoint(const char* name)
{
    static void* const library = dlopen("libGL.so.1", RTLD_NOW | RTLD_LOCAL);
    static const auto lookUp =
        library
            ? reinterpret_cast<decltype(&glXGetProcAddress)>(dlsym(library, "glXGetProcAddress"))
            : nullptr;
    if (!lookUp) {
        std::fprintf(stderr, "libGL.so.1 can't be loaded: %s\n", dlerror());
        std::abort();
    }
    return reinterpret_cast<void*>(lookUp(reinterpret_cast<const GLubyte*>(name)));
}

} // namespace kestrix::test

// --- What the library links ----------------------------------------------------------------------

#define KESTRIX_LINKED(result, name, parameters, arguments)                                        \
    result name parameters                                                                         \
    {                                                                                              \
        return kestrix::test::Recorded<#name, decltype(::name)>::call arguments;                   \
    }

extern "C" {

void (*glXGetProcAddress(const GLubyte* name))(void)
{
    const kestrix::test::WithoutAllocationFaults ownMemory;
    return reinterpret_cast<void (*)()>(
        kestrix::test::GLRecorder::get().lookUp(reinterpret_cast<const char*>(name)));
}

KESTRIX_LINKED(void, glEnable, (GLenum capability), (capability))
KESTRIX_LINKED(void, glDisable, (GLenum capability), (capability))
KESTRIX_LINKED(void, glBegin, (GLenum mode), (mode))
KESTRIX_LINKED(void, glEnd, (), ())
KESTRIX_LINKED(void, glVertex2f, (GLfloat x, GLfloat y), (x, y))
KESTRIX_LINKED(void, glTexCoord2f, (GLfloat s, GLfloat t), (s, t))
KESTRIX_LINKED(void, glColor3f, (GLfloat r, GLfloat g, GLfloat b), (r, g, b))
KESTRIX_LINKED(void, glTexEnvi, (GLenum target, GLenum name, GLint value), (target, name, value))
KESTRIX_LINKED(void, glGetTexEnviv, (GLenum target, GLenum name, GLint* out), (target, name, out))
KESTRIX_LINKED(const GLubyte*, glGetString, (GLenum name), (name))
KESTRIX_LINKED(void, glGetIntegerv, (GLenum name, GLint* out), (name, out))
KESTRIX_LINKED(void, glGenTextures, (GLsizei count, GLuint* names), (count, names))
KESTRIX_LINKED(void, glDeleteTextures, (GLsizei count, const GLuint* names), (count, names))
KESTRIX_LINKED(void, glBindTexture, (GLenum target, GLuint texture), (target, texture))
KESTRIX_LINKED(void, glTexParameteri, (GLenum target, GLenum name, GLint value),
               (target, name, value))
KESTRIX_LINKED(void, glTexImage2D,
               (GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                GLint border, GLenum format, GLenum type, const void* pixels),
               (target, level, internalFormat, width, height, border, format, type, pixels))
KESTRIX_LINKED(void, glTexSubImage2D,
               (GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                GLenum format, GLenum type, const void* pixels),
               (target, level, x, y, width, height, format, type, pixels))
}
