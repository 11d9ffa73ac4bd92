/// Converts a picture on several threads.
#pragma once

#include "convert/ConvertRows.h"
#include "convert/Pictures.h"

namespace kestrix {

/// Converts all rows on up to `threads` threads. The calling thread is one of them; the others end
/// before this returns.
void convertByThreads(const RowConverter& converter, const Pictures& pictures, unsigned threads);

} // namespace kestrix
