// CIE tristimulus values X, Y, Z from a spectral curve by weighted summation (ASTM E308,
// CIE 15:2004 7.1), using the 10 nm weighting tables of weight_table_cache.h.
#pragma once

#include <cstddef>

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"

namespace velquor {

// Reflectance (or transmittance) is given in percent; the weighted sum is scaled by this.
inline constexpr double kPercentToFactor = 0.01;

// XYZ of a 40-point curve (percent, 360-750 nm in 10 nm steps) for illuminant `illuminant`
// and observer code `observer`, on the scale where 100 % everywhere gives Y = 100 and X, Z
// equal to the table's white point.
//   c = sum over i = 0..39 (ascending wavelength) of w[40 c + i] * R[i], then times 0.01,
// for c = X, Y, Z. There is no normalising constant k: the tables are normalised so that the
// Y weights sum to 100. Weights are used as stored, negative ones included.
// Missing values: only the first point (360 nm) is tested; if it is missing, X, Y and Z are
// all the missing value. A missing value elsewhere enters the sum as the number 1e-05; this is
// the library's behaviour and is kept so stored results reproduce. A curve shorter than 40
// points, or a pair whose table cannot be loaded (callers use EnsureWeightTable first), also
// gives the missing triple. `xyz` grows to three elements if shorter. Nothing allocates on
// a cached table and an XYZ vector of three elements.
void ComputeXYZ(const CKSData& spectrum, int illuminant, int observer, CValueVector3& xyz);

// ComputeXYZ over `count` curves held in caller-owned memory: curve n is the 40 doubles at
// spectra + n * spectrumStride, and its X, Y, Z go to xyz[n * xyzStride + 0..2]. The results
// are bit-identical to ComputeXYZ on the same curves, at any thread count. The table is fetched
// once. Batches of more than 2048 curves are split over BatchThreads() threads
// (velquor/frame/thread_pool.h); smaller ones run in the calling thread. Returns 1;
// returns 0 without writing anything when spectrumStride < 40, xyzStride < 3 or a pointer is
// null with count > 0; returns 0 with every output the missing value when the table cannot
// be loaded.
int ComputeXYZBatch(const double* spectra, std::size_t count, std::size_t spectrumStride,
                    int illuminant, int observer, double* xyz, std::size_t xyzStride);

}  // namespace velquor
