/// What every `QueryInterface` of the library begins with, and the whole of it for most objects.
#pragma once

#include "api/KestrixPreviewAPI.h"

/// Whether `id` is that of `IUnknown`, which every object answers for.
inline bool IsIUnknown(REFIID id)
{
    return id == IID_IUnknown;
}

/// Answers a query for `id` on an object whose only interface beside `IUnknown` is `self`, of the
/// id `selfID`. `E_POINTER` for a null `out`.
template<class Interface>
HRESULT AnswerQueryInterface(Interface* self, REFIID selfID, REFIID id, void** out)
{
    if (!out)
        return E_POINTER;
    if (!IsIUnknown(id) && id != selfID) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    self->AddRef();
    *out = self;
    return S_OK;
}
