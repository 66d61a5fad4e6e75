#include "velquor/difference/shade_descriptor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

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
  CDWordArray codes;
  CDWordArray colours;
  codes.Add(99);
  colours.Add(99);
  DescribeShade(a, b, dL, da, db, text, codes, colours, darkText);
  Shade shade{text, {}, {}};
  for (std::size_t i = 0; i < codes.GetSize(); ++i) shade.codes.push_back(codes[i]);
  for (std::size_t i = 0; i < colours.GetSize(); ++i) shade.colours.push_back(colours[i]);
  return shade;
}

// The next double below and above 0.1 in magnitude.
const double kJustBelow = std::nextafter(0.1, 0.0);
const double kJustAbove = std::nextafter(0.1, 1.0);

constexpr std::uint32_t kWhite = 0xFFFFFF, kGreen = 0x008000, kRed = 0x0000FF, kYellow = 0x00FFFF,
                        kBlue = 0xFF0000;

TEST(ShadeDescriptor, TextsAndIdentifiersOfTheTenCodes) {
  const char* const kTexts[] = {"Darker",  "Lighter",  "Redder",      "Less Red",  "Less Green",
                                "Greener", "Yellower", "Less Yellow", "Less Blue", "Bluer"};
  for (int code = 1; code <= 10; ++code) {
    EXPECT_EQ(GetShadeDescriptorStringId(code), 4143u + code);
    EXPECT_EQ(LoadShadeDescriptor(code), kTexts[code - 1]) << code;
  }
  for (int code : {0, -1, 11}) {
    EXPECT_EQ(GetShadeDescriptorStringId(code), 0u) << code;
    EXPECT_EQ(LoadShadeDescriptor(code), " ") << code;
  }
}

struct AxisCase {
  const char* what;
  double a, b, dL, da, db;
  int darkText;
  const char* text;
  std::vector<std::uint32_t> codes;
  std::vector<std::uint32_t> colours;
};

TEST(ShadeDescriptor, EveryCodeWithItsColour) {
  // clang-format off
  const AxisCase cases[] = {
      {"lighter, redder, yellower", 5, 3, 1, 1, 1, 0,
       "Lighter,Redder,Yellower", {2, 3, 7}, {kWhite, kRed, kYellow}},
      {"dark text", 5, 3, 1, 1, 1, 1, "Lighter,Redder,Yellower", {2, 3, 7}, {0, kRed, kYellow}},
      {"negative flag is not dark text", 5, 3, 1, 1, 1, -1,
       "Lighter,Redder,Yellower", {2, 3, 7}, {kWhite, kRed, kYellow}},
      {"darker, less red, less yellow", 5, 3, -1, -1, -1, 0,
       "Darker,Less Red,Less Yellow", {1, 4, 8}, {0, kRed, kYellow}},
      {"green side, blue side, trial moves away", -5, -3, -1, -1, -1, 0,
       "Darker,Greener,Bluer", {1, 6, 10}, {0, kGreen, kBlue}},
      {"green side, blue side, trial moves back", -5, -3, 1, 1, 1, 0,
       "Lighter,Less Green,Less Blue", {2, 5, 9}, {kWhite, kGreen, kBlue}},
      // A standard exactly on a* = 0 or b* = 0 is on the red or yellow side.
      {"neutral standard", 0, 0, 0, -1, -1, 0,
       " ,Less Red,Less Yellow", {0, 4, 8}, {0, kRed, kYellow}},
      {"negative zero standard", -0.0, -0.0, 0, 1, 1, 0,
       " ,Redder,Yellower", {0, 3, 7}, {0, kRed, kYellow}},
      {"no difference", -5, -3, 0, 0, 0, 1, " , , ", {0, 0, 0}, {0, 0, 0}},
  };
  // clang-format on
  for (const AxisCase& c : cases) {
    const Shade shade = Describe(c.a, c.b, c.dL, c.da, c.db, c.darkText);
    EXPECT_EQ(shade.text, c.text) << c.what;
    EXPECT_EQ(shade.codes, c.codes) << c.what;
    EXPECT_EQ(shade.colours, c.colours) << c.what;
  }
}

// Lightness counts a difference of exactly 0.1; the chromatic axes need more than 0.1.
TEST(ShadeDescriptor, ThresholdsAtExactlyOneTenth) {
  // clang-format off
  const AxisCase cases[] = {
      {"dL +0.1", 5, 3, 0.1, 0, 0, 0, "Lighter, , ", {2, 0, 0}, {kWhite, 0, 0}},
      {"dL -0.1", 5, 3, -0.1, 0, 0, 0, "Darker, , ", {1, 0, 0}, {0, 0, 0}},
      {"dL just below +0.1", 5, 3, kJustBelow, 0, 0, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"dL just below -0.1", 5, 3, -kJustBelow, 0, 0, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"da +0.1", 5, 3, 0, 0.1, 0, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"da -0.1", -5, 3, 0, -0.1, 0, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"da just above +0.1", 5, 3, 0, kJustAbove, 0, 0, " ,Redder, ", {0, 3, 0}, {0, kRed, 0}},
      {"da just above -0.1", -5, 3, 0, -kJustAbove, 0, 0, " ,Greener, ", {0, 6, 0}, {0, kGreen, 0}},
      {"db +0.1", 5, -3, 0, 0, 0.1, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"db -0.1", 5, 3, 0, 0, -0.1, 0, " , , ", {0, 0, 0}, {0, 0, 0}},
      {"db just above +0.1", 5, -3, 0, 0, kJustAbove, 0, " , ,Less Blue", {0, 0, 9}, {0, 0, kBlue}},
      {"db just above -0.1", 5, 3, 0, 0, -kJustAbove, 0,
       " , ,Less Yellow", {0, 0, 8}, {0, 0, kYellow}},
      // Both rules in one comparison.
      {"lighter, none, bluer", 5, -3, 0.1, 0.1, -0.2, 0,
       "Lighter, ,Bluer", {2, 0, 10}, {kWhite, 0, kBlue}},
      {"none, less green, yellower", -1, 2, -0.05, 0.3, 0.3, 0,
       " ,Less Green,Yellower", {0, 5, 7}, {0, kGreen, kYellow}},
  };
  // clang-format on
  for (const AxisCase& c : cases) {
    const Shade shade = Describe(c.a, c.b, c.dL, c.da, c.db, c.darkText);
    EXPECT_EQ(shade.text, c.text) << c.what;
    EXPECT_EQ(shade.codes, c.codes) << c.what;
    EXPECT_EQ(shade.colours, c.colours) << c.what;
  }
}

