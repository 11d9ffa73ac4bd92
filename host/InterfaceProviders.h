/// Interfaces that others have added to a frame.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"

#include <mutex>
#include <vector>

namespace kestrix::host {

/// The providers that are registered with a frame. Any thread. No provider is called while the lock
/// is held.
class InterfaceProviders {
public:
    /// Passes queries for `id` to `provider` from now on, and adds a reference to it. It replaces
    /// an earlier provider; null removes the earlier one. `E_OUTOFMEMORY` if allocation fails.
    HRESULT add(REFIID id, IUnknown* provider);

    /// Passes the query to the provider for `id`. If there is none, stores null and returns
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
