/// The reference count of an object.
#pragma once

#include <atomic>
#include <cstdint>

/// Counts the references to an object of the given interfaces, all of them by one count. The object
/// starts with one reference and ends with the last.
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
    // NOLINTNEXTLINE(modernize-use-override): `IUnknown` has none that could be overridden
    virtual ~ReferenceCounted() = default;

private:
    std::atomic<std::uint64_t> m_referenceCount{1};
};
