/// Replacements of the allocation functions that can be told to fail.
#include "tests/support/AllocationFaults.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#include <dlfcn.h>

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
    if (!plan.active)
        return false;
    const bool chosen = plan.bytes ? size >= plan.bytes : plan.number-- == 0;
    plan.failed += chosen;
    return chosen;
}

void* allocate(std::size_t size) noexcept
{
    if (fails(size))
        return nullptr;
    void* memory = std::malloc(size + !size);
    live += memory != nullptr;
    return memory;
}

void release(void* memory) noexcept
{
    live -= memory != nullptr;
    std::free(memory);
}

void* orThrow(void* memory)
{
    if (!memory)
        throw std::bad_alloc();
    return memory;
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

using kestrix::test::allocate;
using kestrix::test::orThrow;
using kestrix::test::release;

// clang-format off
void* operator new(std::size_t size) { return orThrow(allocate(size)); }
void* operator new[](std::size_t size) { return orThrow(allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
// clang-format on

extern "C" int posix_memalign(void** out, std::size_t alignment, std::size_t size) noexcept
{
    static const auto next = reinterpret_cast<int (*)(void**, std::size_t, std::size_t)>(
        dlsym(RTLD_NEXT, "posix_memalign"));
    return kestrix::test::fails(size) ? ENOMEM : next(out, alignment, size);
}
