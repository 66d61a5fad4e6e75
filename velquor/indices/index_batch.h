// One index over many samples: the batch form of the indices of index_formulas.h, for hosts
// and bindings that compute a whole table column at once.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velquor {

// The index `identifier` (index_formulas.h) of samples 0 .. count-1 for one illuminant and
// observer: sample n is X, Y, Z at xyz + n * xyzStride, its index goes to out[n], as the identifier's per-sample
// function gives it for that triple (the same operations in the same order).
//
// The formula and its constants (computed white, reference-white ratios, coefficient pairs,
// white-point chromaticities) are resolved once per call, not per sample; a plain flavour
// outside its published pairs fills `out` with the missing value. The whiteness, tint,
// yellowness and filter-value formulas run in the vector kernel of index_kernel.h; Stensby,
// Hunter, dominant wavelength and purity call their per-sample function. Large batches are
// split over the library's threads (ParallelFor, batch_threads.h); the results do not depend
// on the thread count.
//
// `coefficients` is read by the Ganz/Griesser identifiers only (whiteness D, P, Q, C; tint m,
// n, k0); null there gives the missing value, as the per-sample functions do.
// False, with `out` untouched, for an identifier that is not computable from XYZ, xyzStride
// below 3, or null pointers with count > 0.
bool ComputeIndexBatch(std::uint32_t identifier, int illuminant, int observer, const double* xyz,
                       std::size_t xyzStride, const double* coefficients, double* out,
                       std::size_t count);

}  // namespace velquor
