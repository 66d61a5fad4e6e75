#include "velquor/strength/strength.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "archive_test_support.h"
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

constexpr int kD65 = 2, kTenDegree = 1;
void ExpectRel(double got, double expected) {
  EXPECT_NEAR(got, expected, test::kIndependent * std::fabs(expected)) << "expected " << expected;
}

// `low` at indices 0..18 (360-540 nm), `high` at 19..39: over 420-680 nm, 13 points of `low`
// (indices 6..18) and 14 of `high` (19..32).
CKSData TwoLevel(double low, double high) {
  CKSData curve;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) curve[i] = i < 19 ? low : high;
  return curve;
}
CKSData Flat(double level) { return TwoLevel(level, level); }

CValueVector3 Colour(double x, double y, double z) { CValueVector3 c; c[0] = x, c[1] = y, c[2] = z; return c; }

CStrengthSettings Method(int method, int userWavelength = 600) {
  CStrengthSettings settings;
  settings.method = method, settings.userWavelength = userWavelength;
  return settings;
}

// Standard 20 % / 50 % and colour (40, 50, 60), batch 10 % / 25 % and (20, 25, 30) unless given.
// K/S: 20 % -> 1.6, 50 % -> 0.25, 10 % -> 4.05, 25 % -> 1.125.
double Calc(const CStrengthSettings& settings, bool absorbance = false,
            const CKSData& standard = TwoLevel(20, 50), const CKSData& batch = TwoLevel(10, 25),
            const CValueVector3& standardColour = Colour(40, 50, 60),
            const CValueVector3& batchColour = Colour(20, 25, 30)) {
  int wavelength = 0;
  return CalcStrength(settings, standard, batch, standardColour, batchColour, kD65, kTenDegree,
                      absorbance, wavelength);
}

// Sum over indices 6..32 of a two-level K/S times the D65/10° weight of `column` (3 = X + Y + Z).
double WeightedKSSum(int column, double ksLow, double ksHigh) {
  const double* table = GetWeightTable(kD65, kTenDegree);
  double sum = 0.0;
  for (int i = 6; i <= 32; ++i) {
    for (int c = 0; c < 3; ++c) {
      if (column == 3 || column == c) sum += (i < 19 ? ksLow : ksHigh) * table[40 * c + i];
    }
  }
  return sum;
}

TEST(StrengthConversions, HandValuesFloorsAndRoundTrips) {
  EXPECT_DOUBLE_EQ(ReflectanceFromKS(0.25), 50.0);  // (0.25 - sqrt(2.25 * 0.25) + 1) * 100
  EXPECT_DOUBLE_EQ(ReflectanceFromAbsorbance(2.0), 1.0);
  for (double r = 0.01; r <= 100.0; r *= 1.07) {
    EXPECT_NEAR(ReflectanceFromKS(KSFromReflectance(r)), r, 1e-8 * r);  // cancellation near black
    EXPECT_NEAR(ReflectanceFromAbsorbance(AbsorbanceFromReflectance(r)), r, 1e-12 * r);
  }
  // Saunderson: Ri = (0.5 - 0.04) / (1 - 0.04 - 0.5 * 0.6) = 23/33. With k1 = k2 = 0.5 the
  // divisor 0.5 R is floored at 1e-5 (R = 4e-5 passes); with k2 = 2, 1 - k2 R is too (R = 1).
  for (const auto& [r, k1, k2, internal] : {std::tuple{0.5, 0.04, 0.6, 23.0 / 33.0}, {4e-5, 0.5, 0.5, (4e-5 - 0.5) / 2e-5}, {1e-5, 0.5, 0.5, (1e-5 - 0.5) / 1e-5}}) ExpectRel(SaundersonToInternal(r, k1, k2), internal);
  for (const auto& [r, k1, k2, measured] : {std::tuple{23.0 / 33.0, 0.04, 0.6, 0.5}, {0.49999, 0.0, 2.0, -0.49999 / 2e-5}, {1.0, 0.0, 2.0, -1e5}}) ExpectRel(SaundersonToMeasured(r, k1, k2), measured);
}

TEST(SpectralIndex, WavelengthsAndMaxAbsorption) {
  EXPECT_EQ(WavelengthFromIndex(39), 750);
  EXPECT_EQ(IndexFromWavelength(500), 14);
  EXPECT_EQ(IndexFromWavelength(359), 0);  // -1 / 10 truncates toward zero
  EXPECT_EQ(IndexFromWavelength(350), -1);
  CKSData curve = Flat(50.0);
  curve[5] = curve[33] = 1.0;                          // outside 6..32
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 6);  // all equal: the first
  curve[20] = curve[12] = 10.0;                        // a tie: the shorter wavelength
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 12);
  curve[32] = 9.99;
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 6, 32), 32);
  curve[39] = 5.0;
  EXPECT_EQ(FindMaxAbsorptionIndex(curve, 34, 99), 39);  // stops at the curve's end
}

