#include "velquor/data/value_vectors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "reference_table.h"
#include "velquor/data/fixed_field.h"
#include "velquor/frame/constants.h"

namespace velquor {
namespace {

TEST(ColorVectors, LengthsAndZeroFill) {
  EXPECT_EQ(CColorVector7().GetSize(), 7u);
  EXPECT_EQ(CValueVector5().GetSize(), 5u);
  EXPECT_EQ(CValueVector3().GetSize(), 3u);
  const CColorVector7 v;
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(v[i], 0.0);
}

TEST(ColorVector7, ClampRangeLimitsBothEndsAndNaN) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const double in[7] = {999.99, 1000.0, -999.99, -1000.0, nan, 999.98, -inf};
  const double out[7] = {999.99, 999.99, -999.99, -999.99, -999.99, 999.98, -999.99};
  CColorVector7 v;
  for (std::size_t i = 0; i < 7; ++i) v[i] = in[i];
  v.ClampRange();
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(v[i], out[i]) << i;
  v[0] = std::nextafter(-999.99, 0.0);
  v[1] = std::nextafter(999.99, 0.0);
  v[2] = inf;
  v.ClampRange();
  EXPECT_EQ(v[0], std::nextafter(-999.99, 0.0));
  EXPECT_EQ(v[1], std::nextafter(999.99, 0.0));
  EXPECT_EQ(v[2], 999.99);
}

TEST(ParseFixedField, Examples) {
  for (const auto& row : test::LoadReferenceTable("reference/data_fixed_fields.csv")) {
    const double expected = row.Text("expected") == "missing" ? kMissing : row.Number("expected");
    EXPECT_DOUBLE_EQ(ParseFixedField(row.Text("field").c_str()), expected) << row.Where();
  }
  EXPECT_EQ(ParseFixedField("", 0), kMissing);
  EXPECT_EQ(ParseFixedField(nullptr, 4), kMissing);
  // Only the given length is read: "12.3" of "12.34".
  EXPECT_DOUBLE_EQ(ParseFixedField("12.34", 4), 12.3);
}

}  // namespace
}  // namespace velquor
