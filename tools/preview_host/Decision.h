/// What a helper decides about a frame, and why.
#pragma once

#include "Options.h"

#include <string>

namespace preview_host {

/// One line: the colourspace that the helper assumes for `frame`, the reason, and the conversion or
/// colour table that it uses.
///
/// The code of the helpers makes these decisions. The helpers differ: if the frame states no
/// colourspace, the fixed-function helper decides by the width alone.
std::string decisionFor(HelperKind helper, IKestrixVideoFrame* frame);

} // namespace preview_host
