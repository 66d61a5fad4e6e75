#include "velquor/data/ks_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <utility>
#include <vector>

#include "archive_test_support.h"
#include "reference_table.h"
#include "tolerances.h"
#include "velquor/data/fixed_field.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/archive.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

TEST(ConvertReflPoint, MatchesHandValuesOnEveryBranch) {
  for (const auto& row : test::LoadReferenceTable("reference/data_reflectance_conversions.csv")) {
    const double expected = row.Number("expected");
    const double got = ConvertReflPoint(row.Number("reflectance"),
                                        CReflMode{row.Integer("kind"), row.Integer("density")});
    EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected)) ||
                std::abs(got - expected) <= test::kExactFormula * std::max(1.0, std::abs(expected)))
        << row.Where() << ": got " << got;
  }
  // Density back to reflectance, with no limit on D.
  EXPECT_DOUBLE_EQ(DensityToReflectance(-1.0), 1000.0);
}

CKSData Ramp(double start) {
  CKSData curve;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) curve[i] = start + static_cast<double>(i);
  return curve;
}

TEST(SpectralArithmetic, MissingPointsPropagateThroughBinaryOperations) {
  using Op = void (CKSData::*)(const CKSData&);
  // Point 6 of the ramps: 7 and 8.
  const std::pair<Op, double> ops[] = {{&CKSData::Add, 15.0}, {&CKSData::Subtract, -1.0},
                                       {&CKSData::Multiply, 56.0}, {&CKSData::Divide, 0.875}};
  for (const auto& [op, expected] : ops) {
    CKSData a = Ramp(1.0), b = Ramp(2.0);
    a[0] = kMissing;
    b[5] = 1.0000001e-05;  // a noisy marker still counts, and becomes exactly the marker
    (a.*op)(b);
    EXPECT_TRUE(a[0] == kMissing && a[5] == kMissing) << expected;
    EXPECT_EQ(a[6], expected);
  }
  // Construction fills with 0 or, for an empty spectrum, the missing marker.
  CKSData one;
  EXPECT_TRUE(one.GetSize() == 40u && one[39] == 0.0);
  one.Fill(1.0);
  one.Add(CEmptySpectrum());
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(one[i], 1e-05) << i;
}

TEST(SpectralArithmetic, ScalarOperationsLeaveMissingAloneAndClampTestsLowFirst) {
  CKSData curve = Ramp(1.0);
  curve[3] = kMissing;
  curve.Scale(2.0);
  EXPECT_EQ(curve[39], 80.0);
  curve.DivideBy(4.0);
  EXPECT_TRUE(curve[0] == 0.5 && curve[39] == 20.0 && curve[3] == 1e-05);
  curve = Ramp(-5.0);  // -5 .. 34
  curve[1] = std::numeric_limits<double>::quiet_NaN();
  curve.Clamp(0.0, 20.0);
  EXPECT_TRUE(std::isnan(curve[1]));  // NaN compares false both ways
  EXPECT_EQ((std::vector{curve[0], curve[10], curve[39]}), (std::vector{0.0, 5.0, 20.0}));
  curve = Ramp(0.0);
  curve.Clamp(10.0, 5.0);  // low wins for values below it
  EXPECT_TRUE(curve[0] == 10.0 && curve[20] == 5.0);
}

using test::Load;
using test::Stored;

TEST(SpectralArchive, RoundTripAndStoredCurvesOfOtherLengths) {
  CKSData curve = Ramp(0.5), loaded;
  curve[7] = kMissing;
  const std::string bytes = Stored(curve);
  EXPECT_EQ(bytes.substr(0, 2) + std::to_string(bytes.size()), std::string("\x28\x00", 2) + "322");
  Load(loaded, bytes);
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(loaded[i], curve[i]);
  // 41 stored values load as 41, but operations still touch only the first 40; 3 load as 3.
  CValueArray other;
  other.SetSize(41);
  for (std::size_t i = 0; i < 41; ++i) other[i] = 10.0;
  Load(loaded, Stored(other));
  ASSERT_EQ(loaded.GetSize(), 41u);
  loaded.Scale(2.0);
  loaded.Fill(3.0);
  EXPECT_TRUE(loaded[39] == 3.0 && loaded[40] == 10.0);
  other.SetSize(3);
  Load(loaded, Stored(other));
  ASSERT_EQ(loaded.GetSize(), 3u);
  loaded.Add(CKSData());
  EXPECT_EQ(loaded[2], 10.0);
}

TEST(ColorVector7, ZeroFilledAndClampRangeLimitsBothEndsAndNaN) {
  EXPECT_EQ(CValueVector5().GetSize() * 10 + CValueVector3().GetSize(), 53u);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const double in[7] = {999.99, 1000.0, -999.99, -1000.0, nan, std::nextafter(999.99, 0.0), -inf};
  const double out[7] = {999.99, 999.99, -999.99, -999.99, -999.99, in[5], -999.99};
  CColorVector7 v;
  ASSERT_EQ(v.GetSize(), 7u);
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(v[i], 0.0);
    v[i] = in[i];
  }
  v.ClampRange();
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(v[i], out[i]) << i;
}

TEST(ParseFixedField, Examples) {
  for (const auto& row : test::LoadReferenceTable("reference/data_fixed_fields.csv")) {
    const double expected = row.Text("expected") == "missing" ? kMissing : row.Number("expected");
    EXPECT_DOUBLE_EQ(ParseFixedField(row.Text("field").c_str()), expected) << row.Where();
  }
  EXPECT_EQ(ParseFixedField("", 0), kMissing);
  EXPECT_EQ(ParseFixedField(nullptr, 4), kMissing);
  EXPECT_DOUBLE_EQ(ParseFixedField("12.34", 4), 12.3);  // only the given length is read
}

}  // namespace
}  // namespace velquor
