/// A display in memory, for machines without a display.
#pragma once

#include "Options.h"

#include <cstdio>
#include <memory>
#include <string>
#include <sys/types.h>

namespace preview_host {

/// An Xvfb that runs as long as this object lives. DISPLAY names it.
class VirtualDisplay {
public:
    /// Whether the environment names no display.
    static bool isNeeded();

    /// Starts Xvfb with a screen of `size`. Throws `std::runtime_error` if that fails.
    explicit VirtualDisplay(Size size);
    ~VirtualDisplay();

    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// The name, in the form of DISPLAY.
    const std::string& name() const { return m_name; }

private:
    struct Close {
        void operator()(std::FILE* file) const { pclose(file); }
    };

    std::unique_ptr<std::FILE, Close> m_output;
    pid_t m_server = 0;
    std::string m_name;
};

} // namespace preview_host
