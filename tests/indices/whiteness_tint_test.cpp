// Whiteness and tint against hand calculations from the published formulas
// (reference/whiteness_tint.csv) and their invariants.
#include <gtest/gtest.h>

#include <cmath>

#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

TEST(WhitenessTint, MatchHandCalculations) {
  ExpectReferenceTable("reference/whiteness_tint.csv");
}

// CIE 15:2004: the perfect white of the pair (the table's white point) has W = its Y and T = 0.
TEST(CieWhitenessInvariant, PerfectWhiteOfEveryPairGivesHundredAndZeroTint) {
  struct White {
    int illuminant, observer;
    double xn, zn;
  };
  for (const White& w : {White{kD65, 0, 95.047, 108.883}, White{kD65, 1, 94.811, 107.304},
                         White{kC, 0, 98.074, 118.232}, White{kA, 0, 109.85, 35.585}}) {
    SCOPED_TRACE(testing::Message() << w.illuminant << "/" << w.observer);
    const CValueVector3 white = Sample(w.xn, 100.0, w.zn);
    ExpectClose(WhitenessCIER(w.illuminant, w.observer, white), 100.0);
    ExpectClose(TintCIER(w.illuminant, w.observer, white), 0.0);
    if (w.illuminant == kD65) {
      ExpectClose(WhitenessCIE(w.illuminant, w.observer, white), 100.0);
      ExpectClose(TintCIE(w.illuminant, w.observer, white), 0.0);
    }
  }
}

// Under C/2 the table white is the reference white, so the recalculated flavours equal the
// plain ones exactly, as Berger (R) does Berger under D65/2.
TEST(RecalculatedWhiteness, NativePairEqualsPlainFlavour) {
  const CValueVector3 s1 = Sample(kS1);
  EXPECT_EQ(WhitenessE313_73R(kC, 0, s1), WhitenessE313_73(kC, 0, s1));
  EXPECT_EQ(WhitenessTaubeR(kC, 0, s1), WhitenessTaube(kC, 0, s1));
  EXPECT_EQ(WhitenessBergerR(kD65, 0, s1), WhitenessBerger(kD65, 0, s1));
}

// Hunter a, b divide by sqrt Y unguarded: at Y = 0, a = +inf and b = -inf (X, Z > 0), so both
// whiteness values are +inf; a black sample gives 0 / 0, NaN. Neither is the missing value.
TEST(WhitenessHunterLab, ZeroYGivesTheFloatingPointResult) {
  for (const int illuminant : {kC, kD65}) {  // classic form (C/2) and white point form (D65/2)
    EXPECT_EQ(WhitenessStensby(illuminant, 0, Sample(10, 0, 20)), INFINITY) << illuminant;
    EXPECT_EQ(WhitenessHunter(illuminant, 0, Sample(10, 0, 20)), INFINITY) << illuminant;
    EXPECT_TRUE(std::isnan(WhitenessStensby(illuminant, 0, Sample(0, 0, 0)))) << illuminant;
    EXPECT_TRUE(std::isnan(WhitenessHunter(illuminant, 0, Sample(0, 0, 0)))) << illuminant;
  }
}

TEST(WhitenessGanz, NullCoefficientsGiveMissing) {
  const CValueVector3 s1 = Sample(kS1);
  EXPECT_EQ(WhitenessGanz(kD65, 1, s1, nullptr), kMissing);
  EXPECT_EQ(TintGanz(kD65, 1, s1, nullptr), kMissing);
}

}  // namespace
}  // namespace velquor
