/// The compiler finds this header before the engine's own header of this name. It has no rules, so
/// every pipeline runs the stages that it lists.
#pragma once

#include "conversion/pipeline/Rewriting.h"

namespace KSX::PixelConversion {

struct FastRules : RuleList<> {};

} // namespace KSX::PixelConversion
