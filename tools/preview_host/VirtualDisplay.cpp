/// Starting and stopping Xvfb.
#include "VirtualDisplay.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace preview_host {
namespace {

/// Reads the display's number, a line that the server writes when it is ready; empty where it ended
/// before or takes more than ten seconds.
std::string readLine(int file)
{
    std::string line;
    char character = 0;
    pollfd waitFor{file, POLLIN, 0};
    while (poll(&waitFor, 1, 10000) > 0 && read(file, &character, 1) == 1) {
        if (character == '\n')
            return line;
        line += character;
    }
    return {};
}

bool isSet(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value;
}

} // namespace

bool VirtualDisplay::isNeeded()
{
    return !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY");
}

VirtualDisplay::VirtualDisplay(Size size)
{
    std::array<int, 2> ready{};
    if (pipe2(ready.data(), O_CLOEXEC) != 0)
        throw std::runtime_error(std::string("no display: ") + std::strerror(errno));

    // The server writes its number to descriptor 3, and says nothing else.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ready[1], 3);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    const std::string screen =
        std::to_string(size.width) + "x" + std::to_string(size.height) + "x24";
    // -terminate: the server goes with its last client, also where this program is killed.
    std::array<const char*, 10> arguments = {"Xvfb",       "-displayfd",   "3",         "-screen",
                                             "0",          screen.c_str(), "-nolisten", "tcp",
                                             "-terminate", nullptr};
    const int error = posix_spawnp(&m_server, "Xvfb", &actions, nullptr,
                                   const_cast<char**>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ready[1]);
    const std::string number = error == 0 ? readLine(ready[0]) : std::string();
    close(ready[0]);

    if (error != 0)
        throw std::runtime_error(std::string("no display, and no virtual one: Xvfb: ") +
                                 std::strerror(error));
    if (number.empty()) {
        stop();
        throw std::runtime_error("no display, and no virtual one: Xvfb does not start");
    }
    m_name = ":" + number;
    setenv("DISPLAY", m_name.c_str(), 1);
}

VirtualDisplay::~VirtualDisplay()
{
    unsetenv("DISPLAY");
    stop();
}

void VirtualDisplay::stop()
{
    kill(m_server, SIGTERM);
    waitpid(m_server, nullptr, 0);
}

} // namespace preview_host
