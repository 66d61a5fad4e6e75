// Delta E*ab, CMC, CIE94 and DIN 6175-2 through the dispatcher.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "difference_fixtures.h"
#include "tolerances.h"

namespace velquor {
namespace {

using difference_testing::Difference;
using difference_testing::LabSample;
using difference_testing::RawSample;

// LittleCMS's cmsDeltaE and cmsCMCdeltaE(reference, sample, l, c) -- Lab1 is the standard,
// whose L, C and h set the CMC weights. Its CMC differs from the library's only at edges left
// out here: the hue range 164 < h < 345 is open where the library's is closed (no random
// standard lands on exactly 164 or 345), and a pair with both L = 0 returns 0 outright (the
// sweep adds such pairs on purpose and counts them). Standards below L = 16 are included, as
// both use SL = 0.511 there. Chroma and hue of both samples come from cmsLab2LCh.
TEST(DeltaEabAndCmc, AgreeWithLittleCms) {
  std::mt19937_64 rng(19840101);
  std::uniform_real_distribution<double> lightness(0, 100), axis(-110, 110), unit(-1, 1);
  int bothBlack = 0;
  for (int i = 0; i < 400; ++i) {
    double l1 = i % 4 == 0 ? 20 * std::abs(unit(rng)) : lightness(rng);  // many below 16
    const double a1 = axis(rng), b1 = axis(rng);
    const double scale = i % 3 == 0 ? 1.5 : (i % 3 == 1 ? 12.0 : 120.0);
    double l2 = std::clamp(l1 + scale * unit(rng), 0.0, 100.0);
    const double a2 = a1 + scale * unit(rng), b2 = b1 + scale * unit(rng);
    if (i % 100 == 5) l1 = l2 = 0;
    const cmsCIELab standard{l1, a1, b1}, trial{l2, a2, b2};
    SCOPED_TRACE(testing::Message() << "pair " << i);

    const CColorSample s = LabSample(l1, a1, b1), t = LabSample(l2, a2, b2);
    EXPECT_NEAR(Difference(s, t, kDiffCieLab)[6], cmsDeltaE(&standard, &trial), test::kIndependent);
    if (l1 == 0 && l2 == 0) {
      ++bothBlack;
      continue;
    }
    for (const double l : {2.0, 1.0}) {
      EXPECT_NEAR(Difference(s, t, kDiffCmc, l, 1)[6], cmsCMCdeltaE(&standard, &trial, l, 1.0),
                  test::kIndependent)
          << "l = " << l;
    }
  }
  EXPECT_EQ(bothBlack, 4);
}

// CMC thresholds, each from both sides. Standard C = 20 with only a hue difference of 1
// (dL = dC = 0, so slot 7 = 1 / SH), or only a lightness difference of 1 with l = 2
// (slot 7 = 1 / (2 SL)). Hand calculation (40 digits): SC(20) = 1.276 / 1.262 + 0.638,
// F = sqrt(160000 / 161900); T inside = 0.56 + |0.2 cos(h + 168)|, outside =
// 0.36 + |0.4 cos(h + 35)|; SL(16) = 0.6556 / 1.2824 = 0.51122894572676.
TEST(Cmc, ThresholdsOfLightnessAndHueFromBothSides) {
  struct Case {
    const char* what;
    double l, h, dL, da;
    double expected;
  } const cases[] = {
      {"L 15.999: SL = 0.511", 15.999, 90, 1, 0, 1 / (2 * 0.511)},
      {"L 16: rational SL", 16, 90, 1, 0, 0.97803538743136059},
      {"h 163.99: outside", 50, 163.99, 0, 1, 0.819705011654518},
      {"h 164: inside (inclusive)", 50, 164, 0, 1, 0.821516216250407},
      {"h 345: inside (inclusive)", 50, 345, 0, 1, 0.819736790521042},
      {"h 345.01: outside", 50, 345.01, 0, 1, 0.822331730187025},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const CColorVector7 r = Difference(RawSample(c.l, 0, 0, 20, c.h),
                                       RawSample(c.l + c.dL, c.da, 0, 20, c.h), kDiffCmc, 2, 1);
    EXPECT_NEAR(r[6], c.expected, test::kExactFormula);
  }
}

// CIE94 (CIE 116-1995) by hand, with the standard's chroma in SC and SH.
// Pair 1: standard (50, 20, 30), trial (52, 22, 27): Cs = sqrt(1300) = 36.0555127546399,
// Ct = sqrt(1213) = 34.828149534536, dC = -1.2273632201039; dE^2 = 4 + 4 + 9 = 17,
// |dH| = sqrt(17 - 4 - dC^2) = 3.39021821214154, negative as bs at - as bt = 660 - 540 > 0;
// SC = 2.6224980739588, SH = 1.5408326913196.
// Pair 2: standard (60, -30, 10), trial (58, -28, 14): Cs = sqrt(1000), Ct = sqrt(980),
// dH = -4.46082809827201 (cross product 10 (-28) - (-30) 14 = 140 > 0), SC = 2.42302494707577,
// SH = 1.47434164902526.
TEST(Cie94, HandCalculationsWithTheStandardsChroma) {
  struct Case {
    double s[3], t[3], k[3];
    double slot4, slot5, slot6, total;
  } const cases[] = {
      // clang-format off
      {{50, 20, 30}, {52, 22, 27}, {1, 1, 1}, 2, -0.468013011064343, -2.20025070290928,
       3.01000653390957},
      {{50, 20, 30}, {52, 22, 27}, {2, 1, 1}, 1, -0.468013011064343, -2.20025070290928,
       2.461735025176},
      {{60, -30, 10}, {58, -28, 14}, {1, 1, 1}, -2, -0.131168652254408, -3.02564069950899,
       3.62928462067381},
      // clang-format on
  };
  for (const Case& c : cases) {
    const CColorVector7 r =
        Difference(LabSample(c.s[0], c.s[1], c.s[2]), LabSample(c.t[0], c.t[1], c.t[2]), kDiffCie94,
                   c.k[0], c.k[1], c.k[2]);
    EXPECT_NEAR(r[3], c.slot4, test::kExactFormula);
    EXPECT_NEAR(r[4], c.slot5, test::kExactFormula);
    EXPECT_NEAR(r[5], c.slot6, test::kExactFormula);
    EXPECT_NEAR(r[6], c.total, test::kExactFormula);
  }
}

// DIN 6175-2 branch: standard L = 50 with stored C and h, trial differing by da = 3, db = 4
// (dC = 0 stored, so dH = 5). Near-neutral: sqrt((3/0.7)^2 + (4/0.7)^2) = 5/0.7. Chromatic
// (p = 1): 5 / SH, SH = 0.14 sqrt(C) + 0.7 - 0.2 sqrt(50) + 21, by hand at 40 digits.
TEST(Din6175, NearNeutralRegionFromBothSidesOfEachThreshold) {
  constexpr double kNeutral = 5 / 0.7;
  struct Case {
    const char* what;
    double c, h, expected;
  } const cases[] = {
      {"C 9.99, h 0: C < 10", 9.99, 0, kNeutral},
      {"C 10, h 26.99: chromatic", 10, 26.99, 0.241213725988033},
      {"C 10, h 27: h >= 27", 10, 27, kNeutral},
      {"C 17.99, h 27", 17.99, 27, kNeutral},
      {"C 17.99, h 26.99: chromatic", 17.99, 26.99, 0.23946829089836},
      {"C 18, h 27: C not < 18", 18, 27, 0.239466398359911},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const CColorVector7 r =
        Difference(RawSample(50, 0, 0, c.c, c.h), RawSample(50, 3, 4, c.c, c.h), kDiffDin6175);
    EXPECT_NEAR(r[6], c.expected, test::kExactFormula);
    EXPECT_DOUBLE_EQ(r[5], 5.0);  // slots 1-6 stay Delta E*ab
  }
}

TEST(Din6175, ParameterWeightsAndTheFloorOfSevenTenths) {
  // Lightness only (dL = 2, gL = 2): total = 1 / SL with SL = 0.15 x 8 + 31.5 / p at L = 64;
  // p = 0 is taken as 1.
  const auto lightnessOnly = [](double p) {
    return Difference(RawSample(64, 0, 0, 30, 90), RawSample(66, 0, 0, 30, 90), kDiffDin6175, 2, 1,
                      1, p)[6];
  };
  EXPECT_NEAR(lightnessOnly(1), 1 / 32.7, 1e-14);
  EXPECT_NEAR(lightnessOnly(0), 1 / 32.7, 1e-14);
  EXPECT_NEAR(lightnessOnly(2), 1 / 16.95, 1e-14);
  // p = 1000 at L = 81, C = 20: SC = 0.48 sqrt(20) - 3.15 + 0.042 < 0.7 and SH = 0.14 sqrt(20)
  // + 0.7 - 1.8 + 0.021 < 0.7, so both are floored: dC = 1.4 (gC = 2) gives 1.4 / (2 x 0.7).
  const CColorVector7 r = Difference(RawSample(81, 0, 0, 20, 90), RawSample(81, 0, 1.4, 21.4, 90),
                                     kDiffDin6175, 1, 2, 1, 1000);
  EXPECT_NEAR(r[6], 1.0, test::kExactFormula);
}

}  // namespace
}  // namespace velquor
