/// Vectors of 64 bytes: the operations that are not alike at all sizes, up to AVX-512BW and
/// AVX-512DQ.
#pragma once

#include <cstddef>
#include <immintrin.h>

#define KSX_MM(OPERATION) _mm512_##OPERATION
#define KSX_MM_BITS(OPERATION) _mm512_##OPERATION##_si512
#define KSX_VECTOR_REGISTERS "v"

namespace KSX::PixelConversion {

constexpr unsigned kUnits = 4;

using Vector = __m512i;
using FloatVector = __m512;
using DoubleVector = __m512d;

constexpr Vector repeat(long long low, long long high)
{
    return Vector{low, high, low, high, low, high, low, high};
}
constexpr FloatVector repeat(float a, float b, float c, float d)
{
    return FloatVector{a, b, c, d, a, b, c, d, a, b, c, d, a, b, c, d};
}
KSX_VECTOR_OP Vector repeat(Unit unit)
{
    return _mm512_broadcast_i32x4(unit);
}

template<unsigned I>
KSX_VECTOR_OP Unit unitOf(Vector v)
{
    if constexpr (I == 0)
        return _mm512_castsi512_si128(v);
    else
        return _mm512_extracti32x4_epi32(v, I);
}
template<class FUNCTION>
KSX_VECTOR_OP Vector joinUnits(FUNCTION unit)
{
    const auto pair = [&]<unsigned I>() __attribute__((always_inline))
    {
        const __m256i first = _mm256_castsi128_si256(unit.template operator()<I>());
        return _mm256_inserti128_si256(first, unit.template operator()<I + 1>(), 1);
    };
    const Vector first = _mm512_castsi256_si512(pair.template operator()<0>());
    return _mm512_inserti64x4(first, pair.template operator()<2>(), 1);
}
template<class FUNCTION>
KSX_VECTOR_OP FloatVector joinFloatUnits(FUNCTION unit)
{
    const auto pair = [&]<unsigned I>() __attribute__((always_inline))
    {
        const __m256 first = _mm256_castps128_ps256(unit.template operator()<I>());
        return _mm256_insertf128_ps(first, unit.template operator()<I + 1>(), 1);
    };
    const FloatVector first = _mm512_castps256_ps512(pair.template operator()<0>());
    return _mm512_insertf32x8(first, pair.template operator()<2>(), 1);
}

namespace intrinsics {

template<int IMMEDIATE>
KSX_VECTOR_OP Vector shuffle32(Vector v)
{
    return _mm512_shuffle_epi32(v, static_cast<_MM_PERM_ENUM>(IMMEDIATE));
}
template<int BYTES>
KSX_VECTOR_OP Vector shiftRightBytes(Vector v)
{
    return _mm512_bsrli_epi128(v, BYTES);
}
KSX_VECTOR_OP FloatVector floatsOfBits(Vector v)
{
    return _mm512_castsi512_ps(v);
}
/// There is no addition of pairs of this size.
KSX_VECTOR_OP Vector addPairs32(Vector a, Vector b)
{
    const FloatVector x = floatsOfBits(a), y = floatsOfBits(b);
    return _mm512_add_epi32(_mm512_castps_si512(_mm512_shuffle_ps(x, y, _MM_SHUFFLE(2, 0, 2, 0))),
                            _mm512_castps_si512(_mm512_shuffle_ps(x, y, _MM_SHUFFLE(3, 1, 3, 1))));
}
KSX_VECTOR_OP FloatVector interleaveLow64(FloatVector a, FloatVector b)
{
    return _mm512_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 1, 0));
}
KSX_VECTOR_OP Vector greater32(Vector a, Vector b)
{
    return _mm512_movm_epi32(_mm512_cmpgt_epi32_mask(a, b));
}
KSX_VECTOR_OP FloatVector lessOrEqual(FloatVector a, FloatVector b)
{
    return floatsOfBits(_mm512_movm_epi32(_mm512_cmp_ps_mask(a, b, _CMP_LE_OS)));
}
KSX_VECTOR_OP DoubleVector lessThan(DoubleVector a, DoubleVector b)
{
    return _mm512_castsi512_pd(_mm512_movm_epi64(_mm512_cmp_pd_mask(a, b, _CMP_LT_OS)));
}

KSX_VECTOR_OP DoubleVector firstDoubles(Vector v)
{
    return _mm512_cvtepi32_pd(_mm512_castsi512_si256(v));
}
KSX_VECTOR_OP DoubleVector secondDoubles(Vector v)
{
    return _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(v, 1));
}
KSX_VECTOR_OP DoubleVector firstDoubles(FloatVector v)
{
    return _mm512_cvtps_pd(_mm512_castps512_ps256(v));
}
KSX_VECTOR_OP DoubleVector secondDoubles(FloatVector v)
{
    return _mm512_cvtps_pd(_mm512_extractf32x8_ps(v, 1));
}
KSX_VECTOR_OP Vector toNearest32(DoubleVector first, DoubleVector second)
{
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtpd_epi32(first)),
                              _mm512_cvtpd_epi32(second), 1);
}
KSX_VECTOR_OP FloatVector toFloats(DoubleVector first, DoubleVector second)
{
    return _mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps(first)),
                              _mm512_cvtpd_ps(second), 1);
}

} // namespace intrinsics

} // namespace KSX::PixelConversion
