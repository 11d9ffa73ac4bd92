/// What a helper decides about a frame, and why.
#pragma once

#include "FrameLayout.h"

#include <string>

namespace preview_host {

/// Whether a helper shows a frame, and how.
struct Decision {
    bool isShown;
    /// One line.
    std::string words;
};

/// The words are the colourspace that the helper assumes for `frame`, the reason, and the
/// conversion or colour table that it uses; or the reason why it shows nothing.
///
/// The code of the helpers makes these decisions. The helpers differ: if the frame states no
/// colourspace, the fixed-function helper decides by the width alone.
Decision decisionFor(HelperKind helper, IKestrixVideoFrame* frame);

/// Whether a helper shows frames of this layout.
bool canShow(HelperKind helper, const FrameLayout& layout);

/// The names of the helpers that show a format in at least one colourspace, in columns: "gl gl3".
std::string helpersFor(std::uint32_t format);

} // namespace preview_host
