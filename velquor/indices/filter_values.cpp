#include "velquor/indices/filter_values.h"

#include "velquor/frame/numeric.h"
#include "velquor/indices/constants.h"
#include "velquor/indices/tristimulus_index_support.h"

namespace velquor {

double FilterValueRz(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  return 100.0 * xyz[2] / white[2];
}

double FilterValueRx(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double rz = FilterValueRz(illuminant, observer, xyz);
  return (100.0 * xyz[0] / white[0] - kFilterBlueShare * rz) * kFilterAmberScale;
}

}  // namespace velquor
