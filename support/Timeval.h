/// Arithmetic with `timeval`, whose microseconds are expected within 0 to 999,999.
///
/// Reentrant. Nothing is checked for overflow.
#pragma once

#include <cstdint>
#include <sys/time.h>

/// `a` - `b` in milliseconds. The difference of the microseconds is cut towards zero on its own, so
/// that 1.0 s - 0.9995 s is 1 ms and 1.0005 s - 1.0 s is 0.
std::int32_t TimevalDiffMS(timeval a, timeval b);

/// `a` - `b` in microseconds, the low 32 bits: good for differences below 35 minutes.
std::int32_t TimevalDiffUS(timeval a, timeval b);

/// Stores `base` + `milliseconds` in `result`. `milliseconds` is within ±2,147,483: in microseconds
/// it has to fit into 32 bits. Where the microseconds' sum is negative they stay so, within
/// -999,999 to 0.
void TimevalAddMS(timeval& result, timeval base, int milliseconds);
