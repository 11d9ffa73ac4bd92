/// A preview helper of the library, with its calls timed and their answers checked.
#pragma once

#include "Options.h"

#include "host/Owned.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace preview_host {

/// Times calls by the clock.
class Stopwatch {
public:
    template<class CALL>
    auto time(CALL&& call)
    {
        const auto start = std::chrono::steady_clock::now();
        const auto result = call();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        ++m_calls;
        m_total += took.count();
        m_longest = std::max(m_longest, took.count());
        return result;
    }

    /// In milliseconds.
    double mean() const { return m_calls ? m_total / static_cast<double>(m_calls) : 0; }
    double longest() const { return m_longest; }

private:
    std::uint64_t m_calls = 0;
    double m_total = 0;
    double m_longest = 0;
};

/// A helper from its factory to its last `Release`. The GL context has to be current on the calling
/// thread all the time. Failures are thrown as `std::runtime_error`.
class Preview {
public:
    Preview(HelperKind kind, std::uint32_t preview3D);

    /// Hands a frame over; the helper takes a reference if it needs one.
    void setFrame(IKestrixVideoFrame* frame);

    /// Paints the newest frame into the viewport.
    void paint();

    const Stopwatch& setFrameTime() const { return m_setFrameTime; }
    const Stopwatch& paintTime() const { return m_paintTime; }

private:
    kestrix::host::Owned<IKestrixGLScreenPreviewHelper> m_helper;
    Stopwatch m_setFrameTime;
    Stopwatch m_paintTime;
};

} // namespace preview_host
