/// Allocations that fail on purpose.
///
/// AllocationFaults.cpp replaces `operator new` and `posix_memalign` in the test program.
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

/// What the calling thread has taken by `operator new`, less what it has given back.
long liveAllocations();

} // namespace kestrix::test
