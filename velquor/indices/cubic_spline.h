// Interpolating cubic spline through knots (x[i], y[i]) with strictly increasing x, written for
// spectral data (a handful to a few dozen knots, typically evenly spaced in wavelength).
//
// End conditions: not-a-knot (de Boor, "A Practical Guide to Splines", ch. IV), the third
// derivative is continuous at the second and at the last-but-one knot, so the first two and the
// last two intervals share one cubic each. Why not natural or clamped: spectral curves and the
// spectrum locus have no reason for zero curvature at the ends of a window (a natural spline
// forces it and is only second-order accurate near the ends), and clamped needs end slopes that
// measured data do not supply. Not-a-knot reproduces every cubic exactly, keeps fourth-order
// accuracy up to the ends, and passes through every knot, the end knots included, so a value
// asked for at a knot is that knot's value (the dominant wavelength relies on this for samples
// on the spectrum locus). With three knots the spline is the parabola through them, with two
// the straight line, with one the constant.
//
// Beyond the knots the spline continues the cubic of the end interval. Nothing throws and
// nothing allocates: the caller supplies the storage.
#pragma once

#include <cstddef>
#include <span>

namespace velquor {

// Largest knot count CubicSplineInterpolate handles with its own stack storage.
inline constexpr std::size_t kSplineMaxKnots = 64;

// Second derivatives m[0..n-1] of the not-a-knot spline through (x[i], y[i]), n = x.size().
// `scratch` needs n doubles. Returns false, leaving m unspecified, when the sizes disagree,
// n is 0, or x is not strictly increasing.
bool CubicSplineSecondDerivatives(std::span<const double> x, std::span<const double> y,
                                  std::span<double> m, std::span<double> scratch);

// Value at `at` of the spline given by knots and second derivatives: on interval [x[i], x[i+1]]
// with h = x[i+1] - x[i], A = (x[i+1] - at) / h and B = (at - x[i]) / h,
//   s = A y[i] + B y[i+1] + ((A^3 - A) m[i] + (B^3 - B) m[i+1]) h^2 / 6.
// Outside [x[0], x[n-1]] the end interval's cubic is used. Requires n >= 1 and equal sizes.
double CubicSplineEvaluate(std::span<const double> x, std::span<const double> y,
                           std::span<const double> m, double at);

// Both steps at once for up to kSplineMaxKnots knots. Knots it cannot use (more than
// kSplineMaxKnots, sizes that disagree, none at all, or x not strictly increasing) give the
// missing value 1e-05.
double CubicSplineInterpolate(std::span<const double> x, std::span<const double> y, double at);

}  // namespace velquor
