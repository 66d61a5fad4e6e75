// The not-a-knot cubic spline reproduces any cubic exactly, inside and beyond its knots (a
// natural spline does not), falls back to the parabola and the line, and refuses bad knots.
#include "velquor/indices/cubic_spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using Knots = std::vector<double>;

// p'' = 1 + 1.5 x is not zero at the ends, so natural end conditions miss p.
double Cubic(double x) {
  return 2.0 - 3.0 * x + 0.5 * x * x + 0.25 * x * x * x;
}

TEST(CubicSpline, ReproducesACubicInsideAndBeyondTheKnots) {
  for (const Knots& knots : {Knots{0, 1, 2.5, 3}, Knots{0, 1, 2.5, 3, 4.5, 6}}) {
    Knots values;
    for (double k : knots) values.push_back(Cubic(k));
    for (double at : {-1.2, 0.5, 1.0, 2.75, 5.9, 7.5}) {
      EXPECT_NEAR(CubicSplineInterpolate(knots, values, at), Cubic(at), test::kIndependent)
          << knots.size() << " knots, at " << at;
    }
  }
}

// Three knots give the parabola (Lagrange through (0, 1), (1, 3), (3, 2): p(2) = 10/3), two
// the line, one the constant; up to 64 strictly increasing finite knots with as many values
// are accepted, anything else gives the missing value.
TEST(CubicSpline, FewKnotsFallBackAndBadKnotsGiveMissing) {
  Knots line(kSplineMaxKnots + 1);
  for (std::size_t i = 0; i < line.size(); ++i) line[i] = static_cast<double>(i);
  const Knots full(line.begin(), line.end() - 1);
  const std::tuple<Knots, Knots, double, double> cases[] = {
      {{0, 1, 3}, {1, 3, 2}, 2.0, 10.0 / 3.0},
      {{1, 5}, {2, 10}, 4.0, 8.0},
      {{3}, {7}, -100.0, 7.0},
      {full, full, 10.25, 10.25},
      {{}, {}, 0.5, kMissing},
      {{0, 1, 1, 2}, {0, 1, 2, 3}, 0.5, kMissing},
      {{0, 2, 1, 3}, {0, 1, 2, 3}, 0.5, kMissing},
      {{0, NAN, 2, 3}, {0, 1, 2, 3}, 0.5, kMissing},
      {line, line, 0.5, kMissing},
      {{0, 1, 2}, {0, 1}, 0.5, kMissing}};
  for (const auto& [x, y, at, expected] : cases) {
    EXPECT_NEAR(CubicSplineInterpolate(x, y, at), expected, test::kExactFormula)
        << x.size() << " knots, at " << at;
  }
}

}  // namespace
}  // namespace velquor
