/// A preview helper of the library, with its statuses checked.
#pragma once

#include "Options.h"

#include "host/Owned.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace preview_host {

/// The helper refuses a frame.
struct FrameRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A helper, from its factory to its last `Release`. The GL context must always be current on the
/// calling thread. Failures are thrown as `std::runtime_error`.
class Preview {
public:
    Preview(HelperKind kind, std::uint32_t preview3D);

    /// Hands over a frame; the helper adds a reference if it needs one. If this throws
    /// `FrameRefused`, the helper keeps the previous frame.
    void setFrame(IKestrixVideoFrame* frame);

    /// How frames of both eyes are shown, from the next frame on.
    void set3DMode(std::uint32_t mode);

    /// Paints the newest frame into the viewport.
    void paint();

private:
    kestrix::host::Owned<IKestrixGLScreenPreviewHelper> m_helper;
};

} // namespace preview_host
