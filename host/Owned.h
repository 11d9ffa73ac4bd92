/// An owning pointer to a reference-counted interface, for hosts.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <memory>

namespace kestrix::host {

/// Releases the reference of an `Owned`.
struct ReleaseReference {
    template<class INTERFACE>
    void operator()(INTERFACE* object) const
    {
        object->Release();
    }
};

/// Owns one reference: the one that a factory or an out-argument returned. `get()` is for calls
/// that need a plain pointer.
template<class INTERFACE>
using Owned = std::unique_ptr<INTERFACE, ReleaseReference>;

/// Adds a reference to an object with another owner.
template<class INTERFACE>
Owned<INTERFACE> share(INTERFACE* object)
{
    if (object)
        object->AddRef();
    return Owned<INTERFACE>(object);
}

/// Queries `object` for the interface `INTERFACE`, whose id is `id`; null if it has none.
template<class INTERFACE, class OBJECT>
Owned<INTERFACE> query(OBJECT* object, REFIID id)
{
    void* found = nullptr;
    if (object->QueryInterface(id, &found) < 0)
        found = nullptr;
    return Owned<INTERFACE>(static_cast<INTERFACE*>(found));
}

} // namespace kestrix::host
