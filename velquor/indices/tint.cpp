#include "velquor/indices/tint.h"

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/tristimulus_index_support.h"
#include "velquor/indices/constants.h"
#include "velquor/indices/e313_white_point.h"

namespace velquor {

namespace {

// k (xn - x) - 650 (yn - y); missing when the sample has no chromaticity.
double CieTintFrom(int observer, double xn, double yn, const CValueVector3& xyz) {
  double x = 0.0;
  double y = 0.0;
  XYZToChromaticity(xyz, x, y);
  if (IsMissing(x) || IsMissing(y)) return kMissing;
  const double k = observer != 0 ? kCieTintX10 : kCieTintX2;
  return k * (xn - x) - kCieTintY * (yn - y);
}

double CieTintComputed(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  double xn = 0.0;
  double yn = 0.0;
  TripleToChromaticity(white, xn, yn);
  return CieTintFrom(observer, xn, yn, xyz);
}

}  // namespace

double TintCIE(int illuminant, int observer, const CValueVector3& xyz) {
  if (illuminant != kIndexIlluminantD65) return kMissing;
  return CieTintComputed(illuminant, observer, xyz);
}

double TintCIER(int illuminant, int observer, const CValueVector3& xyz) {
  return CieTintComputed(illuminant, observer, xyz);
}

double TintE313_10(int illuminant, int observer, const CValueVector3& xyz) {
  double xn = 0.0;
  double yn = 0.0;
  if (E313WhitePoint(illuminant, observer, xn, yn) == 0 || IsUnusableSample(xyz)) return kMissing;
  return CieTintFrom(observer, xn, yn, xyz);
}

double TintGanz(int illuminant, int observer, const CValueVector3& xyz,
                const double* coefficients) {
  if (illuminant != kIndexIlluminantD65 || observer != kGanzObserver) return kMissing;
  if (coefficients == nullptr || IsUnusableSample(xyz)) return kMissing;
  double x = 0.0;
  double y = 0.0;
  XYZToChromaticity(xyz, x, y);
  if (IsMissing(x) || IsMissing(y)) return kMissing;
  const double m = coefficients[0], n = coefficients[1], k0 = coefficients[2];
  return m * x + n * y + k0;
}

}  // namespace velquor
