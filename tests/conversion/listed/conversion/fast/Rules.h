/// Found in front of the engine's own header of this name: no rules, so that every pipeline runs
/// the stages that it lists.
#pragma once

#include "conversion/pipeline/Rewriting.h"

namespace KSX::PixelConversion {

struct FastRules : RuleList<> {};

} // namespace KSX::PixelConversion
