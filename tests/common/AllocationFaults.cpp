/// Replacements of the allocation functions that fail on request.
#include "tests/common/AllocationFaults.h"

#include <cerrno>
#include <cstring>
#include <new>

extern "C" {
// What the linker's --wrap makes of the names: the C library's own, and those that are called.
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
int __real_posix_memalign(void** out, std::size_t alignment, std::size_t size);
void __real_free(void* memory);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);
int __wrap_posix_memalign(void** out, std::size_t alignment, std::size_t size);
void __wrap_free(void* memory);
}

namespace kestrix::test {
namespace {

struct Plan {
    bool active = false;
    int number = -1;
    std::size_t bytes = 0;
    int failed = 0;
};

thread_local Plan plan;
thread_local long live = 0;

bool fails(std::size_t size)
{
    if (!plan.active || WithoutAllocationFaults::active())
        return false;
    const bool chosen = plan.bytes ? size >= plan.bytes : plan.number-- == 0;
    plan.failed += chosen;
    return chosen;
}

/// Counts what was taken, null excepted.
void* taken(void* memory)
{
    live += memory != nullptr;
    return memory;
}

void* orThrow(void* memory)
{
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment)
{
    void* memory = nullptr;
    return __wrap_posix_memalign(&memory, static_cast<std::size_t>(alignment), size) ? nullptr
                                                                                     : memory;
}

} // namespace

AllocationFaults::AllocationFaults(int number, std::size_t bytes)
{
    plan = {true, number, bytes, 0};
}

AllocationFaults::~AllocationFaults()
{
    plan = {};
}

int AllocationFaults::failed() const
{
    return plan.failed;
}

long liveAllocations()
{
    return live;
}

} // namespace kestrix::test

using kestrix::test::allocateAligned;
using kestrix::test::fails;
using kestrix::test::live;
using kestrix::test::orThrow;
using kestrix::test::taken;

void* __wrap_malloc(std::size_t size)
{
    return fails(size) ? nullptr : taken(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return fails(count * size) ? nullptr : taken(__real_calloc(count, size));
}

void* __wrap_realloc(void* memory, std::size_t size)
{
    if (fails(size))
        return nullptr;
    void* const moved = __real_realloc(memory, size);
    return memory ? moved : taken(moved);
}

int __wrap_posix_memalign(void** out, std::size_t alignment, std::size_t size)
{
    if (fails(size))
        return ENOMEM;
    const int error = __real_posix_memalign(out, alignment, size);
    live += !error;
    // Fresh memory is often zero, which would hide that it was never written.
    if (!error)
        std::memset(*out, 0xA5, size);
    return error;
}

void __wrap_free(void* memory)
{
    live -= memory != nullptr;
    __real_free(memory);
}

// clang-format off
void* operator new(std::size_t size) { return orThrow(__wrap_malloc(size + !size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size + !size); }
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return operator new(size, std::nothrow); }
void* operator new(std::size_t size, std::align_val_t alignment) { return orThrow(allocateAligned(size, alignment)); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return allocateAligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return operator new(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return operator new(size, alignment, std::nothrow); }
void operator delete(void* memory) noexcept { __wrap_free(memory); }
void operator delete[](void* memory) noexcept { __wrap_free(memory); }
void operator delete(void* memory, std::size_t) noexcept { __wrap_free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { __wrap_free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { __wrap_free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { __wrap_free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { __wrap_free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { __wrap_free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { __wrap_free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { __wrap_free(memory); }
// clang-format on
