/// Completion of the command line by the shell.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace preview_host {

/// The script that has `shell`, bash or zsh, complete the options of `app` and their values. What
/// the value of an option can be is told by the name of its type: "FILE", "FORMAT", or all the
/// words there are, with a bar between them.
std::string completionScript(const CLI::App& app, const std::string& shell);

} // namespace preview_host
