// Colour strength of many batches against one standard: CalcStrength with the standard's part
// worked out once, the batches split over the library's threads.
#pragma once

#include <cstddef>

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/strength/strength_settings.h"

namespace velquor {

// The strength of batches 0 .. count-1 against `standardSpectrum` / `standardColour` by
// settings.method, out[n] being what CalcStrength (strength.h) gives for batch n:
// - batch n's spectrum is the 40 points (percent) at batchSpectra + n * spectrumStride;
// - its colour, read by the tristimulus methods 7-10 only, is X, Y, Z at
//   batchColours + n * colourStride, or, when batchColours is null, ComputeXYZ of its spectrum
//   for `illuminant` and `observer`, as the C interface and the bindings supply it.
// Worked out once: the standard's absorption sum (spectral methods), the weights and the
// standard's weighted sum (pseudo-tristimulus), the standard's corrected tristimulus sum, the
// index of maximum absorption (methods 1, 13, from the standard) and of the user wavelength
// (2, 14). `wavelength` is read and written as by CalcStrength, once for the whole batch.
// The K/S sums of the spectral and pseudo-tristimulus methods run in the vector kernel of
// strength_kernel.h, several batches side by side, with the per-batch operations in the same
// order; optical density (log10) and the tristimulus methods run per batch.
// Batches are split over threads (ParallelFor); results do not depend on the thread count.
// False, with `out` and `wavelength` untouched, for spectrumStride below 40, colourStride
// below 3 with colours given, or null pointers with count > 0. Nothing throws.
bool StrengthBatch(const CStrengthSettings& settings, const CKSData& standardSpectrum,
                   const CValueVector3& standardColour, const double* batchSpectra,
                   std::size_t spectrumStride, const double* batchColours,
                   std::size_t colourStride, std::size_t count, int illuminant, int observer,
                   bool useAbsorbance, double* out, int& wavelength);

}  // namespace velquor
