// Grey-scale step codes: every threshold of both ISO 105 step tables from both sides, the
// values outside the scale, and the display text.
#include "velquor/indices/step_code.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace velquor {
namespace {

// The codes of positions 0 to 8 and of a value below every threshold.
constexpr std::array<int, 10> kCodesByPosition = {1, 12, 2, 23, 3, 34, 4, 45, 5, 6};

struct StepTable {
  const char* name;
  std::span<const double, kStepThresholdCount> library;
  // The thresholds as published: ISO 105-A04 on 5 - grade, ISO 105-A05 on dE_F (table 1).
  std::array<double, kStepThresholdCount> published;
};

const StepTable kTables[] = {
    {"A04", kStainStepThresholdsA04, {3.75, 3.26, 2.76, 2.26, 1.76, 1.26, 0.76, 0.26, 0.0}},
    {"A05", kGreyScaleStepThresholdsA05, {11.6, 8.2, 5.8, 4.1, 2.95, 2.1, 1.25, 0.4, 0.0}},
};

TEST(StepCodeFromValue, EveryThresholdFromBothSides) {
  for (const StepTable& table : kTables) {
    for (std::size_t k = 0; k < kStepThresholdCount; ++k) {
      const double threshold = table.published[k];
      const double below = std::nextafter(threshold, -1.0);
      // On the threshold the value reaches it (>=): the step of position k.
      EXPECT_EQ(StepCodeFromValue(threshold, table.library), kCodesByPosition[k])
          << table.name << " position " << k << " at " << threshold;
      // One ulp below, it falls to the next finer step.
      EXPECT_EQ(StepCodeFromValue(below, table.library), kCodesByPosition[k + 1])
          << table.name << " position " << k << " just below " << threshold;
    }
  }
}

TEST(StepCodeFromValue, OutsideTheScale) {
  for (const StepTable& table : kTables) {
    EXPECT_EQ(StepCodeFromValue(20.0, table.library), 1) << table.name;
    EXPECT_EQ(StepCodeFromValue(1e6, table.library), 1) << table.name;
    EXPECT_EQ(StepCodeFromValue(-1.0, table.library), kStepCodeBelowScale) << table.name;
    EXPECT_EQ(StepCodeFromValue(std::numeric_limits<double>::quiet_NaN(), table.library),
              kStepCodeBelowScale)
        << table.name;
  }
}

TEST(FormatStepCode, Texts) {
  const struct {
    long code;
    const char* text;
  } cases[] = {
      {1, " 1 "},  {12, "1-2"}, {2, " 2 "}, {23, "2-3"}, {3, " 3 "},  {34, "3-4"}, {4, " 4 "},
      {45, "4-5"}, {5, " 5 "},  {6, " 6 "}, {9, " 9 "},  {10, "1-0"}, {0, " 0 "},  {-1, " -1 "},
  };
  std::string text = "previous content";
  for (const auto& c : cases) {
    FormatStepCode(c.code, text);
    EXPECT_EQ(text, c.text) << c.code;
  }
}

}  // namespace
}  // namespace velquor
