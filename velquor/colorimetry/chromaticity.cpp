#include "velquor/colorimetry/chromaticity.h"

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/frame/numeric.h"

namespace velquor {

void XYZToChromaticity(const CValueVector3& xyz, double& x, double& y) {
  if (IsMissingXYZ(xyz)) {
    x = y = kMissing;
    return;
  }
  const double sum = xyz[0] + xyz[1] + xyz[2];
  if (IsZero(sum)) {
    x = y = kMissing;
    return;
  }
  x = xyz[0] / sum;
  y = xyz[1] / sum;
}

}  // namespace velquor
