// Whiteness and tint against hand calculations from the published formulas: ASTM E313-73,
// Taube, Berger, CIE 15:2004 whiteness and tint, ASTM E313-10, Ganz/Griesser, Stensby and
// Hunter. Samples and white points are listed in tristimulus_index_test_support.h.
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <string>

#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/tint.h"
#include "velquor/indices/whiteness.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

using IndexFn = double (*)(int, int, const CValueVector3&);

// A set of Ganz/Griesser calibration coefficients of the kind an instrument supplies.
constexpr double kGanzWhiteness[4] = {1.0, -1868.322, -3695.690, 1809.441};  // D, P, Q, C
constexpr double kGanzTint[3] = {-1001.223, 748.366, 68.261};                // m, n, k0

double GanzWhiteness(int illuminant, int observer, const CValueVector3& xyz) {
  return WhitenessGanz(illuminant, observer, xyz, kGanzWhiteness);
}
double GanzTint(int illuminant, int observer, const CValueVector3& xyz) {
  return TintGanz(illuminant, observer, xyz, kGanzTint);
}

struct ValueCase {
  const char* label;
  IndexFn fn;
  int illuminant;
  int observer;
  const double* sample;
  double expected;
};

// Each expected value is worked out in the comment above it.
const ValueCase kValueCases[] = {
    // E313-73: 3.388 Z - 3 Y.  S1: 365.904 - 270 = 95.904.  S2: 237.16 - 246 = -8.84.
    {"E313-73 S1", WhitenessE313_73, kC, 0, kS1, 95.904},
    {"E313-73 S2", WhitenessE313_73, kC, 0, kS2, -8.84},
    // Taube: 3.3834 Z - 3 Y.  S1: 365.4072 - 270 = 95.4072.  S2: 236.838 - 246 = -9.162.
    {"Taube S1", WhitenessTaube, kC, 0, kS1, 95.4072},
    {"Taube S2", WhitenessTaube, kC, 0, kS2, -9.162},
    // Berger 2 degree: Y + 3.4 Z - 3.895 X.
    //   S1: 90 + 367.2 - 334.97 = 122.23.  S2: 82 + 238 - 311.6 = 8.4.
    {"Berger D65/2 S1", WhitenessBerger, kD65, 0, kS1, 122.23},
    {"Berger D65/2 S2", WhitenessBerger, kD65, 0, kS2, 8.4},
    // Berger 10 degree: Y + 3.448 Z - 3.904 X.
    //   S1: 90 + 372.384 - 335.744 = 126.64.  S2: 82 + 241.36 - 312.32 = 11.04.
    // Any non-zero observer code is the 10 degree observer.
    {"Berger D65/10 S1", WhitenessBerger, kD65, 1, kS1, 126.64},
    {"Berger D65/10 S2", WhitenessBerger, kD65, 1, kS2, 11.04},
    {"Berger D65 code 7 S1", WhitenessBerger, kD65, 7, kS1, 126.64},
    // CIE: Y + 800 (xn - x) + 1700 (yn - y), computed white.
    //   D65/2 S1: dx = 0.0099097133, dy = 0.0121217219: 90 + 7.92777062 + 20.60692719
    //   D65/2 S2: dx = -0.0321009715, dy = -0.0244251455: 82 - 25.68077722 - 41.52274741
    //   D65/10 S1: dx = 0.0110073046, dy = 0.0140983764: 90 + 8.80584368 + 23.96723988
    //   D65/10 S2: dx = -0.0310033802, dy = -0.0224484910: 82 - 24.80270415 - 38.16243472
    {"CIE D65/2 S1", WhitenessCIE, kD65, 0, kS1, 118.53469780615718},
    {"CIE D65/2 S2", WhitenessCIE, kD65, 0, kS2, 14.796475368080445},
    {"CIE D65/10 S1", WhitenessCIE, kD65, 1, kS1, 122.77308356369287},
    {"CIE D65/10 S2", WhitenessCIE, kD65, 1, kS2, 19.034861125616130},
    // CIE (R) under A/2 (non-native), white of A/2:
    //   S1: dx = 0.1447557757, dy = 0.0905384432: 90 + 115.80462054 + 153.91535351
    //   S2: dx = 0.1027450909, dy = 0.0539915758: 82 + 82.19607270 + 91.78567891
    {"CIE (R) A/2 S1", WhitenessCIER, kA, 0, kS1, 359.71997405009846},
    {"CIE (R) A/2 S2", WhitenessCIER, kA, 0, kS2, 255.98175161202172},
    // E313-10: the CIE formula with the table's xn, yn.
    //   C/2 (0.3101, 0.3161) S1: dx = 0.0072830986, dy = -0.0008014085:
    //     90 + 5.82647887 - 1.36239437;  S2: dx = -0.0347275862, dy = -0.0373482759:
    //     82 - 27.78206897 - 63.49206897
    //   D65/10 (0.3138, 0.3310) S1: dx = 0.0109830986, dy = 0.0140985915:
    //     90 + 8.78647887 + 23.96760563;  S2: dx = -0.0310275862, dy = -0.0224482759:
    //     82 - 24.82206897 - 38.16206897
    //   D50/2 (0.3457, 0.3585) S1: dx = 0.0428830986, dy = 0.0415985915:
    //     90 + 34.30647887 + 70.71760563;  S2: dx = 0.0008724138, dy = 0.0050517241:
    //     82 + 0.69793103 + 8.58793103
    {"E313-10 C/2 S1", WhitenessE313_10, kC, 0, kS1, 94.464084507042254},
    {"E313-10 C/2 S2", WhitenessE313_10, kC, 0, kS2, -9.2741379310344828},
    {"E313-10 D65/10 S1", WhitenessE313_10, kD65, 1, kS1, 122.75408450704225},
    {"E313-10 D65/10 S2", WhitenessE313_10, kD65, 1, kS2, 19.015862068965517},
    {"E313-10 D50/2 S1", WhitenessE313_10, kD50, 0, kS1, 195.02408450704225},
    {"E313-10 D50/2 S2", WhitenessE313_10, kD50, 0, kS2, 91.285862068965517},
    // The other table entries, S1:
    //   C/10 (0.3104, 0.3191): dx = 0.0075830986, dy = 0.0021985915: 90 + 6.06647887 + 3.73760563
    //   D65/2 (0.3127, 0.3290): dx = 0.0098830986, dy = 0.0120985915: 90 + 7.90647887 + 20.56760563
    //   D50/10 (0.3477, 0.3595): dx = 0.0448830986, dy = 0.0425985915: 90 + 35.90647887 + 72.41760563
    {"E313-10 C/10 S1", WhitenessE313_10, kC, 1, kS1, 99.804084507042254},
    {"E313-10 D65/2 S1", WhitenessE313_10, kD65, 0, kS1, 118.47408450704225},
    {"E313-10 D50/10 S1", WhitenessE313_10, kD50, 1, kS1, 198.32408450704225},
    // Ganz/Griesser: D Y + P x + Q y + C with {1, -1868.322, -3695.690, 1809.441}.
    //   S1: 90 - 565.75947887 - 1171.16936620 + 1809.441 = 162.51215493
    //   S2: 82 - 644.24896552 - 1306.23525862 + 1809.441 = -59.04322414
    {"Ganz D65/10 S1", GanzWhiteness, kD65, 1, kS1, 162.51215492957746},
    {"Ganz D65/10 S2", GanzWhiteness, kD65, 1, kS2, -59.043224137931034},

    // CIE tint: k (xn - x) - 650 (yn - y), k = 1000 (2 degree) or 900 (10 degree); dx, dy as
    // for the CIE whiteness above.
    //   D65/2 S1: 9.90971327 - 7.87911922;  S2: -32.10097153 + 15.87634460
    //   D65/10 S1: 9.90657415 - 9.16394466;  S2: -27.90304217 + 14.59151916
    {"Tint CIE D65/2 S1", TintCIE, kD65, 0, kS1, 2.0305940535788680},
    {"Tint CIE D65/2 S2", TintCIE, kD65, 0, kS2, -16.224626927479898},
    {"Tint CIE D65/10 S1", TintCIE, kD65, 1, kS1, 0.74262948560069351},
    {"Tint CIE D65/10 S2", TintCIE, kD65, 1, kS2, -13.311523015613488},
    // Tint CIE (R) under A/2: S1: 144.75577568 - 58.84998811;  S2: 102.74509088 - 35.09452429
    {"Tint CIE (R) A/2 S1", TintCIER, kA, 0, kS1, 85.905787568321494},
    {"Tint CIE (R) A/2 S2", TintCIER, kA, 0, kS2, 67.650566587262728},
    // Tint E313-10 with the table's xn, yn and dx, dy as for the E313-10 whiteness:
    //   C/2 S1: 7.2830986 + 0.5209155;  S2: -34.7275862 + 24.2763793
    //   D65/10 S1: 9.88478873 - 9.16408451;  S2: -27.92482759 + 14.59137931
    //   D50/2 S1: 42.8830986 - 27.0390845;  S2: 0.8724138 - 3.2836207
    {"Tint E313-10 C/2 S1", TintE313_10, kC, 0, kS1, 7.8040140845070423},
    {"Tint E313-10 C/2 S2", TintE313_10, kC, 0, kS2, -10.451206896551724},
    {"Tint E313-10 D65/10 S1", TintE313_10, kD65, 1, kS1, 0.72070422535211268},
    {"Tint E313-10 D65/10 S2", TintE313_10, kD65, 1, kS2, -13.333448275862069},
    {"Tint E313-10 D50/2 S1", TintE313_10, kD50, 0, kS1, 15.844014084507042},
    {"Tint E313-10 D50/2 S2", TintE313_10, kD50, 0, kS2, -2.4112068965517241},
    //   C/10 S1: 6.82478873 - 1.42908451;  D65/2 S1: 9.88309859 - 7.86408451;
    //   D50/10 S1: 40.39478873 - 27.68908451
    {"Tint E313-10 C/10 S1", TintE313_10, kC, 1, kS1, 5.3957042253521127},
    {"Tint E313-10 D65/2 S1", TintE313_10, kD65, 0, kS1, 2.0190140845070423},
    {"Tint E313-10 D50/10 S1", TintE313_10, kD50, 1, kS1, 12.705704225352113},
    // Ganz/Griesser tint: m x + n y + k0 with {-1001.223, 748.366, 68.261}.
    //   S1: -303.18724648 + 237.15823944 + 68.261;  S2: -345.24931034 + 264.50867241 + 68.261
    {"Tint Ganz D65/10 S1", GanzTint, kD65, 1, kS1, 2.2319929577464789},
    {"Tint Ganz D65/10 S2", GanzTint, kD65, 1, kS2, -12.479637931034483},
};

