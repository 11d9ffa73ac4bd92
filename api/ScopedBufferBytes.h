/// Access to a frame's bytes that ends by itself.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <cstdint>
#include <memory>

/// Opens an access to `buffer` and returns its bytes. The last copy of the pointer to go closes the
/// access and gives back the reference that kept the buffer alive. `flags` is a
/// `KestrixBufferAccessFlags`.
///
/// Empty for a null buffer, and where the buffer refuses the access or its bytes. Throws
/// `std::bad_alloc`, the access closed again, where there is no memory for the shared count.
std::shared_ptr<void> ScopedBufferBytes(IKestrixVideoBuffer* buffer, std::uint32_t flags);

/// Opens `frame` for reading. Empty where the frame has no buffer or the buffer gives no bytes, and
/// where memory is short: for a preview both mean that there is nothing new to show.
std::shared_ptr<void> ReadableFrameBytes(IKestrixVideoFrame* frame) noexcept;
