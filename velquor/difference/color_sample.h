// CColorSample: one side of a colour comparison, the standard or the trial.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// What ComputeColorDifference compares. The caller fills both parts for the chosen difference
// system before calling:
// - xyz: tristimulus values for the chosen illuminant and observer (Y = 100 scale); all three
//   missing, or fewer than three elements, marks the whole sample as missing;
// - coordinates: the five coordinates of the system's colour space in the order lightness,
//   first axis, second axis, chroma, hue (hue in the unit of GetHueInDegrees()): CIELAB for
//   systems 0, 1, 4, 5, 7, 9, 11 and 12, CIELUV for 6, DIN99 for 10; Hunter Lab (first three
//   slots) for 2. FMC-2, GE-PQS II and the chromaticity mode read only xyz.
// A plain parameter record: the host owns it and the library never keeps a reference.
struct CColorSample {
  CValueVector3 xyz;
  CValueVector5 coordinates;
};

}  // namespace velquor
