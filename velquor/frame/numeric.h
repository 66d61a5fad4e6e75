// Small numeric helpers shared by every calculation: the missing-value test, tolerant
// comparison, the two rounding rules and angle conversions.
#pragma once

#include "velquor/frame/constants.h"

namespace velquor {

// True when |b - a| < eps (strict).
constexpr bool IsEqual(double a, double b, double eps) {
  const double d = b - a;
  return (d < 0 ? -d : d) < eps;
}

// The library's test for zero: |x| < 2.220446049250313e-16.
constexpr bool IsZero(double x) { return IsEqual(x, 0.0, kZeroEpsilon); }

// True when x lies strictly inside (9.99e-06, 1.001e-05), the band of the missing marker.
// NaN is not missing.
constexpr bool IsMissing(double x) { return kMissingLow < x && x < kMissingHigh; }

// Rounds half away from zero: the integer part of x + 0.5 for x >= 0, of x - 0.5 otherwise.
// Values outside the range of long (and NaN) give 0.
long RoundHalfAway(double x);

// Rounds half up for values known to be non-negative: the integer part of x + 0.5.
// Values outside the range of long (and NaN) give 0.
long RoundHalfUp(double x);

// b - a in radians; if negative, 6.28318530718 is added once, so the result lies in [0, 2pi)
// for inputs within one turn.
constexpr double AngleSpan(double a, double b) {
  double span = b - a;
  if (span < 0.0) span += kTwoPi;
  return span;
}

// Unconditional conversions with the library's rounded factors.
constexpr double DegToRad(double x) { return x * kDegToRad; }
constexpr double RadToDeg(double x) { return x * kRadToDeg; }

}  // namespace velquor
