// Bracketed root finder for a function of one real variable: Brent's method (R. P. Brent,
// "Algorithms for Minimization without Derivatives", Prentice-Hall 1973, chapter 4, procedure
// zero), which mixes inverse quadratic interpolation, the secant step and bisection so that it
// converges superlinearly on smooth functions and is never much slower than bisection.
//
// Contract
// - Input: an interval [a, b] (either order) and the objective's values fa = f(a), fb = f(b).
//   The ends must enclose a sign change: fa and fb of opposite signs, or one of them zero.
// - Tolerance t (absolute, in units of x, t >= 0): iteration stops when the bracket around
//   the current best point x is no wider than 2 * (2 * eps * |x| + t), eps the double epsilon.
//   The returned root then lies within 6 * eps * |root| + 2 * t of a sign change of f
//   (Brent's bound). t = 0 asks for full double precision.
// - Evaluations: at most kRootMaxIterations (100) beyond the two ends; f is never evaluated
//   at a or b again, nor twice at the same point. Running out of iterations is a failure.
// - Exact root at an end: fa == 0 gives a, else fb == 0 gives b, without any evaluation.
// - No sign change (fa and fb both > 0 or both < 0): failure at once, no evaluation, the
//   interval returned unchanged.
// - NaN: a NaN end value is a failure at once. A NaN from an evaluation inside the interval
//   ends the search as a failure; the returned interval is the last one whose values were
//   numbers and enclose the sign change.
// - The missing marker 1e-05 is an ordinary number here; the objective decides what it means.
// Nothing throws and nothing is allocated.
#pragma once

#include <memory>
#include <type_traits>

namespace velquor {

// A caller's function of one real variable: called as objective(context, x), with the caller's
// opaque context passed through untouched.
using ObjectiveFunction = double (*)(void* context, double x);

// Two ends of an interval and the objective's values there.
struct RootInterval {
  double a = 0.0;
  double b = 0.0;
  double fa = 0.0;
  double fb = 0.0;
};

struct RootResult {
  // True when a root was found to the tolerance.
  bool found = false;
  // The root when found; otherwise the end of `interval` with the smaller |f|.
  double root = 0.0;
  // The final bracket with its values: on failure the narrowed interval that still encloses
  // the sign change (the input itself when there was none, or an end value was NaN).
  RootInterval interval;
};

// Brent's method on a bracket whose end values are already known (see the contract above).
RootResult FindBracketedRoot(void* context, ObjectiveFunction objective,
                             const RootInterval& bracket, double tolerance);

// Same, evaluating f at a and then at b first (two evaluations).
RootResult FindBracketedRoot(void* context, ObjectiveFunction objective, double a, double b,
                             double tolerance);

// A C++ callable that the objective overloads accept: an object callable as double(double).
template <typename F>
concept Objective1D =
    std::is_object_v<std::remove_reference_t<F>> && std::is_invocable_r_v < double,
        std::remove_reference_t<F>
&, double > ;

namespace detail {

// Calls a C++ callable through the library's function-and-context form.
template <typename F>
double CallObjective(void* context, double x) {
  return static_cast<double>((*static_cast<F*>(context))(x));
}

template <typename F>
void* ObjectiveContext(F& f) {
  return const_cast<void*>(static_cast<const void*>(std::addressof(f)));
}

}  // namespace detail

// Any C++ callable double(double): passed by reference as the context, nothing allocated.
template <Objective1D F>
RootResult FindBracketedRoot(F&& f, const RootInterval& bracket, double tolerance) {
  using Callable = std::remove_reference_t<F>;
  return FindBracketedRoot(detail::ObjectiveContext(f), &detail::CallObjective<Callable>, bracket,
                           tolerance);
}

template <Objective1D F>
RootResult FindBracketedRoot(F&& f, double a, double b, double tolerance) {
  using Callable = std::remove_reference_t<F>;
  return FindBracketedRoot(detail::ObjectiveContext(f), &detail::CallObjective<Callable>, a, b,
                           tolerance);
}

}  // namespace velquor
