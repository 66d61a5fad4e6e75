#include "velquor/colorimetry/luv.h"

#include <cmath>

#include "velquor/colorimetry/chroma_hue.h"
#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/cube_root.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

// The CIE 1976 UCS denominator X + 15Y + 3Z.
double UcsDenominator(double x, double y, double z) {
  return x + 15.0 * y + 3.0 * z;
}

void XYZToLuvRecord(const double* white, const CValueVector3& xyz, CValueVector5& luv) {
  if (IsMissingWhite(white) || AnyMissing(xyz, 3)) {
    FillMissing(luv, CValueVector5::kLength);
    return;
  }
  EnsureSize(luv, CValueVector5::kLength);
  XYZToLuv(white, xyz.GetData(), luv.GetData());
}

void LuvToXYZRecord(const double* white, double lStar, double uStar, double vStar,
                    CValueVector3& xyz) {
  if (IsMissingWhite(white) || IsMissing(lStar) || IsMissing(uStar) || IsMissing(vStar)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }
  const double whiteDenominator = UcsDenominator(white[0], white[1], white[2]);
  if (IsZero(whiteDenominator) || IsZero(lStar)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }

  const double uPrime = 4.0 * white[0] / whiteDenominator + uStar / (13.0 * lStar);
  const double vPrime = 9.0 * white[1] / whiteDenominator + vStar / (13.0 * lStar);
  if (IsZero(uPrime) || IsZero(vPrime)) {
    FillMissing(xyz, CValueVector3::kLength);
    return;
  }

  double t = lStar * kLuvInverseKappa;
  if (t > kLabEpsilon) {
    const double f = (lStar + 16.0) * kLabLightnessScale;
    t = f * f * f;
  }
  const double y = t * white[1];
  const double x = 9.0 * y * uPrime / (4.0 * vPrime);
  const double z = (4.0 * x / uPrime - x - 15.0 * y) / 3.0;
  EnsureSize(xyz, CValueVector3::kLength);
  xyz[0] = x;
  xyz[1] = y;
  xyz[2] = z;
}

}  // namespace

void XYZToLuv(const double white[3], const double xyz[3], double luv[5]) {
  // Black (X + 15Y + 3Z = 0) has no chromaticity: missing, like a missing input.
  const bool defined = !IsMissingWhite(white) && !IsMissing(xyz[0]) && !IsMissing(xyz[1]) &&
                       !IsMissing(xyz[2]) && !IsZero(UcsDenominator(xyz[0], xyz[1], xyz[2])) &&
                       !IsZero(UcsDenominator(white[0], white[1], white[2]));
  if (!defined) {
    for (int i = 0; i < 5; ++i) luv[i] = kMissing;
    return;
  }
  const double denominator = UcsDenominator(xyz[0], xyz[1], xyz[2]);
  const double whiteDenominator = UcsDenominator(white[0], white[1], white[2]);
  const double yr = xyz[1] / white[1];
  const double lStar = yr > kLabEpsilon ? 116.0 * CubeRoot(yr) - 16.0 : kLuvKappa * yr;
  const double uPrime = 4.0 * xyz[0] / denominator;
  const double vPrime = 9.0 * xyz[1] / denominator;
  const double uPrimeWhite = 4.0 * white[0] / whiteDenominator;
  const double vPrimeWhite = 9.0 * white[1] / whiteDenominator;
  const double uStar = 13.0 * lStar * (uPrime - uPrimeWhite);
  const double vStar = 13.0 * lStar * (vPrime - vPrimeWhite);
  luv[0] = lStar;
  luv[1] = uStar;
  luv[2] = vStar;
  ComputeChromaHue(uStar, vStar, luv[3], luv[4]);
}

void XYZToLuv(int illuminant, int observer, const CValueVector3& xyz, CValueVector5& luv) {
  XYZToLuvRecord(FindReferenceWhite(illuminant, observer), xyz, luv);
}

void XYZToLuv(const CValueVector3& white, const CValueVector3& xyz, CValueVector5& luv) {
  XYZToLuvRecord(WhiteData(white), xyz, luv);
}

void LuvToXYZ(int illuminant, int observer, double lStar, double uStar, double vStar,
              CValueVector3& xyz) {
  LuvToXYZRecord(FindReferenceWhite(illuminant, observer), lStar, uStar, vStar, xyz);
}

void LuvToXYZ(const CValueVector3& white, double lStar, double uStar, double vStar,
              CValueVector3& xyz) {
  LuvToXYZRecord(WhiteData(white), lStar, uStar, vStar, xyz);
}

}  // namespace velquor
