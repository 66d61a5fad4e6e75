#include "velquor/difference/ciede2000.h"

#include <gtest/gtest.h>
#if VELQUOR_HAVE_LCMS2
#include <lcms2.h>
#endif

#include <algorithm>
#include <cmath>
#include <random>

#include "difference_fixtures.h"
#include "reference_table.h"
#include "tolerances.h"

namespace velquor {
namespace {

using difference_testing::Difference;
using difference_testing::LabSample;

// Sharma, Wu and Dalal (2005), Table 1, in both orders: the formula is symmetric.
TEST(Ciede2000, SharmaWuDalalTable1BothWaysRound) {
  for (const auto& row : test::LoadReferenceTable("reference/difference_sharma_ciede2000.csv")) {
    SCOPED_TRACE(row.Where());
    const CColorSample s = LabSample(row.Number("L1"), row.Number("a1"), row.Number("b1"));
    const CColorSample t = LabSample(row.Number("L2"), row.Number("a2"), row.Number("b2"));
    const CColorVector7 forward = Difference(s, t, kDiffCie2000);  // slots 1-3 stay CIELAB
    EXPECT_NEAR(forward[6], row.Number("dE00"), test::kFourDecimals);
    EXPECT_NEAR(Difference(t, s, kDiffCie2000)[6], row.Number("dE00"), test::kFourDecimals);
    EXPECT_DOUBLE_EQ(forward[0], row.Number("L2") - row.Number("L1"));
    EXPECT_DOUBLE_EQ(forward[1], row.Number("a2") - row.Number("a1"));
  }
}

// Pair 10 of the table puts the two primed hues exactly a half turn apart: h's = 360 - e,
// h't = 180 - e. The rounded radians-to-degrees factor makes the computed span 180 + 1.2e-11,
// so a strict "< 180" would send it to the far branch (7.2195, the value of pairs 11 and 12)
// instead of the published 7.1792. The library's tolerance is 1e-8 degree; a change db in the
// trial moves the span by about 15.34 db degrees. Expected values: the two branches evaluated
// at 40 digits (mpmath) from the same inputs; they change by under 1e-10 over these db.
TEST(Ciede2000, MeanHueAtExactlyHalfATurnUsesTheToleranceOfOneHundredMillionthDegree) {
  constexpr double kMeanBranch = 7.17916264;    // (h's + h't) / 2
  constexpr double kFarBranch = 7.21947009317;  // (h's + h't - 360) / 2
  // Spans 180 - 1.5e-8 (below), 180 + 1.2e-11 (pair 10) and 180 + 4.6e-9 (equal within the
  // tolerance), 180 + 1.5e-8 (beyond it).
  for (const auto& [db, expected] : {std::pair{-1e-9, kMeanBranch}, {0.0, kMeanBranch}, {3e-10, kMeanBranch}, {1e-9, kFarBranch}}) {
    const CColorVector7 r = Difference(LabSample(50, 2.49, -0.001), LabSample(50, -2.49, 0.001 + db), kDiffCie2000);
    EXPECT_NEAR(r[6], expected, 1e-8) << db;
  }
}

// Standard (50, 10, -2) and trial (50, 20, 4) have primed hues 360 - h and h: they sum to exactly
// a full turn and lie more than half a turn apart, so the mean hue is (sum - 360) / 2 = 0, not
// (sum + 360) / 2 = 360, which would change RT and the total by 1.7e-5. Expected: the formula
// evaluated at 50 digits (mpmath).
TEST(Ciede2000, PrimedHuesSummingToAFullTurnHaveMeanHueZero) {
  const CColorVector7 r = Difference(LabSample(50, 10, -2), LabSample(50, 20, 4), kDiffCie2000);
  EXPECT_NEAR(r[6], 8.2814450650749875, test::kIndependent);
}

#if VELQUOR_HAVE_LCMS2  // LittleCMS is not in the Windows cross build
// LittleCMS's cmsCIE2000DeltaE(reference, sample, Kl, Kc, Kh) is the same formula except at
// a half turn of the primed hues, where it tests |dh| <= 180.000001 with the exact degree factor
// and the library wraps dh (so dH' and, with unequal chromas, RT change sign); random pairs never
// land there. Neutral standards are included: LittleCMS halves their mean hue, with no effect.
TEST(Ciede2000, AgreesWithLittleCms) {
  std::mt19937_64 rng(20050101);
  std::uniform_real_distribution<double> lightness(0, 100), axis(-110, 110), unit(-1, 1);
  const double weightSets[3][3] = {{1, 1, 1}, {2, 1, 1}, {1.5, 0.8, 1.2}};
  for (int i = 0; i < 400; ++i) {
    double l1 = lightness(rng), a1 = axis(rng), b1 = axis(rng);
    const double scale = i % 3 == 0 ? 1.5 : (i % 3 == 1 ? 12.0 : 120.0);
    const double l2 = std::clamp(l1 + scale * unit(rng), 0.0, 100.0);
    const double a2 = a1 + scale * unit(rng), b2 = b1 + scale * unit(rng);
    if (i % 50 == 7) a1 = b1 = 0;
    const cmsCIELab standard{l1, a1, b1}, trial{l2, a2, b2};
    const double* w = weightSets[i % 3];
    EXPECT_NEAR(Difference(LabSample(l1, a1, b1), LabSample(l2, a2, b2), kDiffCie2000, w[0], w[1], w[2])[6],
                cmsCIE2000DeltaE(&standard, &trial, w[0], w[1], w[2]), test::kIndependent)
        << "pair " << i;
  }
}
#endif

}  // namespace
}  // namespace velquor
