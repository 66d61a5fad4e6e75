#include "velquor/indices/step_code.h"

#include <cstdio>

namespace velquor {

int StepCodeFromValue(double value, std::span<const double, kStepThresholdCount> thresholds) {
  for (std::size_t k = 0; k < kStepThresholdCount; ++k) {
    if (value >= thresholds[k]) {
      const int h = static_cast<int>((k + 1) / 2);
      return (k % 2 == 1) ? 11 * h + 1 : h + 1;
    }
  }
  return kStepCodeBelowScale;
}

void FormatStepCode(long code, std::string& text) {
  char buffer[48];
  if (code > 9)
    std::snprintf(buffer, sizeof buffer, "%ld-%ld", code / 10, code % 10);
  else
    std::snprintf(buffer, sizeof buffer, " %ld ", code);
  text = buffer;
}

}  // namespace velquor
