#include "velquor/settings/units.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

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
  // A sample of the 22 names: the first, the shots block and the last.
  const std::pair<std::uint32_t, const char*> units[] = {
      {0, "Gallons"}, {8, "Oz/Shots"}, {17, "Oz/Shots Metric"}, {18, "Shots"}, {21, "Shots Metric"}};
  for (const auto& [k, name] : units) EXPECT_EQ(LoadVolumeUnitString(k), name) << k;
  for (std::uint32_t k = 0; k < 22; ++k) {
    EXPECT_EQ(GetVolumeUnitStringId(k), 12816 + k);
    EXPECT_NE(LoadVolumeUnitString(k), "") << k;
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
  EXPECT_FALSE(IsShotUnit(0xFFFFFFFFu));
  EXPECT_FALSE(IsShotUnit(18u + 0x80000000u));
}

}  // namespace
}  // namespace velquor
