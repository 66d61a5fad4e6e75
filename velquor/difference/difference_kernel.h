// Colour differences of many pairs at once: one standard against many trials, or standard n
// against trial n, with the numbers of ComputeColorDifference. Internal to the library: hosts
// call vq_difference_batch, vq_difference_pairs and vq_delta_e_batch (velquor_c.h).
//
// Where the library is built with Google Highway, the CIE 1976 systems (CIE L*a*b*, CIE L*C*h,
// CIE L*u*v*, DIN99: Delta E*ab on the sample's coordinates), CMC (l:c), CIE94, CIEDE2000 and
// DIN 6175-2 run several trials side by side in the lanes of a vector, at the instruction-set
// level chosen at run time (simd_dispatch.h); without Highway, and in the Windows builds, every
// pair goes through ComputeColorDifference. Agreement with ComputeColorDifference:
// - CIE 1976, CIE94 and DIN 6175-2 use only +, -, x, / and square roots, one rounding each, in
//   the scalar formulas' order: the same bits;
// - CMC and CIEDE2000 use vector cos, sin, exp and atan2 (Highway's, within a few ulp of the C
//   library's): within about 1e-15 relative of the scalar result. Every branch they take is
//   the scalar code's: a lane whose deciding quantity lies near a threshold (CIEDE2000's hue
//   near 0 / 360, hue span near the half turn, hue sum near 360, near-neutral samples, a
//   radicand near 0) is recomputed by ComputeColorDifference, as is every lane with a missing
//   XYZ element, a non-finite coordinate or a non-finite result.
// At a given level a pair's result does not depend on its place in the batch, on the batch's
// size or on the number of threads: a single pair gives the bits it gives among a million.
// The other systems stay a per-pair loop over ComputeColorDifference: Hunter Lab, FMC-2,
// GE-PQS II and XYZ/Yxy read tristimulus values and white points (or, for Hunter, are rarely
// used in bulk), Audi is the angle-dependent formula of effect finishes with its own branches,
// and the chromaticity mode is no difference at all; none of them is a hot path.
#pragma once

#include <cstddef>

namespace velquor {

// A sample as the batch reads it, eight doubles: X, Y, Z, then the five coordinates (L, a, b,
// C, h) of the system's colour space, as CColorSample holds them (and as the C interface's
// vq_sample lays them out).
inline constexpr std::size_t kBatchSampleDoubles = 8;
// A result: the seven slots of ComputeColorDifference.
inline constexpr std::size_t kBatchDifferenceDoubles = 7;

// The system and its parameters, as ComputeColorDifference takes them (weights null: 1, 1, 1;
// parameter 0 is taken as 1).
struct DifferenceSystemChoice {
  int system = 0;
  int illuminant = 2;
  int observer = 0;
  const double* weights = nullptr;
  double parameter = 0.0;
};

// True for the systems whose batch runs in vector lanes (see above).
bool IsVectorDifferenceSystem(int system);

// Pair n = 0 .. count-1: the standard at standards + n * standardStride (stride 0: one standard
// for every trial), the trial at trials + n * trialStride (strides >= 8 doubles), its seven
// result slots at differences + n * differenceStride (>= 7). Each result is exactly what
// ComputeColorDifference gives for the pair, to the agreement stated above: limited to
// +-999.99, missing samples give the missing value in all seven slots, hue read in the unit of
// GetHueInDegrees(). In the chromaticity mode (100) slots 3-7 are 0, those of a fresh record.
// Runs in the calling thread; allocates only the three records of the per-pair fallback.
void ComputeDifferences(const double* standards, std::size_t standardStride, const double* trials,
                        std::size_t trialStride, std::size_t count,
                        const DifferenceSystemChoice& choice, double* differences,
                        std::size_t differenceStride);

// The same split over the batch threads (ParallelFor, fixed chunks of kDifferenceChunk pairs):
// the results do not depend on the number of threads.
inline constexpr std::size_t kDifferenceChunk = 2048;
void ComputeDifferencesParallel(const double* standards, std::size_t standardStride,
                                const double* trials, std::size_t trialStride, std::size_t count,
                                const DifferenceSystemChoice& choice, double* differences,
                                std::size_t differenceStride);

}  // namespace velquor
