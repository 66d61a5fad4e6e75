#include "velquor/strength/strength.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "tolerances.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/archive.h"
#include "velquor/frame/numeric.h"
#include "velquor/strength/absorbance.h"
#include "velquor/strength/adjust_to_strength.h"
#include "velquor/strength/saunderson.h"
#include "velquor/strength/spectral_index.h"
#include "velquor/strength/strength_paths.h"

namespace velquor {
namespace {

constexpr int kD65 = 2;
constexpr int kTenDegree = 1;
void ExpectRel(double got, double expected) {
  EXPECT_NEAR(got, expected, test::kIndependent * std::fabs(expected)) << "expected " << expected;
}

CKSData Flat(double level) {
  CKSData curve;
  curve.Fill(level);
  return curve;
}

// Two levels: `low` at indices 0..18 (360-540 nm), `high` at 19..39. Over 420-680 nm that is
// 13 points of `low` (indices 6..18) and 14 of `high` (19..32).
CKSData TwoLevel(double low, double high) {
  CKSData curve;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) curve[i] = i < 19 ? low : high;
  return curve;
}

CValueVector3 Colour(double x, double y, double z) {
  CValueVector3 colour;
  colour[0] = x;
  colour[1] = y;
  colour[2] = z;
  return colour;
}

CStrengthSettings Method(int method, int userWavelength = 600) {
  CStrengthSettings settings;
  settings.method = method;
  settings.userWavelength = userWavelength;
  return settings;
}

double Calc(const CStrengthSettings& settings, const CKSData& standard, const CKSData& batch,
            const CValueVector3& standardColour, const CValueVector3& batchColour,
            bool useAbsorbance = false) {
  int wavelength = 0;
  return CalcStrength(settings, standard, batch, standardColour, batchColour, kD65, kTenDegree,
                      useAbsorbance, wavelength);
}

// Sum over indices 6..32 of K/S(level) times the weight of `column` (3 = X + Y + Z) of D65/10°,
// for a two-level curve: the table is the input data of the pseudo-tristimulus methods.
double WeightedKSSum(int column, double ksLow, double ksHigh) {
  const double* table = GetWeightTable(kD65, kTenDegree);
  double sum = 0.0;
  for (int i = 6; i <= 32; ++i) {
    double w = 0.0;
    for (int c = 0; c < 3; ++c) {
      if (column == 3 || column == c) w += table[40 * c + i];
    }
    sum += (i < 19 ? ksLow : ksHigh) * w;
  }
  return sum;
}

// --- Point conversions, Saunderson, indices -----------------------------------------------

TEST(StrengthConversions, HandValuesAndRoundTrips) {
  // The forward conversions and their black limits are ConvertReflPoint's (tested with CKSData).
  EXPECT_DOUBLE_EQ(ReflectanceFromKS(0.25), 50.0);  // (0.25 - sqrt(2.25 * 0.25) + 1) * 100
  EXPECT_DOUBLE_EQ(ReflectanceFromKS(0.0), 100.0);
  EXPECT_DOUBLE_EQ(ReflectanceFromAbsorbance(2.0), 1.0);
  double worstKS = 0.0;
  double worstD = 0.0;
  for (double r = 0.01; r <= 100.0; r *= 1.07) {
    worstKS = std::max(worstKS, std::fabs(ReflectanceFromKS(KSFromReflectance(r)) - r) / r);
    worstD = std::max(worstD,
                      std::fabs(ReflectanceFromAbsorbance(AbsorbanceFromReflectance(r)) - r) / r);
  }
  EXPECT_LT(worstKS, 1e-8);  // cancellation in 1 + ks - sqrt(ks^2 + 2 ks) near black
  EXPECT_LT(worstD, 1e-12);
}

TEST(Saunderson, HandValuesFloorsAndRoundTrip) {
  // Ri = (0.5 - 0.04) / (1 - 0.04 - 0.5 * 0.6) = 0.46 / 0.66 = 23/33.
  ExpectRel(SaundersonToInternal(0.5, 0.04, 0.6), 23.0 / 33.0);
  ExpectRel(SaundersonToMeasured(23.0 / 33.0, 0.04, 0.6), 0.5);
  // k1 = k2 = 0.5: the divisor is 0.5 R; 2e-5 (R = 4e-5) is used, 5e-6 (R = 1e-5) floored.
  ExpectRel(SaundersonToInternal(4e-5, 0.5, 0.5), (4e-5 - 0.5) / 2e-5);
  ExpectRel(SaundersonToInternal(1e-5, 0.5, 0.5), (1e-5 - 0.5) / 1e-5);
  // 1 - k2 R with k2 = 2: 2e-5 at R = 0.49999 is used; -1 at R = 1 is floored (else +1).
  ExpectRel(SaundersonToMeasured(0.49999, 0.0, 2.0), -0.49999 / 2e-5);
  ExpectRel(SaundersonToMeasured(1.0, 0.0, 2.0), -1e5);
  double worst = 0.0;
  for (double k1 : {0.0, 0.04, 0.1}) {
    for (double k2 : {0.0, 0.4, 0.6}) {
      for (int step = 0; step <= 100; ++step) {
        const double r = step / 100.0;
        worst = std::max(
            worst, std::fabs(SaundersonToMeasured(SaundersonToInternal(r, k1, k2), k1, k2) - r));
      }
    }
  }
  EXPECT_LT(worst, 1e-14);
}

TEST(SpectralIndex, WavelengthsAndMaxAbsorption) {
  EXPECT_EQ(WavelengthFromIndex(39), 750);
  EXPECT_EQ(IndexFromWavelength(500), 14);
  EXPECT_EQ(IndexFromWavelength(365), 0);
  EXPECT_EQ(IndexFromWavelength(359), 0);  // -1 / 10 truncates toward zero
  EXPECT_EQ(IndexFromWavelength(350), -1);
  CKSData curve = Flat(50.0);
  curve[5] = curve[33] = 1.0;                          // outside 6..32
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 6);  // all equal: the first
  curve[20] = curve[12] = 10.0;                        // a tie: the shorter wavelength
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 12);
  curve[32] = 9.99;
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 32);
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 20, 20), 20);  // last < first + 1
  curve[39] = 5.0;
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 34, 99), 39);  // stops at the curve's end
}

