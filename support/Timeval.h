/// Arithmetic with `timeval`. Microseconds must be within 0 to 999,999.
///
/// Reentrant. Nothing checks for overflow.
#pragma once

#include <cstdint>
#include <sys/time.h>

/// `a` - `b` in milliseconds. The difference of the microseconds is rounded towards zero
/// separately: 1.0 s - 0.9995 s is 1 ms, and 1.0005 s - 1.0 s is 0.
std::int32_t TimevalDiffMS(timeval a, timeval b);

/// The low 32 bits of `a` - `b` in microseconds, enough for differences below 35 minutes.
std::int32_t TimevalDiffUS(timeval a, timeval b);

/// Stores `base` + `milliseconds` in `result`. `milliseconds` is within ±2,147,483, so that its
/// value in microseconds fits in 32 bits. If the sum of the microseconds is negative, they stay
/// negative, within -999,999 to 0.
void TimevalAddMS(timeval& result, timeval base, int milliseconds);
