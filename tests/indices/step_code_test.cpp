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

TEST(StepCode, EveryThresholdFromBothSidesOutsideTheScaleAndTexts) {
  // The codes of positions 0 to 8 and of a value below every threshold; the thresholds as
  // published: ISO 105-A04 on 5 - grade, ISO 105-A05 on dE_F (table 1).
  constexpr std::array<int, 10> kCodes = {1, 12, 2, 23, 3, 34, 4, 45, 5, 6};
  const std::pair<std::span<const double, kStepThresholdCount>, std::array<double, 9>> tables[] = {
      {kStainStepThresholdsA04, {3.75, 3.26, 2.76, 2.26, 1.76, 1.26, 0.76, 0.26, 0.0}},
      {kGreyScaleStepThresholdsA05, {11.6, 8.2, 5.8, 4.1, 2.95, 2.1, 1.25, 0.4, 0.0}}};
  for (const auto& [library, published] : tables) {
    for (std::size_t k = 0; k < kStepThresholdCount; ++k) {
      EXPECT_EQ(StepCodeFromValue(published[k], library), kCodes[k]) << published[k];
      EXPECT_EQ(StepCodeFromValue(std::nextafter(published[k], -1.0), library), kCodes[k + 1])
          << "just below " << published[k];
    }
    EXPECT_EQ(StepCodeFromValue(1e6, library), 1);
    EXPECT_EQ(StepCodeFromValue(std::numeric_limits<double>::quiet_NaN(), library),
              kStepCodeBelowScale);
  }
  // The display text: two digits as a range, one centred.
  const std::pair<long, const char*> cases[] = {
      {1, " 1 "}, {12, "1-2"}, {45, "4-5"}, {5, " 5 "}, {9, " 9 "}, {10, "1-0"}, {0, " 0 "},
      {-1, " -1 "}};
  std::string text = "previous content";
  for (const auto& [code, expected] : cases) {
    FormatStepCode(code, text);
    EXPECT_EQ(text, expected) << code;
  }
}

}  // namespace
}  // namespace velquor
