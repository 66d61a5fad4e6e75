// Index and wavelength of the spectral grid (point i at 360 + 10 i nm), and the point where a
// curve absorbs most.
#pragma once

#include <cstdint>

#include "velquor/data/ks_data.h"

namespace velquor {

// 10 i + 360 nm. Computed in 64 bits; a result beyond the int range wraps (no overflow).
constexpr int WavelengthFromIndex(int index) {
  return static_cast<int>(std::int64_t{kWavelengthStep} * index + kFirstWavelength);
}

// (nm - 360) / 10 in integer division, which truncates toward zero: 365 nm gives 0, and so does
// 355 nm; 350 nm gives -1. No range check.
constexpr int IndexFromWavelength(int wavelength) {
  return static_cast<int>((std::int64_t{wavelength} - kFirstWavelength) / kWavelengthStep);
}

// The index of the lowest value among points first..last of `spectrum`, taken raw (no
// Saunderson correction; a missing point counts with its value 1e-05). The search starts at
// `first` and moves only to a strictly lower value, so on ties the shortest wavelength wins.
// If last < first + 1 the result is `first`. Points beyond the end of the curve are not read.
int FindMaxAbsorptionIndex(const CKSData& spectrum, int first, int last);

}  // namespace velquor
