#include "velquor/colorimetry/din99.h"

#include <gtest/gtest.h>

#include <numbers>

#include "colour_space_references.h"

namespace velquor {

TEST(LabToDIN99, PublishedExampleAndWeights) {
  // colour-science documentation of Lab_to_DIN99 (kE = kCH = 1), printed to 7 decimals:
  // L*a*b* (41.52787529, 52.63858304, 26.92317922) -> (53.2282198, 28.4163465, 3.8983955).
  // That example scales lightness by 105.509; the library uses 105.51 (ASTM D2244).
  // kE divides L99 and C99 (with a99, b99), kCH only C99; the hue stays.
  const double published[5] = {53.2282198 * 105.51 / 105.509, 28.4163465, 3.8983955,
                               std::hypot(28.4163465, 3.8983955),
                               std::atan2(3.8983955, 28.4163465) * 180 / std::numbers::pi};
  for (const auto& [kCH, kE] : {std::pair{1.0, 1.0}, {1.0, 2.0}, {4.0, 1.0}}) {
    CValueVector5 din;
    LabToDIN99(41.52787529, 52.63858304, 26.92317922, kCH, kE, din);
    for (int k = 0; k < 5; ++k) {
      const double scale = k == 4 ? 1 : (k == 0 ? 1 / kE : 1 / (kE * kCH));
      EXPECT_NEAR(din[k], published[k] * scale, k == 4 ? 1e-5 : 3e-7) << kCH << kE << k;
    }
  }
}

TEST(LabToDIN99, HueOnTheRotatedAxisUsesTheFixedConstants) {
  // (a*, b*) = (-sin16, cos16) makes e = 0 exactly and f = 0.7 > 0: h99 = 1.570796326795; the
  // opposite point gives f < 0 and 4.7123889803850005; the origin 0 (atan2 would round
  // differently). e is compared with 0 exactly: (1e-17, 0) gives atan2(-0.7 sin16, cos16) plus
  // the rounded full turn. Off the axis, (1, -1): e > 0, f < 0; (1, 0.4): h99 = 0.07, no turn.
  ScopedHueUnit radians(0);
  const double c16 = std::cos(0.2792526803191111), s16 = std::sin(0.2792526803191111);
  for (const auto& [a, b, hue, tolerance] :
       {std::tuple{-s16, c16, 1.570796326795, 0.0},
        {s16, -c16, 4.7123889803850005, 0.0},
        {0.0, 0.0, 0.0, 0.0},
        {1e-17, 0.0, 6.28318530718 - std::atan(0.7 * std::tan(0.2792526803191111)), 1e-14},
        {1.0, -1.0, std::atan2(0.7 * (-c16 - s16), c16 - s16) + 6.28318530718, 1e-15},
        {1.0, 0.4, std::atan2(0.7 * (0.4 * c16 - s16), c16 + 0.4 * s16), 1e-15}}) {
    CValueVector5 din;
    LabToDIN99(50, a, b, 1, 1, din);
    EXPECT_NEAR(din[4], hue, tolerance) << a << " " << b;
  }
  // Missing inputs, kCH or kE zero, and L* = -1 / 0.0158 where the lightness log reaches ln(0).
  for (const auto& [l, a, b, kch, ke] : {std::tuple{kMissing, 1.0, 1.0, 1.0, 1.0},
                                         {50.0, kMissing, 1.0, 1.0, 1.0},
                                         {50.0, 1.0, kMissing, 1.0, 1.0},
                                         {50.0, 1.0, 1.0, kMissing, 1.0},
                                         {50.0, 1.0, 1.0, 1.0, kMissing},
                                         {50.0, 1.0, 1.0, 0.0, 1.0},
                                         {50.0, 1.0, 1.0, 1.0, 0.0},
                                         {-1 / 0.0158, 1.0, 1.0, 1.0, 1.0}}) {
    CValueVector5 din;
    LabToDIN99(l, a, b, kch, ke, din);
    EXPECT_TRUE(AllMissing(din)) << l << " " << kch << " " << ke;
  }
}

}  // namespace velquor
