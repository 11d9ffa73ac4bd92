/// The preview helper for contexts of OpenGL 3.2 and later.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI.h"
#include "api/ReferenceCounted.h"

#include <cstdint>
#include <memory>
#include <mutex>

/// How the two eyes of a stereoscopic frame are shown. The shaders know these values.
enum class Preview3DFormat : std::int32_t {
    LeftOnly = 0,
    RightOnly = 1,
    SideBySide = 2,
    TopBottom = 3,
};

/// Uploads the bytes of a frame as they are, in every format. The shaders unpack them and convert
/// their colours.
///
/// `SetFrame` and `Set3DPreviewFormat` may be called on any thread. Under the mutex, they only
/// store what to do next. The `Renderer`, which belongs to the GL thread, does all GL work.
/// `PaintGL` makes its GL calls without the mutex, so `SetFrame` never waits for the GPU.
///
/// The interface documents what each operation returns, and the GL state that it leaves.
class CGL3ScreenPreview final : public ReferenceCounted<IKestrixGLScreenPreviewHelper> {
public:
    /// Makes the colour tables if the process has none yet. May throw `std::bad_alloc`.
    CGL3ScreenPreview();

    HRESULT QueryInterface(REFIID id, void** out) override;

    HRESULT InitializeGL() override;
    HRESULT PaintGL() override;
    HRESULT SetFrame(IKestrixVideoFrame* frame) override;
    HRESULT Set3DPreviewFormat(std::uint32_t format) override;

private:
    class Renderer;

    /// Deletes the GL objects: the GL thread, the context current.
    ~CGL3ScreenPreview() override;

    std::unique_ptr<Renderer> m_renderer;

    /// The frame that waits to be painted.
    InterfaceRef<IKestrixVideoFrame> m_frame;
    /// `SetFrame` was called after the last paint.
    bool m_frameChanged = false;
    Preview3DFormat m_3DFormat = Preview3DFormat::TopBottom;
    /// Guards the four fields around it.
    std::mutex m_mutex;
    /// `Renderer::init` has succeeded once.
    bool m_initialised = false;
};
