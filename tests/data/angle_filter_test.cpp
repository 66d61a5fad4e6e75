#include "velquor/data/angle_filter.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace velquor {
namespace {

const std::string kStandard = "(Angle BETWEEN 0 AND 3 OR Angle = 8)";

TEST(AngleFilter, ExactClauses) {
  EXPECT_EQ(BuildStandardAngleFilter(), "(Angle BETWEEN 0 AND 3 OR Angle = 8)");
  EXPECT_EQ(BuildSpecularAngleFilter(true),
            "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 12 OR Angle = 14)");
  EXPECT_EQ(BuildSpecularAngleFilter(false),
            "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 13 OR Angle = 15)");
  EXPECT_EQ(BuildAngleFilter(16),
            "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 16 OR Angle = 12)");
  EXPECT_EQ(BuildAngleFilter(5), "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 5)");
}

TEST(AngleFilter, OnlyTheSpecularModesBringAPartner) {
  // SCI 12 pulls in SCI/100 only; SCI/100, SCI/0, SCI/ADJ pull in SCI; likewise for SCE.
  const std::map<int, int> partners = {{12, 14}, {13, 15}, {14, 12}, {16, 12},
                                       {18, 12}, {15, 13}, {17, 13}, {19, 13}};
  for (int code = 0; code < 256; ++code) {
    std::string expected = "(" + kStandard + " OR Angle = " + std::to_string(code);
    if (auto it = partners.find(code); it != partners.end()) {
      expected += " OR Angle = " + std::to_string(it->second);
    }
    expected += ")";
    EXPECT_EQ(BuildAngleFilter(static_cast<std::uint8_t>(code)), expected) << code;
  }
}

}  // namespace
}  // namespace velquor
