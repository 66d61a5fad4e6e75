#include "velquor/indices/yellowness.h"

#include "velquor/frame/numeric.h"
#include "velquor/indices/tristimulus_index_support.h"
#include "velquor/indices/constants.h"

namespace velquor {

namespace {

// 100 (cx X - cz Z) / Y.
double TwoCoefficientIndex(double cx, double cz, double x, double y, double z) {
  return 100.0 * (cx * x - cz * z) / y;
}

// The same on X, Z rescaled to the C / 2 degree reference white of the recalculated flavours.
double RecalculatedTwoCoefficientIndex(int illuminant, int observer, const CValueVector3& xyz,
                                       double cx, double cz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double x = kReferenceXnC2 / white[0] * xyz[0];
  const double z = kReferenceZnC2 / white[2] * xyz[2];
  return TwoCoefficientIndex(cx, cz, x, xyz[1], z);
}

}  // namespace

double YellownessD1925(int illuminant, int observer, const CValueVector3& xyz) {
  if (!IsIlluminantC2(illuminant, observer) || IsUnusableSample(xyz)) return kMissing;
  return TwoCoefficientIndex(kD1925X, kD1925Z, xyz[0], xyz[1], xyz[2]);
}

double YellownessD1925R(int illuminant, int observer, const CValueVector3& xyz) {
  return RecalculatedTwoCoefficientIndex(illuminant, observer, xyz, kD1925X, kD1925Z);
}

double YellownessE313_73(int illuminant, int observer, const CValueVector3& xyz) {
  if (!IsIlluminantC2(illuminant, observer) || IsUnusableSample(xyz)) return kMissing;
  return 100.0 * (1.0 - kE313_73YellownessZ * xyz[2] / xyz[1]);
}

double YellownessE313_73R(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double z = kReferenceZnC2 / white[2] * xyz[2];
  return 100.0 * (1.0 - kE313_73YellownessZ * z / xyz[1]);
}

double YellownessE313_10(int illuminant, int observer, const CValueVector3& xyz) {
  const bool tenDegree = observer != 0;
  double cx = 0.0;
  double cz = 0.0;
  if (illuminant == kIndexIlluminantC) {
    cx = tenDegree ? kE313_10CxC10 : kE313_10CxC2;
    cz = tenDegree ? kE313_10CzC10 : kE313_10CzC2;
  } else if (illuminant == kIndexIlluminantD65) {
    cx = tenDegree ? kE313_10CxD65_10 : kE313_10CxD65_2;
    cz = tenDegree ? kE313_10CzD65_10 : kE313_10CzD65_2;
  } else {
    return kMissing;
  }
  if (IsUnusableSample(xyz)) return kMissing;
  return TwoCoefficientIndex(cx, cz, xyz[0], xyz[1], xyz[2]);
}

double YellownessE313_10R(int illuminant, int observer, const CValueVector3& xyz) {
  return RecalculatedTwoCoefficientIndex(illuminant, observer, xyz, kE313_10CxC2, kE313_10CzC2);
}

double YellownessDIN6167(int illuminant, int observer, const CValueVector3& xyz) {
  const bool tenDegree = observer != 0;
  double cx = 0.0;
  double cz = 0.0;
  if (illuminant == kIndexIlluminantC && !tenDegree) {
    cx = kDin6167CxC2;
    cz = kDin6167CzC2;
  } else if (illuminant == kIndexIlluminantD65) {
    cx = tenDegree ? kDin6167CxD65_10 : kDin6167CxD65_2;
    cz = tenDegree ? kDin6167CzD65_10 : kDin6167CzD65_2;
  } else {
    return kMissing;
  }
  if (IsUnusableSample(xyz)) return kMissing;
  return TwoCoefficientIndex(cx, cz, xyz[0], xyz[1], xyz[2]);
}

double YellownessDIN6167R(int illuminant, int observer, const CValueVector3& xyz) {
  return RecalculatedTwoCoefficientIndex(illuminant, observer, xyz, kDin6167CxC2, kDin6167CzC2);
}

double YellownessDCMY(int illuminant, int observer, const CValueVector3& xyz) {
  if (!IsIlluminantC2(illuminant, observer) || IsUnusableSample(xyz)) return kMissing;
  return kDcmOffset - kDcmScale * xyz[2] / (kDcmX * xyz[0] + xyz[1] + kDcmZ * xyz[2]);
}

}  // namespace velquor
