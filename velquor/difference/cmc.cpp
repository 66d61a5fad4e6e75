#include "velquor/difference/cmc.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor {

void ApplyCmcWeighting(const CValueVector5& standard, double l, double c, CColorVector7& result) {
  if (!HasElements(standard, CValueVector5::kLength) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double lightness = standard[0];
  const double chroma = standard[3];
  const double hue = GetHueInDegrees() != 0 ? standard[4] : RadToDeg(standard[4]);

  const double sl = lightness >= kCmcLightnessBreak
                        ? kCmcSlScale * lightness / (1.0 + kCmcSlDenominator * lightness)
                        : kCmcSlDark;
  const double sc = kCmcScScale * chroma / (1.0 + kCmcScDenominator * chroma) + kCmcScOffset;
  const double chroma4 = chroma * chroma * chroma * chroma;
  const double f = std::sqrt(chroma4 / (chroma4 + kCmcF));
  const double t =
      hue >= kCmcHueLow && hue <= kCmcHueHigh
          ? kCmcTInside +
                std::abs(kCmcTInsideAmplitude * std::cos(DegToRad(hue + kCmcTInsidePhase)))
          : kCmcTOutside +
                std::abs(kCmcTOutsideAmplitude * std::cos(DegToRad(hue + kCmcTOutsidePhase)));
  const double sh = sc * (f * t + 1.0 - f);

  const double wL = result[3] / (l * sl);
  const double wC = result[4] / (c * sc);
  const double wH = result[5] / sh;
  result[3] = wL;
  result[4] = wC;
  result[5] = wH;
  result[6] = std::sqrt(wL * wL + wC * wC + wH * wH);
}

}  // namespace velquor
