/// Where the units of a vector lie in memory.
///
/// A pipeline reads and writes through one of two kinds of addresses. Both move as pointers do.
/// `kBlocks` is the number of consecutive blocks of a row that they cover.
#pragma once

#include "conversion/pipeline/Kernel.h"

#include <cstddef>

namespace KSX::PixelConversion {

/// The units are neighbouring blocks of one row, `DISTANCE` bytes apart.
template<class BYTE, std::size_t DISTANCE>
struct Neighbours {
    static constexpr unsigned kBlocks = kUnits;
    BYTE* at;

    KSX_INLINE Neighbours operator+(std::size_t bytes) const { return {at + bytes}; }
    KSX_INLINE Neighbours& operator+=(std::size_t bytes)
    {
        at += bytes;
        return *this;
    }

    /// Prefetches all units, `ahead` bytes after these.
    KSX_INLINE void prefetch(std::size_t ahead) const
    {
        constexpr std::size_t kLine = 64;
        for (std::size_t line = 0; line < kUnits * DISTANCE; line += kLine)
            prefetchNonTemporal(at + ahead + line);
    }
};

/// Each unit is at an address of its own: the same block of different rows, or one block for all.
template<class BYTE, unsigned UNITS = kUnits>
class Separate {
public:
    static constexpr unsigned kBlocks = 1;

    /// All units at one address.
    KSX_INLINE explicit Separate(BYTE* at) : Separate(at, 0, 1) {}

    /// Units `distance` bytes apart. If only `used` of them are, the others repeat the last of
    /// these.
    KSX_INLINE Separate(BYTE* at, std::ptrdiff_t distance, unsigned used) : m_at(at)
    {
        for (unsigned i = 1; i < UNITS; ++i)
            m_offset[i - 1] = distance * static_cast<std::ptrdiff_t>(i < used ? i : used - 1);
    }

    KSX_INLINE BYTE* unit(unsigned i) const { return i == 0 ? m_at : m_at + m_offset[i - 1]; }

    KSX_INLINE Separate operator+(std::size_t bytes) const
    {
        Separate moved = *this;
        return moved += bytes;
    }
    KSX_INLINE Separate& operator+=(std::size_t bytes)
    {
        m_at += bytes;
        return *this;
    }

    KSX_INLINE void prefetch(std::size_t ahead) const
    {
        for (unsigned i = 0; i < UNITS; ++i)
            prefetchNonTemporal(unit(i) + ahead);
    }

private:
    BYTE* m_at;
    std::ptrdiff_t m_offset[UNITS - 1]; ///< of units 1 and up from unit 0
};

/// The only unit of a vector.
template<class BYTE>
class Separate<BYTE, 1> {
public:
    static constexpr unsigned kBlocks = 1;

    KSX_INLINE explicit Separate(BYTE* at) : m_at(at) {}
    KSX_INLINE Separate(BYTE* at, std::ptrdiff_t /*distance*/, unsigned /*used*/) : m_at(at) {}

    KSX_INLINE BYTE* unit(unsigned /*i*/) const { return m_at; }

    KSX_INLINE Separate operator+(std::size_t bytes) const { return Separate(m_at + bytes); }
    KSX_INLINE Separate& operator+=(std::size_t bytes)
    {
        m_at += bytes;
        return *this;
    }

    KSX_INLINE void prefetch(std::size_t ahead) const { prefetchNonTemporal(m_at + ahead); }

private:
    BYTE* m_at;
};

/// The same blocks in steps of `BYTES`.
template<std::size_t BYTES, class BYTE, std::size_t DISTANCE>
KSX_INLINE Neighbours<BYTE, BYTES> stepsOf(Neighbours<BYTE, DISTANCE> blocks)
{
    return {blocks.at};
}
template<std::size_t BYTES, class BYTE>
KSX_INLINE Separate<BYTE> stepsOf(const Separate<BYTE>& blocks)
{
    return blocks;
}

/// Memory for blocks of `BLOCK` bytes between two loops of which one works at `blocks`. If units
/// are separate, each has `STRIP` bytes.
template<std::size_t BLOCK, std::size_t STRIP, class BYTE, std::size_t DISTANCE>
KSX_INLINE Neighbours<BYTE, BLOCK> stripFor(Neighbours<BYTE, DISTANCE> /*blocks*/, BYTE* strip)
{
    return {strip};
}
template<std::size_t BLOCK, std::size_t STRIP, class BYTE>
KSX_INLINE Separate<BYTE> stripFor(const Separate<BYTE>& /*blocks*/, BYTE* strip)
{
    return Separate<BYTE>(strip, STRIP, kUnits);
}

template<std::size_t DISTANCE>
KSX_INLINE Vector load(Neighbours<const std::byte, DISTANCE> from)
{
    if constexpr (DISTANCE == kUnitBytes)
        return loadUnits(from.at);
    else
        return joinUnits([&]<unsigned U>()
                             KSX_INLINE_LAMBDA { return loadUnit(from.at + U * DISTANCE); });
}
KSX_INLINE Vector load(const Separate<const std::byte>& from)
{
    return joinUnits([&]<unsigned U>() KSX_INLINE_LAMBDA { return loadUnit(from.unit(U)); });
}

template<std::size_t DISTANCE>
KSX_INLINE void store(Neighbours<std::byte, DISTANCE> to, Vector v)
{
    if constexpr (DISTANCE == kUnitBytes)
        storeUnits(to.at, v);
    else
        unrolled<0, kUnits>(
            [&]<unsigned U>() KSX_INLINE_LAMBDA { storeUnit(to.at + U * DISTANCE, unitOf<U>(v)); });
}
KSX_INLINE void store(const Separate<std::byte>& to, Vector v)
{
    unrolled<0, kUnits>([&]<unsigned U>()
                            KSX_INLINE_LAMBDA { storeUnit(to.unit(U), unitOf<U>(v)); });
}

} // namespace KSX::PixelConversion
