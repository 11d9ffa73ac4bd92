/// Is loaded before a host and watches the buffer objects that the preview helper makes. Each one
/// must be deleted while a context is current. Complaints go to standard error.
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glx.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <set>

namespace {

using Function = void (*)();

Function realEntryPoint(const char* name)
{
    static const auto lookUp =
        reinterpret_cast<decltype(&glXGetProcAddress)>(dlsym(RTLD_NEXT, "glXGetProcAddress"));
    return lookUp(reinterpret_cast<const GLubyte*>(name));
}

template<class FUNCTION>
FUNCTION real(const char* name)
{
    return reinterpret_cast<FUNCTION>(realEntryPoint(name));
}

struct Buffers {
    std::multiset<GLuint> names;
    ~Buffers()
    {
        if (!names.empty())
            std::fprintf(stderr, "%zu buffers were never deleted\n", names.size());
    }
} s_buffers;

void genBuffers(GLsizei count, GLuint* names)
{
    real<PFNGLGENBUFFERSPROC>("glGenBuffers")(count, names);
    s_buffers.names.insert(names, names + count);
}

void deleteBuffers(GLsizei count, const GLuint* names)
{
    for (GLsizei i = 0; i < count; ++i) {
        const auto found = s_buffers.names.find(names[i]);
        if (found == s_buffers.names.end())
            continue;
        s_buffers.names.erase(found);
        if (!glGetString(GL_VERSION))
            std::fprintf(stderr, "buffer %u was deleted without a context\n", names[i]);
    }
    real<PFNGLDELETEBUFFERSPROC>("glDeleteBuffers")(count, names);
}

} // namespace

/// The preview library links this function by name to look up entry points.
extern "C" Function glXGetProcAddress(const GLubyte* name)
{
    const auto* text = reinterpret_cast<const char*>(name);
    if (std::strcmp(text, "glGenBuffers") == 0)
        return reinterpret_cast<Function>(&genBuffers);
    if (std::strcmp(text, "glDeleteBuffers") == 0)
        return reinterpret_cast<Function>(&deleteBuffers);
    return realEntryPoint(text);
}
