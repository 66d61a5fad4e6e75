#include "velquor/colorimetry/hunter_lab.h"

#include <cmath>

#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

void XYZToHunterLabWithWhite(const double* white, const CValueVector3& xyz, CValueVector3& lab) {
  if (IsMissingWhite(white) || AnyMissing(xyz, 3)) {
    FillMissing(lab, CValueVector3::kLength);
    return;
  }
  const double yr = xyz[1] / white[1];
  const double ka = kHunterKa * std::sqrt(kHunterKaWhite * white[0]);
  const double kb = kHunterKb * std::sqrt(kHunterKbWhite * white[2]);
  const double rootYr = std::sqrt(yr);
  const double a = ka * (xyz[0] / white[0] - yr) / rootYr;
  const double b = kb * (yr - xyz[2] / white[2]) / rootYr;
  EnsureSize(lab, CValueVector3::kLength);
  lab[0] = 100.0 * rootYr;
  lab[1] = a;
  lab[2] = b;
}

void HunterLabToXYZWithWhite(const double* white, const CValueVector3& lab, CValueVector3& xyz) {
  if (IsMissingWhite(white) || AnyMissing(lab, 3)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }
  const double l = lab[0], a = lab[1], b = lab[2];
  const double y = l * l * 0.0001 * white[1];
  const double yr = y / white[1];
  double x = 0.0;
  double z = 0.0;
  if (!IsZero(yr)) {
    x = (a / (kHunterKa * std::sqrt(kHunterKaWhite * white[0] / yr)) + yr) * white[0];
    z = (yr - b / (kHunterKb * std::sqrt(kHunterKbWhite * white[2] / yr))) * white[2];
  }
  EnsureSize(xyz, CValueVector3::kLength);
  xyz[0] = x;
  xyz[1] = y;
  xyz[2] = z;
}

}  // namespace

void XYZToHunterLabClassic(const CValueVector3& xyz, CValueVector3& lab) {
  if (AnyMissing(xyz, 3)) {
    FillMissing(lab, CValueVector3::kLength);
    return;
  }
  const double x = xyz[0], y = xyz[1], z = xyz[2];
  const double rootY = std::sqrt(y);
  EnsureSize(lab, CValueVector3::kLength);
  lab[0] = 10.0 * rootY;
  lab[1] = kHunterA * (kHunterXRatio * x - y) / rootY;
  lab[2] = kHunterB * (y - kHunterZRatio * z) / rootY;
}

void HunterLabToXYZClassic(const CValueVector3& lab, CValueVector3& xyz) {
  if (AnyMissing(lab, 3)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }
  const double scaledL = lab[0] * 0.1;
  const double a = lab[1], b = lab[2];
  const double y = scaledL * scaledL;
  EnsureSize(xyz, CValueVector3::kLength);
  xyz[0] = (scaledL * a / kHunterA + y) / kHunterXRatio;
  xyz[1] = y;
  xyz[2] = -(scaledL * b / kHunterB - y) / kHunterZRatio;
}

void XYZToHunterLab(const CValueVector3& white, const CValueVector3& xyz, CValueVector3& lab) {
  XYZToHunterLabWithWhite(WhiteData(white), xyz, lab);
}

void HunterLabToXYZ(const CValueVector3& white, const CValueVector3& lab, CValueVector3& xyz) {
  HunterLabToXYZWithWhite(WhiteData(white), lab, xyz);
}

void XYZToHunterLab(int illuminant, int observer, const CValueVector3& xyz, CValueVector3& lab) {
  if (UsesClassicHunterLab(illuminant, observer)) {
    XYZToHunterLabClassic(xyz, lab);
  } else {
    XYZToHunterLabWithWhite(FindReferenceWhite(illuminant, observer), xyz, lab);
  }
}

void HunterLabToXYZ(int illuminant, int observer, const CValueVector3& lab, CValueVector3& xyz) {
  if (UsesClassicHunterLab(illuminant, observer)) {
    HunterLabToXYZClassic(lab, xyz);
  } else {
    HunterLabToXYZWithWhite(FindReferenceWhite(illuminant, observer), lab, xyz);
  }
}

}  // namespace velquor
