/// Access to a frame's bytes that is closed automatically.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <cstdint>
#include <memory>

/// Opens an access to `buffer` and returns its bytes. The pointer keeps a reference to the buffer.
/// The destruction of its last copy closes the access and releases the reference. `flags` is a
/// `KestrixBufferAccessFlags`.
///
/// Empty if the buffer is null, or refuses the access or its bytes. If allocation fails, closes the
/// access and throws `std::bad_alloc`. An exception of the buffer passes through, after an open
/// access has been closed; only an exception of `EndAccess` is dropped.
std::shared_ptr<void> ScopedBufferBytes(IKestrixVideoBuffer* buffer, std::uint32_t flags);

/// Opens `frame` for reading. Empty if the frame has no buffer, the buffer returns no bytes, or
/// allocation fails: for a preview all three mean that there is nothing new to show.
std::shared_ptr<void> ReadableFrameBytes(IKestrixVideoFrame* frame);
