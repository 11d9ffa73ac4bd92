/// Vectors of 32 bytes: the operations that are not alike at all sizes, up to AVX2.
#pragma once

#include <cstddef>
#include <immintrin.h>

#define KSX_MM(OPERATION) _mm256_##OPERATION
#define KSX_MM_BITS(OPERATION) _mm256_##OPERATION##_si256
#define KSX_VECTOR_REGISTERS "x"

namespace KSX::PixelConversion {

constexpr unsigned kUnits = 2;

using Vector = __m256i;
using FloatVector = __m256;
using DoubleVector = __m256d;

constexpr Vector repeat(long long low, long long high)
{
    return Vector{low, high, low, high};
}
constexpr FloatVector repeat(float a, float b, float c, float d)
{
    return FloatVector{a, b, c, d, a, b, c, d};
}
KSX_VECTOR_OP Vector repeat(Unit unit)
{
    return _mm256_broadcastsi128_si256(unit);
}

template<unsigned I>
KSX_VECTOR_OP Unit unitOf(Vector v)
{
    if constexpr (I == 0)
        return _mm256_castsi256_si128(v);
    else
        return _mm256_extracti128_si256(v, I);
}
template<class FUNCTION>
KSX_VECTOR_OP Vector joinUnits(FUNCTION unit)
{
    const Vector first = _mm256_castsi128_si256(unit.template operator()<0>());
    return _mm256_inserti128_si256(first, unit.template operator()<1>(), 1);
}
template<class FUNCTION>
KSX_VECTOR_OP FloatVector joinFloatUnits(FUNCTION unit)
{
    const FloatVector first = _mm256_castps128_ps256(unit.template operator()<0>());
    return _mm256_insertf128_ps(first, unit.template operator()<1>(), 1);
}

namespace intrinsics {

template<int IMMEDIATE>
KSX_VECTOR_OP Vector shuffle32(Vector v)
{
    return _mm256_shuffle_epi32(v, IMMEDIATE);
}
template<int BYTES>
KSX_VECTOR_OP Vector shiftRightBytes(Vector v)
{
    return _mm256_bsrli_epi128(v, BYTES);
}
KSX_VECTOR_OP Vector addPairs32(Vector a, Vector b)
{
    return _mm256_hadd_epi32(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow64(FloatVector a, FloatVector b)
{
    return _mm256_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 1, 0));
}
KSX_VECTOR_OP FloatVector floatsOfBits(Vector v)
{
    return _mm256_castsi256_ps(v);
}
KSX_VECTOR_OP Vector greater32(Vector a, Vector b)
{
    return _mm256_cmpgt_epi32(a, b);
}
KSX_VECTOR_OP FloatVector lessOrEqual(FloatVector a, FloatVector b)
{
    return _mm256_cmp_ps(a, b, _CMP_LE_OS);
}
KSX_VECTOR_OP DoubleVector lessThan(DoubleVector a, DoubleVector b)
{
    return _mm256_cmp_pd(a, b, _CMP_LT_OS);
}

KSX_VECTOR_OP DoubleVector firstDoubles(Vector v)
{
    return _mm256_cvtepi32_pd(_mm256_castsi256_si128(v));
}
KSX_VECTOR_OP DoubleVector secondDoubles(Vector v)
{
    return _mm256_cvtepi32_pd(_mm256_extracti128_si256(v, 1));
}
KSX_VECTOR_OP DoubleVector firstDoubles(FloatVector v)
{
    return _mm256_cvtps_pd(_mm256_castps256_ps128(v));
}
KSX_VECTOR_OP DoubleVector secondDoubles(FloatVector v)
{
    return _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1));
}
KSX_VECTOR_OP Vector toNearest32(DoubleVector first, DoubleVector second)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvtpd_epi32(first)),
                                   _mm256_cvtpd_epi32(second), 1);
}
KSX_VECTOR_OP FloatVector toFloats(DoubleVector first, DoubleVector second)
{
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(first)),
                                _mm256_cvtpd_ps(second), 1);
}

} // namespace intrinsics

} // namespace KSX::PixelConversion
