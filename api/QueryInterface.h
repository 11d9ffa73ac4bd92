/// What every `QueryInterface` of the library begins with, and the whole of it for most objects.
#pragma once

#include "api/KestrixPreviewAPI.h"

/// Whether `id` is that of `IUnknown`, which every object answers for.
inline bool IsIUnknown(REFIID id)
{
    return id == IID_IUnknown;
}

/// Answers a query with `self`.
template<class Interface>
HRESULT AnswerWith(Interface* self, void** out)
{
    self->AddRef();
    *out = self;
    return S_OK;
}

/// Answers a query for `id` on an object whose only interface beside `IUnknown` is `self`, of the
/// id `selfID`. `E_POINTER` for a null `out`.
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

/// Answers a query for `id` on an object that adds the interface `self`, of the id `selfID`, to
/// those of `inner`: to which all other queries go, that for `IUnknown` too. `E_POINTER` for a null
/// `out`.
template<class Interface>
HRESULT AnswerOrForward(Interface* self, REFIID selfID, IUnknown* inner, REFIID id, void** out)
{
    if (!out)
        return E_POINTER;
    return id == selfID ? AnswerWith(self, out) : inner->QueryInterface(id, out);
}

/// Queries `object` for its interface `id` and stores it in `out`, null where there is none.
template<class Interface>
HRESULT QueryInto(IUnknown* object, REFIID id, Interface** out)
{
    void* queried = nullptr;
    const HRESULT status = object->QueryInterface(id, &queried);
    *out = static_cast<Interface*>(queried);
    return status;
}
