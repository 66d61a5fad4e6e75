#include "velquor/strength/root_finder.h"

#include <cmath>

#include "velquor/strength/constants.h"

namespace velquor {

namespace {

RootInterval Interval(double a, double b, double fa, double fb) {
  return RootInterval{a, b, fa, fb};
}

// The end with the smaller |f|, a number preferred to NaN.
double SmallerEnd(const RootInterval& interval) {
  if (std::isnan(interval.fb)) return interval.a;
  if (std::isnan(interval.fa)) return interval.b;
  return std::fabs(interval.fa) <= std::fabs(interval.fb) ? interval.a : interval.b;
}

}  // namespace

// Brent's procedure zero (Brent 1973, chapter 4), transcribed step for step. b is the best
// point so far, c the other end of the bracket [b, c] (f(b) and f(c) of opposite signs, or
// f(b) = 0), a the previous b. Each round tries inverse quadratic interpolation through a, b, c
// (the secant step when a = c) and falls back to bisection when the step would leave the
// bracket or when the steps stop shrinking fast enough; a step never moves less than tol.
RootResult FindBracketedRoot(void* context, ObjectiveFunction objective,
                             const RootInterval& bracket, double tolerance) {
  RootResult result;
  result.interval = bracket;
  double a = bracket.a;
  double b = bracket.b;
  double fa = bracket.fa;
  double fb = bracket.fb;
  if (std::isnan(fa) || std::isnan(fb)) {
    result.root = SmallerEnd(bracket);
    return result;
  }
  if (fa == 0.0 || fb == 0.0) {
    result.found = true;
    result.root = fa == 0.0 ? a : b;
    return result;
  }
  if ((fa > 0.0) == (fb > 0.0)) {
    result.root = SmallerEnd(bracket);
    return result;
  }

  double c = a;
  double fc = fa;
  double d = b - a;
  double e = d;
  for (int iteration = 0;; ++iteration) {
    // Keep b the end with the smaller |f|.
    if (std::fabs(fc) < std::fabs(fb)) {
      a = b;
      b = c;
      c = a;
      fa = fb;
      fb = fc;
      fc = fa;
    }
    const double tol = 2.0 * kZeroEpsilon * std::fabs(b) + tolerance;
    const double m = 0.5 * (c - b);
    result.interval = Interval(b, c, fb, fc);
    result.root = b;
    if (std::fabs(m) <= tol || fb == 0.0) {
      result.found = true;
      return result;
    }
    if (iteration == kRootMaxIterations) return result;

    if (std::fabs(e) < tol || std::fabs(fa) <= std::fabs(fb)) {
      d = m;  // bisection
      e = m;
    } else {
      double s = fb / fa;
      double p;
      double q;
      if (a == c) {  // secant step through the two ends
        p = 2.0 * m * s;
        q = 1.0 - s;
      } else {  // inverse quadratic interpolation through a, b, c
        q = fa / fc;
        const double r = fb / fc;
        p = s * (2.0 * m * q * (q - r) - (b - a) * (r - 1.0));
        q = (q - 1.0) * (r - 1.0) * (s - 1.0);
      }
      if (p > 0.0) {
        q = -q;
      } else {
        p = -p;
      }
      s = e;
      e = d;
      // Accept the interpolated step only when it stays well inside the bracket and is
      // smaller than half the step before last; otherwise bisect.
      if (2.0 * p < 3.0 * m * q - std::fabs(tol * q) && p < std::fabs(0.5 * s * q)) {
        d = p / q;
      } else {
        d = m;
        e = m;
      }
    }
    a = b;
    fa = fb;
    b += std::fabs(d) > tol ? d : (m > 0.0 ? tol : -tol);
    fb = objective(context, b);
    if (std::isnan(fb)) {
      // The last bracket whose values are numbers: [a, c].
      result.interval = Interval(a, c, fa, fc);
      result.root = SmallerEnd(result.interval);
      return result;
    }
    if ((fb > 0.0) == (fc > 0.0)) {
      // The sign change now lies between the previous point and the new one.
      c = a;
      fc = fa;
      d = b - a;
      e = d;
    }
  }
}

RootResult FindBracketedRoot(void* context, ObjectiveFunction objective, double a, double b,
                             double tolerance) {
  const double fa = objective(context, a);
  const double fb = objective(context, b);
  return FindBracketedRoot(context, objective, Interval(a, b, fa, fb), tolerance);
}

}  // namespace velquor
