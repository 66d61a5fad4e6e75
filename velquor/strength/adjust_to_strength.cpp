#include "velquor/strength/adjust_to_strength.h"

#include <algorithm>
#include <cstddef>

#include "velquor/frame/numeric.h"
#include "velquor/strength/absorbance.h"
#include "velquor/strength/constants.h"
#include "velquor/strength/saunderson.h"

namespace velquor {

void AdjustToStrength(const CStrengthSettings& settings, const CKSData& spectrum,
                      bool useAbsorbance, CKSData& result, double currentPercent) {
  const std::size_t points = std::min(spectrum.GetSize(), CKSData::kLength);
  if (result.GetSize() != points) result.SetSize(points);
  const double target = settings.targetPercent;
  if (IsMissing(target) || IsMissing(currentPercent) || IsZero(currentPercent)) {
    for (std::size_t i = 0; i < points; ++i) result[i] = kMissing;
    return;
  }
  const double k1 = settings.EffectiveK1();
  const double k2 = settings.EffectiveK2();
  for (std::size_t i = 0; i < points; ++i) {
    const double measured = spectrum[i];
    if (IsMissing(measured)) {
      result[i] = measured;
      continue;
    }
    const double internal = SaundersonToInternal(measured * kStrengthPercentToFraction, k1, k2) *
                            kStrengthFractionToPercent;
    const double adjusted =
        useAbsorbance ? ReflectanceFromAbsorbance(AbsorbanceFromReflectance(internal) * target /
                                                  currentPercent)
                      : ReflectanceFromKS(KSFromReflectance(internal) * target / currentPercent);
    result[i] = SaundersonToMeasured(adjusted * kStrengthPercentToFraction, k1, k2) *
                kStrengthFractionToPercent;
  }
}

}  // namespace velquor
