// The dispatcher: slot layout, the hue-difference sign, the limit, missing inputs, the
// chromaticity mode, unknown codes and the tristimulus-based systems.
#include "velquor/difference/color_difference.h"

#include <gtest/gtest.h>

#include <cmath>

#include "difference_fixtures.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using difference_testing::Difference;
using difference_testing::LabSample;
using difference_testing::RawSample;
using difference_testing::XyzSample;

constexpr double kRoot200 = 14.142135623730951;

TEST(ComputeColorDifference, HueDifferenceIsPositiveAnticlockwiseAndOnAZeroCrossProduct) {
  struct Case {
    const char* what;
    double s[3], t[3];
    double dC, dH, dE;
  } const cases[] = {
      {"trial anticlockwise", {50, 10, 0}, {50, 0, 10}, 0, kRoot200, kRoot200},
      {"trial clockwise", {50, 0, 10}, {50, 10, 0}, 0, -kRoot200, kRoot200},
      {"opposite hues, cross product exactly 0", {50, 10, 0}, {50, -10, 0}, 0, 20, 20},
      {"same hue, no hue difference", {40, 3, 4}, {41, 6, 8}, 5, 0, std::sqrt(26.0)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const CColorVector7 r = Difference(LabSample(c.s[0], c.s[1], c.s[2]),
                                       LabSample(c.t[0], c.t[1], c.t[2]), kDiffCieLab);
    EXPECT_DOUBLE_EQ(r[0], c.t[0] - c.s[0]);
    EXPECT_DOUBLE_EQ(r[1], c.t[1] - c.s[1]);
    EXPECT_DOUBLE_EQ(r[2], c.t[2] - c.s[2]);
    EXPECT_DOUBLE_EQ(r[3], r[0]);
    EXPECT_NEAR(r[4], c.dC, test::kExactFormula);
    EXPECT_NEAR(r[5], c.dH, 1e-6);  // the hue term is a square root of a difference of squares
    EXPECT_NEAR(r[6], c.dE, test::kExactFormula);
  }
}

TEST(ComputeColorDifference, PlainSystemsAndUnknownCodesGiveTheDeltaEabRecord) {
  const CColorSample s = LabSample(62, -12, 33), t = LabSample(60.5, -9, 30);
  const CColorVector7 reference = Difference(s, t, kDiffCieLab);
  for (const int code : {kDiffCieLch, kDiffCieLuv, kDiffDin99, -1, 13, 99, 101, 1000}) {
    const CColorVector7 r = Difference(s, t, code);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(r[i], reference[i]) << "code " << code << " slot " << i;
  }
}

TEST(ComputeColorDifference, LimitsEverySlotToPlusMinus999Point99AndNaNToTheLowerLimit) {
  struct Case {
    double dL, expected;
  } const cases[] = {
      {999.98, 999.98}, {999.99, 999.99}, {1500, 999.99}, {-999.98, -999.98}, {-1500, -999.99}};
  for (const Case& c : cases) {
    const CColorVector7 r = Difference(RawSample(0, 0, 0, 0, 0), RawSample(c.dL, 0, 0, 0, 0), 0);
    EXPECT_EQ(r[0], c.expected) << c.dL;
    EXPECT_EQ(r[6], std::min(std::abs(c.dL), 999.99)) << c.dL;
  }
  // CMC with l = 0 and dL = 0: 0 / 0 in slot 4 and so in slot 7.
  const CColorVector7 r = Difference(LabSample(50, 10, 10), LabSample(50, 11, 10), kDiffCmc, 0, 1);
  EXPECT_EQ(r[3], -999.99);
  EXPECT_EQ(r[6], -999.99);
}

TEST(ComputeColorDifference, MissingTristimulusGivesAnAllMissingRecordForEverySystem) {
  CColorSample missing = LabSample(50, 1, 1);
  for (int i = 0; i < 3; ++i) missing.xyz[i] = kMissing;
  CColorSample empty = LabSample(50, 1, 1);
  empty.xyz.RemoveAll();
  const CColorSample present = LabSample(50, 2, 2);
  for (const int code : {0, 1, 2, 3, 7, 8, 9, 11, 12, 100}) {
    const CColorSample* const pairs[][2] = {{&missing, &present}, {&present, &empty}};
    for (const auto& pair : pairs) {
      CColorVector7 r;
      for (int i = 0; i < 7; ++i) r[i] = 5000;  // would be limited to 999.99 on any other path
      ComputeColorDifference(*pair[0], *pair[1], code, 2, 0, nullptr, r, 0);
      for (int i = 0; i < 7; ++i) EXPECT_EQ(r[i], kMissing) << "code " << code << " slot " << i;
    }
  }
  // Only one missing component is not a missing sample.
  CColorSample partly = XyzSample(kMissing, 30, 20);
  EXPECT_EQ(Difference(partly, XyzSample(40, 30, 20), kDiffXyzYxy)[0], 10 * (40 - kMissing));
}

TEST(ComputeColorDifference, ChromaticityModeWritesTheTrialsXyAndLeavesTheRestToTheLimit) {
  CColorVector7 r;
  const double before[7] = {7, 7, -3, 0.5, 5000, -5000, 12};
  for (int i = 0; i < 7; ++i) r[i] = before[i];
  ComputeColorDifference(XyzSample(95, 100, 108), XyzSample(20, 30, 50), kDiffChromaticity, 2, 0,
                         nullptr, r, 0);
  const double expected[7] = {0.2, 0.3, -3, 0.5, 999.99, -999.99, 12};
  for (int i = 0; i < 7; ++i) EXPECT_DOUBLE_EQ(r[i], expected[i]) << "slot " << i;
}

TEST(ComputeColorDifference, HunterAndXyzYxyLayouts) {
  // Hunter: rectangular differences and distance, no weighted terms.
  const CColorVector7 h =
      Difference(RawSample(40, 5, 6, 0, 0), RawSample(42, 2, 6, 0, 0), kDiffHunterLab);
  const double hunter[7] = {2, -3, 0, kMissing, kMissing, kMissing, std::sqrt(13.0)};
  for (int i = 0; i < 7; ++i) EXPECT_DOUBLE_EQ(h[i], hunter[i]) << "slot " << i;

  // XYZ/Yxy: 10 dX, 10 dY, 10 dZ; missing; 10000 dx, 10000 dy; Delta E*ab of the coordinates.
  // Standard (40, 30, 30): x = 0.4, y = 0.3; trial (30, 40, 30): x = 0.3, y = 0.4; 10000 dx =
  // -1000 and 10000 dy = +1000 are limited at once.
  CColorSample s = LabSample(50, 3, 4), t = LabSample(50, 0, 0);
  s.xyz[0] = 40, s.xyz[1] = 30, s.xyz[2] = 30;
  t.xyz[0] = 30, t.xyz[1] = 40, t.xyz[2] = 30;
  const CColorVector7 x = Difference(s, t, kDiffXyzYxy);
  const double yxy[7] = {-100, 100, 0, kMissing, -999.99, 999.99, 5};
  for (int i = 0; i < 7; ++i) EXPECT_NEAR(x[i], yxy[i], test::kExactFormula) << "slot " << i;
}

// FMC-2, standard XYZ (40, 30, 20), trial (41, 30.5, 19), by hand at 40 digits:
// P = 28.96 + 11.46 - 1.96 = 38.46, Q = -19.2 + 41.1 + 2.552 = 24.452, dP = 1.013,
// dQ = 0.0774, S = 13.72, dS = -0.686; a = 0.135798807767335, b = 0.338376249639362;
// K1 = 1.48592893, K2 = 0.63766099 (exact polynomials at Y = 30);
// dL = 0.279 K2 (P dP + Q dQ) / (a sqrt(P^2 + Q^2)) = 1.17433406000111,
// drg = 5.23232569032653, dyb = 4.19747158395654, dC = 6.70790577063912, dE = 6.80992366420155.
TEST(ComputeColorDifference, Fmc2HandCalculation) {
  const CColorVector7 r = Difference(XyzSample(40, 30, 20), XyzSample(41, 30.5, 19), kDiffFmc2);
  const double expected[7] = {1.17433406000111, 5.23232569032653, 4.19747158395654, kMissing,
                              6.70790577063912, kMissing,         6.80992366420155};
  for (int i = 0; i < 7; ++i) EXPECT_NEAR(r[i], expected[i], test::kExactFormula) << "slot " << i;
}

// GE-PQS II, the same XYZ pair, by hand at 40 digits. Illuminant C, 2 degrees (white X =
// 98.074, k = 1): u = 34.1, v = 24.5, w = 44; du = 0.935, dv = 0.155, dw = -2.2;
// R = 3.29491454440962, t = 0.22 / 2556.25; G11 = 21.8012704631022, G22 = 42.2336281669302,
// G12 = -24.8705108798071, G33 = 1.52332518337408, G23 = -1.72353363604611,
// G13 = -1.238315955517; dC = 5.14858589101074. D65, 2 degrees (k = 95.047 / 98.074):
// dC = 5.14785013264703. Slot 1 = 100 x 0.5 / 30; x: 0.4444.. -> 0.4530.., 10000 dx =
// 85.9422958870473, 10000 dy = 36.8324125230203.
TEST(ComputeColorDifference, GePqs2HandCalculationForTwoIlluminants) {
  for (const auto& [illuminant, dC] : {std::pair{1, 5.14858589101074}, {2, 5.14785013264703}}) {
    const CColorVector7 r = Difference(XyzSample(40, 30, 20), XyzSample(41, 30.5, 19), kDiffGePqs2,
                                       1, 1, 1, 0, illuminant, 0);
    const double slot1 = 100 * 0.5 / 30, dx = 85.9422958870473, dy = 36.8324125230203;
    const double expected[7] = {slot1, dx, dy, kMissing, dx, dy, dC};
    for (int i = 0; i < 7; ++i) EXPECT_NEAR(r[i], expected[i], 1e-11) << "slot " << i;
  }
}

}  // namespace
}  // namespace velquor
