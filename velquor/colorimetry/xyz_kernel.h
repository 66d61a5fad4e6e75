// The inner loop of ComputeXYZ and ComputeXYZBatch (weighted summation, ASTM E308) and the
// choice of its instruction-set level. Internal to the library: hosts call tristimulus.h.
//
// Where the library is built with Google Highway, the batch loop runs several curves side by
// side in the lanes of a vector, picking SSE4, AVX2 or AVX-512 (or the target's equivalent)
// at run time from what the CPU supports; otherwise, and in the Windows builds, it is the
// portable scalar loop. Each lane performs the scalar summation exactly (ascending bands, one
// rounding per multiply and per add, no fused multiply-add), so every level gives the same
// bits as ComputeXYZ.
#pragma once

#include <cstddef>

namespace velquor {

// X, Y, Z of curves 0 .. count-1 with the 123-double weighting table `table`: curve n is the
// 40 doubles at spectra + n * spectrumStride, its results go to xyz[n * xyzStride + 0..2].
// Per curve: a missing first point gives the missing triple, otherwise
//   c = (sum over i = 0..39, ascending, of w[40 c + i] * R[i]) * 0.01.
// The caller has checked the pointers, strides (>= 40 and >= 3) and the table.
void IntegrateXYZ(const double* table, const double* spectra, std::size_t count,
                  std::size_t spectrumStride, double* xyz, std::size_t xyzStride);

}  // namespace velquor
