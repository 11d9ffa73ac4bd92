/// A list of ids and their providers.
#include "host/InterfaceProviders.h"

#include <algorithm>
#include <new>

namespace kestrix::host {

HRESULT InterfaceProviders::add(REFIID id, IUnknown* provider)
{
    // Declared before the lock, so that the replaced provider is released after it.
    Owned<IUnknown> replaced = share(provider);
    const std::lock_guard lock(m_mutex);
    const auto known =
        std::find_if(m_registrations.begin(), m_registrations.end(),
                     [id](const Registration& registration) { return registration.id == id; });
    if (known != m_registrations.end()) {
        known->provider.swap(replaced);
        return S_OK;
    }
    if (!provider)
        return S_OK;
    try {
        m_registrations.push_back({id, std::move(replaced)});
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT InterfaceProviders::query(REFIID id, void** out) const
{
    Owned<IUnknown> provider;
    {
        const std::lock_guard lock(m_mutex);
        for (const Registration& registration : m_registrations)
            if (registration.id == id)
                provider = share(registration.provider.get());
    }
    if (provider)
        return provider->QueryInterface(id, out);
    *out = nullptr;
    return E_NOINTERFACE;
}

} // namespace kestrix::host
