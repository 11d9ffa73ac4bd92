/// The entry points that the library finds in a test program, by link and by look-up.
#define GL_GLEXT_PROTOTYPES
#include "tests/support/GLRecorder.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glx.h>

#include <dlfcn.h>

#include <algorithm>
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

template<Name NAME, class RESULT, class... ARGUMENTS>
struct Recorded<NAME, RESULT(ARGUMENTS...)> {
    static RESULT call(ARGUMENTS... arguments)
    {
        GLRecorder& recorder = GLRecorder::get();
        recorder.record(test::call(NAME.text, arguments...));
        if (void* target = recorder.target(NAME.text))
            return reinterpret_cast<RESULT (*)(ARGUMENTS...)>(target)(arguments...);
        return RESULT();
    }
};

template<class FUNCTION>
void* address(FUNCTION* function)
{
    return reinterpret_cast<void*>(function);
}

#define KESTRIX_RECORDED(name)                                                                     \
    {                                                                                              \
#name, address(&Recorded <#name, decltype(::name)>::call)                                  \
    }

/// What look-ups give, whatever the mode: everything that either helper may ask for.
const std::map<std::string, void*>& recordedFunctions()
{
    static const std::map<std::string, void*> functions = {
        KESTRIX_RECORDED(glActiveTexture),
        KESTRIX_RECORDED(glAttachShader),
        KESTRIX_RECORDED(glBindBuffer),
        KESTRIX_RECORDED(glBindTexture),
        KESTRIX_RECORDED(glBindVertexArray),
        KESTRIX_RECORDED(glBufferData),
        KESTRIX_RECORDED(glBufferSubData),
        KESTRIX_RECORDED(glClear),
        KESTRIX_RECORDED(glClearColor),
        KESTRIX_RECORDED(glClientWaitSync),
        KESTRIX_RECORDED(glCompileShader),
        KESTRIX_RECORDED(glCreateProgram),
        KESTRIX_RECORDED(glCreateShader),
        KESTRIX_RECORDED(glDeleteBuffers),
        KESTRIX_RECORDED(glDeleteProgram),
        KESTRIX_RECORDED(glDeleteShader),
        KESTRIX_RECORDED(glDeleteSync),
        KESTRIX_RECORDED(glDeleteTextures),
        KESTRIX_RECORDED(glDeleteVertexArrays),
        KESTRIX_RECORDED(glDrawElements),
        KESTRIX_RECORDED(glEnableVertexAttribArray),
        KESTRIX_RECORDED(glFenceSync),
        KESTRIX_RECORDED(glGenBuffers),
        KESTRIX_RECORDED(glGenTextures),
        KESTRIX_RECORDED(glGenVertexArrays),
        KESTRIX_RECORDED(glGetAttribLocation),
        KESTRIX_RECORDED(glGetBufferParameteriv),
        KESTRIX_RECORDED(glGetError),
        KESTRIX_RECORDED(glGetIntegerv),
        KESTRIX_RECORDED(glGetProgramInfoLog),
        KESTRIX_RECORDED(glGetProgramiv),
        KESTRIX_RECORDED(glGetShaderInfoLog),
        KESTRIX_RECORDED(glGetShaderiv),
        KESTRIX_RECORDED(glGetUniformLocation),
        KESTRIX_RECORDED(glLinkProgram),
        KESTRIX_RECORDED(glMapBuffer),
        KESTRIX_RECORDED(glPixelStorei),
        KESTRIX_RECORDED(glShaderSource),
        KESTRIX_RECORDED(glTexImage2D),
        KESTRIX_RECORDED(glTexImage3D),
        KESTRIX_RECORDED(glTexParameteri),
        KESTRIX_RECORDED(glTexSubImage2D),
        KESTRIX_RECORDED(glTexSubImage3D),
        KESTRIX_RECORDED(glUniform1i),
        KESTRIX_RECORDED(glUniform1ui),
        KESTRIX_RECORDED(glUniform2f),
        KESTRIX_RECORDED(glUnmapBuffer),
        KESTRIX_RECORDED(glUseProgram),
        KESTRIX_RECORDED(glVertexAttribPointer),
    };
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
    fakeGL().live.erase(name);
}

GLuint createShader(GLenum type)
{
    return fakeGL().make(type == GL_VERTEX_SHADER ? "vertex shader" : "fragment shader");
}

GLuint createProgram()
{
    return fakeGL().make("program");
}

