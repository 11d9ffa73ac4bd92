/// Look-up of a GL entry point by name. Brings in the X11 headers: for source files only.
#pragma once

#include <GL/gl.h>
#include <GL/glx.h>

/// The entry point `name`, null where the GL library has none. No context is needed.
template<class Function>
Function glProcAddress(const char* name)
{
    return reinterpret_cast<Function>(glXGetProcAddress(reinterpret_cast<const GLubyte*>(name)));
}
