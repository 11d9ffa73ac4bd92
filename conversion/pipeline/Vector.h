/// Vectors of 16 bytes and the operations on them, up to SSSE3. The only file of the engine that
/// includes intrinsics.
///
/// A name ends in the bits of the lanes that it works on: `add16` adds 8 lanes of 16 bits. Lanes
/// are signed, or their sign does not matter; `U` marks unsigned lanes. Lane 0 is at the low end,
/// which has the lowest address in memory. The arguments of shuffles are in the same order, lane 0
/// first. Every operation is one instruction, inlined in every build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <tmmintrin.h>

#define KSX_VECTOR_OP [[gnu::always_inline]] inline

namespace KSX::PixelConversion {

using Vector = __m128i;       ///< lanes of integers
using FloatVector = __m128;   ///< 4 lanes
using DoubleVector = __m128d; ///< 2 lanes

// --- Constants -----------------------------------------------------------------------------------

/// `lane` in each of 4 lanes of 32 bits.
constexpr Vector v4i(std::uint32_t lane)
{
    const auto pair = static_cast<long long>(std::uint64_t{lane} << 32 | lane);
    return Vector{pair, pair};
}

/// `lane` in each of 8 lanes of 16 bits.
constexpr Vector v8i(std::uint16_t lane)
{
    return v4i(std::uint32_t{lane} << 16 | lane);
}

/// A vector of these lanes of 16 bits, lane 0 first.
constexpr Vector v8i(std::int16_t a, std::int16_t b, std::int16_t c, std::int16_t d, std::int16_t e,
                     std::int16_t f, std::int16_t g, std::int16_t h)
{
    const auto half = [](std::uint16_t p, std::uint16_t q, std::uint16_t r, std::uint16_t s) {
        return static_cast<long long>(std::uint64_t{s} << 48 | std::uint64_t{r} << 32 |
                                      std::uint64_t{q} << 16 | p);
    };
    return Vector{half(a, b, c, d), half(e, f, g, h)};
}

/// A vector of these bytes, lane 0 first. Most often they are the indices of `shuffleBytes`.
KSX_VECTOR_OP Vector v16i(char b0, char b1, char b2, char b3, char b4, char b5, char b6, char b7,
                          char b8, char b9, char b10, char b11, char b12, char b13, char b14,
                          char b15)
{
    return _mm_setr_epi8(b0, b1, b2, b3, b4, b5, b6, b7, b8, b9, b10, b11, b12, b13, b14, b15);
}

/// `lane` in each lane.
KSX_VECTOR_OP FloatVector v4f(float lane)
{
    return _mm_set1_ps(lane);
}
KSX_VECTOR_OP DoubleVector v2d(double lane)
{
    return _mm_set1_pd(lane);
}

// --- Memory --------------------------------------------------------------------------------------

// Addresses need no alignment.
KSX_VECTOR_OP Vector load(const void* at)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(at));
}
KSX_VECTOR_OP void store(void* at, Vector v)
{
    _mm_storeu_si128(static_cast<__m128i*>(at), v);
}

/// One float in lane 0, zeros in the others.
KSX_VECTOR_OP FloatVector loadLane32(const float* at)
{
    return _mm_load_ss(at);
}
/// 8 bytes in the lower half, zeros in the upper one.
KSX_VECTOR_OP FloatVector loadLow64(const void* at)
{
    return _mm_castsi128_ps(_mm_loadl_epi64(static_cast<const __m128i*>(at)));
}
/// The lower half of `v`, and 8 bytes in the upper one.
KSX_VECTOR_OP FloatVector loadHigh64(FloatVector v, const void* at)
{
    return _mm_loadh_pi(v, static_cast<const __m64*>(at));
}

/// The lower half of `v`.
KSX_VECTOR_OP std::uint64_t low64(Vector v)
{
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(v));
}

