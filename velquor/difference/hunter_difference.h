// Hunter Lab colour difference (Hunter 1958): the Euclidean distance of the rectangular
// Hunter L, a, b coordinates.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Reads the first three elements (L, a, b) of each record; trial minus standard:
//   slots 1-3: dL, da, db;  slots 4-6: the missing value (no weighted or polar terms);
//   slot 7: sqrt(dL^2 + da^2 + db^2).
// Records shorter than three (samples) or seven (result) elements give an all-missing result.
void ComputeHunterDifference(const CValueArray& standard, const CValueArray& trial,
                             CColorVector7& result);

}  // namespace velquor
