/// The largest texture that a context takes.
#pragma once

#include <GL/gl.h>

/// Whether the current context takes a 2D texture of this size. GL refuses a texture that is too
/// large, but some drivers do so only after they have computed its bytes, and end the process if
/// the number overflows.
///
/// Drivers with OpenGL 3.2 take 8192 texels per side at least. The limit is asked for only if a
/// side is longer, so usual frames cost no GL call.
inline bool textureFits(GLsizei width, GLsizei height, decltype(&::glGetIntegerv) getIntegerv)
{
    GLint longest = 8192;
    if (width > longest || height > longest)
        getIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    return width <= longest && height <= longest;
}
