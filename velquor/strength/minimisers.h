// One-dimensional extremum searches for strength and formulation code: two bracketing walks
// that step outward from two starting abscissas until three points enclose an extremum, and
// two golden-section searches that narrow such a triple. The walk is the golden-ratio walk
// with parabolic extrapolation and the narrowing is the classic golden-section search (Kiefer
// 1953; Press et al., "Numerical Recipes", section 10.1), with the library's rounded
// constants (velquor/strength/constants.h). The "...OrRoot" forms also watch for the function
// changing sign and then hand the interval to FindBracketedRoot (Brent's method), because a
// sign change means the caller's quantity, typically a difference to be driven to zero, can be
// met exactly.
//
// Objective: f(context, x), called with the caller's context untouched; each point costs one
// call (the objective is usually a whole colour calculation) and no point already known is
// evaluated again.
//
// Orientation: the searches never reorder the caller's points to go downhill. They evaluate f
// at the first two points (elements 0 and 1 of the point vector) and, when f(element 0) <
// f(element 1), run the whole search on -f, negating every value as it is obtained. A search
// that starts uphill therefore seeks a maximum of the caller's function; this choice of
// direction is the library's behaviour, kept over a search for the minimum at all costs.
//
// Point vector (at least six elements; a shorter one is first grown to six with zeros):
//   element  on input                                    on output
//   0        first abscissa a                            first abscissa of the result
//   1        second abscissa b                           second abscissa of the result
//   2        third abscissa c (golden-section searches)  third abscissa (bracketing) or 0
//            or upper bound on x, 0 for none (BracketMinimum)
//   3, 4, 5  not read                                    f at elements 0, 1, 2 (0 for element 2
//                                                        of the searches)
// Nothing is validated: equal starting points or a tolerance of 0 are the caller's concern.
// Nothing throws and nothing is allocated.
#pragma once

#include "velquor/data/value_array.h"
#include "velquor/strength/root_finder.h"

