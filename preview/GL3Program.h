/// The shader program of the OpenGL 3 helper.
#pragma once

#include "preview/GL3Functions.h"

#include <cstddef>
#include <cstdint>

/// Builds the two shaders, and sets their inputs.
///
/// GL thread, the context current, entry points looked up. Names are plain and not owned by
/// handles, because their context may no longer exist when this object is destroyed.
class GL3Program {
public:
    /// Compiles and links, and ignores an existing program. False if a shader does not build: the
    /// objects made until then stay until `cleanup`.
    bool build();

    /// Deletes program and shaders. Allowed at any time, also before `build`.
    void cleanup();

    /// Enables the attribute `name` and points it at floats of the bound array buffer: `components`
    /// of them, `offset` bytes into each vertex of `stride` bytes.
    void setAttribute(const char* name, GLint components, std::size_t stride,
                      std::size_t offset) const;

    /// Sets the texture unit of the sampler `name`. Leaves program 0 in use.
    void setSampler(const char* name, GLint unit) const;

    /// Looks up the locations of the uniforms that `setPicture` sets.
    void findUniforms();

    void use() const { gl3.UseProgram(m_program); }

    /// Sets the uniforms that describe the picture. The program is in use. `pixelFormat` is the
    /// frame's code; width and height are in pixels of the texture's picture; `format3D` is a
    /// `Preview3DFormat`.
    void setPicture(std::uint32_t pixelFormat, GLfloat width, GLfloat height, bool flip,
                    GLint format3D) const;

private:
    GLuint m_program = 0;
    GLuint m_vertexShader = 0;
    GLuint m_fragmentShader = 0;
    GLint m_pixelFormatLocation = 0;
    GLint m_frameSizeLocation = 0;
    GLint m_3DFormatLocation = 0;
    GLint m_flipLocation = 0;
};
