/// Fills the table of GL entry points.
#include "preview/GL3Functions.h"

#include "preview/GLProcAddress.h"

#include <mutex>
#include <type_traits>

GL3Functions gl3;

namespace {

/// Helpers of several contexts may be initialised on several threads.
std::mutex s_mutex;

} // namespace

// One plain step for each entry point of the list.
// NOLINTNEXTLINE(readability-function-cognitive-complexity)
bool GL3Functions::load()
{
    const std::lock_guard lock(s_mutex);
    const auto lookUp = [](auto& function, const char* name) {
        if (!function)
            function = glProcAddress<std::remove_reference_t<decltype(function)>>(name);
        return function != nullptr;
    };
#define KESTRIX_GL3_LOOK_UP(name, type)                                                            \
    if (!lookUp(name, "gl" #name))                                                                 \
        return false;
    KESTRIX_GL3_FUNCTIONS(KESTRIX_GL3_LOOK_UP)
#undef KESTRIX_GL3_LOOK_UP
    return true;
}

bool GL3Functions::loaded() const
{
    const std::lock_guard lock(s_mutex);
    // If the last one was found, all the others were found too.
    return DeleteSync != nullptr;
}
