/// The list of pixel formats.
#pragma once

#include <iosfwd>

namespace preview_host {

/// Prints a line for each format: its names, size, the helpers that show it, ffmpeg's name.
void listFormats(std::ostream& out);

} // namespace preview_host
