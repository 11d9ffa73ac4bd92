/// What a helper decides about a frame, and why.
#pragma once

#include "Options.h"

#include <string>

namespace preview_host {

/// One line: the colourspace that the helper takes `frame` to be in, the reason, and the conversion
/// or colour table that follows.
///
/// The helpers' own code decides here too. The helpers differ: if the frame states no colourspace,
/// the fixed-function one decides by the width alone.
std::string decisionFor(HelperKind helper, IKestrixVideoFrame* frame);

} // namespace preview_host