// --- The three paths ---------------------------------------------------------------------

// Standard 20 % / 50 %, batch 10 % / 25 % (see TwoLevel). K/S: 20 % -> 0.8^2/0.4 = 1.6,
// 50 % -> 0.25, 10 % -> 0.9^2/0.2 = 4.05, 25 % -> 0.75^2/0.5 = 1.125.
// Sums over 420-680 nm: standard 13 * 1.6 + 14 * 0.25 = 24.3, batch 13 * 4.05 + 14 * 1.125 = 68.4.
class TwoLevelStrength : public ::testing::Test {
 protected:
  const CKSData standard_ = TwoLevel(20.0, 50.0);
  const CKSData batch_ = TwoLevel(10.0, 25.0);
  const CValueVector3 standardColour_ = Colour(40.0, 50.0, 60.0);
  const CValueVector3 batchColour_ = Colour(20.0, 25.0, 30.0);

  double Strength(const CStrengthSettings& settings, bool useAbsorbance = false) const {
    return Calc(settings, standard_, batch_, standardColour_, batchColour_, useAbsorbance);
  }
};

TEST_F(TwoLevelStrength, SpectralMethodsByHand) {
  ExpectRel(Strength(Method(0)), 6840.0 / 24.3);       // 281.48...
  ExpectRel(Strength(Method(11)), 6840.0 / 24.3);      // "when dL=0" computes as apparent
  ExpectRel(Strength(Method(12)), 2430.0 / 68.4);      // exchanged: 675/19
  ExpectRel(Strength(Method(1)), 100.0 * 4.05 / 1.6);  // at 420 nm, the first of the low level
  ExpectRel(Strength(Method(13)), 100.0 * 1.6 / 4.05);
  ExpectRel(Strength(Method(2, 600)), 100.0 * 1.125 / 0.25);  // index 24, high level
  ExpectRel(Strength(Method(14, 600)), 100.0 * 0.25 / 1.125);
  // Absorbance log10(100/R): 20 % -> log10 5, 50 % -> log10 2, 10 % -> 1, 25 % -> log10 4.
  ExpectRel(Strength(Method(0), true), 100.0 * (13.0 + 14.0 * std::log10(4.0)) /
                                           (13.0 * std::log10(5.0) + 14.0 * std::log10(2.0)));
  ExpectRel(Strength(Method(1), true), 100.0 / std::log10(5.0));
}

