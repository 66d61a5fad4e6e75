#include "velquor/indices/fastness_grades.h"

#include <cmath>
#include <numbers>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/difference/delta_e_ab.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/indices/fastness_constants.h"
#include "velquor/indices/step_code.h"

namespace velquor {

namespace {

// CIELAB of the reference and the specimen, on the stack.
struct LabPair {
  double reference[5];
  double specimen[5];
};

// Converts both records; false when either cannot be used (see the header). The inputs are
// tested rather than the outputs, so a coordinate that happens to equal 1e-05 is not mistaken
// for a failed conversion.
bool ToLab(int illuminant, int observer, const CValueVector3& reference,
           const CValueVector3& specimen, LabPair& lab) {
  if (AnyMissing(reference, 3) || AnyMissing(specimen, 3)) return false;
  const double* white = FindReferenceWhite(illuminant, observer);
  if (IsMissingWhite(white)) return false;
  XYZToLab(white, reference.GetData(), lab.reference);
  XYZToLab(white, specimen.GetData(), lab.specimen);
  return true;
}

bool AnyMissingLab(const double* lab) {
  for (int i = 0; i < 5; ++i)
    if (IsMissing(lab[i])) return true;
  return false;
}

double HueDegrees(double h) { return GetHueInDegrees() ? h : RadToDeg(h); }

double StainGrade(const double* reference, const double* specimen) {
  const LabDifference d = DeltaEab(reference, specimen);
  // dE*ab^2 - dL*^2 is da^2 + db^2 up to rounding; a negative remainder counts as none.
  const double chromatic2 = d.dE * d.dE - d.dL * d.dL;
  const double chromatic = chromatic2 > 0.0 ? std::sqrt(chromatic2) : 0.0;
  const double deltaEGS = d.dE - kStainChromaticWeight * chromatic;
  const double linear = kFastnessTopGrade - kStainLinearSlope * deltaEGS;
  // dE_GS >= 0.6 dE*ab, so it is positive whenever dE*ab is and the logarithm is defined.
  if (d.dE <= 0.0) return linear;
  const double score = kStainScoreOffset - kStainScoreSlope * std::log(deltaEGS);
  return score > kStainScoreLimit ? linear : score;
}

double DeltaEF(const double* reference, const double* specimen) {
  const LabDifference d = DeltaEab(reference, specimen);
  const double h1 = HueDegrees(reference[4]);
  const double h2 = HueDegrees(specimen[4]);
  double hueMean = (h1 + h2) / 2.0;
  if (std::fabs(h2 - h1) > kFastnessHalfTurnDegrees) {
    if (std::fabs(h1 + h2) >= kFastnessFullTurnDegrees)
      hueMean -= kFastnessHalfTurnDegrees;
    else
      hueMean += kFastnessHalfTurnDegrees;
  }
  double hueOffset = hueMean - kGreyScaleHueCentre;
  if (std::fabs(hueOffset) > kFastnessHalfTurnDegrees)
    hueOffset = kFastnessFullTurnDegrees - std::fabs(hueOffset);

  const double chromaMean = (reference[3] + specimen[3]) / 2.0;
  const double ratio = hueOffset / kGreyScaleHueWidth;
  const double e = std::exp(-(ratio * ratio));
  const double correction = e * d.dC * chromaMean * kGreyScaleCorrectionScale;
  const double chromaScale = kGreyScaleChromaWeight * chromaMean;
  const double hueScale = kGreyScaleHueWeight * chromaMean;
  const double dCF = (d.dC - correction) / (1.0 + chromaScale * chromaScale);
  const double dHF = (d.dH - correction) / (1.0 + hueScale * hueScale);
  return std::sqrt(d.dL * d.dL + dCF * dCF + dHF * dHF);
}

}  // namespace

double GreyScaleGradeFromDeltaEF(double deltaEF) {
  if (deltaEF <= kGreyScaleLinearLimit)
    return kFastnessTopGrade - deltaEF / kGreyScaleLinearDivisor;
  return kFastnessTopGrade - std::log(deltaEF * kGreyScaleLogScale) / std::numbers::ln2;
}

double StainGradeFromLab(const double reference[5], const double specimen[5]) {
  if (AnyMissingLab(reference) || AnyMissingLab(specimen)) return kMissing;
  return StainGrade(reference, specimen);
}

double GreyScaleDeltaEFFromLab(const double reference[5], const double specimen[5]) {
  if (AnyMissingLab(reference) || AnyMissingLab(specimen)) return kMissing;
  return DeltaEF(reference, specimen);
}

double StainGradeA04(int illuminant, int observer, const CValueVector3& reference,
                     const CValueVector3& specimen) {
  LabPair lab;
  if (!ToLab(illuminant, observer, reference, specimen, lab)) return kMissing;
  return StainGrade(lab.reference, lab.specimen);
}

double StainStepA04(int illuminant, int observer, const CValueVector3& reference,
                    const CValueVector3& specimen) {
  LabPair lab;
  if (!ToLab(illuminant, observer, reference, specimen, lab)) return kMissing;
  const double grade = StainGrade(lab.reference, lab.specimen);
  return StepCodeFromValue(kFastnessTopGrade - grade, kStainStepThresholdsA04);
}

double GreyScaleDeltaEF(int illuminant, int observer, const CValueVector3& reference,
                        const CValueVector3& specimen) {
  LabPair lab;
  if (!ToLab(illuminant, observer, reference, specimen, lab)) return kMissing;
  return DeltaEF(lab.reference, lab.specimen);
}

double GreyScaleGradeA05(int illuminant, int observer, const CValueVector3& reference,
                         const CValueVector3& specimen) {
  LabPair lab;
  if (!ToLab(illuminant, observer, reference, specimen, lab)) return kMissing;
  return GreyScaleGradeFromDeltaEF(DeltaEF(lab.reference, lab.specimen));
}

double GreyScaleStepA05(int illuminant, int observer, const CValueVector3& reference,
                        const CValueVector3& specimen) {
  LabPair lab;
  if (!ToLab(illuminant, observer, reference, specimen, lab)) return kMissing;
  return StepCodeFromValue(DeltaEF(lab.reference, lab.specimen), kGreyScaleStepThresholdsA05);
}

}  // namespace velquor
