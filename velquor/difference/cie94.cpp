#include "velquor/difference/cie94.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

void ApplyCie94Weighting(const CValueVector5& standard, double kL, double kC, double kH,
                         CColorVector7& result) {
  if (!HasElements(standard, 4) || !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double chroma = standard[3];
  const double sc = 1.0 + kCie94Chroma * chroma;
  const double sh = 1.0 + kCie94Hue * chroma;
  const double wL = result[3] / kL;  // SL = 1
  const double wC = result[4] / (kC * sc);
  const double wH = result[5] / (kH * sh);
  result[3] = wL;
  result[4] = wC;
  result[5] = wH;
  result[6] = std::sqrt(wL * wL + wC * wC + wH * wH);
}

}  // namespace velquor