// Sums over 420-680 nm: standard 13 * 1.6 + 14 * 0.25 = 24.3, batch 13 * 4.05 + 14 * 1.125 = 68.4.
// Absorbance log10(100/R): 20 % -> log10 5, 50 % -> log10 2, 10 % -> 1, 25 % -> log10 4.
TEST(CalcStrength, SpectralAndTristimulusMethodsByHand) {
  const double l2 = std::log10(2.0), l4 = std::log10(4.0), l5 = std::log10(5.0);
  const struct { int method; bool absorbance; double expected; } cases[] = {
      // 11 ("when dL=0") as apparent; 1 and 13 at 420 nm (low level), 2 and 14 at 600 nm (high).
      {0, false, 6840.0 / 24.3}, {11, false, 6840.0 / 24.3}, {12, false, 2430.0 / 68.4}, {1, false, 100.0 * 4.05 / 1.6}, {13, false, 100.0 * 1.6 / 4.05},
      {2, false, 100.0 * 1.125 / 0.25}, {14, false, 100.0 * 0.25 / 1.125}, {7, false, 200.0}, {8, false, 200.0},
      {0, true, 100.0 * (13.0 + 14.0 * l4) / (13.0 * l5 + 14.0 * l2)}, {1, true, 100.0 / l5},
  };
  for (const auto& c : cases) ExpectRel(Calc(Method(c.method), c.absorbance), c.expected);
  for (int column : {3, 0, 1, 2}) {
    ExpectRel(Calc(Method(column == 3 ? 3 : 4 + column)),
              100.0 * WeightedKSSum(column, 4.05, 1.125) / WeightedKSSum(column, 1.6, 0.25));
  }
}

TEST(CalcStrength, SaundersonAppliesOnlyWhenSwitchedOn) {
  CStrengthSettings settings = Method(2, 600);
  settings.k1 = 0.04, settings.k2 = 0.6;
  ExpectRel(Calc(settings), 450.0);  // coefficients set but the correction is off
  settings.saundersonOn = 1;
  // 50 % -> Ri = 23/33, K/S = 100/1518; 25 % -> Ri = 7/17, K/S = 100/238.
  ExpectRel(Calc(settings), 100.0 * 1518.0 / 238.0);
  settings.method = 9;  // tristimulus Y, standard over batch
  ExpectRel(Calc(settings), 100.0 * (23.0 / 33.0) / (7.0 / 17.0));
}

TEST(CalcStrength, WavelengthIsConvertedLastAndBaseIndexComesFromTheStandard) {
  for (const auto& [method, passedIn, expected] :
       {std::tuple{0, 14, 500}, {7, 0, 360}, {1, 99, 420}, {13, 99, 420}, {2, 99, 600},
        {14, 99, 600}}) {
    int wavelength = passedIn;
    CalcStrength(Method(method, 609), TwoLevel(20, 50), TwoLevel(10, 25), Colour(1, 1, 1), Colour(1, 1, 1), kD65, kTenDegree, false, wavelength);
    EXPECT_EQ(wavelength, expected) << "method " << method;
  }
  CKSData standard = Flat(50.0), batch = Flat(50.0);
  standard[20] = 20.0;  // 560 nm
  batch[10] = 10.0;     // the batch absorbs most elsewhere
  int wavelength = 0;
  ExpectRel(CalcStrength(Method(13), standard, batch, Colour(1, 1, 1), Colour(1, 1, 1), kD65, kTenDegree, false, wavelength), 160.0 / 0.25);
  EXPECT_EQ(wavelength, 560);
}