TEST_F(TwoLevelStrength, SaundersonAppliesOnlyWhenSwitchedOn) {
  CStrengthSettings settings = Method(2, 600);
  settings.k1 = 0.04;
  settings.k2 = 0.6;
  ExpectRel(Strength(settings), 450.0);  // coefficients set but the correction is off
  settings.saundersonOn = 1;
  // 50 % -> Ri = 23/33, K/S = (10/33)^2 / (46/33) = 100/1518;
  // 25 % -> Ri = 0.21/0.51 = 7/17, K/S = (10/17)^2 / (14/17) = 100/238.
  ExpectRel(Strength(settings), 100.0 * 1518.0 / 238.0);
  // Tristimulus Y: 0.5 -> 23/33, 0.25 -> 7/17; standard over batch.
  settings.method = 9;
  ExpectRel(Strength(settings), 100.0 * (23.0 / 33.0) / (7.0 / 17.0));
}

TEST_F(TwoLevelStrength, PseudoTristimulusAgainstTheWeights) {
  for (int column : {3, 0, 1, 2}) {
    const int method = column == 3 ? 3 : 4 + column;
    const double expected =
        100.0 * WeightedKSSum(column, 4.05, 1.125) / WeightedKSSum(column, 1.6, 0.25);
    ExpectRel(Strength(Method(method)), expected);
  }
}

TEST_F(TwoLevelStrength, TristimulusIsStandardOverBatch) {
  ExpectRel(Strength(Method(7)), 200.0);  // 1.5 / 0.75
  ExpectRel(Strength(Method(8)), 200.0);
  ExpectRel(StrengthTristimulus(2, standardColour_, Colour(40, 50, 20), 0, 0), 300.0);
  // A missing value counts only where it is used; an empty record gives the missing value.
  EXPECT_TRUE(IsMissing(StrengthTristimulus(3, standardColour_, Colour(1, 1, kMissing), 0, 0)));
  EXPECT_FALSE(IsMissing(StrengthTristimulus(0, standardColour_, Colour(1, 1, kMissing), 0, 0)));
  CValueVector3 empty;
  empty.RemoveAll();
  EXPECT_TRUE(IsMissing(StrengthTristimulus(3, empty, batchColour_, 0, 0)));
}

TEST_F(TwoLevelStrength, WavelengthIsConvertedLastForEveryMethod) {
  struct Case {
    int method;
    int passedIn;
    int expected;
  };
  for (const Case& c : {Case{0, 14, 500}, Case{7, 0, 360}, Case{1, 99, 420}, Case{13, 99, 420},
                        Case{2, 99, 600}, Case{14, 99, 600}}) {
    int wavelength = c.passedIn;
    CalcStrength(Method(c.method, 609), standard_, batch_, standardColour_, batchColour_, kD65,
                 kTenDegree, false, wavelength);
    EXPECT_EQ(wavelength, c.expected) << "method " << c.method;
  }
}

TEST(CalcStrength, BaseChromaticTakesTheIndexFromTheStandard) {
  CKSData standard = Flat(50.0);
  CKSData batch = Flat(50.0);
  standard[20] = 20.0;  // 560 nm
  batch[10] = 10.0;     // the batch absorbs most elsewhere
  int wavelength = 0;
  ExpectRel(CalcStrength(Method(13), standard, batch, Colour(1, 1, 1), Colour(1, 1, 1), kD65,
                         kTenDegree, false, wavelength),
            100.0 * 1.6 / 0.25);
  EXPECT_EQ(wavelength, 560);
}

