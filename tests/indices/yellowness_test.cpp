// Yellowness against hand calculations from the published formulas: ASTM D1925, ASTM E313-73,
// ASTM E313-10, DIN 6167 and the DCM yellowness. Samples and white points are listed in
// tristimulus_index_test_support.h.
#include "velquor/indices/yellowness.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

using IndexFn = double (*)(int, int, const CValueVector3&);

struct Case {
  IndexFn fn;
  int illuminant;
  int observer;
  const double* sample;
  double expected;
};

void ExpectCases(const char* name, std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << name << " " << c.illuminant << "/" << c.observer << " ("
                                    << c.sample[0] << ", " << c.sample[1] << ", " << c.sample[2]
                                    << ")");
    ExpectClose(c.fn(c.illuminant, c.observer, Sample(c.sample[0], c.sample[1], c.sample[2])),
                c.expected);
  }
}

TEST(YellownessPlain, MatchesHandCalculation) {
  // D1925: 100 (1.28 X - 1.06 Z) / Y.
  //   S1: 100 (110.08 - 114.48) / 90 = -4.8888889;  S2: 100 (102.4 - 74.2) / 82 = 34.3902439
  ExpectCases("D1925", {{YellownessD1925, kC, 0, kS1, -4.8888888888888889},
                        {YellownessD1925, kC, 0, kS2, 34.390243902439024}});
  // E313-73: 100 (1 - 0.847 Z / Y).
  //   S1: 100 (1 - 91.476 / 90) = -1.64;  S2: 100 (1 - 59.29 / 82) = 27.6951220
  ExpectCases("E313-73", {{YellownessE313_73, kC, 0, kS1, -1.64},
                          {YellownessE313_73, kC, 0, kS2, 27.695121951219512}});
  // E313-10: 100 (Cx X - Cz Z) / Y.
  //   C/2 (1.2769, 1.0592):    S1: (109.8134 - 114.3936) / 0.9;  S2: (102.152 - 74.144) / 0.82
  //   C/10 (1.2871, 1.0781):   S1: (110.6906 - 116.4348) / 0.9;  S2: (102.968 - 75.467) / 0.82
  //   D65/2 (1.2985, 1.1335):  S1: (111.671 - 122.418) / 0.9;    S2: (103.88 - 79.345) / 0.82
  //   D65/10 (1.3013, 1.1498): S1: (111.9118 - 124.1784) / 0.9;  S2: (104.104 - 80.486) / 0.82
  ExpectCases("E313-10", {{YellownessE313_10, kC, 0, kS1, -5.0891111111111111},
                          {YellownessE313_10, kC, 0, kS2, 34.156097560975610},
                          {YellownessE313_10, kC, 1, kS1, -6.3824444444444444},
                          {YellownessE313_10, kC, 1, kS2, 33.537804878048780},
                          {YellownessE313_10, kD65, 0, kS1, -11.941111111111111},
                          {YellownessE313_10, kD65, 0, kS2, 29.920731707317073},
                          {YellownessE313_10, kD65, 1, kS1, -13.629555555555556},
                          {YellownessE313_10, kD65, 1, kS2, 28.802439024390244}});
  // DIN 6167: 100 (Cx X - Cz Z) / Y.
  //   C/2 (1.277, 1.059):    S1: (109.822 - 114.372) / 0.9;  S2: (102.16 - 74.13) / 0.82
  //   D65/2 (1.298, 1.133):  S1: (111.628 - 122.364) / 0.9;  S2: (103.84 - 79.31) / 0.82
  //   D65/10 (1.301, 1.149): S1: (111.886 - 124.092) / 0.9;  S2: (104.08 - 80.43) / 0.82
  ExpectCases("DIN 6167", {{YellownessDIN6167, kC, 0, kS1, -5.0555555555555556},
                           {YellownessDIN6167, kC, 0, kS2, 34.182926829268293},
                           {YellownessDIN6167, kD65, 0, kS1, -11.928888888888889},
                           {YellownessDIN6167, kD65, 0, kS2, 29.914634146341463},
                           {YellownessDIN6167, kD65, 1, kS1, -13.562222222222222},
                           {YellownessDIN6167, kD65, 1, kS2, 28.841463414634146}});
  // DCM Y: 253.1 - 620.88511 Z / (1.275 X + Y + 0.635025 Z).
  //   S1: 253.1 - 67055.59188 / (109.65 + 90 + 68.5827) = 253.1 - 249.9903699
  //   S2: 253.1 - 43461.9577 / (102 + 82 + 44.45175) = 253.1 - 190.2456764
  ExpectCases("DCM Y", {{YellownessDCMY, kC, 0, kS1, 3.1096301457652255},
                        {YellownessDCMY, kC, 0, kS2, 62.854323615380491}});
}

