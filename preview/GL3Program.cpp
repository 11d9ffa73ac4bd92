/// Builds the shader program of the OpenGL 3 helper and sets its inputs.
#include "preview/GL3Program.h"

#include "preview/PreviewShaders.h"

#include <memory>
#include <new>

namespace {

/// Reads the log of a failed build, so that tools which trace GL calls show it; the library itself
/// prints no text. `getInfoLog` is the entry point for a shader's or a program's log.
void fetchLog(GLuint name, PFNGLGETSHADERINFOLOGPROC getInfoLog)
{
    // For a program this is a GL error, and the length stays 0.
    GLint length = 0;
    gl3.GetShaderiv(name, GL_INFO_LOG_LENGTH, &length);
    if (length <= 0)
        return;
    const std::unique_ptr<GLchar[]> log(new (std::nothrow)
                                            GLchar[static_cast<std::size_t>(length)]);
    if (log)
        getInfoLog(name, length, nullptr, log.get());
}

bool compileShader(GLuint& shader, GLenum type, const GLchar* source)
{
    shader = gl3.CreateShader(type);
    gl3.ShaderSource(shader, 1, &source, nullptr);
    gl3.CompileShader(shader);

    GLint compiled = GL_FALSE;
    gl3.GetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == GL_FALSE)
        fetchLog(shader, gl3.GetShaderInfoLog);
    return compiled != GL_FALSE;
}

} // namespace

bool GL3Program::build()
{
    if (!compileShader(m_vertexShader, GL_VERTEX_SHADER, kVertexShader) ||
        !compileShader(m_fragmentShader, GL_FRAGMENT_SHADER, kFragmentShader))
        return false;

    m_program = gl3.CreateProgram();
    gl3.AttachShader(m_program, m_vertexShader);
    gl3.AttachShader(m_program, m_fragmentShader);
    gl3.LinkProgram(m_program);

    GLint linked = GL_FALSE;
    gl3.GetProgramiv(m_program, GL_LINK_STATUS, &linked);
    if (linked == GL_FALSE)
        fetchLog(m_program, gl3.GetProgramInfoLog);
    return linked != GL_FALSE;
}

void GL3Program::cleanup()
{
    m_pixelFormatLocation = 0;
    m_frameSizeLocation = 0;
    gl3.DeleteProgram(m_program);
    m_program = 0;
    gl3.DeleteShader(m_fragmentShader);
    m_fragmentShader = 0;
    gl3.DeleteShader(m_vertexShader);
    m_vertexShader = 0;
}

void GL3Program::setAttribute(const char* name, GLint components, std::size_t stride,
                              std::size_t offset) const
{
    const auto location = static_cast<GLuint>(gl3.GetAttribLocation(m_program, name));
    gl3.EnableVertexAttribArray(location);
    gl3.VertexAttribPointer(
        location, components, GL_FLOAT, GL_TRUE, static_cast<GLsizei>(stride),
        reinterpret_cast<const void*>(offset)); // NOLINT(performance-no-int-to-ptr): as GL expects
    gl3.EnableVertexAttribArray(location);
}

void GL3Program::setSampler(const char* name, GLint unit) const
{
    gl3.UseProgram(m_program);
    gl3.Uniform1i(gl3.GetUniformLocation(m_program, name), unit);
    gl3.UseProgram(0);
}

void GL3Program::findUniforms()
{
    m_pixelFormatLocation = gl3.GetUniformLocation(m_program, "fPixelFormat");
    m_frameSizeLocation = gl3.GetUniformLocation(m_program, "fFrameSize");
    m_3DFormatLocation = gl3.GetUniformLocation(m_program, "v3DFormat");
    m_flipLocation = gl3.GetUniformLocation(m_program, "vFlip");
}

void GL3Program::setPicture(std::uint32_t pixelFormat, GLfloat width, GLfloat height, bool flip,
                            GLint format3D) const
{
    gl3.Uniform1ui(m_pixelFormatLocation, pixelFormat);
    gl3.Uniform2f(m_frameSizeLocation, width, height);
    gl3.Uniform1i(m_flipLocation, flip ? 1 : 0);
    gl3.Uniform1i(m_3DFormatLocation, format3D);
}
