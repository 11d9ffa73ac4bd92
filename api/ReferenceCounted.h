/// The reference count of an object.
#pragma once

#include <atomic>
#include <cstdint>

/// An object with the given interfaces and one reference count for all of them. The count starts at
/// 1. At 0 the object is deleted.
template<class... Interfaces>
class ReferenceCounted : public Interfaces... {
public:
    ReferenceCounted(const ReferenceCounted&) = delete;
    ReferenceCounted& operator=(const ReferenceCounted&) = delete;

    std::uint32_t AddRef() override { return static_cast<std::uint32_t>(++m_referenceCount); }

    std::uint32_t Release() override
    {
        const std::uint64_t count = --m_referenceCount;
        if (count == 0)
            delete this;
        return static_cast<std::uint32_t>(count);
    }

protected:
    ReferenceCounted() = default;
    // NOLINTNEXTLINE(modernize-use-override): `IUnknown` has no destructor to override
    virtual ~ReferenceCounted() = default;

private:
    std::atomic<std::uint64_t> m_referenceCount{1};
};
