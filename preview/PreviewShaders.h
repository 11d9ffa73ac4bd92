/// GLSL sources of the OpenGL 3 helper.
#pragma once

/// Places the quad, and flips a picture that is stored bottom line first. Inputs vPosition and
/// vTexCoord, uniforms v3DFormat and vFlip.
extern const char kVertexShader[];

/// Unpacks the frame's texels by the pixel format, looks their colours up in the table and
/// interpolates. Uniforms fPixelFormat, fFrameSize, fTex and fLut.
extern const char kFragmentShader[];
