#include "velquor/colorimetry/din99.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "colour_space_references.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::ScopedHueUnit;

TEST(LabToDIN99, PublishedExample) {
  // colour-science documentation of Lab_to_DIN99 (kE = kCH = 1):
  // L*a*b* (41.52787529, 52.63858304, 26.92317922) -> (53.2282198, 28.4163465, 3.8983955),
  // printed to 7 decimals. That example uses the lightness scale 105.509; the library uses
  // 105.51 (ASTM D2244), so its L99 is the published one times 105.51 / 105.509.
  CValueVector5 din;
  LabToDIN99(41.52787529, 52.63858304, 26.92317922, 1, 1, din);
  EXPECT_NEAR(din[0], 53.2282198 * 105.51 / 105.509, 2e-7);
  EXPECT_NEAR(din[1], 28.4163465, 2e-7);
  EXPECT_NEAR(din[2], 3.8983955, 2e-7);
  EXPECT_NEAR(din[3], std::hypot(28.4163465, 3.8983955), 3e-7);
}

TEST(LabToDIN99, WeightsDivideLightnessAndChromaOnly) {
  // kE divides L99 and C99, kCH only C99; the hue and the direction of (a99, b99) stay.
  ScopedHueUnit degrees(1);
  CValueVector5 plain, e2, ch4;
  LabToDIN99(60, -20, 35, 1, 1, plain);
  LabToDIN99(60, -20, 35, 1, 2, e2);
  LabToDIN99(60, -20, 35, 4, 1, ch4);
  EXPECT_NEAR(e2[0], plain[0] / 2, test::kExactFormula);
  EXPECT_NEAR(e2[3], plain[3] / 2, test::kExactFormula);
  EXPECT_NEAR(ch4[0], plain[0], test::kExactFormula);
  EXPECT_NEAR(ch4[3], plain[3] / 4, test::kExactFormula);
  EXPECT_NEAR(ch4[1], plain[1] / 4, test::kExactFormula);
  EXPECT_NEAR(ch4[2], plain[2] / 4, test::kExactFormula);
  EXPECT_DOUBLE_EQ(e2[4], plain[4]);
  EXPECT_DOUBLE_EQ(ch4[4], plain[4]);
}

TEST(LabToDIN99, HueOnTheRotatedAxisUsesTheFixedConstants) {
  // (a*, b*) = (-sin16, cos16) makes e = cos16 (-sin16) + sin16 cos16 exactly 0 and
  // f = 0.7 (cos16^2 + sin16^2) = 0.7 > 0: h99 = 1.570796326795 exactly. The opposite point
  // gives f < 0 and 4.7123889803850005. atan2 would give pi/2 = 1.5707963267948966 and
  // 3 pi / 2 rounded differently, so exact equality tells the branches apart. The origin gives 0.
  ScopedHueUnit radians(0);
  const double c16 = std::cos(0.2792526803191111), s16 = std::sin(0.2792526803191111);
  struct Case {
    double a, b, hue;
  };
  for (const Case c :
       {Case{-s16, c16, 1.570796326795}, Case{s16, -c16, 4.7123889803850005}, Case{0, 0, 0}}) {
    CValueVector5 din;
    LabToDIN99(50, c.a, c.b, 1, 1, din);
    EXPECT_EQ(din[4], c.hue) << c.a << " " << c.b;
  }
  // e is compared with 0 exactly: a tiny (a*, b*) = (1e-17, 0) gives e = 1e-17 cos16, not 0,
  // so the hue is atan2(-0.7 sin16, cos16) + 6.28318530718 (about 348.8 degrees), not 270.
  {
    CValueVector5 tiny;
    LabToDIN99(50, 1e-17, 0, 1, 1, tiny);
    EXPECT_NEAR(tiny[4], 6.28318530718 - std::atan(0.7 * std::tan(0.2792526803191111)), 1e-14);
  }
  // Off the axis, atan2 plus the rounded full turn: a* = 1, b* = -1 (e > 0, f < 0).
  CValueVector5 din;
  LabToDIN99(50, 1, -1, 1, 1, din);
  const double e = c16 - s16, f = 0.7 * (-c16 - s16);
  EXPECT_NEAR(din[4], std::atan2(f, e) + 6.28318530718, 1e-15);
  EXPECT_NEAR(din[1], din[3] * std::cos(din[4]), 1e-14);
  EXPECT_NEAR(din[2], din[3] * std::sin(din[4]), 1e-14);
}

TEST(LabToDIN99, MissingOrUnusableInputsGiveMissingOutputs) {
  for (const auto& [l, a, b, kch, ke] :
       {std::tuple{kMissing, 1.0, 1.0, 1.0, 1.0}, std::tuple{50.0, kMissing, 1.0, 1.0, 1.0},
        std::tuple{50.0, 1.0, kMissing, 1.0, 1.0}, std::tuple{50.0, 1.0, 1.0, 0.0, 1.0},
        std::tuple{50.0, 1.0, 1.0, 1.0, 0.0},
        std::tuple{-1 / 0.0158, 1.0, 1.0, 1.0, 1.0}}) {  // ln(0)
    CValueVector5 din;
    LabToDIN99(l, a, b, kch, ke, din);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(IsMissing(din[i])) << l << " " << kch << " " << ke;
  }
}

}  // namespace
}  // namespace velquor
