// The spectrum locus in chromaticity coordinates at 10 nm from 400 nm to 700 nm, for the
// CIE 1931 2 degree and the CIE 1964 10 degree observer: the polygon that the dominant
// wavelength walks (CIE 15:2004, 9.1). The library's tables agree with the spectral
// chromaticities of CIE 15:2004 to a few ten-thousandths; they are used exactly as stored so
// that dominant wavelengths and purities reproduce to the last digit.
//
// Each table holds 32 points stored as integer pairs in ten-thousandths: point j (0-30) is the
// locus at 400 + 10 j nm and point 31 repeats point 0, so that the polygon closes over the
// purple line from 700 nm back to 400 nm. The 10 degree table repeats its 690 nm point at
// 700 nm; the library uses these values unchanged, so a ray through that corner reports 690 nm.
//
// Observer code 0 selects the 2 degree table and every other code the 10 degree table.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "velquor/indices/locus_constants.h"

namespace velquor {

// A point of the CIE 1931 (or 1964) chromaticity diagram.
struct ChromaticityPoint {
  double x = 0.0;
  double y = 0.0;
};

using SpectrumLocus = std::array<ChromaticityPoint, kLocusPointCount>;
using RawSpectrumLocus = std::array<std::array<std::int32_t, 2>, kLocusPointCount>;

// The stored table for an observer code: x, y in ten-thousandths.
const RawSpectrumLocus& RawSpectrumLocusTable(int observer);

// The table for an observer code converted to x, y by multiplying each integer by 0.0001.
// Pure; the cache below keeps its result.
SpectrumLocus ConvertSpectrumLocus(int observer);

// Converted tables, one per observer table, each built on its first request and kept for the
// lifetime of the cache. Safe under concurrent use, first use included: each table is built
// exactly once under std::call_once and never changes afterwards, so a caller may hold the
// reference for as long as the cache lives. A request for the other observer builds (or
// finds) the other table; nothing is rebuilt, and the values are the same as a rebuild would
// give. Nothing allocates.
class SpectrumLocusCache {
 public:
  SpectrumLocusCache() = default;
  SpectrumLocusCache(const SpectrumLocusCache&) = delete;
  SpectrumLocusCache& operator=(const SpectrumLocusCache&) = delete;

  const SpectrumLocus& Get(int observer);

  // Number of table conversions done so far (0, 1 or 2); diagnostics and tests.
  int BuildCount() const { return builds_.load(std::memory_order_acquire); }

 private:
  struct Slot {
    std::once_flag once;
    SpectrumLocus points{};
  };
  Slot slots_[2];
  std::atomic<int> builds_{0};
};

// The process-wide cache's table for an observer code; lives until the process ends.
const SpectrumLocus& GetSpectrumLocus(int observer);

}  // namespace velquor
