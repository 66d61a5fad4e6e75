#include "velquor/settings/units.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "reference_table.h"

namespace velquor {
namespace {

TEST(UnitNames, IdentifiersAndNamesOfBothKinds) {
  for (const auto& row : test::LoadReferenceTable("reference/unit_names.csv")) {
    const auto k = static_cast<std::uint32_t>(row.Integer("code"));
    const bool weight = row.Text("kind") == "weight";
    EXPECT_EQ(weight ? GetWeightUnitStringId(k) : GetVolumeUnitStringId(k),
              static_cast<std::uint32_t>(row.Integer("id")))
        << row.Where();
    EXPECT_EQ(weight ? LoadWeightUnitString(k) : LoadVolumeUnitString(k), row.Text("name"))
        << row.Where();
  }
}

TEST(UnitNames, ShotUnitsAreExactly18To21) {
  for (std::uint32_t k = 0; k < 64; ++k) {
    EXPECT_EQ(IsShotUnit(k), k >= 18 && k <= 21) << k;
  }
  EXPECT_FALSE(IsShotUnit(0xFFFFFFFFu));
  EXPECT_FALSE(IsShotUnit(18u + 0x80000000u));
}

}  // namespace
}  // namespace velquor
