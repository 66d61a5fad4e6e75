#include "velquor/indices/whiteness.h"

#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"
#include "velquor/indices/tristimulus_index_support.h"
#include "velquor/indices/constants.h"
#include "velquor/indices/e313_white_point.h"

namespace velquor {

namespace {

// Y + 800 (xn - x) + 1700 (yn - y); missing when the sample has no chromaticity.
double CieWhitenessFrom(double xn, double yn, const CValueVector3& xyz) {
  double x = 0.0;
  double y = 0.0;
  XYZToChromaticity(xyz, x, y);
  if (IsMissing(x) || IsMissing(y)) return kMissing;
  return xyz[1] + kCieWhitenessX * (xn - x) + kCieWhitenessY * (yn - y);
}

// CIE whiteness against the computed white of the pair.
double CieWhitenessComputed(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  double xn = 0.0;
  double yn = 0.0;
  TripleToChromaticity(white, xn, yn);
  return CieWhitenessFrom(xn, yn, xyz);
}

// Hunter L, a, b of the sample into `lab`; false when they are missing. The scratch record is
// per thread so that repeated calls do not allocate.
bool SampleHunterLab(int illuminant, int observer, const CValueVector3& xyz, const double*& lab) {
  thread_local CValueVector3 scratch;
  if (IsUnusableSample(xyz)) return false;
  int usable = illuminant;
  EnsureWeightTable(usable, observer);
  XYZToHunterLab(usable, observer, xyz, scratch);
  if (IsMissing(scratch[0]) || IsMissing(scratch[1]) || IsMissing(scratch[2])) return false;
  lab = scratch.GetData();
  return true;
}

}  // namespace

double WhitenessE313_73(int illuminant, int observer, const CValueVector3& xyz) {
  if (!IsIlluminantC2(illuminant, observer) || IsUnusableSample(xyz)) return kMissing;
  return kE313_73WhitenessZ * xyz[2] - kE313_73WhitenessY * xyz[1];
}

double WhitenessE313_73R(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double z = kReferenceZnC2 / white[2] * xyz[2];
  return kE313_73WhitenessZ * z - kE313_73WhitenessY * xyz[1];
}

double WhitenessTaube(int illuminant, int observer, const CValueVector3& xyz) {
  if (!IsIlluminantC2(illuminant, observer) || IsUnusableSample(xyz)) return kMissing;
  return kTaubeZ * xyz[2] - kTaubeY * xyz[1];
}

double WhitenessTaubeR(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double z = kReferenceZnC2 / white[2] * xyz[2];
  return kTaubeZ * z - kTaubeY * xyz[1];
}

double WhitenessBerger(int illuminant, int observer, const CValueVector3& xyz) {
  if (illuminant != kIndexIlluminantD65 || IsUnusableSample(xyz)) return kMissing;
  const double cz = observer != 0 ? kBergerZ10 : kBergerZ2;
  const double cx = observer != 0 ? kBergerX10 : kBergerX2;
  return xyz[1] + cz * xyz[2] - cx * xyz[0];
}

double WhitenessBergerR(int illuminant, int observer, const CValueVector3& xyz) {
  if (IsUnusableSample(xyz)) return kMissing;
  const double* white = ComputedWhite(illuminant, observer);
  if (white == nullptr) return kMissing;
  const double x = kReferenceXnD65_2 / white[0] * xyz[0];
  const double z = kReferenceZnD65_2 / white[2] * xyz[2];
  return xyz[1] + kBergerZ2 * z - kBergerX2 * x;
}

double WhitenessCIE(int illuminant, int observer, const CValueVector3& xyz) {
  if (illuminant != kIndexIlluminantD65) return kMissing;
  return CieWhitenessComputed(illuminant, observer, xyz);
}

double WhitenessCIER(int illuminant, int observer, const CValueVector3& xyz) {
  return CieWhitenessComputed(illuminant, observer, xyz);
}

double WhitenessE313_10(int illuminant, int observer, const CValueVector3& xyz) {
  double xn = 0.0;
  double yn = 0.0;
  if (E313WhitePoint(illuminant, observer, xn, yn) == 0 || IsUnusableSample(xyz)) return kMissing;
  return CieWhitenessFrom(xn, yn, xyz);
}

double WhitenessGanz(int illuminant, int observer, const CValueVector3& xyz,
                     const double* coefficients) {
  if (illuminant != kIndexIlluminantD65 || observer != kGanzObserver) return kMissing;
  if (coefficients == nullptr || IsUnusableSample(xyz)) return kMissing;
  double x = 0.0;
  double y = 0.0;
  XYZToChromaticity(xyz, x, y);
  if (IsMissing(x) || IsMissing(y)) return kMissing;
  const double d = coefficients[0], p = coefficients[1], q = coefficients[2],
               c = coefficients[3];
  return d * xyz[1] + p * x + q * y + c;
}

double WhitenessStensby(int illuminant, int observer, const CValueVector3& xyz) {
  const double* lab = nullptr;
  if (!SampleHunterLab(illuminant, observer, xyz, lab)) return kMissing;
  return lab[0] + kStensbyA * lab[1] - kStensbyB * lab[2];
}

double WhitenessHunter(int illuminant, int observer, const CValueVector3& xyz) {
  const double* lab = nullptr;
  if (!SampleHunterLab(illuminant, observer, xyz, lab)) return kMissing;
  return lab[0] - kHunterWhitenessB * lab[2];
}

}  // namespace velquor
