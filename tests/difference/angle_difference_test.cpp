#include "velquor/difference/angle_difference.h"

#include <gtest/gtest.h>

#include <cmath>

#include "velquor/difference/color_difference.h"

namespace velquor {
namespace {

CValueVector5 Reference(double l, double q, double h) {
  CValueVector5 r;
  r[0] = l, r[3] = q, r[4] = h;
  return r;
}

// dL, da, db, (slot 4), dC, dH, total.
CColorVector7 DifferenceRecord(double dL, double da, double db, double dC, double dH) {
  CColorVector7 d;
  const double v[7] = {dL, da, db, 99, dC, dH, 0};
  for (int i = 0; i < 7; ++i) d[i] = v[i];
  return d;
}

// Which branch a reference takes: with only da = 1 (and dL = dC = dH = 0) the near-neutral
// branch gives 1 / 0.5 = 2 and the chromatic branch 0. The test reads the hue slot H.
TEST(AngleDependentDifference, NearNeutralTestFromBothSidesOfEachThreshold) {
  struct Case {
    const char* what;
    double l, h, expected;
  } const cases[] = {
      {"L 50, H 9.99: H < 10", 50, 9.99, 2},       {"L 50, H 10: L > 27 and H < 18", 50, 10, 2},
      {"L 27, H 9.99: H < 10", 27, 9.99, 2},       {"L 27, H 10: L not > 27", 27, 10, 0},
      {"L 27, H 15: L not > 27", 27, 15, 0},       {"L 27.01, H 17.99", 27.01, 17.99, 2},
      {"L 27.01, H 18: H not < 18", 27.01, 18, 0}, {"L 20, H 15: chromatic", 20, 15, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CColorVector7 d = DifferenceRecord(0, 1, 0, 0, 0);
    ComputeAngleDependentDifference(Reference(c.l, 25, c.h), d, 15);
    EXPECT_DOUBLE_EQ(d[6], c.expected);
    EXPECT_EQ(d[3], 99);  // nothing but the total is written
  }
}

// Chromatic reference L = 50, Q = 25 at 15 degrees, dL = 1, dC = 0.5, dH = -0.3 (hand, 40
// digits): S_L = 1.5 + 0.11 sqrt(50) = 2.2778174593052, S_1 = 2 + 1.7 - 0.25 sqrt(50) =
// 1.93223304703363, S_2 = 1 + 1 - 0.14 sqrt(50) = 1.01005050633883, total 0.589842671605514.
// At 30 degrees the three angle terms halve and the total rises to 1.03054712697001. An angle
// of 0 is taken as 1 degree.
TEST(AngleDependentDifference, WeightsShrinkWithTheViewingAngle) {
  const auto total = [](double angle) {
    CColorVector7 d = DifferenceRecord(1, 7, 7, 0.5, -0.3);
    ComputeAngleDependentDifference(Reference(50, 25, 90), d, angle);
    return d[6];
  };
  EXPECT_NEAR(total(15), 0.589842671605514, 1e-13);
  EXPECT_NEAR(total(30), 1.03054712697001, 1e-13);
  EXPECT_EQ(total(0), total(1));
}

// L = 0, Q = 0, angle 60: S_1 = 30/60 = 0.5 exactly, so the chromatic branch takes da, db
// with S_1 = 0.5 and S_2 = 0.25 + 0.5: sqrt(2^2 + (1/0.75)^2) = 2.4037008503093262. A hair
// off the angle and S_1 is not 0.5: dC = dH = 0 give 0.
TEST(AngleDependentDifference, WeightOfExactlyOneHalfSwitchesToRectangularDifferences) {
  for (const auto& [angle, expected] : {std::pair{60.0, 2.4037008503093262}, {59.999, 0.0}}) {
    CColorVector7 d = DifferenceRecord(0, 1, 1, 0, 0);
    ComputeAngleDependentDifference(Reference(0, 0, 90), d, angle);
    EXPECT_NEAR(d[6], expected, 1e-15) << angle;
  }
}

}  // namespace
}  // namespace velquor