void getIntegerv(GLenum name, GLint* out)
{
    switch (name) {
    case GL_MAJOR_VERSION:
        *out = fakeGL().majorVersion;
        break;
    case GL_MINOR_VERSION:
        *out = fakeGL().minorVersion;
        break;
    case GL_UNPACK_ROW_LENGTH:
        *out = fakeGL().unpackRowLength;
        break;
    default:
        std::fprintf(stderr, "the fake GL has no answer to glGetIntegerv(%#x)\n", name);
        std::abort();
    }
}

// Serves shaders and programs alike: a driver that sees a program's name in a shader query raises
// an error and leaves the answer as it was, and so does this.
void getObjectiv(GLuint object, GLenum name, GLint* out)
{
    const FakeGL& fake = fakeGL();
    const auto found = fake.live.find(object);
    const std::string kind = found == fake.live.end() ? "" : found->second;
    if (name == GL_INFO_LOG_LENGTH)
        *out = fake.infoLogLength;
    else if (kind == "vertex shader")
        *out = fake.vertexShaderCompiles;
    else if (kind == "fragment shader")
        *out = fake.fragmentShaderCompiles;
    else if (kind == "program")
        *out = fake.programLinks;
}

GLint namedLocation(GLuint, const GLchar* name)
{
    return FakeGL::location(name);
}

void pixelStorei(GLenum name, GLint value)
{
    if (name == GL_UNPACK_ROW_LENGTH)
        fakeGL().unpackRowLength = value;
}

GLsync fenceSync(GLenum, GLbitfield)
{
    return reinterpret_cast<GLsync>(std::uintptr_t{fakeGL().make("fence")});
}

GLenum clientWaitSync(GLsync, GLbitfield, GLuint64)
{
    return GL_TIMEOUT_EXPIRED;
}

void deleteSync(GLsync fence)
{
    fakeGL().live.erase(static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(fence)));
}

void bindBuffer(GLenum target, GLuint name)
{
    fakeGL().boundBuffers[target] = name;
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
    return fakeGL().buffersMap ? fakeGL().bufferBytes[fakeGL().boundBuffers[target]].data()
                               : nullptr;
}

GLboolean unmapBuffer(GLenum)
{
    return GL_TRUE;
}

const GLubyte* getString(GLenum name)
{
    return name == GL_EXTENSIONS ? reinterpret_cast<const GLubyte*>(fakeGL().extensions) : nullptr;
}

void texEnvi(GLenum, GLenum, GLint value)
{
    fakeGL().textureEnvironmentMode = value;
}

void getTexEnviv(GLenum, GLenum, GLint* out)
{
    *out = fakeGL().textureEnvironmentMode;
}

/// Functions with an answer or an effect. The others do nothing.
const std::map<std::string, void*>& fakeFunctions()
{
    static const std::map<std::string, void*> functions = {
        {"glBindBuffer", address(bindBuffer)},
        {"glBufferData", address(bufferData)},
        {"glClientWaitSync", address(clientWaitSync)},
        {"glCreateProgram", address(createProgram)},
        {"glCreateShader", address(createShader)},
        {"glDeleteBuffers", address(deleteAll)},
        {"glDeleteProgram", address(deleteOne)},
        {"glDeleteShader", address(deleteOne)},
        {"glDeleteSync", address(deleteSync)},
        {"glDeleteTextures", address(deleteAll)},
        {"glDeleteVertexArrays", address(deleteAll)},
        {"glFenceSync", address(fenceSync)},
        {"glGenBuffers", address(generate<"buffer">)},
        {"glGenTextures", address(generate<"texture">)},
        {"glGenVertexArrays", address(generate<"vertex array">)},
        {"glGetAttribLocation", address(namedLocation)},
        {"glGetIntegerv", address(getIntegerv)},
        {"glGetProgramiv", address(getObjectiv)},
        {"glGetShaderiv", address(getObjectiv)},
        {"glGetString", address(getString)},
        {"glGetTexEnviv", address(getTexEnviv)},
        {"glGetUniformLocation", address(namedLocation)},
        {"glMapBuffer", address(mapBuffer)},
        {"glPixelStorei", address(pixelStorei)},
        {"glTexEnvi", address(texEnvi)},
        {"glUnmapBuffer", address(unmapBuffer)},
    };
    return functions;
}

void* find(const std::map<std::string, void*>& functions, const std::string& name)
{
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
}

} // namespace