TEST(StrengthPaths, FloorsAndCapsFromBothSides) {
  // One index, K/S ratio batch/standard just inside and outside the limits.
  const auto single = [](double ksStandard, double ksBatch) {
    CKSData standard = Flat(50.0);
    CKSData batch = Flat(50.0);
    standard[10] = ReflectanceFromKS(ksStandard);
    batch[10] = ReflectanceFromKS(ksBatch);
    return StrengthFromSpectra(standard, batch, false, 10, 10, 0.0, 0.0);
  };
  EXPECT_NEAR(single(0.1, 0.95), 950.0, 1e-6);
  EXPECT_EQ(single(0.1, 1.05), 999.99);
  EXPECT_NEAR(single(1.0, 0.00011), 0.011, 1e-9);
  EXPECT_EQ(single(1.0, 0.00009), 0.01);
  // Ratio path: capped above 9.9999 only; no floor, negative quotients pass.
  ExpectRel(StrengthRatio(1.0, 9.9998), 999.98);
  EXPECT_EQ(StrengthRatio(1.0, 9.99995), 999.99);
  ExpectRel(StrengthRatio(-2.0, 1.0), -50.0);
  // Sums below 1e-7 in magnitude become +1e-7 (on both sides of the quotient).
  EXPECT_EQ(StrengthRatio(-5e-8, 5e-8), 100.0);
  ExpectRel(StrengthRatio(2.0, 5e-8), 100.0 * 1e-7 / 2.0);
  ExpectRel(StrengthRatio(2.0, 1.5e-7), 100.0 * 1.5e-7 / 2.0);
  EXPECT_EQ(StrengthFromSpectra(Flat(100.0), Flat(100.0), false, 6, 32, 0, 0), 100.0);
}

TEST(StrengthPaths, RangesOutsideTheCurveGiveMissing) {
  EXPECT_TRUE(IsMissing(StrengthFromSpectra(Flat(50), Flat(40), false, 30, 40, 0, 0)));
  CKSData shortStandard = Flat(50.0);  // one curve short is enough
  shortStandard.SetSize(39);
  EXPECT_TRUE(IsMissing(StrengthFromSpectra(shortStandard, Flat(40), false, 6, 39, 0, 0)));
  EXPECT_TRUE(
      IsMissing(StrengthWeighted(kD65, kTenDegree, 4, Flat(50), Flat(40), false, 6, 32, 0, 0)));
  // A user wavelength of 800 nm is index 44, beyond the curve.
  EXPECT_TRUE(
      IsMissing(Calc(Method(2, 800), Flat(50), Flat(40), Colour(1, 1, 1), Colour(1, 1, 1))));
  // A missing point enters the sum as black (K/S 9999): the batch is far stronger.
  CKSData batch = Flat(50.0);
  batch[20] = kMissing;
  EXPECT_EQ(StrengthFromSpectra(Flat(50.0), batch, false, 6, 32, 0, 0), 999.99);
}

// --- Every method: equal, far stronger, and the lower end ------------------------------

// Standard: 40 % / 80 % (K/S 0.45 and 0.025), colour (40, 50, 60).
// Stronger batch: for the plain spectral and pseudo-tristimulus methods 2 % (K/S 24.01, over 50
// times the standard's), for the base methods 100 % (K/S 0: the exchanged divisor is floored at
// 1e-7), for the tristimulus methods colour (3, 4, 5), reflecting over ten times less.
// Weaker batch: 100 % (K/S 0, batch sum floored at 1e-7) or, for the base methods, 0.001 %
// (K/S 9999); for the tristimulus methods colour (100, 100, 100) against a standard of
// (0.002, 0.002, 0.002), which gives 100 * 0.00002 / 1 = 0.002 % (column 3: 0.00006 / 3).
enum class Path { kSpectral, kBase, kWeighted, kTristimulus };
// The path of each method code.
constexpr Path kPaths[15] = {
    Path::kSpectral,    Path::kSpectral, Path::kSpectral,    Path::kWeighted,    Path::kWeighted,
    Path::kWeighted,    Path::kWeighted, Path::kTristimulus, Path::kTristimulus, Path::kTristimulus,
    Path::kTristimulus, Path::kSpectral, Path::kBase,        Path::kBase,        Path::kBase};

class EveryMethod : public ::testing::TestWithParam<int> {};

