// The inner loop of StrengthBatch for the Kubelka-Munk methods: the K/S sum of each batch
// spectrum, with the Saunderson correction, optionally weighted. Internal to the library: hosts
// call strength_batch.h.
//
// Where the library is built with Google Highway, several spectra run side by side in the lanes
// of a vector at the best instruction-set level the CPU offers; otherwise, and in the Windows
// builds, it is the portable scalar loop. Every lane performs the scalar sum exactly (points in
// ascending order, one rounding per operation, no fused multiply-add, the same comparisons for
// the missing value, the Saunderson divisor floor and the black point), so every level gives
// the sums of PrepareStrengthPoint and StrengthAbsorption (strength_paths.h).
#pragma once

#include <cstddef>

namespace velquor {

// sums[n] = sum over i = first .. last, ascending, of
//   KSFromReflectance(PrepareStrengthPoint(R[i], k1, k2)) (* weights[i] when weights is set)
// for the spectrum R at spectra + n * stride, n = 0 .. count-1. The caller has checked that
// 0 <= first <= last < 40 and the pointers.
void KubelkaMunkSums(const double* spectra, std::size_t stride, std::size_t count, int first,
                     int last, const double* weights, double k1, double k2, double* sums);

}  // namespace velquor
