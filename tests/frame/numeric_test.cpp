#include "velquor/frame/numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "velquor/frame/options.h"

namespace velquor {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(IsMissing, BandIsOpenAtBothEnds) {
  const std::pair<double, bool> cases[] = {
      {1e-05, true},
      {1.0000001e-05, true},  // stored with noise, still the marker
      {9.99e-06, false},      // lower bound excluded
      {1.001e-05, false},     // upper bound excluded
      {std::nextafter(9.99e-06, 1.0), true},
      {std::nextafter(1.001e-05, 0.0), true},
      {0.0, false},
      {-1e-05, false},
      {kNaN, false},
  };
  for (const auto& [value, missing] : cases) EXPECT_EQ(IsMissing(value), missing) << value;
}

TEST(IsZeroAndIsEqual, StrictInTheirTolerance) {
  EXPECT_TRUE(IsZero(1e-16));
  EXPECT_TRUE(IsZero(-1e-16));
  EXPECT_FALSE(IsZero(3e-16));
  EXPECT_FALSE(IsZero(2.220446049250313e-16));  // |x| < eps is strict
  EXPECT_TRUE(IsZero(std::nextafter(2.220446049250313e-16, 0.0)));
  EXPECT_FALSE(IsZero(kNaN));
  EXPECT_TRUE(IsEqual(1.0, 1.25, 0.5));
  EXPECT_FALSE(IsEqual(1.0, 1.5, 0.5));
  EXPECT_FALSE(IsEqual(1.5, 1.0, 0.5));
  EXPECT_TRUE(IsEqual(1.5, 1.0, 0.5000001));
}

TEST(Rounding, HalfAwayAndHalfUp) {
  struct Case {
    double x;
    long away, up;
  };
  const Case cases[] = {
      {2.5, 3, 3},       {-2.5, -3, -2},
      {2.4999999, 2, 2}, {-2.4999999, -2, -1},
      {0.5, 1, 1},       {-0.5, -1, 0},
      {0.0, 0, 0},       {-0.4, 0, 0},
      {7.0, 7, 7},       {1e9 + 0.5, 1000000001, 1000000001},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(RoundHalfAway(c.x), c.away) << c.x;
    EXPECT_EQ(RoundHalfUp(c.x), c.up) << c.x;
  }
  // Values a long cannot hold give 0 rather than undefined behaviour.
  EXPECT_EQ(RoundHalfAway(kNaN), 0);
  EXPECT_EQ(RoundHalfUp(1e300), 0);
}

TEST(AngleSpan, WrapsNegativeSpansOnceWithTheRoundedTurn) {
  EXPECT_DOUBLE_EQ(AngleSpan(6.0, 0.5), 0.5 - 6.0 + 6.28318530718);  // about 0.783
  EXPECT_DOUBLE_EQ(AngleSpan(0.5, 6.0), 5.5);
  EXPECT_DOUBLE_EQ(AngleSpan(1.0, 1.0), 0.0);  // zero is not wrapped
  EXPECT_LT(AngleSpan(10.0, 0.0), 0.0);        // wrapped once only
}

class HueUnit : public ::testing::Test {
 protected:
  void TearDown() override { SetHueInDegrees(1); }
};

// The rounded factors 0.017453292519944444 and 57.29577951307855 carry pi to 11 decimals, as
// 6.28318530718 does.
TEST_F(HueUnit, RoundedFactorsInDegreesRadiansPassThrough) {
  EXPECT_EQ(DegToRad(1.0), 0.017453292519944444);
  EXPECT_EQ(RadToDeg(1.0), 57.29577951307855);
  EXPECT_EQ(GetHueInDegrees(), 1);
  EXPECT_EQ(HueToRadians(180.0), 180.0 * 0.017453292519944444);
  EXPECT_EQ(HueFromRadians(2.0), 2.0 * 57.29577951307855);
  SetHueInDegrees(0);
  EXPECT_EQ(HueToRadians(2.5), 2.5);
  EXPECT_EQ(HueFromRadians(2.5), 2.5);
  SetHueInDegrees(7);  // any non-zero value means degrees
  EXPECT_EQ(HueFromRadians(1.0), 57.29577951307855);
}

}  // namespace
}  // namespace velquor
