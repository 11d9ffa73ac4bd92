/// Ends the run on Ctrl-C as the key q does, with the report and the screenshot.
#pragma once

namespace preview_host {

/// From now on SIGINT, SIGTERM and SIGHUP only end the run. A second one ends the program at once.
void catchInterrupts();

/// Whether there was such a signal.
bool isInterrupted();

} // namespace preview_host
