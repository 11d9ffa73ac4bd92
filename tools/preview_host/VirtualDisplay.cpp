/// Starts and stops Xvfb.
#include "VirtualDisplay.h"

#include <array>
#include <csignal>
#include <cstdlib>

namespace preview_host {

bool VirtualDisplay::isNeeded()
{
    const auto isSet = [](const char* variable) {
        const char* value = std::getenv(variable);
        return value && *value;
    };
    return !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY");
}

// Not by xvfb-run: its server would continue to run if this program were killed. With -terminate
// the server ends with its last client, and xvfb-run then loses the program's exit status.
VirtualDisplay::VirtualDisplay(Size size)
{
    // The shell prints its process id, which the server inherits, and the server prints the number
    // of the display. A Ctrl-C in the terminal must not end the server, so it has its own session.
    const std::string screen = std::to_string(size.width) + "x" + std::to_string(size.height);
    const std::string command = "echo $$; exec setsid Xvfb -displayfd 1 -screen 0 " + screen +
                                "x24 -nolisten tcp -terminate </dev/null 2>/dev/null";
    m_output.reset(popen(command.c_str(), "re"));
    std::array<char, 16> name{":"};
    if (!m_output || std::fscanf(m_output.get(), "%d %14s", &m_server, &name[1]) != 2)
        throw std::runtime_error("no display, and Xvfb, the virtual display, does not start");
    m_name = name.data();
    setenv("DISPLAY", m_name.c_str(), 1);
}

VirtualDisplay::~VirtualDisplay()
{
    unsetenv("DISPLAY");
    kill(m_server, SIGTERM);
}

} // namespace preview_host
