// The inner loop of ComputeIndexBatch for the indices that are plain arithmetic on X, Y, Z:
// the formula of an identifier with its constants resolved once (IndexPlan), evaluated over
// many samples. Internal to the library: hosts call index_batch.h.
//
// Where the library is built with Google Highway, several samples run side by side in the
// lanes of a vector at the best instruction-set level the CPU offers; otherwise, and in the
// Windows builds, a portable scalar loop runs the same plan. Both evaluate each formula with
// the operations of the per-sample function in the same order (one rounding per operation, no
// fused multiply-add), so a sample's index comes out as the per-sample function gives it.
// Samples on which the per-sample function takes another branch (a missing value among X, Y,
// Z, a value that is not finite, X + Y + Z within reach of the library's zero test for the
// chromaticity formulas) are handed to the per-sample function itself.
#pragma once

#include <cstddef>

#include "velquor/data/value_vectors.h"

namespace velquor {

// The arithmetic forms of the vectorised indices; the constants k[] of each are listed with it.
enum class IndexKind {
  kZMinusY,          // k0 (k1 Z) - k2 Y                         E313-73 and Taube whiteness
  kBerger,           // (Y + k0 (k1 Z)) - k2 (k3 X)              Berger whiteness
  kTwoCoefficient,   // 100 (k0 (k1 X) - k2 (k3 Z)) / Y          D1925, E313-10, DIN 6167 YI
  kE313Yellowness,   // 100 (1 - k0 (k1 Z) / Y)                  E313-73 yellowness
  kDcm,              // 253.1 - 620.88511 Z / (1.275 X + Y + 0.635025 Z)   DCM yellowness
  kFilterRz,         // 100 Z / k0                               Rz
  kFilterRx,         // (100 X / k0 - 0.202 (100 Z / k1)) / 0.798   Rx
  kCieWhiteness,     // Y + 800 (k0 - x) + 1700 (k1 - y)         CIE and E313-10 whiteness
  kCieTint,          // k2 (k0 - x) - 650 (k1 - y)               CIE and E313-10 tint
  kGanzWhiteness,    // k0 Y + k1 x + k2 y + k3                  Ganz/Griesser whiteness
  kGanzTint,         // k0 x + k1 y + k2                         Ganz/Griesser tint
};

// One identifier's formula for one illuminant and observer. A scale k of 1 (the plain flavour's
// unscaled X or Z) multiplies exactly, so plain and recalculated flavours share a form.
struct IndexPlan {
  IndexKind kind = IndexKind::kZMinusY;
  double k[4] = {0.0, 0.0, 0.0, 0.0};
  // The per-sample function of the identifier (exactly one of the two is set), for the samples
  // it must decide itself, with what it needs besides the triple.
  double (*formula)(int illuminant, int observer, const CValueVector3& xyz) = nullptr;
  double (*calibrated)(int illuminant, int observer, const CValueVector3& xyz,
                       const double* coefficients) = nullptr;
  int illuminant = 0;
  int observer = 0;
  const double* coefficients = nullptr;
};

// The index of samples 0 .. count-1: sample n is X, Y, Z at xyz + n * xyzStride, its index goes
// to out[n]. The caller has checked the pointers and xyzStride >= 3.
void EvaluateIndexPlan(const IndexPlan& plan, const double* xyz, std::size_t xyzStride,
                       double* out, std::size_t count);

}  // namespace velquor
