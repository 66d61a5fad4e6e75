#include "velquor/frame/numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "velquor/frame/options.h"

namespace velquor {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The missing-value band (9.99e-06, 1.001e-05) is open at both ends; the tolerances are strict.
TEST(Numeric, MissingBandAndTolerancesAreStrict) {
  const std::pair<double, bool> missing[] = {
      {1e-05, true},      {std::nextafter(9.99e-06, 1.0), true},
      {9.99e-06, false},  {std::nextafter(1.001e-05, 0.0), true},
      {1.001e-05, false}, {kNaN, false}};
  for (const auto& [value, expected] : missing) EXPECT_EQ(IsMissing(value), expected) << value;
  EXPECT_FALSE(IsZero(2.220446049250313e-16));
  EXPECT_TRUE(IsZero(-std::nextafter(2.220446049250313e-16, 0.0)));
  EXPECT_FALSE(IsZero(kNaN));
  const std::tuple<double, double, double, bool> equal[] = {
      {1.0, 1.25, 0.5, true}, {1.0, 1.5, 0.5, false}, {1.5, 1.0, 0.5, false}, {1.5, 1, 0.51, true}};
  for (const auto& [a, b, eps, expected] : equal) EXPECT_EQ(IsEqual(a, b, eps), expected) << a;
  EXPECT_DOUBLE_EQ(AngleSpan(6.0, 0.5), 0.5 - 6.0 + 6.28318530718);  // wrapped once, by 2 pi
  EXPECT_DOUBLE_EQ(AngleSpan(1.0, 1.0), 0.0);                        // zero is not wrapped
  EXPECT_LT(AngleSpan(10.0, 0.0), 0.0);
}

TEST(Numeric, RoundingAndHueUnits) {
  const std::tuple<double, long, long> cases[] = {{2.5, 3, 3},
                                                  {-2.5, -3, -2},
                                                  {2.4999999, 2, 2},
                                                  {-2.4999999, -2, -1},
                                                  {1e9 + 0.5, 1000000001, 1000000001},
                                                  {kNaN, 0, 0},
                                                  {1e300, 0, 0},
                                                  {-1e300, 0, 0}};
  for (const auto& [x, away, up] : cases) {
    EXPECT_EQ(RoundHalfAway(x), away) << x;
    EXPECT_EQ(RoundHalfUp(x), up) << x;
  }
  // The rounded factors carry pi to 11 decimals, as 6.28318530718 does; any non-zero setting
  // means degrees.
  EXPECT_EQ(HueToRadians(180.0), 180.0 * 0.017453292519944444);
  EXPECT_EQ(HueFromRadians(2.0), 2.0 * 57.29577951307855);
  SetHueInDegrees(0);
  EXPECT_EQ(HueToRadians(2.5), 2.5);
  EXPECT_EQ(HueFromRadians(2.5), 2.5);
  SetHueInDegrees(7);
  EXPECT_EQ(HueFromRadians(1.0), 57.29577951307855);
  SetHueInDegrees(1);
}

}  // namespace
}  // namespace velquor
