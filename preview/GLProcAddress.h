/// Lookup of a GL entry point by name. Includes the X11 headers, so include it in source files
/// only.
#pragma once

#include <GL/gl.h>
#include <GL/glx.h>

/// The entry point `name`, null if the GL library does not have it. Needs no context.
template<class Function>
Function glProcAddress(const char* name)
{
    return reinterpret_cast<Function>(glXGetProcAddress(reinterpret_cast<const GLubyte*>(name)));
}
