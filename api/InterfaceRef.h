/// An owning pointer to an interface.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <utility>

/// Owns one reference to an `Interface`, or none if it is null. Also stores the id that the pointer
/// was queried for; without a query that is the id of `IUnknown`.
///
/// Calls only the three operations of `IUnknown`. Not synchronised.
template<class Interface>
class InterfaceRef {
public:
    InterfaceRef() = default;

    /// Stores `pointer`, which may be null, and adds a reference.
    explicit InterfaceRef(Interface* pointer) : m_pointer(pointer) { addRef(); }

    InterfaceRef(const InterfaceRef& other) : m_id(other.m_id), m_pointer(other.m_pointer)
    {
        addRef();
    }

    InterfaceRef(InterfaceRef&& other) noexcept
        : m_id(other.m_id),
          m_pointer(std::exchange(other.m_pointer, nullptr))
    {
    }

    InterfaceRef& operator=(InterfaceRef other) noexcept
    {
        std::swap(m_id, other.m_id);
        std::swap(m_pointer, other.m_pointer);
        return *this;
    }

    ~InterfaceRef() { reset(); }

    /// Releases the reference, if there is one, and becomes null.
    void reset()
    {
        if (Interface* const released = std::exchange(m_pointer, nullptr))
            released->Release();
    }

    /// Releases the old reference, and stores the pointer that `object` returns for `id`. Returns
    /// the object's status. Test the pointer to see if there is an interface.
    HRESULT query(IUnknown* object, REFIID id)
    {
        void* queried = nullptr;
        const HRESULT status = object->QueryInterface(id, &queried);
        reset();
        m_id = id;
        m_pointer = static_cast<Interface*>(queried);
        return status;
    }

    /// The argument for an operation that stores a pointer with a reference. Releases the old
    /// reference.
    Interface** receive()
    {
        reset();
        m_id = IID_IUnknown;
        return &m_pointer;
    }

    [[nodiscard]] REFIID id() const { return m_id; }
    [[nodiscard]] Interface* get() const { return m_pointer; }
    Interface* operator->() const { return m_pointer; }
    explicit operator bool() const { return m_pointer != nullptr; }

private:
    void addRef()
    {
        if (m_pointer)
            m_pointer->AddRef();
    }

    REFIID m_id = IID_IUnknown;
    Interface* m_pointer = nullptr;
};
