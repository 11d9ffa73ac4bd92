/// Look-ups in tables. These are the only operations that take a unit of a vector apart: each lane
/// becomes an address. Plain loads are faster than the gathers of wide vectors.
#pragma once

#include "conversion/pipeline/Kernel.h"

#include <cstdint>

namespace KSX::PixelConversion {

namespace details {

/// Four lanes that are at least 0, as indices. Two lanes go from the vector to a general register
/// at once, because the processor can do few such moves at a time.
struct Indices {
    KSX_INLINE explicit Indices(Unit lanes)
    {
        const auto low = low64(lanes);
        const auto high = high64(lanes);
        a = static_cast<std::uint32_t>(low);
        b = low >> 32;
        c = static_cast<std::uint32_t>(high);
        d = high >> 32;
    }
    std::uint64_t a, b, c, d;
};

} // namespace details

/// Lane i of each unit is `table[index i]`, for the first `LANES` lanes, 3 or 4.
template<int LANES>
KSX_INLINE FloatVector lookUp(const float* table, Vector indices)
{
    return joinFloatUnits([&]<unsigned U>() KSX_INLINE_LAMBDA {
        const details::Indices i(unitOf<U>(indices));
        const FloatUnit a = loadLane32(table + i.a);
        const FloatUnit b = loadLane32(table + i.b);
        const FloatUnit c = loadLane32(table + i.c);
        if constexpr (LANES == 3)
            return joinHalves(joinLanes32(a, b), c);
        const FloatUnit d = loadLane32(table + i.d);
        return joinHalves(joinLanes32(a, b), joinLanes32(c, d));
    });
}

/// All lanes of each unit are `table[index]`. The index is lane `LANE` of 16 bits of `words`.
template<int LANE>
KSX_INLINE FloatVector lookUpRepeated(const float* table, Vector words)
{
    return joinFloatUnits([&]<unsigned U>() KSX_INLINE_LAMBDA {
        return loadRepeated32(table + laneU16<LANE>(unitOf<U>(words)));
    });
}

/// The two members of table entries.
struct LookedUp {
    FloatVector first;
    FloatVector second;
};

/// Lane i of each unit has the members of `table[index i - FIRST]`, for the first `LANES` lanes, 3
/// or 4. An entry is two members of 32 bits.
template<int LANES, unsigned FIRST = 0, class ENTRY>
KSX_INLINE LookedUp lookUpPairs(const ENTRY* table, Vector indices)
{
    static_assert(sizeof(ENTRY) == 8);
    const FloatVector ab = joinFloatUnits([&]<unsigned U>() KSX_INLINE_LAMBDA {
        const details::Indices i(unitOf<U>(indices));
        return loadHigh64(loadLow64(table + (i.a - FIRST)), table + (i.b - FIRST));
    });
    const FloatVector cd = joinFloatUnits([&]<unsigned U>() KSX_INLINE_LAMBDA {
        const details::Indices i(unitOf<U>(indices));
        const FloatUnit c = loadLow64(table + (i.c - FIRST));
        return LANES == 3 ? c : loadHigh64(c, table + (i.d - FIRST));
    });
    return {shuffle32<0, 2, 0, 2>(ab, cd), shuffle32<1, 3, 1, 3>(ab, cd)};
}

/// An entry of a table that is a unit of a vector.
struct alignas(kUnitBytes) TableRow {
    float at[4];
};

/// An entry for each of four lanes.
struct LookedUpRows {
    FloatVector v[4];
};

/// Row i is `table[index i]`. The index is byte `BYTE` of lane i of `words`, which has 32 bits.
template<int BYTE>
KSX_INLINE LookedUpRows lookUpRows(const TableRow* table, Vector words)
{
    LookedUpRows rows;
    unrolled<0, 4>([&]<unsigned LANE>() KSX_INLINE_LAMBDA {
        rows.v[LANE] = joinFloatUnits([&]<unsigned U>() KSX_INLINE_LAMBDA {
            const Unit unit = unitOf<U>(words);
            const std::uint64_t half = LANE < 2 ? low64(unit) : high64(unit);
            return loadAligned(table[half >> (32 * (LANE % 2) + 8 * BYTE) & 0xff].at);
        });
    });
    return rows;
}

} // namespace KSX::PixelConversion
