// Textile fastness grades: the instrumental assessments of ISO 105-A04 (staining of adjacent
// fabric) and ISO 105-A05 (change in colour of the treated specimen), as continuous grades on
// the 1-to-5 grey scale and as the half-grade step codes of the visual scale (step_code.h).
//
// Inputs of the record forms: an illuminant (index 0 to 16) and observer code, and the
// tristimulus values (Y = 100 scale) of the reference (untreated or unstained fabric) first and
// the specimen second. Both are converted to CIELAB with XYZToLab and compared as
// ComputeDeltaEab does (specimen minus reference: dL*, dC*ab from the two chromas, dH*ab the
// remainder signed by SignHueDifference, dE*ab); no result depends on which record is first.
//
// Missing inputs: a record with fewer than three values or any of X, Y, Z missing, or an
// illuminant without a weighting table, gives the missing value 1e-05 from every grade, step
// and dE_F function. Grades are neither rounded nor clamped (a very large difference gives a
// grade below 1). Nothing throws and nothing allocates per call.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// ISO 105-A04 instrumental staining grade.
//   dE_GS = dE*ab - 0.4 sqrt(dE*ab^2 - dL*^2)   (the chromatic part weighted 0.4)
//   dE*ab <= 0:  grade = 5 - 0.23 dE_GS        (identical colours give exactly 5)
//   otherwise:   SSR = 6.1 - 1.45 ln(dE_GS); grade = SSR, or 5 - 0.23 dE_GS when SSR > 4.0.
// The two forms do not meet: just below dE_GS = exp(2.1 / 1.45) = 4.2558 the linear form gives
// 4.021, just above it SSR gives 4.000; the library keeps the standard's jump.
double StainGradeA04(int illuminant, int observer, const CValueVector3& reference,
                     const CValueVector3& specimen);

// ISO 105-A04 staining step: the step code (as a double) of 5 - StainGradeA04 on the thresholds
// 3.75, 3.26, 2.76, 2.26, 1.76, 1.26, 0.76, 0.26, 0.0 (kStainStepThresholdsA04).
double StainStepA04(int illuminant, int observer, const CValueVector3& reference,
                    const CValueVector3& specimen);

// ISO 105-A05 colour difference dE_F of the change-in-colour assessment (CIELAB units):
//   h_m = (h1 + h2) / 2 (degrees); when |h2 - h1| > 180, h_m - 180 if |h1 + h2| >= 360,
//         else h_m + 180;
//   dh' = h_m - 280, replaced by 360 - |dh'| when |dh'| > 180;
//   C_m = (C1 + C2) / 2;  e = exp(-(dh' / 30)^2);  D = e dC*ab C_m 0.01;
//   dC_F = (dC*ab - D) / (1 + (0.02 C_m)^2);  dH_F = (dH*ab - D) / (1 + (0.01 C_m)^2);
//   dE_F = sqrt(dL*^2 + dC_F^2 + dH_F^2).
// The library subtracts the same D from the chroma and from the hue difference (so a pure
// chroma difference near hue 280 also yields a hue term); stored results depend on that form.
double GreyScaleDeltaEF(int illuminant, int observer, const CValueVector3& reference,
                        const CValueVector3& specimen);

// ISO 105-A05 change-in-colour grade from E = GreyScaleDeltaEF: 5 - E / 1.7 for E <= 3.4,
// else 5 - ln(E x (1 / 0.85)) / ln 2; the branches meet at E = 3.4, grade 3.
double GreyScaleGradeA05(int illuminant, int observer, const CValueVector3& reference,
                         const CValueVector3& specimen);

// ISO 105-A05 change-in-colour step: the step code (as a double) of dE_F on the thresholds
// 11.6, 8.2, 5.8, 4.1, 2.95, 2.1, 1.25, 0.4, 0.0 (kGreyScaleStepThresholdsA05).
double GreyScaleStepA05(int illuminant, int observer, const CValueVector3& reference,
                        const CValueVector3& specimen);

// The same formulas for callers that already hold CIELAB: records of five values L*, a*, b*,
// C*ab, hab (hue in the unit of GetHueInDegrees()), reference first. The stored chroma and hue
// are used as given, a* and b* only for dE*ab and the sign of dH*ab. Any of the ten values
// missing gives 1e-05.
double StainGradeFromLab(const double reference[5], const double specimen[5]);
double GreyScaleDeltaEFFromLab(const double reference[5], const double specimen[5]);

// The A05 grade as a function of dE_F alone (the rule of GreyScaleGradeA05). A plain number:
// 1e-05 is a real, tiny difference here, not a missing value.
double GreyScaleGradeFromDeltaEF(double deltaEF);

}  // namespace velquor
