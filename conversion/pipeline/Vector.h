/// Vectors and the operations on them. This header and those that it includes are the only files of
/// the engine with intrinsics.
///
/// A vector is one, two or four units of 16 bytes. The constant `KSX_VECTOR_BYTES` chooses the size
/// when the engine is compiled: 16 (SSSE3) if nothing is said, 32 (AVX2) or 64 (AVX-512BW and
/// AVX-512DQ). Each operation works in each unit by itself, as it does in a vector of one unit. So
/// a stage is written as if there were one unit. The units hold different blocks of a picture, and
/// a constant is the same in all of them.
///
/// A name ends in the bits of the lanes that it works on: `add16` adds lanes of 16 bits, 8 in each
/// unit. Lanes are signed, or their sign does not matter; `U` marks unsigned lanes. Lane 0 is at
/// the low end, which has the lowest address in memory. The arguments of shuffles are in the same
/// order, lane 0 first. Nearly every operation is one instruction, inlined in every build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

#ifndef KSX_VECTOR_BYTES
#define KSX_VECTOR_BYTES 16
#endif

#define KSX_VECTOR_OP [[gnu::always_inline]] inline

namespace KSX::PixelConversion {

constexpr unsigned kUnitBytes = 16;
using Unit = __m128i;     ///< lanes of integers
using FloatUnit = __m128; ///< 4 lanes

} // namespace KSX::PixelConversion

// These define `kUnits`, `Vector`, `FloatVector` and `DoubleVector`, how units form a vector, and
// what is not alike at all sizes. KSX_MM and KSX_MM_BITS name the intrinsics that are.
#if KSX_VECTOR_BYTES == 16
#include "conversion/pipeline/Vector16.h"
#elif KSX_VECTOR_BYTES == 32
#include "conversion/pipeline/Vector32.h"
#else
#include "conversion/pipeline/Vector64.h"
#endif

