#include "velquor/data/ks_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/frame/archive.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ConvertReflPoint, MatchesHandValuesOnEveryBranch) {
  for (const auto& row : test::LoadReferenceTable("reference/data_reflectance_conversions.csv")) {
    const double expected = row.Number("expected");
    const CReflMode mode{row.Integer("kind"), row.Integer("density")};
    const double got = ConvertReflPoint(row.Number("reflectance"), mode);
    if (std::isnan(expected)) {
      EXPECT_TRUE(std::isnan(got)) << row.Where();
    } else if (std::isinf(expected)) {
      EXPECT_EQ(got, expected) << row.Where();
    } else {
      EXPECT_NEAR(got, expected, test::kExactFormula * std::max(1.0, std::abs(expected)))
          << row.Where();
    }
  }
  // Density back to reflectance, with no limit on D.
  EXPECT_DOUBLE_EQ(DensityToReflectance(0.0), 100.0);
  EXPECT_DOUBLE_EQ(DensityToReflectance(-1.0), 1000.0);
  for (double r : {0.01, 3.7, 42.0, 100.0}) {
    EXPECT_NEAR(DensityToReflectance(ConvertReflPoint(r, CReflMode{1, 1})), r,
                test::kExactFormula * r);
  }
}

CKSData Ramp(double start) {
  CKSData curve;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) curve[i] = start + static_cast<double>(i);
  return curve;
}

TEST(SpectralArithmetic, MissingPointsPropagateThroughBinaryOperations) {
  for (int op = 0; op < 4; ++op) {
    CKSData a = Ramp(1.0);
    CKSData b = Ramp(2.0);
    a[0] = kMissing;
    b[5] = 1.0000001e-05;  // noisy marker still counts
    switch (op) {
      case 0: a.Add(b); break;
      case 1: a.Subtract(b); break;
      case 2: a.Multiply(b); break;
      case 3: a.Divide(b); break;
    }
    EXPECT_EQ(a[0], kMissing) << op;
    EXPECT_EQ(a[5], kMissing) << op;  // set to exactly the marker
    const double expected[] = {7.0 + 8.0, 7.0 - 8.0, 7.0 * 8.0, 7.0 / 8.0};
    EXPECT_EQ(a[6], expected[op]) << op;
  }
  // Construction fills with 0 or, for an empty spectrum, the missing marker.
  CKSData one;
  EXPECT_EQ(one.GetSize(), 40u);
  EXPECT_EQ(one[39], 0.0);
  one.Fill(1.0);
  one.Add(CEmptySpectrum());
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(one[i], 1e-05) << i;
}

TEST(SpectralArithmetic, ScalarOperationsLeaveMissingAlone) {
  CKSData curve = Ramp(1.0);
  curve[3] = kMissing;
  curve.Scale(2.0);
  EXPECT_EQ(curve[3], 1e-05);
  EXPECT_EQ(curve[0], 2.0);
  EXPECT_EQ(curve[39], 80.0);
  curve.DivideBy(4.0);
  EXPECT_EQ(curve[3], 1e-05);
  EXPECT_EQ(curve[39], 20.0);
  curve.DivideBy(0.0);
  EXPECT_TRUE(std::isinf(curve[0]));
  EXPECT_EQ(curve[3], 1e-05);
  CKSData zero;  // a zero point divides to the floating result too
  curve.Divide(zero);
  EXPECT_TRUE(std::isinf(curve[0]));
}

TEST(SpectralArithmetic, ClampTestsLowFirstThenHigh) {
  CKSData curve = Ramp(-5.0);  // -5 .. 34
  curve[1] = kNaN;
  curve.Clamp(0.0, 20.0);
  EXPECT_EQ(curve[0], 0.0);
  EXPECT_TRUE(std::isnan(curve[1]));  // NaN compares false both ways
  EXPECT_EQ(curve[10], 5.0);
  EXPECT_EQ(curve[39], 20.0);
  CKSData inverted = Ramp(0.0);
  inverted.Clamp(10.0, 5.0);  // low wins for values below it
  EXPECT_EQ(inverted[0], 10.0);
  EXPECT_EQ(inverted[20], 5.0);
}

std::string Store(CValueArray& array) {
  std::ostringstream out;
  CArchive archive(out);
  array.Serialize(archive);
  return out.str();
}

TEST(SpectralArchive, RoundTripAndLongerStoredCurves) {
  CKSData curve = Ramp(0.5);
  curve[7] = kMissing;
  const std::string bytes = Store(curve);
  ASSERT_EQ(bytes.size(), 2u + 40 * 8);
  EXPECT_EQ(bytes.substr(0, 2), std::string("\x28\x00", 2));

  CKSData loaded;
  loaded.Fill(-1.0);
  std::istringstream in(bytes);
  CArchive archive(in);
  loaded.Serialize(archive);
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(loaded[i], curve[i]);

  // 41 stored values load as 41, but operations still touch only the first 40.
  CValueArray longer;
  longer.SetSize(41);
  for (std::size_t i = 0; i < 41; ++i) longer[i] = 10.0;
  std::istringstream in41(Store(longer));
  CArchive archive41(in41);
  loaded.Serialize(archive41);
  ASSERT_EQ(loaded.GetSize(), 41u);
  loaded.Scale(2.0);
  loaded.Fill(3.0);
  EXPECT_EQ(loaded[39], 3.0);
  EXPECT_EQ(loaded[40], 10.0);
}

TEST(SpectralArchive, ShortStoredCurveIsWalkedOnlyOverItsPoints) {
  CValueArray three;
  three.SetSize(3);
  std::istringstream in(Store(three));
  CArchive archive(in);
  CKSData curve;
  curve.Serialize(archive);
  ASSERT_EQ(curve.GetSize(), 3u);
  curve.Fill(1.0);
  curve.Add(CKSData());
  EXPECT_EQ(curve[2], 1.0);
}

}  // namespace
}  // namespace velquor