TEST(ShadeDescriptor, AnInputThatCannotBeObtainedLeavesAllOutputsEmpty) {
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (double bad : {kMissing, kNaN}) {
    for (int which = 0; which < 5; ++which) {
      double in[5] = {5, 3, 1, 1, 1};
      in[which] = bad;
      const Shade shade = Describe(in[0], in[1], in[2], in[3], in[4]);
      EXPECT_EQ(shade.text, "") << which;
      EXPECT_TRUE(shade.codes.empty()) << which;
      EXPECT_TRUE(shade.colours.empty()) << which;
    }
  }
}

TEST(ShadeDescriptor, RecordsSupplyStandardABAndTheFirstThreeSlots) {
  CValueVector5 standard;  // L, a, b, C, h: a green, blue standard
  standard[0] = 50;
  standard[1] = -5;
  standard[2] = -3;
  standard[3] = 20;
  standard[4] = 200;
  CColorVector7 difference;  // dL, da, db, then weighted terms that must not be read
  difference[0] = -1;
  difference[1] = -1;
  difference[2] = 1;
  difference[3] = 1;
  difference[4] = 1;
  difference[5] = -1;
  difference[6] = 5;
  std::string text;
  CDWordArray codes, colours;
  DescribeShade(standard, difference, text, codes, colours, 0);
  EXPECT_EQ(text, "Darker,Greener,Less Blue");

  difference.SetSize(2);
  DescribeShade(standard, difference, text, codes, colours, 0);
  EXPECT_EQ(text, "");
  EXPECT_EQ(codes.GetSize(), 0u);
  EXPECT_EQ(colours.GetSize(), 0u);
}

// A measurer with chosen widths, so that the widest descriptor is not the longest text.
class TableMeasurer : public TextMeasurer {
 public:
  int GetTextWidth(std::string_view text) const override {
    const auto found = widths.find(std::string(text));
    return found == widths.end() ? 1000 : found->second;
  }
  std::map<std::string, int> widths = {
      {"0", 7},           {"Darker", 41},  {"Lighter", 40},  {"Redder", 50},      {"Less Red", 30},
      {"Less Green", 45}, {"Greener", 51}, {"Yellower", 60}, {"Less Yellow", 20}, {"Less Blue", 33},
      {"Bluer", 61},
  };
};

TEST(ShadeDescriptor, WidthsTakeTheWidestOfTheGroupPlusADigit) {
  const TableMeasurer measurer;
  EXPECT_EQ(GetShadeDescriptorWidth(0, measurer), 41 + 7);
  EXPECT_EQ(GetShadeDescriptorWidth(1, measurer), 51 + 7);
  EXPECT_EQ(GetShadeDescriptorWidth(2, measurer), 61 + 7);
  EXPECT_EQ(GetShadeDescriptorWidth(3, measurer), 7);
  EXPECT_EQ(GetShadeDescriptorWidth(-1, measurer), 7);
  EXPECT_EQ(GetMaxShadeDescriptorWidth(measurer), 61 + 7);

  // The default counts code points: "Lighter" 7, "Less Green" 10, "Less Yellow" 11, "0" 1.
  EXPECT_EQ(GetShadeDescriptorWidth(0), 8);
  EXPECT_EQ(GetShadeDescriptorWidth(1), 11);
  EXPECT_EQ(GetShadeDescriptorWidth(2), 12);
  EXPECT_EQ(GetMaxShadeDescriptorWidth(), 12);
}

TEST(ShadeDescriptor, DefaultMeasurerCountsCodePoints) {
  const TextMeasurer& m = DefaultTextMeasurer();
  EXPECT_EQ(m.GetTextWidth(""), 0);
  EXPECT_EQ(m.GetTextWidth("ΔE*ab"), 5);             // Δ is two bytes
  EXPECT_EQ(m.GetTextWidth("h°"), 2);                // ° is two bytes
  EXPECT_EQ(m.GetTextWidth("\xF0\x9F\x8E\xA8"), 1);  // one four-byte code point
  EXPECT_EQ(m.GetTextWidth("a\x80"
                           "b"),
            2);  // a stray continuation byte counts nothing
}

}  // namespace
}  // namespace velquor
