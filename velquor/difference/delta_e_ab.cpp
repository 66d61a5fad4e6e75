#include "velquor/difference/delta_e_ab.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"

namespace velquor {

double SignHueDifference(double magnitude, double aStandard, double bStandard, double aTrial,
                         double bTrial) {
  return bStandard * aTrial - aStandard * bTrial > 0.0 ? -magnitude : magnitude;
}

void ComputeDeltaEab(const CValueVector5& standard, const CValueVector5& trial,
                     CColorVector7& result) {
  if (!HasElements(standard, 4) || !HasElements(trial, 4) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double dL = trial[0] - standard[0];
  const double da = trial[1] - standard[1];
  const double db = trial[2] - standard[2];
  const double dC = trial[3] - standard[3];
  const double dE = std::sqrt(dL * dL + da * da + db * db);
  // The hue difference is what remains of dE^2 once dL and dC are taken out; rounding can
  // leave a tiny negative remainder, which counts as no hue difference.
  const double q = dE * dE - dL * dL - dC * dC;
  const double dH = q > 0.0 ? std::sqrt(q) : 0.0;

  result[0] = dL;
  result[1] = da;
  result[2] = db;
  result[3] = dL;
  result[4] = dC;
  result[5] = SignHueDifference(dH, standard[1], standard[2], trial[1], trial[2]);
  result[6] = dE;
}

}  // namespace velquor
