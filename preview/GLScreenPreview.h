/// The preview helper for legacy contexts with the fixed pipeline.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "api/ReferenceCounted.h"
#include "preview/FrameTextureBuffer.h"
#include "preview/ScreenPreviewBase.h"

#include <cstddef>
#include <cstdint>

/// Converts each frame to 8-bit RGBA in `SetFrame`, on the calling thread and with half of the
/// lines or fewer, and draws it as a textured quad.
///
/// There are two slots: one is ready to be painted, and the other is free to be filled. There is no
/// lock: the host must not make two calls at the same time. `InitializeGL`, `PaintGL` and the last
/// `Release` are GL calls. A context of a core profile has no `GL_EXTENSIONS` string: the helper
/// treats it as a context without extensions, and shows nothing in it.
///
/// A frame's sizes and row bytes come from the host and may be wrong. The helper reads them once
/// for each use, and compares them with its plan. It refuses a frame that contradicts itself, and
/// leaves out an eye that does not fit the plan.
///
/// The interface documents what each operation returns, and the GL state that it leaves.
class CGLScreenPreview final : public ReferenceCounted<IKestrixGLScreenPreviewHelper>,
                               private ScreenPreviewBase {
public:
    CGLScreenPreview();

    HRESULT QueryInterface(REFIID id, void** out) override;

    HRESULT InitializeGL() override;
    HRESULT PaintGL() override;
    HRESULT SetFrame(IKestrixVideoFrame* frame) override;
    HRESULT Set3DPreviewFormat(std::uint32_t format) override;

private:
    struct FrameLines;
    struct PicturePlan;
    class TakenSlot;

    /// Deletes the pixel buffers. If there are any, this must be the GL thread, with the context
    /// current. Textures stay until their context is destroyed.
    ~CGLScreenPreview() override;

    /// Draws the eyes of the plan at `destination`. A second eye with another format or colourspace
    /// than the first is left out.
    void DrawFrameToTexture(const PicturePlan& plan, std::byte* destination) const;

    /// Draws one eye. Draws nothing if the frame returns no bytes, or if its sizes are not those of
    /// the plan.
    void drawEye(const PicturePlan& plan, IKestrixVideoFrame* frame, const FrameLines& lines,
                 std::byte* destination) const;

    /// Makes `slot`, or none, the ready slot. The slot that was ready becomes free.
    void makeReady(FrameTextureBuffer* slot);

    /// Puts `slot` at the head of the list of free slots.
    void makeFree(FrameTextureBuffer* slot);

    void deletePixelBuffers() const;

    /// The driver accepts textures of any size.
    bool m_nonPowerOfTwo = false;
    /// The driver has pixel buffers.
    bool m_pixelBuffers = false;
    FrameTextureBuffer m_slots[2];
    /// Contains the picture that is shown. Null shows black.
    FrameTextureBuffer* m_ready = nullptr;
    FrameTextureBuffer* m_free = m_slots;
    /// A `SetFrame` has taken a slot off the list, and calls operations of its frame.
    bool m_slotIsTaken = false;
    /// The code that the host set. A code that is not in `Kestrix3DPreviewFormat` counts as the
    /// default.
    std::uint32_t m_3DFormat = Preview3DDefault;
};
