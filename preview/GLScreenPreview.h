/// The preview helper for legacy contexts with the fixed pipeline.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "preview/ScreenPreviewBase.h"

#include <GL/gl.h>

#include <atomic>
#include <cstdint>

/// A picture on its way to the screen: its memory, its texture, and the buffer between the two.
struct FrameTextureBuffer {
    /// The next in the list of free slots.
    FrameTextureBuffer* next = nullptr;
    /// 0 until first painted.
    GLuint texture = 0;
    /// The picture in memory is newer than the texture.
    bool updateTexture = false;
    /// The texture's size or format is not the picture's.
    bool reallocateTexture = false;
    /// 16-byte aligned, `size` bytes; grows only.
    void* bytes = nullptr;
    std::uint32_t size = 0;
    std::uint32_t textureWidth = 0;
    std::uint32_t textureHeight = 0;
    GLenum format = 0;
    GLenum type = 0;
    /// The part of the texture that holds the picture.
    std::uint32_t frameWidth = 0;
    std::uint32_t frameHeight = 0;
    GLuint pixelBuffer = 0;
};

/// Converts each frame to 8-bit RGBA in `SetFrame`, on the thread that calls it and at half the
/// lines or less, and draws it as a textured quad.
///
/// Two slots take turns: one is ready to be painted while the other is free to be filled. There is
/// no lock: the host sees to it that no two calls run at once. `InitializeGL`, `PaintGL` and the
/// last `Release` are GL calls. A context without a `GL_EXTENSIONS` string, of a core profile that
/// is, counts as one without extensions, and shows nothing.
///
/// A frame's sizes and row bytes are the host's word. They are asked for once a use and held
/// against the slot, so that a frame that changes or contradicts itself is refused or left out.
///
/// What each operation answers, and the GL state that it leaves, is told with the interface.
class CGLScreenPreview final : public IKestrixGLScreenPreviewHelper, private ScreenPreviewBase {
public:
    CGLScreenPreview();

    CGLScreenPreview(const CGLScreenPreview&) = delete;
    CGLScreenPreview& operator=(const CGLScreenPreview&) = delete;

    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;

    HRESULT InitializeGL() override;
    HRESULT PaintGL() override;
    HRESULT SetFrame(IKestrixVideoFrame* frame) override;
    HRESULT Set3DPreviewFormat(std::uint32_t format) override;

private:
    /// Deletes the pixel buffers, if there are any: the GL thread then, the context current.
    /// Textures stay until their context goes.
    ~CGLScreenPreview() override;

    /// Makes room in `slot` for `height` rows of `width` pixels, and tells the bytes of a row.
    /// False where there is no memory.
    static bool ReAllocTexture(FrameTextureBuffer* slot, unsigned* rowBytes, unsigned width,
                               unsigned bytesPerPixel, unsigned height);

    /// A frame's sizes and how its lines lie in memory.
    struct FrameLines;

    /// Draws one frame, or both eyes as the 3D format says, into `destination`, taking every
    /// `lineStep`th line. Nothing is drawn of an eye that gives no bytes or is not of `width`
    /// pixels by `height` lines, nor of a second one that is not of the first's format and
    /// colourspace.
    void DrawFrameToTexture(IKestrixVideoFrame* left, const FrameLines& leftLines,
                            IKestrixVideoFrame* right, void* destination, unsigned width,
                            unsigned height, unsigned destinationRowBytes, unsigned bytesPerPixel,
                            int lineStep);

    /// Draws one eye.
    void drawEye(IKestrixVideoFrame* frame, const FrameLines& lines, unsigned width,
                 unsigned height, void* destination, unsigned destinationRowBytes, int lineStep);

    /// Puts `slot`, or none, in the place of the ready slot, which becomes free.
    void makeReady(FrameTextureBuffer* slot);

    void updateTexture(FrameTextureBuffer& slot) const;
    /// False where the buffer can't be mapped and nothing was uploaded.
    static bool uploadThroughPixelBuffer(const FrameTextureBuffer& slot, bool makeStorage);
    void deletePixelBuffers();

    std::atomic<std::uint64_t> m_referenceCount{1};
    /// The driver takes textures of any size.
    bool m_nonPowerOfTwo = false;
    /// The driver has pixel buffers.
    bool m_pixelBuffers = false;
    FrameTextureBuffer m_slots[2];
    /// Holds the picture on show; black is shown while there is none.
    FrameTextureBuffer* m_ready = nullptr;
    FrameTextureBuffer* m_free = m_slots;
    /// As the host gave it: a code that is none of `Kestrix3DPreviewFormat` counts as the default.
    std::uint32_t m_3DFormat = Preview3DDefault;
};