namespace KSX::PixelConversion {

// --- Constants -----------------------------------------------------------------------------------

/// `lane` in each lane of 32 bits.
constexpr Vector v4i(std::uint32_t lane)
{
    const auto pair = static_cast<long long>(std::uint64_t{lane} << 32 | lane);
    return repeat(pair, pair);
}

/// `lane` in each lane of 16 bits.
constexpr Vector v8i(std::uint16_t lane)
{
    return v4i(std::uint32_t{lane} << 16 | lane);
}

/// A vector of these lanes of 16 bits in each unit, lane 0 first.
constexpr Vector v8i(std::int16_t a, std::int16_t b, std::int16_t c, std::int16_t d, std::int16_t e,
                     std::int16_t f, std::int16_t g, std::int16_t h)
{
    const auto half = [](std::uint16_t p, std::uint16_t q, std::uint16_t r, std::uint16_t s) {
        return static_cast<long long>(std::uint64_t{s} << 48 | std::uint64_t{r} << 32 |
                                      std::uint64_t{q} << 16 | p);
    };
    return repeat(half(a, b, c, d), half(e, f, g, h));
}

/// A vector of these bytes in each unit, lane 0 first. Most often they are the indices of
/// `shuffleBytes`.
KSX_VECTOR_OP Vector v16i(char b0, char b1, char b2, char b3, char b4, char b5, char b6, char b7,
                          char b8, char b9, char b10, char b11, char b12, char b13, char b14,
                          char b15)
{
    return repeat(
        _mm_setr_epi8(b0, b1, b2, b3, b4, b5, b6, b7, b8, b9, b10, b11, b12, b13, b14, b15));
}

/// `lane` in each lane.
KSX_VECTOR_OP FloatVector v4f(float lane)
{
    return KSX_MM(set1_ps)(lane);
}
KSX_VECTOR_OP DoubleVector v2d(double lane)
{
    return KSX_MM(set1_pd)(lane);
}
/// A vector of these lanes in each unit, lane 0 first.
constexpr FloatVector v4f(float a, float b, float c, float d)
{
    return repeat(a, b, c, d);
}

// --- Memory --------------------------------------------------------------------------------------

// Addresses need no alignment.
KSX_VECTOR_OP Unit loadUnit(const void* at)
{
    return _mm_loadu_si128(static_cast<const Unit*>(at));
}
KSX_VECTOR_OP void storeUnit(void* at, Unit unit)
{
    _mm_storeu_si128(static_cast<Unit*>(at), unit);
}

/// Units that follow each other in memory.
KSX_VECTOR_OP Vector loadUnits(const void* at)
{
    return KSX_MM_BITS(loadu)(static_cast<const Vector*>(at));
}
KSX_VECTOR_OP void storeUnits(void* at, Vector v)
{
    KSX_MM_BITS(storeu)(static_cast<Vector*>(at), v);
}

/// Prefetches the cache line at an address, past the outer caches. It is a hint: no address can
/// fault.
KSX_VECTOR_OP void prefetchNonTemporal(const void* at)
{
    _mm_prefetch(static_cast<const char*>(at), _MM_HINT_NTA);
}

// Parts of one unit, for look-ups in tables.

/// Four floats at an address that is a multiple of 16.
KSX_VECTOR_OP FloatUnit loadAligned(const float* at)
{
    return _mm_load_ps(at);
}
/// One float in lane 0, zeros in the others.
KSX_VECTOR_OP FloatUnit loadLane32(const float* at)
{
    return _mm_load_ss(at);
}
/// One float in all lanes.
KSX_VECTOR_OP FloatUnit loadRepeated32(const float* at)
{
    return _mm_load1_ps(at);
}
/// 8 bytes in the lower half, zeros in the upper one.
KSX_VECTOR_OP FloatUnit loadLow64(const void* at)
{
    return _mm_castsi128_ps(_mm_loadl_epi64(static_cast<const Unit*>(at)));
}
/// The lower half of `unit`, and 8 bytes in the upper one.
KSX_VECTOR_OP FloatUnit loadHigh64(FloatUnit unit, const void* at)
{
    return _mm_loadh_pi(unit, static_cast<const __m64*>(at));
}
/// Lane 0 of `a`, then lane 0 of `b`.
KSX_VECTOR_OP FloatUnit joinLanes32(FloatUnit a, FloatUnit b)
{
    return _mm_unpacklo_ps(a, b);
}
/// The lower half of `a`, then the lower half of `b`.
KSX_VECTOR_OP FloatUnit joinHalves(FloatUnit a, FloatUnit b)
{
    return _mm_movelh_ps(a, b);
}
/// The lower and the upper half of `unit`.
KSX_VECTOR_OP std::uint64_t low64(Unit unit)
{
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(unit));
}
KSX_VECTOR_OP std::uint64_t high64(Unit unit)
{
    return low64(_mm_unpackhi_epi64(unit, unit));
}
/// Lane `LANE` of 16 bits, unsigned.
template<int LANE>
KSX_VECTOR_OP std::uint64_t laneU16(Unit unit)
{
    return static_cast<std::uint16_t>(_mm_extract_epi16(unit, LANE));
}

// --- Bits ----------------------------------------------------------------------------------------

KSX_VECTOR_OP Vector bitAnd(Vector a, Vector b)
{
    return KSX_MM_BITS(and)(a, b);
}
KSX_VECTOR_OP Vector bitOr(Vector a, Vector b)
{
    return KSX_MM_BITS(or)(a, b);
}
KSX_VECTOR_OP Vector bitXor(Vector a, Vector b)
{
    return KSX_MM_BITS(xor)(a, b);
}
/// The bits of `b` at which `a` has a 0.
KSX_VECTOR_OP Vector bitAndNot(Vector a, Vector b)
{
    return KSX_MM_BITS(andnot)(a, b);
}
KSX_VECTOR_OP DoubleVector bitAnd(DoubleVector a, DoubleVector b)
{
    return KSX_MM(and_pd)(a, b);
}
KSX_VECTOR_OP DoubleVector bitOr(DoubleVector a, DoubleVector b)
{
    return KSX_MM(or_pd)(a, b);
}
KSX_VECTOR_OP DoubleVector bitAndNot(DoubleVector a, DoubleVector b)
{
    return KSX_MM(andnot_pd)(a, b);
}