// --- The recorder --------------------------------------------------------------------------------

bool GLArgument::operator==(const GLArgument& other) const
{
    if (std::holds_alternative<AnyArgument>(value) ||
        std::holds_alternative<AnyArgument>(other.value))
        return true;
    if (value.index() != other.value.index())
        return false;
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return *integer == other.integer();
    if (const auto* number = std::get_if<double>(&value))
        return *number == std::get<double>(other.value);
    return address() == other.address();
}

std::ostream& operator<<(std::ostream& out, const GLCall& call)
{
    out << call.name << '(';
    const char* separator = "";
    for (const GLArgument& argument : call.arguments) {
        out << std::exchange(separator, ", ");
        if (const auto* integer = std::get_if<std::int64_t>(&argument.value))
            out << (*integer >= 0x500 ? std::hex : std::dec) << std::showbase << *integer
                << std::dec;
        else if (const auto* number = std::get_if<double>(&argument.value))
            out << *number;
        else if (const auto* pointer = std::get_if<const void*>(&argument.value))
            out << "ptr " << *pointer;
        else
            out << '_';
    }
    return out << ')';
}

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

GLRecorder& GLRecorder::get()
{
    static GLRecorder recorder;
    return recorder;
}

void GLRecorder::useFake()
{
    forgetAll();
    m_driver = false;
}

void GLRecorder::useDriver()
{
    forgetAll();
    m_driver = true;
}

void GLRecorder::forgetAll()
{
    clear();
    m_observers.clear();
    m_replacements.clear();
    m_failingLookup = -1;
    fake = {};
}

std::vector<GLCall> GLRecorder::callsTo(const std::set<std::string>& names) const
{
    std::vector<GLCall> found;
    std::copy_if(m_calls.begin(), m_calls.end(), std::back_inserter(found),
                 [&](const GLCall& call) { return names.count(call.name) > 0; });
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

void GLRecorder::observe(const std::string& name, std::function<void(const GLCall&)> observer)
{
    m_observers.emplace(name, std::move(observer));
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

extern "C" {

void (*glXGetProcAddress(const GLubyte* name))(void)
{
    return reinterpret_cast<void (*)()>(
        kestrix::test::GLRecorder::get().lookUp(reinterpret_cast<const char*>(name)));
}

#define KESTRIX_CALL(name) kestrix::test::Recorded<#name, decltype(::name)>::call

void glEnable(GLenum capability)
{
    KESTRIX_CALL(glEnable)(capability);
}

void glDisable(GLenum capability)
{
    KESTRIX_CALL(glDisable)(capability);
}

void glBegin(GLenum mode)
{
    KESTRIX_CALL(glBegin)(mode);
}

void glEnd()
{
    KESTRIX_CALL(glEnd)();
}

void glVertex2f(GLfloat x, GLfloat y)
{
    KESTRIX_CALL(glVertex2f)(x, y);
}

void glTexCoord2f(GLfloat s, GLfloat t)
{
    KESTRIX_CALL(glTexCoord2f)(s, t);
}

void glColor3f(GLfloat red, GLfloat green, GLfloat blue)
{
    KESTRIX_CALL(glColor3f)(red, green, blue);
}

void glTexEnvi(GLenum target, GLenum name, GLint value)
{
    KESTRIX_CALL(glTexEnvi)(target, name, value);
}

void glGetTexEnviv(GLenum target, GLenum name, GLint* out)
{
    KESTRIX_CALL(glGetTexEnviv)(target, name, out);
}

const GLubyte* glGetString(GLenum name)
{
    return KESTRIX_CALL(glGetString)(name);
}

void glGenTextures(GLsizei count, GLuint* names)
{
    KESTRIX_CALL(glGenTextures)(count, names);
}

void glDeleteTextures(GLsizei count, const GLuint* names)
{
    KESTRIX_CALL(glDeleteTextures)(count, names);
}

void glBindTexture(GLenum target, GLuint texture)
{
    KESTRIX_CALL(glBindTexture)(target, texture);
}

void glTexParameteri(GLenum target, GLenum name, GLint value)
{
    KESTRIX_CALL(glTexParameteri)(target, name, value);
}

void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* pixels)
{
    KESTRIX_CALL(glTexImage2D)
    (target, level, internalFormat, width, height, border, format, type, pixels);
}

void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void* pixels)
{
    KESTRIX_CALL(glTexSubImage2D)(target, level, x, y, width, height, format, type, pixels);
}
}
