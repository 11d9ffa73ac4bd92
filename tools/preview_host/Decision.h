/// What a helper makes of a frame, and why.
#pragma once

#include "Options.h"

#include <string>

namespace preview_host {

/// The colourspace that the helper takes `frame` to be in, what made it so, and the conversion or
/// colour table that follows from that, in one line.
///
/// Asks the very code that the library was linked from, so that the two can't come apart. The
/// helpers differ: without a stated colourspace the fixed-function one goes by the width alone.
std::string decisionFor(HelperKind helper, IKestrixVideoFrame* frame);

} // namespace preview_host
