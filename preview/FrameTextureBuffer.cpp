/// Keeps, uploads and draws the pictures of the fixed-function helper.
#include "preview/FrameTextureBuffer.h"

#include "preview/GLProcAddress.h"
#include "preview/TextureSize.h"

#include <GL/glext.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <type_traits>

namespace {

constexpr std::size_t kAlignment = 16;

// What pixel buffers need. The GL library exports all other entry points that the helper calls.
PFNGLGENBUFFERSPROC s_glGenBuffers;
PFNGLBINDBUFFERPROC s_glBindBuffer;
PFNGLBUFFERDATAPROC s_glBufferData;
PFNGLBUFFERSUBDATAPROC s_glBufferSubData;
PFNGLDELETEBUFFERSPROC s_glDeleteBuffers;
PFNGLGETBUFFERPARAMETERIVPROC s_glGetBufferParameteriv;
PFNGLMAPBUFFERPROC s_glMapBuffer;
PFNGLUNMAPBUFFERPROC s_glUnmapBuffer;

/// Helpers of several contexts may be initialised on several threads.
std::mutex s_procsMutex;

} // namespace

// The entry points are only useful together. If one is missing, the first is set to null, and the
// next call looks them up again. After a call that returned true, nothing writes to them any more.
bool wglInitGLExtProcs()
{
    const std::lock_guard lock(s_procsMutex);
    if (s_glGenBuffers)
        return true;

    bool found = true;
    const auto lookUp = [&found](auto& function, const char* name) {
        function = glProcAddress<std::remove_reference_t<decltype(function)>>(name);
        found = found && function;
    };
    lookUp(s_glGenBuffers, "glGenBuffers");
    lookUp(s_glBindBuffer, "glBindBuffer");
    lookUp(s_glBufferData, "glBufferData");
    lookUp(s_glBufferSubData, "glBufferSubData");
    lookUp(s_glDeleteBuffers, "glDeleteBuffers");
    lookUp(s_glGetBufferParameteriv, "glGetBufferParameteriv");
    lookUp(s_glMapBuffer, "glMapBuffer");
    lookUp(s_glUnmapBuffer, "glUnmapBuffer");
    if (!found)
        s_glGenBuffers = nullptr;
    return found;
}

bool FrameTextureBuffer::ReAllocTexture(unsigned width, unsigned height)
{
    const std::uint64_t needed = std::uint64_t{width} * kBytesPerPixel * height;
    if (bytes && size >= needed)
        return true;

    std::free(bytes);
    bytes = nullptr;
    size = 0;
    if (needed > std::numeric_limits<std::uint32_t>::max())
        return false;
    void* memory = nullptr;
    if (posix_memalign(&memory, kAlignment, needed) != 0)
        return false;
    // The slot may be shown before pictures have covered all of it.
    std::memset(memory, 0, needed);
    bytes = memory;
    size = static_cast<std::uint32_t>(needed);
    return true;
}

void FrameTextureBuffer::setSizes(unsigned pictureWidth, unsigned pictureHeight,
                                  unsigned newTextureWidth, unsigned newTextureHeight)
{
    updateTexture = true;
    frameWidth = pictureWidth;
    frameHeight = pictureHeight;
    if (textureWidth == newTextureWidth && textureHeight == newTextureHeight && format == GL_RGBA &&
        type == GL_UNSIGNED_BYTE)
        return;
    reallocateTexture = true;
    textureWidth = newTextureWidth;
    textureHeight = newTextureHeight;
    format = GL_RGBA;
    type = GL_UNSIGNED_BYTE;
}

void FrameTextureBuffer::makePixelBuffer()
{
    s_glGenBuffers(1, &pixelBuffer);
}

void FrameTextureBuffer::deletePixelBuffer() const
{
    if (pixelBuffer)
        s_glDeleteBuffers(1, &pixelBuffer);
}

bool FrameTextureBuffer::fits() const
{
    return textureFits(static_cast<GLsizei>(textureWidth), static_cast<GLsizei>(textureHeight),
                       &glGetIntegerv);
}

void FrameTextureBuffer::upload(bool throughPixelBuffer)
{
    if (!updateTexture)
        return;
    updateTexture = false;
    if (reallocateTexture) {
        reallocateTexture = false;
        if (texture)
            glDeleteTextures(1, &texture);
        texture = 0;
    }

    const bool makeStorage = texture == 0;
    if (makeStorage)
        glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (makeStorage) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
    }

    if (!throughPixelBuffer)
        uploadPixels(makeStorage, bytes);
    else if (!uploadThroughPixelBuffer(makeStorage) && makeStorage)
        reallocateTexture = true; // it has no storage yet
}

bool FrameTextureBuffer::uploadThroughPixelBuffer(bool makeStorage) const
{
    s_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pixelBuffer);
    // New storage each time, so that the driver need not wait for an upload in progress.
    s_glBufferData(GL_PIXEL_UNPACK_BUFFER, size, nullptr, GL_STREAM_DRAW);
    void* const mapped = s_glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY);
    if (mapped) {
        // The rows below the picture are left out.
        const std::size_t rowBytes = size / textureHeight;
        std::memcpy(mapped, bytes, rowBytes * frameHeight);
        s_glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
        uploadPixels(makeStorage, nullptr);
    }
    s_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    return mapped != nullptr;
}

void FrameTextureBuffer::uploadPixels(bool makeStorage, const void* pixels) const
{
    const auto width = static_cast<GLsizei>(textureWidth);
    const auto height = static_cast<GLsizei>(textureHeight);
    if (makeStorage)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, width, height, 0, format, type, pixels);
    else
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, format, type, pixels);
}

void FrameTextureBuffer::draw() const
{
    const GLfloat s = static_cast<GLfloat>(frameWidth) / static_cast<GLfloat>(textureWidth);
    const GLfloat t = static_cast<GLfloat>(frameHeight) / static_cast<GLfloat>(textureHeight);

    GLint environmentMode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &environmentMode);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL);
    glBindTexture(GL_TEXTURE_2D, texture);

    glBegin(GL_QUADS);
    glTexCoord2f(0, t);
    glVertex2f(-1, -1);
    glTexCoord2f(s, t);
    glVertex2f(1, -1);
    glTexCoord2f(s, 0);
    glVertex2f(1, 1);
    glTexCoord2f(0, 0);
    glVertex2f(-1, 1);
    glEnd();

    glBindTexture(GL_TEXTURE_2D, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, environmentMode);
}
