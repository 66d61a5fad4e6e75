#include "velquor/colorimetry/lab.h"

#include <cmath>

#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/cube_root.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

// The CIE cube-root function with the library's breakpoint and slope.
double LabF(double t) {
  return t <= kLabEpsilon ? kLabSlope * t + kLabOffset : CubeRoot(t);
}

// Its inverse with the library's six-digit offset.
double LabFInverse(double f) {
  return f <= kLabFThreshold ? (f - kLabInverseOffset) * kLabInverseSlope : f * f * f;
}

// Derivative of LabF at t times d / Xn.
double LabFDifferential(double t, double d, double whiteComponent) {
  if (t <= kLabEpsilon) return kLabSlope * d / whiteComponent;
  return kOneThird * std::pow(t, kMinusTwoThirds) * d / whiteComponent;
}

void XYZToLabRecord(const double* white, const CValueVector3& xyz, CValueVector5& lab) {
  if (IsMissingWhite(white) || AnyMissing(xyz, 3)) {
    FillMissing(lab, CValueVector5::kLength);
    return;
  }
  EnsureSize(lab, CValueVector5::kLength);
  XYZToLab(white, xyz.GetData(), lab.GetData());
}

void LabToXYZRecord(const double* white, double lStar, double aStar, double bStar,
                    CValueVector3& xyz) {
  if (IsMissingWhite(white) || IsMissing(lStar) || IsMissing(aStar) || IsMissing(bStar)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }
  EnsureSize(xyz, CValueVector3::kLength);
  const double fY = (lStar + 16.0) * kLabLightnessScale;
  const double fX = fY + aStar * 0.002;
  const double fZ = fY - bStar * 0.005;
  xyz[0] = LabFInverse(fX) * white[0];
  xyz[1] = LabFInverse(fY) * white[1];
  xyz[2] = LabFInverse(fZ) * white[2];
}

void LabDifferentialRecord(const double* white, const CValueVector3& xyz, double dX, double dY,
                           double dZ, CValueVector3& dLab) {
  if (IsMissingWhite(white) || AnyMissing(xyz, 3)) {
    FillMissing(dLab, CValueVector3::kLength);
    return;
  }
  const double dfX = LabFDifferential(xyz[0] / white[0], dX, white[0]);
  const double dfY = LabFDifferential(xyz[1] / white[1], dY, white[1]);
  const double dfZ = LabFDifferential(xyz[2] / white[2], dZ, white[2]);
  EnsureSize(dLab, CValueVector3::kLength);
  dLab[0] = 116.0 * dfY;
  dLab[1] = 500.0 * (dfX - dfY);
  dLab[2] = 200.0 * (dfY - dfZ);
}

}  // namespace

void XYZToLab(const double white[3], const double xyz[3], double lab[5]) {
  if (IsMissingWhite(white) || IsMissing(xyz[0]) || IsMissing(xyz[1]) || IsMissing(xyz[2])) {
    for (int i = 0; i < 5; ++i) lab[i] = kMissing;
    return;
  }
  const double fX = LabF(xyz[0] / white[0]);
  const double fY = LabF(xyz[1] / white[1]);
  const double fZ = LabF(xyz[2] / white[2]);
  const double a = 500.0 * (fX - fY);
  const double b = 200.0 * (fY - fZ);
  lab[0] = 116.0 * fY - 16.0;
  lab[1] = a;
  lab[2] = b;
  ComputeChromaHue(a, b, lab[3], lab[4]);
}

void XYZToLab(int illuminant, int observer, const CValueVector3& xyz, CValueVector5& lab) {
  XYZToLabRecord(FindReferenceWhite(illuminant, observer), xyz, lab);
}

void XYZToLab(const CValueVector3& white, const CValueVector3& xyz, CValueVector5& lab) {
  XYZToLabRecord(WhiteData(white), xyz, lab);
}

void LabToXYZ(int illuminant, int observer, double lStar, double aStar, double bStar,
              CValueVector3& xyz) {
  LabToXYZRecord(FindReferenceWhite(illuminant, observer), lStar, aStar, bStar, xyz);
}

void LabToXYZ(const CValueVector3& white, double lStar, double aStar, double bStar,
              CValueVector3& xyz) {
  LabToXYZRecord(WhiteData(white), lStar, aStar, bStar, xyz);
}

void LabDifferential(int illuminant, int observer, const CValueVector3& xyz, double dX, double dY,
                     double dZ, CValueVector3& dLab) {
  LabDifferentialRecord(FindReferenceWhite(illuminant, observer), xyz, dX, dY, dZ, dLab);
}

void LabDifferential(const CValueVector3& white, const CValueVector3& xyz, double dX, double dY,
                     double dZ, CValueVector3& dLab) {
  LabDifferentialRecord(WhiteData(white), xyz, dX, dY, dZ, dLab);
}

}  // namespace velquor