/// Prefetches the cache line at an address, past the outer caches. It is a hint: no address can
/// fault.
KSX_VECTOR_OP void prefetchNonTemporal(const void* at)
{
    _mm_prefetch(static_cast<const char*>(at), _MM_HINT_NTA);
}

// --- Bits ----------------------------------------------------------------------------------------

KSX_VECTOR_OP Vector bitAnd(Vector a, Vector b)
{
    return _mm_and_si128(a, b);
}
KSX_VECTOR_OP Vector bitOr(Vector a, Vector b)
{
    return _mm_or_si128(a, b);
}
/// The bits of `b` at which `a` has a 0.
KSX_VECTOR_OP Vector bitAndNot(Vector a, Vector b)
{
    return _mm_andnot_si128(a, b);
}
KSX_VECTOR_OP DoubleVector bitAnd(DoubleVector a, DoubleVector b)
{
    return _mm_and_pd(a, b);
}
KSX_VECTOR_OP DoubleVector bitOr(DoubleVector a, DoubleVector b)
{
    return _mm_or_pd(a, b);
}
KSX_VECTOR_OP DoubleVector bitAndNot(DoubleVector a, DoubleVector b)
{
    return _mm_andnot_pd(a, b);
}

KSX_VECTOR_OP Vector shiftLeft16(Vector v, int bits)
{
    return _mm_slli_epi16(v, bits);
}
KSX_VECTOR_OP Vector shiftLeft32(Vector v, int bits)
{
    return _mm_slli_epi32(v, bits);
}
/// Arithmetic shift: the new bits are copies of the sign.
KSX_VECTOR_OP Vector shiftRight16(Vector v, int bits)
{
    return _mm_srai_epi16(v, bits);
}
KSX_VECTOR_OP Vector shiftRight32(Vector v, int bits)
{
    return _mm_srai_epi32(v, bits);
}
/// Logical shift: the new bits are zeros.
KSX_VECTOR_OP Vector shiftRightU16(Vector v, int bits)
{
    return _mm_srli_epi16(v, bits);
}
KSX_VECTOR_OP Vector shiftRightU32(Vector v, int bits)
{
    return _mm_srli_epi32(v, bits);
}

// --- Integers ------------------------------------------------------------------------------------

KSX_VECTOR_OP Vector add16(Vector a, Vector b)
{
    return _mm_add_epi16(a, b);
}
KSX_VECTOR_OP Vector add32(Vector a, Vector b)
{
    return _mm_add_epi32(a, b);
}
KSX_VECTOR_OP Vector sub16(Vector a, Vector b)
{
    return _mm_sub_epi16(a, b);
}
KSX_VECTOR_OP Vector sub32(Vector a, Vector b)
{
    return _mm_sub_epi32(a, b);
}
KSX_VECTOR_OP Vector addSaturate16(Vector a, Vector b)
{
    return _mm_adds_epi16(a, b);
}
KSX_VECTOR_OP Vector addSaturateU16(Vector a, Vector b)
{
    return _mm_adds_epu16(a, b);
}
KSX_VECTOR_OP Vector subSaturateU16(Vector a, Vector b)
{
    return _mm_subs_epu16(a, b);
}

KSX_VECTOR_OP Vector min16(Vector a, Vector b)
{
    return _mm_min_epi16(a, b);
}
KSX_VECTOR_OP Vector max16(Vector a, Vector b)
{
    return _mm_max_epi16(a, b);
}
KSX_VECTOR_OP Vector minU8(Vector a, Vector b)
{
    return _mm_min_epu8(a, b);
}
KSX_VECTOR_OP Vector maxU8(Vector a, Vector b)
{
    return _mm_max_epu8(a, b);
}

/// (a + b + 1) >> 1.
KSX_VECTOR_OP Vector averageU8(Vector a, Vector b)
{
    return _mm_avg_epu8(a, b);
}
KSX_VECTOR_OP Vector averageU16(Vector a, Vector b)
{
    return _mm_avg_epu16(a, b);
}