KSX_VECTOR_OP Vector shiftLeft16(Vector v, int bits)
{
    return KSX_MM(slli_epi16)(v, bits);
}
KSX_VECTOR_OP Vector shiftLeft32(Vector v, int bits)
{
    return KSX_MM(slli_epi32)(v, bits);
}
/// Arithmetic shift: the new bits are copies of the sign.
KSX_VECTOR_OP Vector shiftRight16(Vector v, int bits)
{
    return KSX_MM(srai_epi16)(v, bits);
}
KSX_VECTOR_OP Vector shiftRight32(Vector v, int bits)
{
    return KSX_MM(srai_epi32)(v, bits);
}
/// Logical shift: the new bits are zeros.
KSX_VECTOR_OP Vector shiftRightU16(Vector v, int bits)
{
    return KSX_MM(srli_epi16)(v, bits);
}
KSX_VECTOR_OP Vector shiftRightU32(Vector v, int bits)
{
    return KSX_MM(srli_epi32)(v, bits);
}

// --- Integers ------------------------------------------------------------------------------------

KSX_VECTOR_OP Vector add16(Vector a, Vector b)
{
    return KSX_MM(add_epi16)(a, b);
}
KSX_VECTOR_OP Vector add32(Vector a, Vector b)
{
    return KSX_MM(add_epi32)(a, b);
}
KSX_VECTOR_OP Vector sub16(Vector a, Vector b)
{
    return KSX_MM(sub_epi16)(a, b);
}
KSX_VECTOR_OP Vector sub32(Vector a, Vector b)
{
    return KSX_MM(sub_epi32)(a, b);
}
KSX_VECTOR_OP Vector addSaturate16(Vector a, Vector b)
{
    return KSX_MM(adds_epi16)(a, b);
}
KSX_VECTOR_OP Vector addSaturateU16(Vector a, Vector b)
{
    return KSX_MM(adds_epu16)(a, b);
}
KSX_VECTOR_OP Vector subSaturateU16(Vector a, Vector b)
{
    return KSX_MM(subs_epu16)(a, b);
}

KSX_VECTOR_OP Vector min16(Vector a, Vector b)
{
    return KSX_MM(min_epi16)(a, b);
}
KSX_VECTOR_OP Vector max16(Vector a, Vector b)
{
    return KSX_MM(max_epi16)(a, b);
}
KSX_VECTOR_OP Vector minU8(Vector a, Vector b)
{
    return KSX_MM(min_epu8)(a, b);
}
KSX_VECTOR_OP Vector maxU8(Vector a, Vector b)
{
    return KSX_MM(max_epu8)(a, b);
}

/// (a + b + 1) >> 1.
KSX_VECTOR_OP Vector averageU8(Vector a, Vector b)
{
    return KSX_MM(avg_epu8)(a, b);
}
KSX_VECTOR_OP Vector averageU16(Vector a, Vector b)
{
    return KSX_MM(avg_epu16)(a, b);
}

/// The low 16 bits of each product (`mulLow16`), or the high 16 bits (`mulHigh16`, `mulHighU16`).
KSX_VECTOR_OP Vector mulLow16(Vector a, Vector b)
{
    return KSX_MM(mullo_epi16)(a, b);
}
KSX_VECTOR_OP Vector mulHigh16(Vector a, Vector b)
{
    return KSX_MM(mulhi_epi16)(a, b);
}
KSX_VECTOR_OP Vector mulHighU16(Vector a, Vector b)
{
    return KSX_MM(mulhi_epu16)(a, b);
}
/// (a b + 16384) >> 15.
KSX_VECTOR_OP Vector mulRound16(Vector a, Vector b)
{
    return KSX_MM(mulhrs_epi16)(a, b);
}
/// Products of lanes of 16 bits. Each two neighbours are added into a lane of 32 bits.
KSX_VECTOR_OP Vector mulAddPairs16(Vector a, Vector b)
{
    return KSX_MM(madd_epi16)(a, b);
}
/// Products of the unsigned bytes of `a` and the signed bytes of `b`. Each two neighbours are added
/// into a lane of 16 bits, with saturation.
KSX_VECTOR_OP Vector mulAddPairsU8(Vector a, Vector b)
{
    return KSX_MM(maddubs_epi16)(a, b);
}
/// Sums of neighbouring lanes: two sums from `a`, then two from `b`.
KSX_VECTOR_OP Vector addPairs32(Vector a, Vector b)
{
    return intrinsics::addPairs32(a, b);
}

/// Sets all bits of a lane if `a` is greater than `b`, and clears them if it is not.
KSX_VECTOR_OP Vector greater32(Vector a, Vector b)
{
    return intrinsics::greater32(a, b);
}

