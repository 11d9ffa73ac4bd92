/// A picture of the fixed-function helper on its way to the screen.
#pragma once

#include <GL/gl.h>

#include <cstdint>

/// A slot for one picture in 8-bit RGBA: its memory, its texture, and the pixel buffer between the
/// two.
///
/// Owns nothing by itself: the helper decides when a slot's memory and GL objects are deleted,
/// because it knows whether their context is current. All operations except `ReAllocTexture` and
/// `setSizes` are GL calls. No GL error is read.
struct FrameTextureBuffer {
    static constexpr unsigned kBytesPerPixel = 4;

    /// Grows the memory to `width` by `height` pixels if it is smaller. New memory is black. False
    /// if allocation fails; the slot then has no memory.
    bool ReAllocTexture(unsigned width, unsigned height);

    /// Notes that the memory has a new picture, its size, and the size of the texture for it.
    void setSizes(unsigned pictureWidth, unsigned pictureHeight, unsigned newTextureWidth,
                  unsigned newTextureHeight);

    /// Makes the pixel buffer. Only after `wglInitGLExtProcs` has returned true.
    void makePixelBuffer();
    /// Deletes the pixel buffer, if there is one. The name stays in the slot.
    void deletePixelBuffer() const;

    /// Whether the current context takes a texture of the picture's size.
    [[nodiscard]] bool fits() const;

    /// Only if `fits` is true. Uploads the picture if it is newer than the texture. In this case it
    /// leaves the texture bound, and `GL_PIXEL_UNPACK_BUFFER` 0.
    void upload(bool throughPixelBuffer);

    /// Draws the texture over the viewport, the picture's first line at the top. The current colour
    /// has no effect. Restores `GL_TEXTURE_ENV_MODE`; leaves no texture bound.
    void draw() const;

    /// The next in the list of free slots.
    FrameTextureBuffer* next = nullptr;
    /// 0 until the first paint.
    GLuint texture = 0;
    /// The picture in memory is newer than the texture.
    bool updateTexture = false;
    /// The texture's size or format is not the picture's.
    bool reallocateTexture = false;
    /// 16-byte aligned, `size` bytes; never shrinks.
    void* bytes = nullptr;
    std::uint32_t size = 0;
    std::uint32_t textureWidth = 0;
    std::uint32_t textureHeight = 0;
    GLenum format = 0;
    GLenum type = 0;
    /// The part of the texture that contains the picture.
    std::uint32_t frameWidth = 0;
    std::uint32_t frameHeight = 0;
    GLuint pixelBuffer = 0;

private:
    /// Uploads to the bound texture. `pixels` is an offset if a pixel buffer is bound.
    void uploadPixels(bool makeStorage, const void* pixels) const;
    /// False if the buffer cannot be mapped; in this case nothing was uploaded.
    bool uploadThroughPixelBuffer(bool makeStorage) const;
};

/// Looks up the GL entry points that pixel buffers need, once per process. True if all exist. Any
/// thread.
bool wglInitGLExtProcs();