/// The low 16 bits of each product (`mulLow16`), or the high 16 bits (`mulHigh16`, `mulHighU16`).
KSX_VECTOR_OP Vector mulLow16(Vector a, Vector b)
{
    return _mm_mullo_epi16(a, b);
}
KSX_VECTOR_OP Vector mulHigh16(Vector a, Vector b)
{
    return _mm_mulhi_epi16(a, b);
}
KSX_VECTOR_OP Vector mulHighU16(Vector a, Vector b)
{
    return _mm_mulhi_epu16(a, b);
}
/// (a b + 16384) >> 15.
KSX_VECTOR_OP Vector mulRound16(Vector a, Vector b)
{
    return _mm_mulhrs_epi16(a, b);
}
/// Products of lanes of 16 bits. Each two neighbours are added into a lane of 32 bits.
KSX_VECTOR_OP Vector mulAddPairs16(Vector a, Vector b)
{
    return _mm_madd_epi16(a, b);
}
/// Sums of neighbouring lanes: two sums from `a`, then two from `b`.
KSX_VECTOR_OP Vector addPairs32(Vector a, Vector b)
{
    return _mm_hadd_epi32(a, b);
}

// --- Moves between lanes -------------------------------------------------------------------------

/// Byte i is byte `indices[i]` of `v`, or 0 if that index is negative.
KSX_VECTOR_OP Vector shuffleBytes(Vector v, Vector indices)
{
    return _mm_shuffle_epi8(v, indices);
}
/// Lane i is the lane of `v` that argument i names.
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffle32(Vector v)
{
    return _mm_shuffle_epi32(v, _MM_SHUFFLE(D, C, B, A));
}
/// Shuffles the four lanes of 16 bits of the lower half, or of the upper half. The other half
/// stays.
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffleLow16(Vector v)
{
    return _mm_shufflelo_epi16(v, _MM_SHUFFLE(D, C, B, A));
}
template<int A, int B, int C, int D>
KSX_VECTOR_OP Vector shuffleHigh16(Vector v)
{
    return _mm_shufflehi_epi16(v, _MM_SHUFFLE(D, C, B, A));
}
/// Lanes `A` and `B` of `low`, then lanes `C` and `D` of `high`.
template<int A, int B, int C, int D>
KSX_VECTOR_OP FloatVector shuffle32(FloatVector low, FloatVector high)
{
    return _mm_shuffle_ps(low, high, _MM_SHUFFLE(D, C, B, A));
}

