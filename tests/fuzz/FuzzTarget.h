/// The function that every fuzz target defines, the reader of its input, and its checks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Runs one input. A fault ends the process; the result is always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace kestrix::test {

/// Ends the process with a line if `condition` is false.
inline void check(bool condition, const std::string& fault)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
}

/// Reads values from an input. After its end all values are 0.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : m_data(data), m_end(data + size) {}

    std::uint8_t byte() { return m_data != m_end ? *m_data++ : std::uint8_t{0}; }
    unsigned word()
    {
        const unsigned low = byte();
        return low | static_cast<unsigned>(byte()) << 8;
    }
    std::uint32_t dword()
    {
        const std::uint32_t low = word();
        return low | word() << 16;
    }

    /// Fills `bytes` with the rest of the input, again and again.
    template<class BYTES>
    void fill(BYTES&& bytes) const
    {
        const auto left = static_cast<std::size_t>(m_end - m_data);
        std::size_t i = 0;
        for (std::uint8_t& byte : bytes)
            byte = left != 0 ? m_data[i++ % left] : std::uint8_t{0};
    }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
};

} // namespace kestrix::test
