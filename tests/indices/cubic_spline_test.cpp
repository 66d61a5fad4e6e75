// The not-a-knot cubic spline reproduces any cubic exactly, inside and beyond its knots (a
// natural spline does not), falls back to the parabola and the line, and refuses bad knots.
#include "velquor/indices/cubic_spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

// p'' = 1 + 1.5 x is not zero at the ends, so natural end conditions miss p.
double Cubic(double x) {
  return 2.0 - 3.0 * x + 0.5 * x * x + 0.25 * x * x * x;
}

TEST(CubicSpline, ReproducesACubicInsideAndBeyondTheKnots) {
  for (const std::vector<double>& knots :
       {std::vector<double>{0, 1, 2.5, 3}, std::vector<double>{0, 1, 2.5, 3, 4.5, 6}}) {
    std::vector<double> values;
    for (double k : knots) values.push_back(Cubic(k));
    for (double at : {-1.2, 0.5, 1.0, 2.75, 5.9, 7.5}) {
      EXPECT_NEAR(CubicSplineInterpolate(knots, values, at), Cubic(at), test::kIndependent)
          << knots.size() << " knots, at " << at;
    }
  }
}

TEST(CubicSpline, FewKnotsGiveTheParabolaTheLineAndTheConstant) {
  // Lagrange through (0, 1), (1, 3), (3, 2): p(2) = -1/3 + 3 + 2/3 = 10/3, p(4) = 1 - 6 + 4 = -1
  const std::vector<double> x3 = {0, 1, 3}, y3 = {1, 3, 2};
  EXPECT_NEAR(CubicSplineInterpolate(x3, y3, 2.0), 10.0 / 3.0, test::kExactFormula);
  EXPECT_NEAR(CubicSplineInterpolate(x3, y3, 4.0), -1.0, test::kExactFormula);
  const std::vector<double> x2 = {1, 5}, y2 = {2, 10};  // y = 2 x
  EXPECT_NEAR(CubicSplineInterpolate(x2, y2, 4.0), 8.0, test::kExactFormula);
  EXPECT_NEAR(CubicSplineInterpolate(x2, y2, 0.0), 0.0, test::kExactFormula);
  EXPECT_EQ(CubicSplineInterpolate(std::vector<double>{3}, std::vector<double>{7}, -100.0), 7.0);
}

TEST(CubicSpline, RefusesKnotsItCannotUse) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> line(kSplineMaxKnots + 1);
  for (std::size_t i = 0; i < line.size(); ++i) line[i] = static_cast<double>(i);
  const std::vector<double> full(line.begin(), line.end() - 1);
  const std::vector<std::vector<double>> badX = {
      {}, {0, 1, 1, 2}, {0, 2, 1, 3}, {0, nan, 2, 3}, line};
  for (const auto& x : badX) {
    const std::vector<double> y = x.size() == 4 ? std::vector<double>{0, 1, 2, 3} : x;
    EXPECT_TRUE(IsMissing(CubicSplineInterpolate(x, y, 0.5))) << x.size();
  }
  EXPECT_TRUE(IsMissing(
      CubicSplineInterpolate(std::vector<double>{0, 1, 2}, std::vector<double>{0, 1}, 0.5)));
  EXPECT_NEAR(CubicSplineInterpolate(full, full, 10.25), 10.25,
              test::kExactFormula);  // 64 knots: accepted
}

}  // namespace
}  // namespace velquor
