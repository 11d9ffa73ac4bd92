/// GLSL sources of the OpenGL 3 helper.
#pragma once

/// Places the quad and turns a bottom-up picture over. Inputs vPosition and vTexCoord, uniforms
/// v3DFormat and vFlip.
extern const char kVertexShader[];

/// Unpacks the frame's texels by the pixel format, colours them by the table and interpolates.
/// Uniforms fPixelFormat, fFrameSize, fTex and fLut.
extern const char kFragmentShader[];
