// Tristimulus weighting tables (ASTM E308 kind, 10 nm, 360-750 nm) and their process-wide
// cache.
//
// Each (illuminant, observer) pair has a binary resource of type "PWD" named
// "ILL<index:02>_<degrees:02>" ("ILL02_10" = D65, 10°): 123 little-endian doubles, the X, Y and
// Z weights at 360, 370, ... 750 nm (doubles 0-39, 40-79, 80-119), then the white point
// Xn, Yn = 100, Zn (doubles 120-122). The Y weights sum to 100, so a perfect reflecting
// diffuser (100 % everywhere) integrates to Y = 100 after the percent factor 0.01.
//
// The cache fills on first use of each pair and lives for the whole process; entries are
// appended and never removed, so positions and table pointers stay valid forever. Each entry
// is filed under the key 4 * index + observer, the observer code as passed. The resource name
// uses 10° only for code 1 and 2° for any other code, so codes other than 0 and 1 load the 2°
// table under a key that may belong to another pair (illuminant 2 with code 5 and illuminant
// 3 with code 1 both give 13): the first of them loaded fills the key and the other is served
// its table. This is the library's behaviour; callers pass only 0 or 1.
//
// All functions are safe to call from several threads at once, including concurrent first
// use of the same pair: lookups take no lock, loading is serialised by a mutex and re-checks
// the cache under it, so each key is appended once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "velquor/data/value_vectors.h"

namespace velquor {

// Layout of a weighting table, in doubles.
inline constexpr std::size_t kWeightTableBands = 40;        // weights per component
inline constexpr std::size_t kWeightTableWhitePoint = 120;  // offset of Xn, Yn, Zn
inline constexpr std::size_t kWeightTableLength = 123;
inline constexpr std::size_t kWeightTableBytes = kWeightTableLength * sizeof(double);  // 984

// Cache key of a pair: 4 * index + observer, in unsigned 32-bit arithmetic.
constexpr std::uint32_t WeightTableKey(int illuminant, int observer) {
  return 4u * static_cast<std::uint32_t>(illuminant) + static_cast<std::uint32_t>(observer);
}

// Resource name of a pair: "ILL%02d_%02d" with the index and ObserverDegrees(observer).
std::string WeightTableName(int illuminant, int observer);

// Makes sure the pair is cached. Returns 1 if its key is in the cache (already, or after
// loading the resource), 0 if the resource is absent or shorter than 984 bytes; the cache
// is then unchanged.
int LoadWeightTable(int illuminant, int observer);

// Position (0-based, in order of loading) of the pair's key in the cache, loading on a miss;
// -1 if it cannot be loaded.
int FindWeightTable(int illuminant, int observer);

// The 123 doubles of the pair's table, loading on a miss; null if it cannot be loaded. The
// memory lives for the whole process.
const double* GetWeightTable(int illuminant, int observer);

// Copies the white point Xn, Yn, Zn (doubles 120-122) into `whitePoint`, growing it to three
// elements if shorter. Returns 1; if the table cannot be loaded, the three values are the
// missing value and the result is 0.
int GetWhitePoint(int illuminant, int observer, CValueVector3& whitePoint);

// The guarded entry used before computing: returns 1 if the pair's table is available;
// otherwise sets `illuminant` to 2 (D65), loads (2, observer) and returns 0.
int EnsureWeightTable(int& illuminant, int observer);

// Diagnostics: the number of cached entries and their keys in cache order.
int GetWeightTableCacheSize();
std::vector<std::uint32_t> GetWeightTableCacheKeys();

}  // namespace velquor