namespace velquor {

// Result codes of the four searches.
inline constexpr int kSearchFailed = 0;       // no bracket (the point vector keeps its input)
inline constexpr int kSearchFound = 1;        // bracket in <= 20 steps, or minimum found
inline constexpr int kSearchRoot = 2;         // root found, element 0 holds it
inline constexpr int kSearchRootFailed = 3;   // sign change met, the root finder failed
inline constexpr int kSearchAbandoned = 3;    // golden-section search gave up, direction given
inline constexpr int kSearchFoundSlowly = 4;  // bracket found after more than 20 steps

// Walks from a = element 0 through b = element 1 until a triple a, b, c with f(b) < f(c)
// (values as searched, after the orientation) encloses an extremum.
// Start: fa, fb, then c = b + 1.618034 (b - a). Each step (at most 60, none when already
// f(b) < f(c)) takes the parabola through a, b, c with denominator d = q - r kept at least
// 1e-20 in magnitude (sign of d, zero counting as positive) and
//   - a parabolic point strictly between b and c: stop with (b, u, c) if f(u) < f(c), with
//     (a, b, u) if f(u) > f(b), else step on by the golden ratio past c;
//   - with a bound L (element 2, non-zero), a parabolic point strictly between c and L: keep
//     it, or if f(u) < f(c) move on to it and step by the golden ratio past it;
//   - otherwise step by the golden ratio past c.
// The new point then replaces the oldest. L is an upper bound: a new point above it is
// replaced by L itself (f evaluated there too, after the point beyond it) unless the outer
// point already lies on L (within 1e-20), which is a failure. L is meant for walks toward
// larger x.
// Result: 1 when at most 20 steps were completed, 4 after 21 to 60 completed steps, 0 when
// 60 steps leave f(b) >= f(c) or the bound is met (point vector unchanged). On 1 and 4 the
// vector receives a, b, c and their values as searched (negated when the search ran on -f).
int BracketMinimum(void* context, ObjectiveFunction objective, CValueArray& points);

// BracketMinimum without a bound (element 2 is not read), and at the head of every step: when
// f(c) f(a) < 0 the interval (a, c) goes to FindBracketedRoot with tolerance 1e-10; the result
// is 2 with the root in element 0 (other elements untouched) when it succeeds, otherwise 3
// with the vector unchanged. Other results as BracketMinimum.
int BracketExtremumOrRoot(void* context, ObjectiveFunction objective, CValueArray& points);

// Golden-section narrowing of the triple a, b, c (elements 0, 1, 2), ascending (b > a) or
// descending. lo and hi are the outer points in increasing x; f is taken at lo, b, hi in that
// order. The second interior point goes into the larger segment (the lo side on a tie) at
// 0.38196601 of it; each round keeps the side of the better interior point (the lo side when
// f(x1) <= f(x2)) and places one new point, until (|x1| + |x2|) * tolerance >= |hi - lo|.
// Output: x1, x2, 0, f(x1), f(x2), 0 when f(x1) < f(x2), otherwise x2, hi, 0, f(x2), f(hi), 0,
// so element 1 is always the next known point on the hi side of the best one. Values are the
// caller's (negation undone).
void GoldenSectionSearch(void* context, ObjectiveFunction objective, CValueArray& points,
                         double tolerance);

// GoldenSectionSearch with three watches, each at the head of a round (values as searched):
// - Sign: f(hi) > 0 and an interior value < 0 sends the narrowest enclosing interval, (x2, hi)
//   if f(x2) < 0 else (x1, x2), to FindBracketedRoot with tolerance 1e-10. Success gives 2,
//   the root in element 0, other elements untouched; failure makes the root finder's narrowed
//   interval the new (lo, hi) and abandons.
// - Divergence: with p the better interior point (x2 on a tie), the slopes
//   sL = (f(p) - f(lo)) / (p - lo) and sR = (f(hi) - f(p)) / (hi - p); when the previous
//   round's sL is non-zero (beyond the double epsilon; it counts as 0 before the first round,
//   so the first round only records), both |sL| and |sR| have grown by more
//   than 0.0001 since the previous round and |f(lo)| > 100 and |f(hi)| > 100, the search is
//   abandoned: the function is heading away and the caller should search elsewhere.
// - Abandon (result 3): elements 0, 1, 2 receive hi, hi + 1e-7, lo (descending: lo,
//   lo - 1e-7, hi), pointing outward, if f at element 1 is below f at element 0 (the probe
//   costs one evaluation); otherwise lo, lo + 1e-7, hi (descending: hi, hi - 1e-7, lo), which
//   points into the interval, an asymmetry kept as the library's behaviour. Elements 3 to 5 are
//   not written.
// Normal end (result 1): from the better interior point m (x2 on a tie) the probe steps 1e-7,
// 1e-6, 1e-5, ... toward hi (toward lo when descending) until f rises above f(m) by more than
// the double epsilon; elements 0 to 5 receive m, the probe point, 0, f(m), f(probe), 0
// (caller's values), telling how far from the minimum the function first rises measurably.
// A function that never rises stops the probe when the next step would overflow.
int GoldenSectionSearchOrRoot(void* context, ObjectiveFunction objective, CValueArray& points,
                              double tolerance);

// The same four for any C++ callable double(double), passed by reference as the context.
template <Objective1D F>
int BracketMinimum(F&& f, CValueArray& points) {
  return BracketMinimum(detail::ObjectiveContext(f),
                        &detail::CallObjective<std::remove_reference_t<F>>, points);
}

template <Objective1D F>
int BracketExtremumOrRoot(F&& f, CValueArray& points) {
  return BracketExtremumOrRoot(detail::ObjectiveContext(f),
                               &detail::CallObjective<std::remove_reference_t<F>>, points);
}

template <Objective1D F>
void GoldenSectionSearch(F&& f, CValueArray& points, double tolerance) {
  GoldenSectionSearch(detail::ObjectiveContext(f),
                      &detail::CallObjective<std::remove_reference_t<F>>, points, tolerance);
}

template <Objective1D F>
int GoldenSectionSearchOrRoot(F&& f, CValueArray& points, double tolerance) {
  return GoldenSectionSearchOrRoot(detail::ObjectiveContext(f),
                                   &detail::CallObjective<std::remove_reference_t<F>>, points,
                                   tolerance);
}

}  // namespace velquor
