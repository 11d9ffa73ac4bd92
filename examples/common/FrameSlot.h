/// Where the newest frame waits between the thread that captures and the one that paints. To be
/// copied.
///
/// With it a helper is called on the GL thread alone. So it does for both helpers, and the capture
/// may go on while a helper ends and another is made, as toolkits want it when a view changes its
/// window: the new one gets the same frame.
#pragma once

#include <KestrixPreviewAPI.h>

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
        }
        if (frame)
            frame->Release(); // without the lock: a frame's end may take a while
    }

    /// The frame, with a reference that the caller gives back, or null. Any thread.
    IKestrixVideoFrame* newest()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_frame)
            m_frame->AddRef();
        return m_frame;
    }

private:
    std::mutex m_mutex;
    IKestrixVideoFrame* m_frame = nullptr;
};
