#include "velquor/data/geometry_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "reference_table.h"
#include "velquor/frame/resources.h"

namespace velquor {
namespace {

TEST(GeometryCatalogue, EveryCodeHasItsNameStringAndKey) {
  const auto& catalogue = test::LoadReferenceTable("reference/data_geometry_catalogue.csv");
  ASSERT_EQ(catalogue.size(), kAngleCodeCount);
  for (const auto& row : catalogue) {
    const auto code = static_cast<std::uint8_t>(row.Integer("code"));
    EXPECT_EQ(GetAngleName(code), row.Text("name")) << row.Where();
    EXPECT_EQ(LoadStringResource(432u + code), row.Text("name")) << row.Where();
    EXPECT_EQ(GetAngleKey(code), row.Integer("key")) << row.Where();
    EXPECT_EQ(GetAngleKeyDegrees(code), row.Number("key") / 10.0) << row.Where();
  }
}

TEST(GeometryCatalogue, UncataloguedCodesHaveNoNameAndSortLikeFortyFive) {
  // String 478 follows the block and must not be taken for code 46's name.
  for (int code : {46, 47, 100, 255}) {
    EXPECT_EQ(GetAngleName(static_cast<std::uint8_t>(code)), "") << code;
    EXPECT_EQ(GetAngleKey(static_cast<std::uint8_t>(code)), 450) << code;
  }
}

TEST(GeometryCatalogue, StandardGeometryIsCodesZeroToThreeAndEight) {
  for (int code = 0; code < 256; ++code) {
    EXPECT_EQ(IsStandardGeometry(static_cast<std::uint8_t>(code)), code <= 3 || code == 8) << code;
  }
}

}  // namespace
}  // namespace velquor
