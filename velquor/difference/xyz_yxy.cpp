#include "velquor/difference/xyz_yxy.h"

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

double LimitDifference(double value) {
  constexpr double limit = CColorVector7::kLimit;
  if (value >= limit) return limit;
  if (!(value > -limit)) return -limit;
  return value;
}

void ApplyXyzYxyDifference(const CValueVector3& standard, const CValueVector3& trial,
                           CColorVector7& result) {
  if (!HasElements(standard, 3) || !HasElements(trial, 3) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  double xS, yS, xT, yT;
  XYZToChromaticity(standard, xS, yS);
  XYZToChromaticity(trial, xT, yT);
  for (int i = 0; i < 3; ++i) result[i] = kXyzScale * (trial[i] - standard[i]);
  result[3] = kMissing;
  result[4] = LimitDifference(kChromaticityScale * (xT - xS));
  result[5] = LimitDifference(kChromaticityScale * (yT - yS));
}

}  // namespace velquor
