/// A display in memory, for machines that have no other.
#pragma once

#include "Options.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace preview_host {

/// An Xvfb of its own that runs as long as this object lives, with DISPLAY set to it.
class VirtualDisplay {
public:
    /// Whether the environment names no display.
    static bool isNeeded();

    /// Starts Xvfb with a screen of `size`. Throws `std::runtime_error` where that fails.
    explicit VirtualDisplay(Size size);
    ~VirtualDisplay();

    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// As in DISPLAY.
    const std::string& name() const { return m_name; }

private:
    void stop();

    pid_t m_server = 0;
    std::string m_name;
};

} // namespace preview_host
