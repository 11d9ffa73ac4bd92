/// Memory between pages that can't be read or written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace kestrix::test {

/// Zeroed bytes. A page that can't be read begins at their end. Another one ends less than a page
/// before them, or directly before them if they are whole pages.
class GuardedBytes {
public:
    explicit GuardedBytes(std::size_t size) : m_size(size)
    {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t usable = (size + page - 1) / page * page;
        m_mapped = page + usable + page;
        void* memory = mmap(nullptr, m_mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        m_base = static_cast<std::uint8_t*>(memory);
        mprotect(m_base + page, usable, PROT_READ | PROT_WRITE);
        m_begin = m_base + page + usable - size;
    }

    ~GuardedBytes() { munmap(m_base, m_mapped); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::uint8_t* begin() { return m_begin; }
    std::uint8_t* end() { return m_begin + m_size; }

private:
    std::size_t m_size;
    std::size_t m_mapped;
    std::uint8_t* m_base;
    std::uint8_t* m_begin;
};

} // namespace kestrix::test
