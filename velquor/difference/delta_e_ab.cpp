#include "velquor/difference/delta_e_ab.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"

namespace velquor {

double SignHueDifference(double magnitude, double aStandard, double bStandard, double aTrial,
                         double bTrial) {
  return bStandard * aTrial - aStandard * bTrial > 0.0 ? -magnitude : magnitude;
}

LabDifference DeltaEab(const double* standard, const double* trial) {
  LabDifference d;
  d.dL = trial[0] - standard[0];
  d.da = trial[1] - standard[1];
  d.db = trial[2] - standard[2];
  d.dC = trial[3] - standard[3];
  d.dE = std::sqrt(d.dL * d.dL + d.da * d.da + d.db * d.db);
  // The hue difference is what remains of dE^2 once dL and dC are taken out; rounding can
  // leave a tiny negative remainder, which counts as no hue difference.
  const double q = d.dE * d.dE - d.dL * d.dL - d.dC * d.dC;
  d.dH = SignHueDifference(q > 0.0 ? std::sqrt(q) : 0.0, standard[1], standard[2], trial[1],
                           trial[2]);
  return d;
}

void ComputeDeltaEab(const CValueVector5& standard, const CValueVector5& trial,
                     CColorVector7& result) {
  if (!HasElements(standard, 4) || !HasElements(trial, 4) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const LabDifference d = DeltaEab(standard.GetData(), trial.GetData());
  result[0] = d.dL;
  result[1] = d.da;
  result[2] = d.db;
  result[3] = d.dL;
  result[4] = d.dC;
  result[5] = d.dH;
  result[6] = d.dE;
}

}  // namespace velquor
