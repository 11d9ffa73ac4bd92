/// Interfaces that others have added to a frame.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/Owned.h"

#include <mutex>
#include <vector>

namespace kestrix::host {

/// The providers that are registered with a frame. Any thread; no provider is queried or ends under
/// the lock.
class InterfaceProviders {
public:
    /// Answers queries for `id` by `provider` from now on, to which it holds a reference, in the
    /// place of one that was before. Null takes the registration back. `E_OUTOFMEMORY` where memory
    /// is short.
    HRESULT add(REFIID id, IUnknown* provider);

    /// Lets the provider for `id` answer the query. Without one stores null and answers
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
