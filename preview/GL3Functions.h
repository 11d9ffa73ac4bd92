/// The GL entry points of the OpenGL 3 helper.
#pragma once

#include <GL/gl.h>
#include <GL/glext.h>

/// Every entry point of the helper, in the order of lookup: the name without `gl`, and the type.
/// glext.h has no types for the entry points of GL 1.0 and 1.1.
#define KESTRIX_GL3_FUNCTIONS(FUNCTION)                                                            \
    FUNCTION(GetError, decltype(&::glGetError))                                                    \
    FUNCTION(GetIntegerv, decltype(&::glGetIntegerv))                                              \
    FUNCTION(ClearColor, decltype(&::glClearColor))                                                \
    FUNCTION(Clear, decltype(&::glClear))                                                          \
    FUNCTION(DrawElements, decltype(&::glDrawElements))                                            \
    FUNCTION(GenVertexArrays, PFNGLGENVERTEXARRAYSPROC)                                            \
    FUNCTION(BindVertexArray, PFNGLBINDVERTEXARRAYPROC)                                            \
    FUNCTION(DeleteVertexArrays, PFNGLDELETEVERTEXARRAYSPROC)                                      \
    FUNCTION(GenTextures, decltype(&::glGenTextures))                                              \
    FUNCTION(DeleteTextures, decltype(&::glDeleteTextures))                                        \
    FUNCTION(BindTexture, decltype(&::glBindTexture))                                              \
    FUNCTION(ActiveTexture, PFNGLACTIVETEXTUREPROC)                                                \
    FUNCTION(TexImage2D, decltype(&::glTexImage2D))                                                \
    FUNCTION(TexSubImage2D, decltype(&::glTexSubImage2D))                                          \
    FUNCTION(TexImage3D, PFNGLTEXIMAGE3DPROC)                                                      \
    FUNCTION(TexSubImage3D, PFNGLTEXSUBIMAGE3DPROC)                                                \
    FUNCTION(TexParameteri, decltype(&::glTexParameteri))                                          \
    FUNCTION(EnableVertexAttribArray, PFNGLENABLEVERTEXATTRIBARRAYPROC)                            \
    FUNCTION(GetAttribLocation, PFNGLGETATTRIBLOCATIONPROC)                                        \
    FUNCTION(VertexAttribPointer, PFNGLVERTEXATTRIBPOINTERPROC)                                    \
    FUNCTION(PixelStorei, decltype(&::glPixelStorei))                                              \
    FUNCTION(CreateProgram, PFNGLCREATEPROGRAMPROC)                                                \
    FUNCTION(LinkProgram, PFNGLLINKPROGRAMPROC)                                                    \
    FUNCTION(DeleteProgram, PFNGLDELETEPROGRAMPROC)                                                \
    FUNCTION(UseProgram, PFNGLUSEPROGRAMPROC)                                                      \
    FUNCTION(GetProgramInfoLog, PFNGLGETPROGRAMINFOLOGPROC)                                        \
    FUNCTION(GetProgramiv, PFNGLGETPROGRAMIVPROC)                                                  \
    FUNCTION(CreateShader, PFNGLCREATESHADERPROC)                                                  \
    FUNCTION(ShaderSource, PFNGLSHADERSOURCEPROC)                                                  \
    FUNCTION(CompileShader, PFNGLCOMPILESHADERPROC)                                                \
    FUNCTION(AttachShader, PFNGLATTACHSHADERPROC)                                                  \
    FUNCTION(DeleteShader, PFNGLDELETESHADERPROC)                                                  \
    FUNCTION(GetShaderInfoLog, PFNGLGETSHADERINFOLOGPROC)                                          \
    FUNCTION(GetShaderiv, PFNGLGETSHADERIVPROC)                                                    \
    FUNCTION(GetUniformLocation, PFNGLGETUNIFORMLOCATIONPROC)                                      \
    FUNCTION(Uniform1i, PFNGLUNIFORM1IPROC)                                                        \
    FUNCTION(Uniform1ui, PFNGLUNIFORM1UIPROC)                                                      \
    FUNCTION(Uniform2f, PFNGLUNIFORM2FPROC)                                                        \
    FUNCTION(GenBuffers, PFNGLGENBUFFERSPROC)                                                      \
    FUNCTION(BufferData, PFNGLBUFFERDATAPROC)                                                      \
    FUNCTION(DeleteBuffers, PFNGLDELETEBUFFERSPROC)                                                \
    FUNCTION(BindBuffer, PFNGLBINDBUFFERPROC)                                                      \
    FUNCTION(FenceSync, PFNGLFENCESYNCPROC)                                                        \
    FUNCTION(ClientWaitSync, PFNGLCLIENTWAITSYNCPROC)                                              \
    FUNCTION(DeleteSync, PFNGLDELETESYNCPROC)

/// The entry points as members: `gl3.GenTextures` is `glGenTextures`, null until looked up.
struct GL3Functions {
#define KESTRIX_GL3_MEMBER(name, type) type name = nullptr;
    KESTRIX_GL3_FUNCTIONS(KESTRIX_GL3_MEMBER)
#undef KESTRIX_GL3_MEMBER

    /// Looks up the entry points that are still null, in order. Stops at the first that the GL
    /// library does not have. True if all exist. Any thread.
    bool load();

    /// Whether a `load` has found all of them. Any thread.
    [[nodiscard]] bool loaded() const;
};

/// One set for all helpers of the process.
extern GL3Functions gl3;
