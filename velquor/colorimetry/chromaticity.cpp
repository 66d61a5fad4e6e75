#include "velquor/colorimetry/chromaticity.h"

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/frame/numeric.h"

namespace velquor {

void XYZToChromaticity(const CValueVector3& xyz, double& x, double& y) {
  if (IsMissingXYZ(xyz)) {
    x = y = kMissing;
    return;
  }
  if (IsZero(xyz[0] + xyz[1] + xyz[2])) {
    x = y = kMissing;
    return;
  }
  TripleToChromaticity(xyz.GetData(), x, y);
}

void TripleToChromaticity(const double* xyz, double& x, double& y) {
  const double sum = xyz[0] + xyz[1] + xyz[2];
  x = xyz[0] / sum;
  y = xyz[1] / sum;
}

}  // namespace velquor
