/// Vectors of 16 bytes: the operations that are not alike at all sizes, up to SSSE3.
#pragma once

#include <cstddef>
#include <tmmintrin.h>

#define KSX_MM(OPERATION) _mm_##OPERATION
#define KSX_MM_BITS(OPERATION) _mm_##OPERATION##_si128
#define KSX_VECTOR_REGISTERS "x"

namespace KSX::PixelConversion {

constexpr unsigned kUnits = 1;

using Vector = __m128i;
using FloatVector = __m128;
using DoubleVector = __m128d;

constexpr Vector repeat(long long low, long long high)
{
    return Vector{low, high};
}
constexpr FloatVector repeat(float a, float b, float c, float d)
{
    return FloatVector{a, b, c, d};
}
KSX_VECTOR_OP Vector repeat(Unit unit)
{
    return unit;
}

template<unsigned>
KSX_VECTOR_OP Unit unitOf(Vector v)
{
    return v;
}
template<class FUNCTION>
KSX_VECTOR_OP Vector joinUnits(FUNCTION unit)
{
    return unit.template operator()<0>();
}
template<class FUNCTION>
KSX_VECTOR_OP FloatVector joinFloatUnits(FUNCTION unit)
{
    return unit.template operator()<0>();
}

namespace intrinsics {

template<int IMMEDIATE>
KSX_VECTOR_OP Vector shuffle32(Vector v)
{
    return _mm_shuffle_epi32(v, IMMEDIATE);
}
template<int BYTES>
KSX_VECTOR_OP Vector shiftRightBytes(Vector v)
{
    return _mm_srli_si128(v, BYTES);
}
KSX_VECTOR_OP Vector addPairs32(Vector a, Vector b)
{
    return _mm_hadd_epi32(a, b);
}
KSX_VECTOR_OP FloatVector interleaveLow64(FloatVector a, FloatVector b)
{
    return _mm_movelh_ps(a, b);
}
KSX_VECTOR_OP FloatVector floatsOfBits(Vector v)
{
    return _mm_castsi128_ps(v);
}
KSX_VECTOR_OP Vector greater32(Vector a, Vector b)
{
    return _mm_cmpgt_epi32(a, b);
}
KSX_VECTOR_OP FloatVector lessOrEqual(FloatVector a, FloatVector b)
{
    return _mm_cmple_ps(a, b);
}
KSX_VECTOR_OP DoubleVector lessThan(DoubleVector a, DoubleVector b)
{
    return _mm_cmplt_pd(a, b);
}

KSX_VECTOR_OP DoubleVector firstDoubles(Vector v)
{
    return _mm_cvtepi32_pd(v);
}
KSX_VECTOR_OP DoubleVector secondDoubles(Vector v)
{
    return _mm_cvtepi32_pd(_mm_shuffle_epi32(v, _MM_SHUFFLE(3, 2, 3, 2)));
}
KSX_VECTOR_OP DoubleVector firstDoubles(FloatVector v)
{
    return _mm_cvtps_pd(v);
}
KSX_VECTOR_OP DoubleVector secondDoubles(FloatVector v)
{
    return _mm_cvtps_pd(_mm_movehl_ps(v, v));
}
KSX_VECTOR_OP Vector toNearest32(DoubleVector first, DoubleVector second)
{
    return _mm_unpacklo_epi64(_mm_cvtpd_epi32(first), _mm_cvtpd_epi32(second));
}
KSX_VECTOR_OP FloatVector toFloats(DoubleVector first, DoubleVector second)
{
    return _mm_movelh_ps(_mm_cvtpd_ps(first), _mm_cvtpd_ps(second));
}

} // namespace intrinsics

} // namespace KSX::PixelConversion