class WhitenessTintValue : public testing::TestWithParam<ValueCase> {};

TEST_P(WhitenessTintValue, MatchesHandCalculation) {
  const ValueCase& c = GetParam();
  ExpectClose(c.fn(c.illuminant, c.observer, Sample(c.sample[0], c.sample[1], c.sample[2])),
              c.expected);
}

INSTANTIATE_TEST_SUITE_P(Published, WhitenessTintValue, testing::ValuesIn(kValueCases),
                         [](const testing::TestParamInfo<ValueCase>& info) {
                           std::string name;
                           for (const char* p = info.param.label; *p; ++p)
                             name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
                           return name;
                         });

// Hunter Lab based whiteness. Classic Hunter (C/2): L = 10 sqrt Y, a = 17.5 (1.02 X - Y) / sqrt Y,
// b = 7 (Y - 0.847 Z) / sqrt Y. White point form (D65/10): yr = Y / 100,
// Ka = 175 sqrt(0.0102 x 94.811) = 172.0947010, Kb = 70 sqrt(0.00847 x 107.304) = 66.7340836.
TEST(WhitenessHunterLab, StensbyAndHunterMatchHandCalculation) {
  struct Case {
    int illuminant, observer;
    double x, y, z, stensby, hunter;
  };
  const Case cases[] = {
      // (78, 81, 90) C/2: L = 90, a = 17.5 (79.56 - 81) / 9 = -2.8, b = 7 (81 - 76.23) / 9 = 3.71
      //   Stensby 90 - 8.4 - 11.13 = 70.47; Hunter 90 - 11.13 = 78.87
      {kC, 0, 78, 81, 90, 70.47, 78.87},
      // (60, 64, 75) D65/10: L = 80, a = Ka (0.6328379618 - 0.64) / 0.8 = -1.5406860200,
      //   b = Kb (0.64 - 0.6989487810) / 0.8 = -4.9173661009
      //   Stensby 80 - 4.6220580599 + 14.7520983028; Hunter 80 + 14.7520983028
      {kD65, 1, 60, 64, 75, 90.130040242850558, 94.752098302785694},
      // S1 D65/10: L = 100 sqrt 0.9 = 94.8683298051, a = 1.2821154516, b = -7.4906578078
      {kD65, 1, 86, 90, 108, 121.18664958326885, 117.34030322859538},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.x << " " << c.y << " " << c.z);
    ExpectClose(WhitenessStensby(c.illuminant, c.observer, Sample(c.x, c.y, c.z)), c.stensby);
    ExpectClose(WhitenessHunter(c.illuminant, c.observer, Sample(c.x, c.y, c.z)), c.hunter);
  }
}

