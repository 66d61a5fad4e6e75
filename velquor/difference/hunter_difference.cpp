#include "velquor/difference/hunter_difference.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

void ComputeHunterDifference(const CValueArray& standard, const CValueArray& trial,
                             CColorVector7& result) {
  if (!HasElements(standard, 3) || !HasElements(trial, 3) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double dL = trial[0] - standard[0];
  const double da = trial[1] - standard[1];
  const double db = trial[2] - standard[2];
  result[0] = dL;
  result[1] = da;
  result[2] = db;
  result[3] = kMissing;
  result[4] = kMissing;
  result[5] = kMissing;
  result[6] = std::sqrt(dL * dL + da * da + db * db);
}

}  // namespace velquor