TEST_P(EveryMethod, EqualStrongerAndWeaker) {
  const int method = GetParam();
  const Path path = kPaths[method];
  const CStrengthSettings settings = Method(method, 600);
  const CKSData standard = TwoLevel(40.0, 80.0);
  const CValueVector3 standardColour = Colour(40.0, 50.0, 60.0);

  EXPECT_EQ(Calc(settings, standard, standard, standardColour, standardColour), 100.0);
  EXPECT_EQ(Calc(settings, standard, standard, standardColour, standardColour, true), 100.0);

  const CKSData stronger = Flat(path == Path::kBase ? 100.0 : 2.0);
  EXPECT_EQ(Calc(settings, standard, stronger, standardColour, Colour(3, 4, 5)), 999.99);

  switch (path) {
    case Path::kSpectral:
      EXPECT_EQ(Calc(settings, standard, Flat(100.0), standardColour, standardColour), 0.01);
      break;
    case Path::kBase:
      EXPECT_EQ(Calc(settings, standard, Flat(0.001), standardColour, standardColour), 0.01);
      break;
    case Path::kWeighted: {
      const int column = method == 3 ? 3 : method - 4;
      const double expected = 100.0 * 1e-7 / WeightedKSSum(column, 0.45, 0.025);
      const double got = Calc(settings, standard, Flat(100.0), standardColour, standardColour);
      ExpectRel(got, expected);
      EXPECT_LT(got, 0.01);
      break;
    }
    case Path::kTristimulus:
      ExpectRel(
          Calc(settings, standard, standard, Colour(0.002, 0.002, 0.002), Colour(100, 100, 100)),
          0.002);
      break;
  }
}

INSTANTIATE_TEST_SUITE_P(AllFifteen, EveryMethod, ::testing::Range(0, 15),
                         [](const ::testing::TestParamInfo<int>& info) {
                           return "Method" + std::to_string(info.param);
                         });

// --- AdjustToStrength and the settings record -------------------------------------------

TEST(AdjustToStrength, RescalesAbsorption) {
  CStrengthSettings settings;
  settings.targetPercent = 200.0;
  CKSData spectrum = Flat(50.0);
  spectrum[3] = kMissing;
  CKSData result;
  result.SetSize(3);  // grown to the spectrum's length
  // K/S 0.25 doubled: (0.5 - sqrt(2.5 * 0.5) + 1) * 100 = 150 - 100 sqrt(1.25).
  AdjustToStrength(settings, spectrum, false, result, 100.0);
  ASSERT_EQ(result.GetSize(), CKSData::kLength);
  ExpectRel(result[10], 150.0 - 100.0 * std::sqrt(1.25));
  EXPECT_TRUE(IsMissing(result[3]));
  // Absorbance log10 2 doubled: 100 / 4.
  AdjustToStrength(settings, spectrum, true, result, 100.0);
  ExpectRel(result[10], 25.0);
  // Target equal to current gives the input back, with and without Saunderson.
  const CKSData curve = TwoLevel(12.5, 73.0);
  for (int saunderson : {0, 1}) {
    settings.saundersonOn = saunderson;
    settings.k1 = 0.04;
    settings.k2 = 0.6;
    settings.targetPercent = 87.0;
    AdjustToStrength(settings, curve, false, result, 87.0);
    for (std::size_t i = 0; i < CKSData::kLength; ++i) {
      EXPECT_NEAR(result[i], curve[i], 1e-9 * curve[i]) << "point " << i;
    }
  }
  // Nothing to scale from.
  AdjustToStrength(settings, curve, false, result, 0.0);
  EXPECT_TRUE(IsMissing(result[0]) && IsMissing(result[39]));
}

TEST(StrengthSettings, ArchiveRoundTripKeepsEveryField) {
  CStrengthSettings a;
  a.method = 14;
  a.userWavelength = 520;
  a.targetPercent = 95.5;
  a.saundersonOn = 1;
  a.k1 = 0.04;
  a.k2 = 0.6;
  std::ostringstream stored;
  CArchive out(stored);
  a.Serialize(out);
  EXPECT_EQ(stored.str().size(), 4u + 4u + 8u + 4u + 8u + 8u);
  std::istringstream source(stored.str());
  CArchive in(source);
  CStrengthSettings loaded;
  EXPECT_FALSE(loaded == a);
  loaded.Serialize(in);
  EXPECT_TRUE(loaded == a);
}

}  // namespace
}  // namespace velquor
