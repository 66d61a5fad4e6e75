// Names of the weight and volume units in which formulas are shown. The library names the
// units by number; it does not convert between them.
//
// Weight unit k (0 Pounds .. 5 Parts (Auto)) is named by string 12800 + k; volume unit k
// (0 Gallons .. 21 Shots Metric) by string 12816 + k. Identifiers are computed without a range
// check, in 32-bit unsigned arithmetic: a unit outside the tables gives an identifier without
// a string, which loads as an empty text.
#pragma once

#include <cstdint>
#include <string>

namespace velquor {

// First string of the weight unit names.
inline constexpr std::uint32_t kWeightUnitStringBase = 12800;
// First string of the volume unit names.
inline constexpr std::uint32_t kVolumeUnitStringBase = 12816;

constexpr std::uint32_t GetWeightUnitStringId(std::uint32_t unit) {
  return kWeightUnitStringBase + unit;
}
constexpr std::uint32_t GetVolumeUnitStringId(std::uint32_t unit) {
  return kVolumeUnitStringBase + unit;
}

// The unit's name from the string table.
std::string LoadWeightUnitString(std::uint32_t unit);
std::string LoadVolumeUnitString(std::uint32_t unit);

// True exactly for the four "Shots" volume units: 18 Shots, 19 Shots UK, 20 Shots NZ and
// 21 Shots Metric; the "Oz/Shots" units are not among them.
constexpr bool IsShotUnit(std::uint32_t unit) {
  return unit >= 18 && unit <= 21;
}

}  // namespace velquor
