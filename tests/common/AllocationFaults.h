/// Allocations that fail on purpose.
///
/// A program that links `kestrix_test_allocation` has every form of `operator new` replaced, and
/// its own calls, the library's among them, of `malloc`, `calloc`, `realloc`, `posix_memalign` and
/// `free` led through here. Calls that shared libraries make of those are left alone.
#pragma once

#include <cstddef>

namespace kestrix::test {

/// Makes allocations of the calling thread fail for as long as it lives. One at a time.
class AllocationFaults {
public:
    /// Only the allocation of that number from now on, counted from 0.
    static AllocationFaults number(int n) { return AllocationFaults(n, 0); }
    /// Every allocation of at least that many bytes.
    static AllocationFaults fromSize(std::size_t bytes) { return AllocationFaults(-1, bytes); }

    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;
    ~AllocationFaults();

    /// Allocations that have failed.
    int failed() const;

private:
    AllocationFaults(int number, std::size_t bytes);
};

/// Lets allocations of the calling thread succeed for as long as it lives: what a test's own side
/// takes when the library calls it.
class WithoutAllocationFaults {
public:
    WithoutAllocationFaults() { ++s_depth; }
    ~WithoutAllocationFaults() { --s_depth; }
    WithoutAllocationFaults(const WithoutAllocationFaults&) = delete;
    WithoutAllocationFaults& operator=(const WithoutAllocationFaults&) = delete;

    static bool active() { return s_depth > 0; }

private:
    static inline thread_local int s_depth = 0;
};

/// What the calling thread has taken, less what it has given back.
long liveAllocations();

} // namespace kestrix::test
