#include "velquor/data/value_vectors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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
  struct Case {
    const char* field;
    double expected;
  };
  const Case cases[] = {
      {" 12.34", 12.34},
      {"-1.5 ", kMissing},  // ends in a blank
      {"-1.5", -1.5},
      {"1,234", 1234.0},
      {"12-", kMissing},  // negative-marked field
      {"    ", kMissing},
      {"+7", 7.0},
      {"007.50", 7.5},
      // The sign resets the divisor, dropping the scaling of "5"; "2" still counts as a decimal.
      {"1.5-2", -15.2},
      {"-.5", -0.5},
      {"abc", 0.0},
      {"1.2.3", 1.23},  // a second point changes nothing
      {"5 kg", 5.0},
  };
  for (const Case& c : cases) {
    EXPECT_DOUBLE_EQ(ParseFixedField(c.field), c.expected) << '"' << c.field << '"';
  }
  EXPECT_EQ(ParseFixedField("", 0), kMissing);
  EXPECT_EQ(ParseFixedField(nullptr, 4), kMissing);
  // Only the given length is read: "12.3" of "12.34".
  EXPECT_DOUBLE_EQ(ParseFixedField("12.34", 4), 12.3);
}

}  // namespace
}  // namespace velquor
