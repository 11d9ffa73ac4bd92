/// Raw frames from a file or a pipe, read without blocking the window.
#include "Input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace preview_host {
namespace {

class RawInput : public Input {
public:
    RawInput(const std::string& path, std::size_t frameBytes)
        : m_name(path == "-" ? "standard input" : path),
          m_file(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
          m_frame(frameBytes),
          m_next(frameBytes)
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

    bool isMade() const override { return false; }

    std::optional<std::uint64_t> frames() const override
    {
        struct stat status = {};
        if (fstat(m_file, &status) != 0 || !S_ISREG(status.st_mode))
            return std::nullopt;
        return static_cast<std::uint64_t>(status.st_size) / m_frame.size();
    }

    Read read() override
    {
        while (m_filled < m_next.size()) {
            constexpr int kPatience = 10; // ms
            pollfd waitFor{m_file, POLLIN, 0};
            const int ready = poll(&waitFor, 1, kPatience);
            if (ready == 0 || (ready < 0 && errno == EINTR))
                return Read::Pending;
            const ssize_t got = ::read(m_file, &m_next[m_filled], m_next.size() - m_filled);
            if (got < 0 && errno == EINTR)
                return Read::Pending;
            if (got < 0)
                throw std::runtime_error("can't read " + m_name + ": " + std::strerror(errno));
            if (got == 0)
                return end();
            m_filled += static_cast<std::size_t>(got);
        }
        return Read::Frame;
    }

    void write(std::uint64_t index, const FrameLayout&, bool, std::uint8_t* bytes) override
    {
        if (index == m_written) {
            m_frame.swap(m_next);
            m_filled = 0;
            ++m_written;
        }
        std::copy(m_frame.begin(), m_frame.end(), bytes);
    }

    std::string fault() const override { return m_fault; }

private:
    Read end()
    {
        const std::string size =
            std::to_string(m_filled) + " of " + std::to_string(m_next.size()) + " bytes";
        if (m_written == 0)
            throw std::runtime_error("no complete frame in " + m_name + ": " + size);
        if (m_filled != 0)
            m_fault = "the last frame of " + m_name + " is incomplete and was dropped: " + size;
        return Read::End;
    }

    const std::string m_name;
    const int m_file;
    /// The frame that was written last.
    std::vector<std::uint8_t> m_frame;
    /// The next frame, of which `m_filled` bytes have arrived.
    std::vector<std::uint8_t> m_next;
    std::size_t m_filled = 0;
    std::uint64_t m_written = 0;
    std::string m_fault;
};

} // namespace

std::unique_ptr<Input> makeRawInput(const std::string& path, std::size_t frameBytes)
{
    return std::make_unique<RawInput>(path, frameBytes);
}

} // namespace preview_host