TEST(StrengthPaths, FloorsCapsAndMissingValues) {
  const auto single = [](double ksStandard, double ksBatch) {
    CKSData standard = Flat(50.0), batch = Flat(50.0);
    standard[10] = ReflectanceFromKS(ksStandard);
    batch[10] = ReflectanceFromKS(ksBatch);
    return StrengthFromSpectra(standard, batch, false, 10, 10, 0.0, 0.0);
  };
  for (const auto& [ksStandard, ksBatch, expected] : {std::tuple{0.1, 0.95, 950.0}, {0.1, 1.05, 999.99}, {1.0, 0.00011, 0.011}, {1.0, 0.00009, 0.01}}) {
    EXPECT_NEAR(single(ksStandard, ksBatch), expected, 1e-6 * expected) << ksBatch;
  }
  // Ratio path: capped above 9.9999 only; no floor; sums below 1e-7 in magnitude become +1e-7.
  for (const auto& [standard, batch, expected] : {std::tuple{1.0, 9.9998, 999.98}, {1.0, 9.99995, 999.99}, {-2.0, 1.0, -50.0}, {-5e-8, 5e-8, 100.0}, {2.0, 5e-8, 5e-6}, {2.0, 1.5e-7, 7.5e-6}}) {
    ExpectRel(StrengthRatio(standard, batch), expected);
  }
  // Ranges beyond the curve (a user wavelength of 800 nm is index 44) give the missing value.
  EXPECT_TRUE(IsMissing(StrengthFromSpectra(Flat(50), Flat(40), false, 30, 40, 0, 0)));
  CKSData shortStandard = Flat(50.0);
  shortStandard.SetSize(39);
  EXPECT_TRUE(IsMissing(StrengthFromSpectra(shortStandard, Flat(40), false, 6, 39, 0, 0)));
  EXPECT_TRUE(IsMissing(StrengthWeighted(kD65, kTenDegree, 4, Flat(50), Flat(40), false, 6, 32, 0, 0)));
  EXPECT_TRUE(IsMissing(Calc(Method(2, 800))));
  // A missing point enters the sum as black (K/S 9999); a missing colour counts only where used.
  CKSData batch = Flat(50.0);
  batch[20] = kMissing;
  EXPECT_EQ(StrengthFromSpectra(Flat(50.0), batch, false, 6, 32, 0, 0), 999.99);
  const CValueVector3 standardColour = Colour(40, 50, 60), partly = Colour(1, 1, kMissing);
  ExpectRel(StrengthTristimulus(2, standardColour, Colour(40, 50, 20), 0, 0), 300.0);
  EXPECT_TRUE(IsMissing(StrengthTristimulus(3, standardColour, partly, 0, 0)));
  EXPECT_FALSE(IsMissing(StrengthTristimulus(0, standardColour, partly, 0, 0)));
  CValueVector3 empty;
  empty.RemoveAll();
  EXPECT_TRUE(IsMissing(StrengthTristimulus(3, empty, standardColour, 0, 0)));
}

// Standard 40 % / 80 % (K/S 0.45, 0.025), colour (40, 50, 60). Stronger batch: 2 % (K/S 24.01),
// for the base methods 100 % (exchanged divisor floored at 1e-7), for the tristimulus methods
// colour (3, 4, 5). Weaker: 100 % (batch sum floored at 1e-7), for the base methods 0.001 %
// (K/S 9999), for the tristimulus methods (100, 100, 100) against a standard of 0.002 each.
class EveryMethod : public ::testing::TestWithParam<int> {};

TEST_P(EveryMethod, EqualStrongerAndWeaker) {
  const int method = GetParam();
  const bool base = method >= 12, weighted = method >= 3 && method <= 6;
  const bool tristimulus = method >= 7 && method <= 10;
  const CStrengthSettings settings = Method(method, 600);
  const CKSData standard = TwoLevel(40.0, 80.0);
  const CValueVector3 colour = Colour(40.0, 50.0, 60.0);
  EXPECT_EQ(Calc(settings, false, standard, standard, colour, colour), 100.0);
  EXPECT_EQ(Calc(settings, true, standard, standard, colour, colour), 100.0);
  EXPECT_EQ(Calc(settings, false, standard, Flat(base ? 100.0 : 2.0), colour, Colour(3, 4, 5)),
            999.99);
  if (tristimulus) {
    ExpectRel(Calc(settings, false, standard, standard, Colour(0.002, 0.002, 0.002),
                   Colour(100, 100, 100)),
              0.002);
  } else if (weighted) {
    EXPECT_LT(Calc(settings, false, standard, Flat(100.0), colour, colour), 0.01);
  } else {
    EXPECT_EQ(Calc(settings, false, standard, Flat(base ? 0.001 : 100.0), colour, colour), 0.01);
  }
}

INSTANTIATE_TEST_SUITE_P(AllFifteen, EveryMethod, ::testing::Range(0, 15));

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
  AdjustToStrength(settings, spectrum, true, result, 100.0);  // absorbance log10 2 doubled
  ExpectRel(result[10], 25.0);
  const CKSData curve = TwoLevel(12.5, 73.0);
  settings = Method(0);
  settings.saundersonOn = 1, settings.k1 = 0.04, settings.k2 = 0.6, settings.targetPercent = 87.0;
  AdjustToStrength(settings, curve, false, result, 87.0);  // target equal to current
  for (std::size_t i = 0; i < CKSData::kLength; ++i) ExpectRel(result[i], curve[i]);
  AdjustToStrength(settings, curve, false, result, 0.0);  // nothing to scale from
  EXPECT_TRUE(IsMissing(result[0]) && IsMissing(result[39]));
}

TEST(StrengthSettings, ArchiveRoundTripKeepsEveryField) {
  CStrengthSettings a = Method(14, 520), loaded;
  a.targetPercent = 95.5, a.saundersonOn = 1, a.k1 = 0.04, a.k2 = 0.6;
  const std::string stored = test::Stored(a);
  EXPECT_EQ(stored.size(), 4u + 4u + 8u + 4u + 8u + 8u);
  test::Load(loaded, stored);
  EXPECT_TRUE(loaded == a);
}

}  // namespace
}  // namespace velquor
