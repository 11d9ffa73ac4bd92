/// Raw frames from a file or a pipe, read without blocking the window.
#include "Input.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace preview_host {
namespace {

class RawInput : public Input {
public:
    RawInput(const std::string& path, const FrameLayout& layout)
        : m_name(path == "-" ? "standard input" : path),
          m_frameBytes(layout.bytes()),
          m_file(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_file < 0)
            throw std::runtime_error("can't open " + m_name + ": " + std::strerror(errno));
    }

    ~RawInput() override
    {
        if (m_file != STDIN_FILENO)
            close(m_file);
    }

    RawInput(const RawInput&) = delete;
    RawInput& operator=(const RawInput&) = delete;

    std::string description() const override { return "raw frames from " + m_name; }

    bool isEndless() const override { return false; }

    std::optional<std::uint64_t> frames() const override
    {
        struct stat status = {};
        if (fstat(m_file, &status) != 0 || !S_ISREG(status.st_mode))
            return std::nullopt;
        return static_cast<std::uint64_t>(status.st_size) / m_frameBytes;
    }

    Read read(std::uint64_t index, std::uint8_t* bytes) override
    {
        while (m_filled < m_frameBytes) {
            constexpr int kPatience = 10; // ms
            pollfd waitFor{m_file, POLLIN, 0};
            const int ready = poll(&waitFor, 1, kPatience);
            if (ready == 0 || (ready < 0 && errno == EINTR))
                return Read::Pending;
            const ssize_t got = ::read(m_file, bytes + m_filled, m_frameBytes - m_filled);
            if (got < 0 && errno == EINTR)
                return Read::Pending;
            if (got < 0)
                throw std::runtime_error("can't read " + m_name + ": " + std::strerror(errno));
            if (got == 0)
                return end(index);
            m_filled += static_cast<std::size_t>(got);
        }
        m_filled = 0;
        return Read::Frame;
    }

    std::string fault() const override { return m_fault; }

private:
    Read end(std::uint64_t index)
    {
        const std::string size =
            std::to_string(m_filled) + " of " + std::to_string(m_frameBytes) + " bytes";
        if (index == 0)
            throw std::runtime_error("no whole frame in " + m_name + ": " + size);
        if (m_filled != 0)
            m_fault = "the last frame of " + m_name + " is short and was dropped: " + size;
        return Read::End;
    }

    const std::string m_name;
    const std::size_t m_frameBytes;
    const int m_file;
    std::size_t m_filled = 0;
    std::string m_fault;
};

} // namespace

std::unique_ptr<Input> openRawInput(const std::string& path, const FrameLayout& layout)
{
    return std::make_unique<RawInput>(path, layout);
}

} // namespace preview_host
