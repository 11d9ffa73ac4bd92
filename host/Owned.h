/// An owning pointer to a reference-counted interface, for code on the host's side.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <memory>

namespace kestrix::host {

/// Gives the one reference that an `Owned` holds back.
struct ReleaseReference {
    template<class INTERFACE>
    void operator()(INTERFACE* object) const
    {
        object->Release();
    }
};

/// Holds one reference. Built from what a factory or an out-argument gave; `get()` lends it to a
/// call that takes a plain pointer.
template<class INTERFACE>
using Owned = std::unique_ptr<INTERFACE, ReleaseReference>;

/// Adds a reference of its own to an object that someone else holds.
template<class INTERFACE>
Owned<INTERFACE> share(INTERFACE* object)
{
    if (object)
        object->AddRef();
    return Owned<INTERFACE>(object);
}

/// Asks `object` for its interface `id`, which is that of `INTERFACE`; null where it has none.
template<class INTERFACE, class OBJECT>
Owned<INTERFACE> query(OBJECT* object, REFIID id)
{
    void* found = nullptr;
    if (object->QueryInterface(id, &found) < 0)
        found = nullptr;
    return Owned<INTERFACE>(static_cast<INTERFACE*>(found));
}

} // namespace kestrix::host
