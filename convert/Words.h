/// One line for people about a failure.
#pragma once

#include "convert/KestrixPixelConversion.h"

#include <cstddef>

namespace kestrix {

/// Where a caller wants the line: nowhere, if `size` is 0.
struct Words {
    char* text = nullptr;
    std::size_t size = 0;

    /// Writes a line as `printf` does and returns `status`.
    [[gnu::format(printf, 3, 4)]] kestrix_status say(kestrix_status status, const char* format,
                                                     ...) const;
};

} // namespace kestrix
