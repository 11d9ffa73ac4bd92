/// The preview helper for contexts of OpenGL 3.2 and later.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI.h"
#include "api/ReferenceCounted.h"

#include <cstdint>
#include <memory>
#include <mutex>

/// How the two eyes of a stereoscopic frame are shown. The values are those that the shaders know.
enum class Preview3DFormat : std::int32_t {
    LeftOnly = 0,
    RightOnly = 1,
    SideBySide = 2,
    TopBottom = 3,
};

/// Uploads a frame's own bytes, whatever their format, and lets the shaders unpack and colour them.
///
/// `SetFrame` and `Set3DPreviewFormat` may come from any thread and only note what is to be done
/// next, under the one mutex. All GL work is the `Renderer`'s, which belongs to the GL thread. No
/// GL call of a paint is made under the mutex, so a frame's delivery never waits for the GPU.
///
/// What each operation answers, and the GL state that it leaves, is told with the interface.
class CGL3ScreenPreview final : public ReferenceCounted<IKestrixGLScreenPreviewHelper> {
public:
    /// Makes the colour tables if this is the process's first. May throw `std::bad_alloc`.
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
    /// No paint has dealt with the last `SetFrame` yet.
    bool m_frameChanged = false;
    Preview3DFormat m_3DFormat = Preview3DFormat::TopBottom;
    /// Guards the four fields around it.
    std::mutex m_mutex;
    /// `Renderer::init` has succeeded once.
    bool m_initialised = false;
};
