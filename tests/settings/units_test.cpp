#include "velquor/settings/units.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace velquor {
namespace {

TEST(UnitNames, WeightUnits) {
  const char* const names[] = {"Pounds", "Ounces", "Kilograms", "Grams", "Grains", "Parts (Auto)"};
  for (std::uint32_t k = 0; k < 6; ++k) {
    EXPECT_EQ(GetWeightUnitStringId(k), 12800 + k);
    EXPECT_EQ(LoadWeightUnitString(k), names[k]) << k;
  }
  // Beyond the table: an identifier without a string, loading as an empty text.
  EXPECT_EQ(GetWeightUnitStringId(6), 12806u);
  for (std::uint32_t k = 6; k < 16; ++k) EXPECT_EQ(LoadWeightUnitString(k), "") << k;
}

TEST(UnitNames, VolumeUnits) {
  struct Unit {
    std::uint32_t k;
    const char* name;
  };
  const Unit units[] = {
      // clang-format off
      {0, "Gallons"},          {11, "SA Buckets"},
      {1, "Quarts"},           {12, "Ounces UK"},
      {2, "Pints"},            {13, "Oz/Shots UK"},
      {3, "Cups"},             {14, "Ounces NZ"},
      {4, "Ounces"},           {15, "Oz/Shots NZ"},
      {5, "Imperial Gallons"}, {16, "Ounces Metric"},
      {6, "Liters"},           {17, "Oz/Shots Metric"},
      {7, "Milliliters"},      {18, "Shots"},
      {8, "Oz/Shots"},         {19, "Shots UK"},
      {9, "Pumps"},            {20, "Shots NZ"},
      {10, "SA Gallons"},      {21, "Shots Metric"},
      // clang-format on
  };
  for (const Unit& unit : units) {
    EXPECT_EQ(GetVolumeUnitStringId(unit.k), 12816 + unit.k);
    EXPECT_EQ(LoadVolumeUnitString(unit.k), unit.name) << unit.k;
  }
  EXPECT_EQ(GetVolumeUnitStringId(22), 12838u);
  EXPECT_EQ(LoadVolumeUnitString(22), "");
  // No range check: weight unit 16 is volume unit 0.
  EXPECT_EQ(GetWeightUnitStringId(16), GetVolumeUnitStringId(0));
  EXPECT_EQ(LoadWeightUnitString(16), "Gallons");
}

TEST(UnitNames, ShotUnitsAreExactly18To21) {
  for (std::uint32_t k = 0; k < 64; ++k) {
    EXPECT_EQ(IsShotUnit(k), k == 18 || k == 19 || k == 20 || k == 21) << k;
  }
  EXPECT_FALSE(IsShotUnit(8));   // "Oz/Shots"
  EXPECT_FALSE(IsShotUnit(17));  // "Oz/Shots Metric"
  EXPECT_FALSE(IsShotUnit(0xFFFFFFFFu));
  EXPECT_FALSE(IsShotUnit(18u + 0x80000000u));
}

}  // namespace
}  // namespace velquor
