// CIE 1976 colour difference (CIE 15:2004, 8.2.1 and 8.2.2): Delta E*ab, and the same rules
// on CIELUV (Delta E*uv) and DIN99 (Delta E99) coordinates. Every weighted system of the
// library starts from its result.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Fills the seven-slot difference record from the coordinates (L, a, b, C, h) of a standard s
// and a trial t, all differences trial minus standard:
//   slots 1-3 (elements 0-2): dL, da, db;  slot 4: dL again;  slot 5: dC = Ct - Cs (the stored
//   chromas);  slot 7: dE = sqrt(dL^2 + da^2 + db^2);
//   slot 6: dH = sqrt(q) with q = dE^2 - dL^2 - dC^2 when q > 0, else 0, signed by
//   SignHueDifference.
// The hue slot is not read. Records shorter than four (coordinates) or seven (result)
// elements give the missing value in all seven result slots. No limiting is applied here.
void ComputeDeltaEab(const CValueVector5& standard, const CValueVector5& trial,
                     CColorVector7& result);

// The same difference on raw coordinates (L, a, b, C of a standard and a trial, four doubles
// each), for callers that hold no records: dH is signed as above.
struct LabDifference {
  double dL;
  double da;
  double db;
  double dC;
  double dH;
  double dE;
};
LabDifference DeltaEab(const double* standard, const double* trial);

// The sign rule of the hue difference: -|dH| when bs at - as bt > 0 (the trial lies clockwise
// of the standard), +|dH| otherwise, including a cross product of exactly 0.
double SignHueDifference(double magnitude, double aStandard, double bStandard, double aTrial,
                         double bTrial);

// True when `values` holds at least `count` elements: the guard of the formulas that index
// coordinate and result records directly.
inline bool HasElements(const CValueArray& values, std::size_t count) {
  return values.GetSize() >= count;
}

}  // namespace velquor
