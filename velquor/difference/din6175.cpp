#include "velquor/difference/din6175.h"

#include <algorithm>
#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

void ApplyDin6175Weighting(const CValueVector5& standard, double gL, double gC, double gH, double p,
                           CColorVector7& result) {
  if (!HasElements(standard, CValueVector5::kLength) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double rootL = std::sqrt(standard[0]);
  const double chroma = standard[3];
  const double hue = standard[4];
  const double sl = kDinSlRoot * rootL + kDinSlParameter / p;
  const double tL = result[0] / (gL * sl);

  double t1, t2;
  if (chroma < kDinChromaHigh && (chroma < kDinChromaLow || hue >= kDinHueBreak)) {
    t1 = result[1] / (gC * kDinMinimumWeight);
    t2 = result[2] / (gH * kDinMinimumWeight);
  } else {
    const double rootC = std::sqrt(chroma);
    const double sc = std::max(kDinScChroma * rootC - kDinScLightness * rootL + kDinScParameter / p,
                               kDinMinimumWeight);
    const double sh = std::max(
        kDinShChroma * rootC + kDinShOffset - kDinShLightness * rootL + kDinShParameter / p,
        kDinMinimumWeight);
    t1 = result[4] / (gC * sc);
    t2 = result[5] / (gH * sh);
  }
  result[6] = std::sqrt(tL * tL + t1 * t1 + t2 * t2);
}

}  // namespace velquor