/// Lanes of the lower halves of `a` and `b`, alternating, `a` first.
KSX_VECTOR_OP Vector interleaveLow8(Vector a, Vector b)
{
    return _mm_unpacklo_epi8(a, b);
}
KSX_VECTOR_OP Vector interleaveLow16(Vector a, Vector b)
{
    return _mm_unpacklo_epi16(a, b);
}
KSX_VECTOR_OP Vector interleaveLow32(Vector a, Vector b)
{
    return _mm_unpacklo_epi32(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow32(FloatVector a, FloatVector b)
{
    return _mm_unpacklo_ps(a, b);
}
KSX_VECTOR_OP Vector interleaveLow64(Vector a, Vector b)
{
    return _mm_unpacklo_epi64(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow64(FloatVector a, FloatVector b)
{
    return _mm_movelh_ps(a, b);
}
/// Lanes of the upper halves of `a` and `b`, alternating, `a` first.
KSX_VECTOR_OP Vector interleaveHigh8(Vector a, Vector b)
{
    return _mm_unpackhi_epi8(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh16(Vector a, Vector b)
{
    return _mm_unpackhi_epi16(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh32(Vector a, Vector b)
{
    return _mm_unpackhi_epi32(a, b);
}
KSX_VECTOR_OP FloatVector interleaveHigh32(FloatVector a, FloatVector b)
{
    return _mm_unpackhi_ps(a, b);
}
KSX_VECTOR_OP Vector interleaveHigh64(Vector a, Vector b)
{
    return _mm_unpackhi_epi64(a, b);
}

/// 16 bytes of `low` followed by `high`, from byte `BYTES` on.
template<int BYTES>
KSX_VECTOR_OP Vector combineShiftRightBytes(Vector high, Vector low)
{
    return _mm_alignr_epi8(high, low, BYTES);
}
/// 16 bytes of `v` followed by zeros, from byte `BYTES` on.
template<int BYTES>
KSX_VECTOR_OP Vector shiftRightBytes(Vector v)
{
    return _mm_srli_si128(v, BYTES);
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
    return _mm_packs_epi32(a, b);
}
KSX_VECTOR_OP Vector packSaturate16ToU8(Vector a, Vector b)
{
    return _mm_packus_epi16(a, b);
}

/// The same bits, read as another kind of lane.
KSX_VECTOR_OP Vector bitsOf(FloatVector v)
{
    return _mm_castps_si128(v);
}
KSX_VECTOR_OP FloatVector floatsOfBits(Vector v)
{
    return _mm_castsi128_ps(v);
}

/// Conversions between integers of 32 bits and floats. To integers, they round to nearest, ties to
/// even.
KSX_VECTOR_OP FloatVector toFloats(Vector v)
{
    return _mm_cvtepi32_ps(v);
}
KSX_VECTOR_OP Vector toNearest32(FloatVector v)
{
    return _mm_cvtps_epi32(v);
}
/// Rounds towards zero.
KSX_VECTOR_OP Vector truncate32(FloatVector v)
{
    return _mm_cvttps_epi32(v);
}
/// Conversions between two doubles and the lower half of a vector. The upper half of a result that
/// is not doubles is 0.
KSX_VECTOR_OP DoubleVector lowToDoubles(Vector v)
{
    return _mm_cvtepi32_pd(v);
}
KSX_VECTOR_OP DoubleVector lowToDoubles(FloatVector v)
{
    return _mm_cvtps_pd(v);
}
KSX_VECTOR_OP Vector toNearest32(DoubleVector v)
{
    return _mm_cvtpd_epi32(v);
}
KSX_VECTOR_OP FloatVector toFloats(DoubleVector v)
{
    return _mm_cvtpd_ps(v);
}
/// The upper half of `v` in both halves.
KSX_VECTOR_OP FloatVector upperHalf(FloatVector v)
{
    return _mm_movehl_ps(v, v);
}

// --- Floating point ------------------------------------------------------------------------------

KSX_VECTOR_OP FloatVector add(FloatVector a, FloatVector b)
{
    return _mm_add_ps(a, b);
}
KSX_VECTOR_OP FloatVector mul(FloatVector a, FloatVector b)
{
    return _mm_mul_ps(a, b);
}
KSX_VECTOR_OP FloatVector min(FloatVector a, FloatVector b)
{
    return _mm_min_ps(a, b);
}
KSX_VECTOR_OP FloatVector max(FloatVector a, FloatVector b)
{
    return _mm_max_ps(a, b);
}
/// Sets all bits of a lane if the comparison holds, and clears them if it does not.
KSX_VECTOR_OP FloatVector lessOrEqual(FloatVector a, FloatVector b)
{
    return _mm_cmple_ps(a, b);
}
KSX_VECTOR_OP DoubleVector add(DoubleVector a, DoubleVector b)
{
    return _mm_add_pd(a, b);
}
KSX_VECTOR_OP DoubleVector sub(DoubleVector a, DoubleVector b)
{
    return _mm_sub_pd(a, b);
}
KSX_VECTOR_OP DoubleVector mul(DoubleVector a, DoubleVector b)
{
    return _mm_mul_pd(a, b);
}
KSX_VECTOR_OP DoubleVector lessThan(DoubleVector a, DoubleVector b)
{
    return _mm_cmplt_pd(a, b);
}

} // namespace KSX::PixelConversion

#undef KSX_VECTOR_OP
