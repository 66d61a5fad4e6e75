#include "velquor/difference/shade_descriptor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/constants.h"

namespace velquor {
namespace {

struct Shade {
  std::string text;
  std::vector<std::uint32_t> codes;
  std::vector<std::uint32_t> colours;
};

Shade Describe(double a, double b, double dL, double da, double db, int darkText = 0) {
  std::string text = "stale";
  CDWordArray codes, colours;
  codes.Add(99), colours.Add(99);
  DescribeShade(a, b, dL, da, db, text, codes, colours, darkText);
  Shade shade{text, {}, {}};
  for (std::size_t i = 0; i < codes.GetSize(); ++i) shade.codes.push_back(codes[i]);
  for (std::size_t i = 0; i < colours.GetSize(); ++i) shade.colours.push_back(colours[i]);
  return shade;
}

std::vector<std::uint32_t> Codes(const std::string& text) {
  static const std::map<std::string, std::uint32_t> kColours = {
      {"0", 0},          {"white", 0xFFFFFF},  {"green", 0x008000},
      {"red", 0x0000FF}, {"yellow", 0x00FFFF}, {"blue", 0xFF0000}};
  std::vector<std::uint32_t> values;
  std::istringstream in(text);
  for (std::string word; in >> word;) {
    values.push_back(kColours.count(word) ? kColours.at(word) : std::stoul(word));
  }
  return values;
}

// The texts of codes 1-10 are checked through the descriptor table below.
TEST(ShadeDescriptor, IdentifiersOfTheTenCodesAndNoneOutside) {
  for (int code = 1; code <= 10; ++code) EXPECT_EQ(GetShadeDescriptorStringId(code), 4143u + code);
  for (int code : {0, -1, 11}) EXPECT_TRUE(GetShadeDescriptorStringId(code) == 0 && LoadShadeDescriptor(code) == " ") << code;
}

TEST(ShadeDescriptor, EveryCodeWithItsColourAndEachThresholdFromBothSides) {
  for (const auto& row : test::LoadReferenceTable("reference/difference_shade_descriptors.csv")) {
    SCOPED_TRACE(row.Where() + " " + row.Text("what"));
    const Shade shade = Describe(row.Number("a"), row.Number("b"), row.Number("dL"),
                                 row.Number("da"), row.Number("db"), row.Integer("dark_text"));
    EXPECT_EQ(shade.text, row.Text("text"));
    EXPECT_EQ(shade.codes, Codes(row.Text("codes")));
    EXPECT_EQ(shade.colours, Codes(row.Text("colours")));
  }
}

TEST(ShadeDescriptor, AnInputThatCannotBeObtainedLeavesAllOutputsEmpty) {
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (double bad : {kMissing, kNaN}) {
    for (int which = 0; which < 5; ++which) {
      double in[5] = {5, 3, 1, 1, 1};
      in[which] = bad;
      const Shade shade = Describe(in[0], in[1], in[2], in[3], in[4]);
      EXPECT_TRUE(shade.text.empty() && shade.codes.empty() && shade.colours.empty()) << which;
    }
  }
}

TEST(ShadeDescriptor, RecordsSupplyStandardABAndTheFirstThreeSlots) {
  CValueVector5 standard;    // L, a, b, C, h: a green, blue standard
  CColorVector7 difference;  // dL, da, db, then weighted terms that must not be read
  const double s[5] = {50, -5, -3, 20, 200}, d[7] = {-1, -1, 1, 1, 1, -1, 5};
  for (int i = 0; i < 7; ++i) (i < 5 ? standard[i] = s[i] : 0), difference[i] = d[i];
  std::string text;
  CDWordArray codes, colours;
  DescribeShade(standard, difference, text, codes, colours, 0);
  EXPECT_EQ(text, "Darker,Greener,Less Blue");

  difference.SetSize(2);
  DescribeShade(standard, difference, text, codes, colours, 0);
  EXPECT_TRUE(text.empty() && codes.GetSize() == 0 && colours.GetSize() == 0);
}

// A measurer with chosen widths, so that the widest descriptor is not the longest text.
class TableMeasurer : public TextMeasurer {
 public:
  int GetTextWidth(std::string_view text) const override {
    const auto found = widths.find(std::string(text));
    return found == widths.end() ? 1000 : found->second;
  }
  std::map<std::string, int> widths = {{"0", 7}, {"Darker", 41}, {"Lighter", 40}, {"Redder", 50}, {"Less Red", 30}, {"Less Green", 45}, {"Greener", 51}, {"Yellower", 60}, {"Less Yellow", 20}, {"Less Blue", 33}, {"Bluer", 61}};
};

TEST(ShadeDescriptor, WidthsTakeTheWidestOfTheGroupPlusADigit) {
  const TableMeasurer measurer;
  for (const auto& [group, width] : {std::pair{0, 48}, {1, 58}, {2, 68}, {3, 7}, {-1, 7}}) {
    EXPECT_EQ(GetShadeDescriptorWidth(group, measurer), width) << group;
  }
  EXPECT_EQ(GetMaxShadeDescriptorWidth(measurer), 61 + 7);

  // The default counts code points: "Lighter" 7, "Less Green" 10, "Less Yellow" 11, "0" 1.
  EXPECT_EQ(GetShadeDescriptorWidth(1), 11);
  EXPECT_EQ(GetMaxShadeDescriptorWidth(), 12);
}

TEST(ShadeDescriptor, DefaultMeasurerCountsCodePoints) {
  const TextMeasurer& m = DefaultTextMeasurer();
  EXPECT_EQ(m.GetTextWidth("ΔE*ab"), 5);  // a two-byte code point
  EXPECT_EQ(m.GetTextWidth("\xF0\x9F\x8E\xA8"), 1);  // one four-byte code point
  EXPECT_EQ(m.GetTextWidth("a\x80" "b"), 2);  // a stray continuation byte counts nothing
}

}  // namespace
}  // namespace velquor
