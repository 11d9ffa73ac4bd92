/// Stores the newest frame between the thread that captures and the thread that paints. Copy it
/// into your host.
///
/// All calls to the helper are made on the GL thread. So the slot works with both helpers. The
/// capture can also continue while one helper is destroyed and another is made, which happens when
/// a view moves to another window: the new helper gets the same frame.
#pragma once

#include <KestrixPreviewAPI.h>

#include <cstdint>
#include <mutex>
#include <utility>

class FrameSlot {
public:
    FrameSlot() = default;
    ~FrameSlot() { put(nullptr); }
    FrameSlot(const FrameSlot&) = delete;
    FrameSlot& operator=(const FrameSlot&) = delete;

    /// Replaces the frame; null for no signal. Adds a reference. Any thread.
    void put(IKestrixVideoFrame* frame)
    {
        if (frame)
            frame->AddRef();
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            std::swap(frame, m_frame);
            ++m_number;
        }
        if (frame)
            frame->Release(); // without the lock, because it may take a while
    }

    /// Hands the newest frame to a helper. Call it before each paint, on the GL thread. `shown` is
    /// the number of the frame that this helper has: set it to 0 after the helper is made or
    /// initialised again, and do not change it otherwise.
    ///
    /// If the helper has the newest frame already, nothing is done, because the helper would upload
    /// or convert the frame again. If there is no frame, null is handed over before every paint,
    /// because the OpenGL 3 helper paints black only once and then shows its last frame again.
    HRESULT handTo(IKestrixGLScreenPreviewHelper* helper, std::uint64_t& shown)
    {
        IKestrixVideoFrame* frame = nullptr;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_frame && shown == m_number)
                return S_OK;
            shown = m_number;
            frame = m_frame;
            if (frame)
                frame->AddRef();
        }
        const HRESULT status = helper->SetFrame(frame);
        if (frame)
            frame->Release(); // the helper has a reference of its own
        return status;
    }

private:
    std::mutex m_mutex;
    IKestrixVideoFrame* m_frame = nullptr;
    std::uint64_t m_number = 0; // number of the frame, from 1
};
