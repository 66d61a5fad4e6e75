// Yellowness against hand calculations from the published formulas (reference/yellowness.csv),
// and the unguarded division by Y.
#include "velquor/indices/yellowness.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tristimulus_index_test_support.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

TEST(Yellowness, MatchesHandCalculations) {
  ExpectReferenceTable("reference/yellowness.csv");
}

// Under C/2 the table white is the reference white (98.074, 118.232): the rescale factors are
// exactly 1 and each (R) flavour equals its plain flavour.
TEST(YellownessRecalculated, NativePairEqualsPlainFlavour) {
  for (const double* s : {kS1, kS2}) {
    const CValueVector3 xyz = Sample(s);
    EXPECT_EQ(YellownessD1925R(kC, 0, xyz), YellownessD1925(kC, 0, xyz));
    EXPECT_EQ(YellownessE313_73R(kC, 0, xyz), YellownessE313_73(kC, 0, xyz));
    EXPECT_EQ(YellownessE313_10R(kC, 0, xyz), YellownessE313_10(kC, 0, xyz));
    EXPECT_EQ(YellownessDIN6167R(kC, 0, xyz), YellownessDIN6167(kC, 0, xyz));
  }
}

// Y = 0 is not guarded: the division's infinity or NaN is returned as it is.
TEST(YellownessPlain, UnguardedDivision) {
  EXPECT_EQ(YellownessD1925(kC, 0, Sample(1.0, 0.0, 1.0)), INFINITY);  // 100 x 0.22 / 0
  EXPECT_EQ(YellownessE313_73(kC, 0, Sample(1.0, 0.0, 1.0)), -INFINITY);
  EXPECT_TRUE(std::isnan(YellownessD1925(kC, 0, Sample(1.06, 0.0, 1.28))));  // 0 / 0
  EXPECT_EQ(YellownessDIN6167R(kD65, 1, Sample(1.0, 0.0, 0.0)), INFINITY);
}

}  // namespace
}  // namespace velquor
