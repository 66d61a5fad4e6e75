#include "velquor/difference/angle_difference.h"

#include <cmath>

#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

void ComputeAngleDependentDifference(const CValueVector5& reference, CColorVector7& difference,
                                     double angle) {
  if (!HasElements(reference, CValueVector5::kLength) ||
      !HasElements(difference, CColorVector7::kLength)) {
    return;
  }
  if (angle == 0.0) angle = kEffectDefaultAngle;

  const double lightness = reference[0];
  const double q = reference[3];
  const double h = reference[4];
  const double s = std::sqrt(lightness);
  const double sL = kEffectSlAngle / angle + kEffectSlRoot * s;

  double s1, s2, d1, d2;
  const bool nearNeutral =
      h < kEffectNeutralLow || (lightness > kEffectNeutralLightness && h < kEffectNeutralHigh);
  if (nearNeutral) {
    s1 = kEffectNeutralWeight;
    s2 = kEffectNeutralWeight;
    d1 = difference[1];
    d2 = difference[2];
  } else {
    const double rootQ = std::sqrt(q);
    s1 = kEffectS1Angle / angle + kEffectS1Chroma * rootQ - kEffectS1Lightness * s;
    s2 = kEffectS2Angle / angle + (kEffectS2Chroma * rootQ + kEffectS2Offset) -
         kEffectS2Lightness * s;
    // An S_1 landing exactly on the near-neutral weight switches to the rectangular
    // differences while keeping the chromatic weights: the library's behaviour, kept.
    if (s1 == kEffectNeutralWeight) {
      d1 = difference[1];
      d2 = difference[2];
    } else {
      d1 = difference[4];
      d2 = difference[5];
    }
  }
  const double t1 = d1 / s1;
  const double tL = difference[0] / sL;
  const double t2 = d2 / s2;
  difference[6] = std::sqrt(t1 * t1 + tL * tL + t2 * t2);
}

}  // namespace velquor
