/// Where the newest frame waits between the thread that captures and the one that paints. To be
/// copied.
///
/// With it a helper is called on the GL thread alone. So it does for both helpers, and the capture
/// may go on while a helper ends and another is made, as toolkits want it when a view changes its
/// window: the new one gets the same frame.
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

    /// Replaces the frame; null for no signal. Takes a reference. Any thread.
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
            frame->Release(); // without the lock: a frame's end may take a while
    }

    /// Hands the newest frame to a helper, in front of each paint. `shown` belongs to the helper: 0
    /// when it is made, or initialised anew, and otherwise left alone. A frame that the helper has
    /// is not handed over again, which would be another upload or conversion; no signal is, because
    /// the OpenGL 3 helper is black for one paint only. GL thread.
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
    std::uint64_t m_number = 0; // of the frame, counted from 1
};
