/// Opens and closes the access to a frame's bytes.
#include "api/ScopedBufferBytes.h"

#include "api/InterfaceRef.h"

#include <new>

std::shared_ptr<void> ScopedBufferBytes(IKestrixVideoBuffer* buffer, std::uint32_t flags)
{
    if (!buffer || buffer->StartAccess(flags) < 0)
        return {};

    void* bytes = nullptr;
    HRESULT status = E_FAIL;
    try {
        status = buffer->GetBytes(&bytes);
    } catch (...) {
        buffer->EndAccess(flags);
        throw;
    }
    if (status < 0) {
        buffer->EndAccess(flags);
        return {};
    }

    buffer->AddRef();
    const auto endAccess = [buffer, flags](void*) {
        try {
            buffer->EndAccess(flags);
        } catch (...) { // the owner of the pointer can't do anything about it
        }
        buffer->Release();
    };
    // If allocation of the shared count fails, the pointer calls the deleter before it throws.
    return {bytes, endAccess};
}

std::shared_ptr<void> ReadableFrameBytes(IKestrixVideoFrame* frame)
{
    InterfaceRef<IKestrixVideoBuffer> buffer;
    buffer.query(frame, IID_IKestrixVideoBuffer);
    try {
        return ScopedBufferBytes(buffer.get(), BufferAccessRead);
    } catch (const std::bad_alloc&) {
        return {};
    }
}
