#include "velquor/colorimetry/chroma_hue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "colour_space_references.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::ScopedHueUnit;

constexpr double kPi = std::numbers::pi;
// The library's rounded full turn; angles reached through "atan2 + full turn" carry its
// 4.1e-13 shortfall from 2 pi, which the expectations below spell out.
constexpr double kTurn = 6.28318530718;
constexpr double kEps = 2.220446049250313e-16;

struct PolarCase {
  const char* what;
  double a, b;
  double chroma, hue, tolerance;
};

// Radian mode. On-axis points take the rounded turn constants exactly; an implementation that
// falls through to atan2 misses them by 1e-13 to 3e-13, far outside 1e-15.
const PolarCase kRadianCases[] = {
    {"origin", 0, 0, 0, 0, 0},
    {"+b axis", 0, 2, 2, 1.570796326795, 0},
    {"-b axis", 0, -1, 1, 4.712388980385, 0},
    {"-a axis", -1, 0, 1, 3.14159265359, 0},
    {"+a axis", 3, 0, 3, 0, 0},
    {"a below zero tolerance", 2e-16, -1, 1, 4.712388980385, 0},
    {"b below zero tolerance", -1, 2e-16, 1, 3.14159265359, 0},
    // |a| equal to the tolerance is not zero (strict comparison): atan2 plus the rounded turn.
    {"a at zero tolerance", kEps, -1, 1, kTurn - kPi / 2 + kEps, 4e-15},
    {"3-4-5, first quadrant", 3, 4, 5, 0.9272952180016122, 1e-15},  // arctan(4/3)
    {"third quadrant", -1, -1, std::sqrt(2.0), kTurn - 3 * kPi / 4, 4e-15},
    // No wrap in radian mode: a hair under the rounded full turn stays there.
    {"just below +a axis", 1, -1e-9, 1, kTurn - 1e-9, 4e-15},
};

// Degree mode: 57.29577951307855 = 360 / 6.28318530718, so the rounded quarter turns map to
// 90, 180, 270 to within the rounding of the factor.
const PolarCase kDegreeCases[] = {
    {"origin", 0, 0, 0, 0, 0},
    {"+b axis", 0, 1, 1, 90, 1e-11},
    {"-a axis", -1, 0, 1, 180, 1e-11},
    {"-b axis", 0, -1, 1, 270, 1e-11},
    {"first quadrant", 1, 1, std::sqrt(2.0), 45, 1e-9},
    {"third quadrant", -1, -1, std::sqrt(2.0), 225, 1e-9},
    // 360 - h < 0.005 wraps to 0 ...
    {"0.0049 deg under a full turn", 1, -std::tan(0.0049 * kPi / 180),
     1 / std::cos(0.0049 * kPi / 180), 0, 0},
    // ... and 360 - h > 0.005 is kept (360 - atan(1e-4) in degrees = 359.99427042...).
    {"0.0051 deg under a full turn", 1, -std::tan(0.0051 * kPi / 180),
     1 / std::cos(0.0051 * kPi / 180), 359.9949, 1e-9},
};

void CheckCases(const PolarCase* begin, const PolarCase* end) {
  for (const PolarCase* c = begin; c != end; ++c) {
    SCOPED_TRACE(c->what);
    double chroma = -1, hue = -1;
    ComputeChromaHue(c->a, c->b, chroma, hue);
    EXPECT_NEAR(chroma, c->chroma, 1e-15 * (1 + c->chroma));
    EXPECT_NEAR(hue, c->hue, c->tolerance);
  }
}

TEST(ComputeChromaHue, RadianAndDegreeModes) {
  {
    ScopedHueUnit radians(0);
    CheckCases(std::begin(kRadianCases), std::end(kRadianCases));
  }
  ScopedHueUnit degrees(1);
  CheckCases(std::begin(kDegreeCases), std::end(kDegreeCases));
}

TEST(ComputeChromaHue, MissingCoordinateGivesMissingChromaAndHue) {
  for (const auto& [a, b] : {std::pair{kMissing, 1.0}, std::pair{1.0, kMissing}}) {
    double chroma = 0, hue = 0;
    ComputeChromaHue(a, b, chroma, hue);
    EXPECT_TRUE(IsMissing(chroma));
    EXPECT_TRUE(IsMissing(hue));
  }
}

TEST(ComputeChromaHue, RecordFormFillsChromaAndHueOnly) {
  ScopedHueUnit degrees(1);
  CValueVector5 record;
  record[0] = 42;
  record[1] = 0;
  record[2] = -3;
  ComputeChromaHue(record);
  EXPECT_EQ(record[0], 42);
  EXPECT_EQ(record[1], 0);
  EXPECT_EQ(record[2], -3);
  EXPECT_DOUBLE_EQ(record[3], 3);
  EXPECT_NEAR(record[4], 270, 1e-11);

  CValueVector5 shortRecord;
  shortRecord.SetSize(2);
  ComputeChromaHue(shortRecord);
  ASSERT_EQ(shortRecord.GetSize(), CValueVector5::kLength);
  EXPECT_TRUE(IsMissing(shortRecord[3]));
  EXPECT_TRUE(IsMissing(shortRecord[4]));
}

}  // namespace
}  // namespace velquor
