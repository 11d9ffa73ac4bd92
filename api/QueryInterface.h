/// The common parts of every `QueryInterface` of the library.
#pragma once

#include "api/KestrixPreviewAPI.h"

/// Whether `id` is the id of `IUnknown`, which every object has.
inline bool IsIUnknown(REFIID id)
{
    return id == IID_IUnknown;
}

/// Answers a query with `self`: adds a reference, stores the pointer and returns `S_OK`.
template<class Interface>
HRESULT AnswerWith(Interface* self, void** out)
{
    self->AddRef();
    *out = self;
    return S_OK;
}

/// Answers a query for `id` on an object that has only `IUnknown` and the interface `self`, whose
/// id is `selfID`. `E_POINTER` for a null `out`.
template<class Interface>
HRESULT AnswerQueryInterface(Interface* self, REFIID selfID, REFIID id, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsIUnknown(id) || id == selfID)
        return AnswerWith(self, out);
    *out = nullptr;
    return E_NOINTERFACE;
}

/// Answers a query for `id` on an object that adds the interface `self`, whose id is `selfID`, to
/// the interfaces of `inner`. All other queries go to `inner`, also the query for `IUnknown`.
/// `E_POINTER` for a null `out`.
template<class Interface>
HRESULT AnswerOrForward(Interface* self, REFIID selfID, IUnknown* inner, REFIID id, void** out)
{
    if (!out)
        return E_POINTER;
    return id == selfID ? AnswerWith(self, out) : inner->QueryInterface(id, out);
}

/// Queries `object` for its interface `id` and stores it in `out`, null if it has none. Returns the
/// object's status.
template<class Interface>
HRESULT QueryInto(IUnknown* object, REFIID id, Interface** out)
{
    void* queried = nullptr;
    const HRESULT status = object->QueryInterface(id, &queried);
    *out = static_cast<Interface*>(queried);
    return status;
}
