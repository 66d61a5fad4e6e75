// Preparing one side of a comparison for a difference system: the coordinates that
// ComputeColorDifference reads for that system, computed from the sample's XYZ by the
// library's conversions (see CColorSample).
#pragma once

#include "velquor/data/value_vectors.h"
#include "velquor/difference/color_sample.h"

namespace velquor {

// Sets sample.xyz to `xyz` and fills sample.coordinates for `system`: CIELUV for 6, DIN99
// with weights kCH = weights[0], kE = weights[1] (1, 1 for null weights) for 10, Hunter L, a,
// b with its chroma and hue for 2, the missing value for the XYZ-only systems 3, 8 and 100,
// and CIELAB for every other code. `triple` is scratch for the Hunter values (kept by the
// caller so that nothing allocates per call).
// True for the systems whose coordinates FillColorSample fills with CIELAB: every code but
// the Hunter (2), FMC-2 (3), CIELUV (6), GE-PQS II (8), DIN99 (10) and chromaticity (100) ones.
bool FillsCieLab(int system);

void FillColorSample(const CValueVector3& xyz, int system, int illuminant, int observer,
                     const double* weights, CColorSample& sample, CValueVector3& triple);

}  // namespace velquor
