#include "velquor/settings/units.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "reference_table.h"

namespace velquor {
namespace {

TEST(Units, NamesOfBothKindsAndShotUnits) {
  for (const auto& row : test::LoadReferenceTable("reference/unit_names.csv")) {
    SCOPED_TRACE(row.Where());
    const auto k = static_cast<std::uint32_t>(row.Integer("code"));
    const bool weight = row.Text("kind") == "weight";
    EXPECT_EQ(weight ? GetWeightUnitStringId(k) : GetVolumeUnitStringId(k), row.Number("id"));
    EXPECT_EQ(weight ? LoadWeightUnitString(k) : LoadVolumeUnitString(k), row.Text("name"));
  }
  // Shot units are exactly 18 to 21.
  for (std::uint32_t k : {18u, 21u}) EXPECT_TRUE(IsShotUnit(k)) << k;
  for (std::uint32_t k : {0u, 17u, 22u, 0xFFFFFFFFu, 0x80000012u}) EXPECT_FALSE(IsShotUnit(k)) << k;
}

}  // namespace
}  // namespace velquor