// --- Moves between lanes -------------------------------------------------------------------------

/// Byte i is byte `indices[i]` of `v`, or 0 if that index is negative.
KSX_VECTOR_OP Vector shuffleBytes(Vector v, Vector indices)
{
    return KSX_MM(shuffle_epi8)(v, indices);
}
/// Lane i is the lane of `v` that argument i names.
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffle32(Vector v)
{
    return intrinsics::shuffle32<_MM_SHUFFLE(D, C, B, A)>(v);
}
/// Shuffles the four lanes of 16 bits of the lower half, or of the upper half. The other half
/// stays.
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffleLow16(Vector v)
{
    return KSX_MM(shufflelo_epi16)(v, _MM_SHUFFLE(D, C, B, A));
}
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffleHigh16(Vector v)
{
    return KSX_MM(shufflehi_epi16)(v, _MM_SHUFFLE(D, C, B, A));
}
/// Lanes `A` and `B` of `low`, then lanes `C` and `D` of `high`.
template<int A, int B, int C, int D>
KSX_VECTOR_OP FloatVector shuffle32(FloatVector low, FloatVector high)
{
    return KSX_MM(shuffle_ps)(low, high, _MM_SHUFFLE(D, C, B, A));
}

/// Lanes of the lower halves of `a` and `b`, alternating, `a` first.
KSX_VECTOR_OP Vector interleaveLow8(Vector a, Vector b)
{
    return KSX_MM(unpacklo_epi8)(a, b);
}
KSX_VECTOR_OP Vector interleaveLow16(Vector a, Vector b)
{
    return KSX_MM(unpacklo_epi16)(a, b);
}
KSX_VECTOR_OP Vector interleaveLow32(Vector a, Vector b)
{
    return KSX_MM(unpacklo_epi32)(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow32(FloatVector a, FloatVector b)
{
    return KSX_MM(unpacklo_ps)(a, b);
}
KSX_VECTOR_OP Vector interleaveLow64(Vector a, Vector b)
{
    return KSX_MM(unpacklo_epi64)(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow64(FloatVector a, FloatVector b)
{
    return intrinsics::interleaveLow64(a, b);
}
/// Lanes of the upper halves of `a` and `b`, alternating, `a` first.
KSX_VECTOR_OP Vector interleaveHigh8(Vector a, Vector b)
{
    return KSX_MM(unpackhi_epi8)(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh16(Vector a, Vector b)
{
    return KSX_MM(unpackhi_epi16)(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh32(Vector a, Vector b)
{
    return KSX_MM(unpackhi_epi32)(a, b);
}
KSX_VECTOR_OP FloatVector interleaveHigh32(FloatVector a, FloatVector b)
{
    return KSX_MM(unpackhi_ps)(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh64(Vector a, Vector b)
{
    return KSX_MM(unpackhi_epi64)(a, b);
}

/// 16 bytes of `low` followed by `high`, from byte `BYTES` on.
template<int BYTES>
KSX_VECTOR_OP Vector combineShiftRightBytes(Vector high, Vector low)
{
    return KSX_MM(alignr_epi8)(high, low, BYTES);
}
/// 16 bytes of `v` followed by zeros, from byte `BYTES` on.
template<int BYTES>
KSX_VECTOR_OP Vector shiftRightBytes(Vector v)
{
    return intrinsics::shiftRightBytes<BYTES>(v);
}
/// Reverses the bytes of every lane of 32 bits: little-endian words to big-endian ones and back.
KSX_VECTOR_OP Vector reverseBytes32(Vector v)
{
    return shuffleBytes(v, v16i(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
}

// --- Between kinds of lanes ----------------------------------------------------------------------

/// Signed lanes of `a`, then of `b`, narrowed. A value beyond the range of the narrow lanes becomes
/// the limit of that range.
KSX_VECTOR_OP Vector packSaturate32To16(Vector a, Vector b)
{
    return KSX_MM(packs_epi32)(a, b);
}
KSX_VECTOR_OP Vector packSaturate16ToU8(Vector a, Vector b)
{
    return KSX_MM(packus_epi16)(a, b);
}

/// The same bits, read as another kind of lane.
KSX_VECTOR_OP Vector bitsOf(FloatVector v)
{
    return KSX_MM_BITS(castps)(v);
}
KSX_VECTOR_OP FloatVector floatsOfBits(Vector v)
{
    return intrinsics::floatsOfBits(v);
}

/// Conversions between integers of 32 bits and floats. To integers, they round to nearest, ties to
/// even.
KSX_VECTOR_OP FloatVector toFloats(Vector v)
{
    return KSX_MM(cvtepi32_ps)(v);
}
KSX_VECTOR_OP Vector toNearest32(FloatVector v)
{
    return KSX_MM(cvtps_epi32)(v);
}
/// Rounds towards zero.
KSX_VECTOR_OP Vector truncate32(FloatVector v)
{
    return KSX_MM(cvttps_epi32)(v);
}
/// Lanes of 32 bits as doubles, which take two vectors. Which lanes are in `first` depends on the
/// size of vectors; `toNearest32` and `toFloats` put them back in order.
struct Doubles {
    DoubleVector first, second;
};
KSX_VECTOR_OP Doubles toDoubles(Vector v)
{
    return {intrinsics::firstDoubles(v), intrinsics::secondDoubles(v)};
}
KSX_VECTOR_OP Doubles toDoubles(FloatVector v)
{
    return {intrinsics::firstDoubles(v), intrinsics::secondDoubles(v)};
}
KSX_VECTOR_OP Vector toNearest32(DoubleVector first, DoubleVector second)
{
    return intrinsics::toNearest32(first, second);
}
KSX_VECTOR_OP FloatVector toFloats(DoubleVector first, DoubleVector second)
{
    return intrinsics::toFloats(first, second);
}

// --- Floating point ------------------------------------------------------------------------------

KSX_VECTOR_OP FloatVector add(FloatVector a, FloatVector b)
{
    return KSX_MM(add_ps)(a, b);
}
KSX_VECTOR_OP FloatVector mul(FloatVector a, FloatVector b)
{
    return KSX_MM(mul_ps)(a, b);
}
KSX_VECTOR_OP FloatVector min(FloatVector a, FloatVector b)
{
    return KSX_MM(min_ps)(a, b);
}
KSX_VECTOR_OP FloatVector max(FloatVector a, FloatVector b)
{
    return KSX_MM(max_ps)(a, b);
}
/// Sets all bits of a lane if the comparison holds, and clears them if it does not.
KSX_VECTOR_OP FloatVector lessOrEqual(FloatVector a, FloatVector b)
{
    return intrinsics::lessOrEqual(a, b);
}
KSX_VECTOR_OP DoubleVector add(DoubleVector a, DoubleVector b)
{
    return KSX_MM(add_pd)(a, b);
}
KSX_VECTOR_OP DoubleVector sub(DoubleVector a, DoubleVector b)
{
    return KSX_MM(sub_pd)(a, b);
}
KSX_VECTOR_OP DoubleVector mul(DoubleVector a, DoubleVector b)
{
    return KSX_MM(mul_pd)(a, b);
}
KSX_VECTOR_OP DoubleVector lessThan(DoubleVector a, DoubleVector b)
{
    return intrinsics::lessThan(a, b);
}

/// Keeps the compiler from starting later operations before all of these values are there. It adds
/// no instruction.
KSX_VECTOR_OP void keepTogether(DoubleVector (&v)[4])
{
    asm(""
        : "+" KSX_VECTOR_REGISTERS(v[0]), "+" KSX_VECTOR_REGISTERS(v[1]),
          "+" KSX_VECTOR_REGISTERS(v[2]), "+" KSX_VECTOR_REGISTERS(v[3]));
}
KSX_VECTOR_OP void keepTogether(DoubleVector (&v)[6])
{
    asm(""
        : "+" KSX_VECTOR_REGISTERS(v[0]), "+" KSX_VECTOR_REGISTERS(v[1]),
          "+" KSX_VECTOR_REGISTERS(v[2]), "+" KSX_VECTOR_REGISTERS(v[3]),
          "+" KSX_VECTOR_REGISTERS(v[4]), "+" KSX_VECTOR_REGISTERS(v[5]));
}

} // namespace KSX::PixelConversion

#undef KSX_MM
#undef KSX_MM_BITS
#undef KSX_VECTOR_OP
#undef KSX_VECTOR_REGISTERS
