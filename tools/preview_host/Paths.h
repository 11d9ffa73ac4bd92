/// Early answers about files, before a window opens.
#pragma once

#include <string>

namespace preview_host {

/// Throws `std::runtime_error` for a folder, and for a picture that is no PNG. Reads regular files
/// only, because a pipe can be read once.
void checkInput(const std::string& path);

/// Throws `std::runtime_error` if the file can't be written. An existing file stays as it is, and
/// there is no new one.
void checkOutput(const std::string& path);

} // namespace preview_host
