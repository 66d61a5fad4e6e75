#include "velquor/data/geometry_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "reference_table.h"
#include "velquor/data/angle_filter.h"
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
    EXPECT_EQ(GetAngleKeyDegrees(code), row.Number("key") / 10.0) << row.Where();
  }
  // Uncatalogued codes have no name (string 478 follows the block) and sort like 45 degrees.
  for (std::uint8_t code : {46, 255})
    EXPECT_EQ(GetAngleName(code) + std::to_string(GetAngleKey(code)), "450") << int{code};
  for (int code = 0; code < 256; ++code)
    EXPECT_EQ(IsStandardGeometry(static_cast<std::uint8_t>(code)), code <= 3 || code == 8) << code;
}

TEST(AngleFilter, StandardClauseAndOnlyTheSpecularModesBringAPartner) {
  const std::string standard = "(Angle BETWEEN 0 AND 3 OR Angle = 8)";
  EXPECT_EQ(BuildStandardAngleFilter(), standard);
  EXPECT_EQ(BuildSpecularAngleFilter(true), "(" + standard + " OR Angle = 12 OR Angle = 14)");
  EXPECT_EQ(BuildSpecularAngleFilter(false), "(" + standard + " OR Angle = 13 OR Angle = 15)");
  // SCI 12 pulls in SCI/100 only; SCI/100, SCI/0, SCI/ADJ pull in SCI; likewise for SCE.
  const std::map<int, int> partners = {{12, 14}, {13, 15}, {14, 12}, {16, 12},
                                       {18, 12}, {15, 13}, {17, 13}, {19, 13}};
  for (int code = 0; code < 256; ++code) {
    const auto it = partners.find(code);
    EXPECT_EQ(BuildAngleFilter(static_cast<std::uint8_t>(code)),
              "(" + standard + " OR Angle = " + std::to_string(code) +
                  (it == partners.end() ? "" : " OR Angle = " + std::to_string(it->second)) + ")");
  }
}

}  // namespace
}  // namespace velquor
