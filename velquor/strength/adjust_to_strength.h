// A reflectance curve rescaled from its present colour strength to a target strength: the
// absorption (K/S or optical density) of every point is multiplied by target / current, which
// is what adding or removing colorant does under the Kubelka-Munk single-constant model and
// Beer-Lambert's law respectively.
#pragma once

#include "velquor/data/ks_data.h"
#include "velquor/strength/strength_settings.h"

namespace velquor {

// Writes into `result` the curve `spectrum` (reflectance in percent) rescaled from strength
// `currentPercent` to settings.targetPercent:
//  1. each point is prepared as for the strength methods (Saunderson to internal reflectance
//     with the settings' k1, k2 when the correction is on, in percent);
//  2. R' = ReflectanceFromKS(KSFromReflectance(R) x target / current), or with
//     `useAbsorbance` R' = ReflectanceFromAbsorbance(AbsorbanceFromReflectance(R) x target /
//     current);
//  3. R' is taken back with SaundersonToMeasured (as a fraction) and stored in percent.
// Missing points stay missing. With the correction off and target = current the curve comes
// back unchanged up to rounding (points below 0.01 % excepted: their K/S is the black value
// 9999). A missing target or current strength, or a current strength of zero, leaves every
// point of `result` missing. `result` is sized to the points of `spectrum` (at most 40) and
// may be `spectrum` itself.
void AdjustToStrength(const CStrengthSettings& settings, const CKSData& spectrum,
                      bool useAbsorbance, CKSData& result, double currentPercent);

}  // namespace velquor
