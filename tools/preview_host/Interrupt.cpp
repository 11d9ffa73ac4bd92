/// Remembers the signals that end the run.
#include "Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace preview_host {
namespace {

volatile std::sig_atomic_t interrupted = 0;

} // namespace

void catchInterrupts()
{
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace preview_host