TEST(WhitenessHunterLab, AcceptsEveryPairAndGivesMissingWithoutHunterLightness) {
  const CValueVector3 s1 = Sample(kS1[0], kS1[1], kS1[2]);
  for (int illuminant = 0; illuminant < 17; ++illuminant) {
    for (int observer : {0, 1}) {
      EXPECT_FALSE(IsMissing(WhitenessStensby(illuminant, observer, s1))) << illuminant;
      EXPECT_FALSE(IsMissing(WhitenessHunter(illuminant, observer, s1))) << illuminant;
    }
  }
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

// CIE 15:2004: the perfect white of the illuminant and observer has W = its Y (100) and
// T = 0. The sample is the white point of the pair's table.
TEST(CieWhitenessInvariant, PerfectWhiteOfEveryPairGivesHundredAndZeroTint) {
  struct White {
    int illuminant, observer;
    double xn, zn;
  };
  const White whites[] = {{kD65, 0, 95.047, 108.883}, {kD65, 1, 94.811, 107.304},
                          {kC, 0, 98.074, 118.232},   {kC, 1, 97.285, 116.145},
                          {kA, 0, 109.85, 35.585}};
  for (const White& w : whites) {
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

// A sample whose chromaticity is the ASTM E313-10 table's white point has W = Y and T = 0
// under E313-10: here x = 0.3138, y = 0.3310 of D65/10 at Y = 33.1 (X + Y + Z = 100).
TEST(E313_10Invariant, TableWhiteChromaticityGivesYAndZeroTint) {
  const CValueVector3 sample = Sample(31.38, 33.10, 35.52);
  ExpectClose(WhitenessE313_10(kD65, 1, sample), 33.1);
  ExpectClose(TintE313_10(kD65, 1, sample), 0.0);
}

// The recalculated flavours rescale by (reference white / computed white); under C/2 the table
// white is the reference white, so they agree with the plain flavour, and Berger (R) agrees
// with Berger under D65/2. Under D65/10 Berger (R) keeps the 2 degree pair on rescaled values:
//   X' = 95.047 / 94.811 x 86 = 86.2140680, Z' = 108.883 / 107.304 x 108 = 109.5892418
//   90 + 3.4 x 109.5892418 - 3.895 x 86.2140680 = 126.7996272  (Berger D65/10 gives 126.64)
TEST(RecalculatedWhiteness, NativePairAgreesAndNonNativeRescales) {
  const CValueVector3 s1 = Sample(kS1[0], kS1[1], kS1[2]);
  EXPECT_EQ(WhitenessE313_73R(kC, 0, s1), WhitenessE313_73(kC, 0, s1));
  EXPECT_EQ(WhitenessTaubeR(kC, 0, s1), WhitenessTaube(kC, 0, s1));
  EXPECT_EQ(WhitenessBergerR(kD65, 0, s1), WhitenessBerger(kD65, 0, s1));
  ExpectClose(WhitenessBergerR(kD65, 1, s1), 126.79962724039377);
  ExpectClose(WhitenessBerger(kD65, 1, s1), 126.64);
}

TEST(RecalculatedWhiteness, RescaledValuesUnderNonNativeIlluminants) {
  struct Case {
    IndexFn fn;
    int illuminant, observer;
    const double* sample;
    double expected;
  };
  const Case cases[] = {
      // E313-73 (R), Taube (R): Z' = 118.232 / Zn x Z.
      //   D65/10 S1: Z' = 118.232 / 107.304 x 108 = 118.9988817;  S2: Z' = 77.1289048
      //   A/2 S1: Z' = 118.232 / 35.585 x 108 = 358.8325418;  S2: Z' = 232.5766475
      //   C/10 S1: Z' = 118.232 / 116.145 x 108 = 109.9406432
      // E313-73 (R) = 3.388 Z' - 3 Y:
      {WhitenessE313_73R, kD65, 1, kS1, 133.16821113844777},  // 403.1682111 - 270
      {WhitenessE313_73R, kD65, 1, kS2, 15.312729441586521},  // 261.3127294 - 246
      {WhitenessE313_73R, kA, 0, kS1, 945.72465162287481},    // 1215.7246516 - 270
      {WhitenessE313_73R, kA, 0, kS2, 541.96968160741886},    // 787.9696816 - 246
      {WhitenessE313_73R, kC, 1, kS1, 102.47889903138318},    // 372.4788990 - 270
      // Taube (R) = 3.3834 Z' - 3 Y:
      {WhitenessTaubeR, kD65, 1, kS1, 132.62081628271080},  // 402.6208163 - 270
      {WhitenessTaubeR, kD65, 1, kS2, 14.957936479534780},  // 260.9579365 - 246
      {WhitenessTaubeR, kA, 0, kS1, 944.07402193058873},    // 1214.0740219 - 270
      // Berger (R) = Y + 3.4 Z' - 3.895 X', X' = 95.047 / Xn X, Z' = 108.883 / Zn Z:
      //   A/2 S1: X' = 74.4109422, Z' = 330.4584516: 90 + 1123.5587354 - 289.8306198
      //   A/2 S2: X' = 69.2194811, Z' = 214.1860334: 82 + 728.2325137 - 269.6098789
      {WhitenessBergerR, kA, 0, kS1, 923.72811557698495},
      {WhitenessBergerR, kA, 0, kS2, 540.62263477378461},
      {WhitenessBergerR, kD65, 1, kS2, 11.126594915755218},  // X' = 80.1991330, Z' = 71.0300641
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.illuminant << "/" << c.observer << " " << c.sample[0]);
    ExpectClose(c.fn(c.illuminant, c.observer, Sample(c.sample[0], c.sample[1], c.sample[2])),
                c.expected);
  }
}

TEST(WhitenessGanz, NullCoefficientsGiveMissing) {
  const CValueVector3 s1 = Sample(kS1[0], kS1[1], kS1[2]);
  EXPECT_EQ(WhitenessGanz(kD65, 1, s1, nullptr), kMissing);
  EXPECT_EQ(TintGanz(kD65, 1, s1, nullptr), kMissing);
}

}  // namespace
}  // namespace velquor
