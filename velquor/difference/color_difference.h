// The colour-difference dispatcher: one entry point for the thirteen difference systems and
// the chromaticity mode, always filling the same seven-slot record.
#pragma once

#include "velquor/data/value_vectors.h"
#include "velquor/difference/color_sample.h"

namespace velquor {

// Difference-system codes (the slot labels and captions are addressed by the same code).
inline constexpr int kDiffCieLab = 0;          // Delta E*ab
inline constexpr int kDiffCmc = 1;             // CMC (l:c)
inline constexpr int kDiffHunterLab = 2;       // Hunter Lab
inline constexpr int kDiffFmc2 = 3;            // FMC-2 on XYZ
inline constexpr int kDiffCie94 = 4;           // CIE94
inline constexpr int kDiffCieLch = 5;          // Delta E*ab, shown as L*C*h
inline constexpr int kDiffCieLuv = 6;          // Delta E*uv
inline constexpr int kDiffXyzYxy = 7;          // Delta E*ab with scaled XYZ and xy differences
inline constexpr int kDiffGePqs2 = 8;          // GE-PQS II on XYZ
inline constexpr int kDiffAudi = 9;            // angle-dependent, effect finishes
inline constexpr int kDiffDin99 = 10;          // Delta E99 on DIN99 coordinates
inline constexpr int kDiffCie2000 = 11;        // CIEDE2000
inline constexpr int kDiffDin6175 = 12;        // DIN 6175-2
inline constexpr int kDiffChromaticity = 100;  // the trial's x, y only

// Compares a trial with a standard in the system `systemCode` and fills `result` (grown to
// seven elements if shorter). Slots: 1-3 the rectangular differences, 4-6 the weighted (or
// plain) lightness, chroma and hue terms, 7 the total; differences are trial minus standard.
//
// Order of the steps:
// 1. Either sample's XYZ missing (IsMissingXYZ) -- or the coordinates the system reads too
//    short to read (three elements for Hunter, five otherwise) -- gives the missing value 1e-05
//    in all seven slots, without limiting; nothing else is done.
// 2. 100: slots 1 and 2 receive the trial's chromaticity x, y; the other slots keep what they
//    held (and are limited with them in step 7).
// 3. 3: ComputeFmc2Difference; 8: ComputeGePqs2Difference with `illuminant` and `observer`.
// 4. 2: ComputeHunterDifference; 6: ComputeDeltaEab on the CIELUV coordinates.
// 5. 7: ComputeDeltaEab, then ApplyXyzYxyDifference (slot 7 stays Delta E*ab).
// 6. Any other code: ComputeDeltaEab, then 1: ApplyCmcWeighting (weights l, c);
//    4: ApplyCie94Weighting (kL, kC, kH); 9: ComputeAngleDependentDifference with the
//    standard's coordinates and `parameter` as the viewing angle; 12: ApplyDin6175Weighting
//    (gL, gC, gH, p = parameter); 11: ApplyCiede2000 (kL, kC, kH). Codes 0, 5, 10 and any
//    unknown code stop at Delta E*ab.
// 7. All seven slots are limited by CColorVector7::ClampRange to [-999.99, 999.99] (NaN
//    becomes -999.99).
//
// weights: three doubles, read only by CMC (l, c), CIE94 and CIEDE2000 (kL, kC, kH) and
// DIN6175 (gL, gC, gH); null is taken as (1, 1, 1). parameter: read by the Audi and DIN6175
// systems; exactly 0 is taken as 1. A zero weight is not guarded. illuminant, observer: read
// by GE-PQS II only. Never throws; allocates only when `result` is shorter than seven.
void ComputeColorDifference(const CColorSample& standard, const CColorSample& trial, int systemCode,
                            int illuminant, int observer, const double* weights,
                            CColorVector7& result, double parameter);

}  // namespace velquor
