/// Interfaces that others have added to a frame.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"

#include <mutex>
#include <vector>

namespace kestrix::host {

/// The providers that are registered with a frame. Any thread. No provider is called under the
/// lock.
class InterfaceProviders {
public:
    /// Lets `provider` answer queries for `id` from now on, and holds a reference to it. It
    /// replaces an earlier provider; null removes that. `E_OUTOFMEMORY` if allocation fails.
    HRESULT add(REFIID id, IUnknown* provider);

    /// Lets the provider for `id` answer the query. If there is none, stores null and returns
    /// `E_NOINTERFACE`.
    HRESULT query(REFIID id, void** out) const;

private:
    struct Registration {
        REFIID id;
        Owned<IUnknown> provider;
    };

    mutable std::mutex m_mutex;
    std::vector<Registration> m_registrations;
};

} // namespace kestrix::host