// The recalculated flavours under illuminants the standards do not cover. X' = 98.074 / Xn X,
// Z' = 118.232 / Zn Z with the computed white of the pair:
//   D65/10: S1 X' = 88.9597621, Z' = 118.9988817;  S2 X' = 82.7532670, Z' = 77.1289048
//   C/10:   S1 X' = 86.6974765, Z' = 109.9406432
//   A/2:    S1 X' = 76.7807374, Z' = 358.8325418;  S2 X' = 71.4239417, Z' = 232.5766475
// E313-10 (R) and DIN 6167 (R) keep the C/2 pair under every observer: under C/10 they differ
// from the plain E313-10 (-6.3824444 with 1.2871, 1.0781).
TEST(YellownessRecalculated, RescaledValuesUnderNonNativeIlluminants) {
  ExpectCases("D1925 (R)",
              {{YellownessD1925R, kD65, 1, kS1, -13.633687950135158},  // (113.8684955 - 126.1388146) / 0.9
               {YellownessD1925R, kD65, 1, kS2, 29.472613063126499},   // (105.9241818 - 81.7566391) / 0.82
               {YellownessD1925R, kC, 1, kS1, -6.1825687204405321},    // (110.9727699 - 116.5370818) / 0.9
               {YellownessD1925R, kA, 0, kS1, -313.42572275211241},    // (98.2793439 - 380.3624943) / 0.9
               {YellownessD1925R, kA, 0, kS2, -189.15683034886321}});  // (91.4226454 - 246.5312464) / 0.82
  ExpectCases("E313-73 (R)",
              {{YellownessE313_73R, kD65, 1, kS1, -11.991169760679937},  // 100 (1 - 100.7920528 / 90)
               {YellownessE313_73R, kD65, 1, kS2, 20.331484926345573},   // 100 (1 - 65.3281824 / 82)
               {YellownessE313_73R, kC, 1, kS1, -3.4663608420508847},    // 100 (1 - 93.1197248 / 90)
               {YellownessE313_73R, kA, 0, kS2, -140.23465902665209}});  // 100 (1 - 196.9924204 / 82)
  ExpectCases("E313-10 (R)",
              {{YellownessE313_10R, kD65, 1, kS1, -13.834328124600170},  // (113.5927202 - 126.0436155) / 0.9
               {YellownessE313_10R, kD65, 1, kS2, 29.235013058314979},   // (105.6676467 - 81.6949360) / 0.82
               {YellownessE313_10R, kC, 1, kS1, -6.3834683455285804},    // (110.7040067 - 116.4491293) / 0.9
               {YellownessE313_10R, kA, 0, kS1, -313.37122747700494}});  // (98.0413236 - 380.0754283) / 0.9
  ExpectCases("DIN 6167 (R)",
              {{YellownessDIN6167R, kD65, 1, kS1, -13.797999510664967},  // (113.6016162 - 126.0198157) / 0.9
               {YellownessDIN6167R, kD65, 1, kS2, 29.263916848145917},   // (105.6759220 - 81.6795102) / 0.82
               {YellownessDIN6167R, kC, 1, kS1, -6.3494040385497202},    // (110.7126775 - 116.4271412) / 0.9
               {YellownessDIN6167R, kA, 0, kS2, -189.13450739490270}});  // (91.2083736 - 246.2986697) / 0.82
}

// Under C/2 the table white is the reference white (98.074, 118.232), so each (R) flavour
// equals its plain flavour exactly (the rescale factors are exactly 1).
TEST(YellownessRecalculated, NativePairEqualsPlainFlavour) {
  for (const double* s : {kS1, kS2}) {
    const CValueVector3 xyz = Sample(s[0], s[1], s[2]);
    EXPECT_EQ(YellownessD1925R(kC, 0, xyz), YellownessD1925(kC, 0, xyz));
    EXPECT_EQ(YellownessE313_73R(kC, 0, xyz), YellownessE313_73(kC, 0, xyz));
    EXPECT_EQ(YellownessE313_10R(kC, 0, xyz), YellownessE313_10(kC, 0, xyz));
    EXPECT_EQ(YellownessDIN6167R(kC, 0, xyz), YellownessDIN6167(kC, 0, xyz));
  }
}

TEST(YellownessPlain, NeutralBoundaryAndUnguardedDivision) {
  // Z / Y = 1 / 0.847: E313-73 yellowness 0 (to rounding of 0.847 x 100 / 84.7).
  EXPECT_NEAR(YellownessE313_73(kC, 0, Sample(90.0, 84.7, 100.0)), 0.0, 1e-12);
  // Y = 0 is not guarded: the division's infinity or NaN is returned as it is.
  EXPECT_EQ(YellownessD1925(kC, 0, Sample(1.0, 0.0, 1.0)), INFINITY);  // 100 x 0.22 / 0
  EXPECT_EQ(YellownessE313_73(kC, 0, Sample(1.0, 0.0, 1.0)), -INFINITY);
  EXPECT_TRUE(std::isnan(YellownessD1925(kC, 0, Sample(1.06, 0.0, 1.28))));  // 0 / 0
  EXPECT_EQ(YellownessDIN6167R(kD65, 1, Sample(1.0, 0.0, 0.0)), INFINITY);
}

}  // namespace
}  // namespace velquor
