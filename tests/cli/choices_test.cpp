// Parsing what the user types: options, conditions, difference systems, indices and strength
// methods.
#include <gtest/gtest.h>

#include "arguments.h"
#include "choices.h"

namespace velquor::cli {
namespace {

TEST(Arguments, ShortLongAttachedAndOptionalForms) {
  const OptionDefinition definitions[] = {{'t', "tolerance", OptionValue::kRequired, "DE", ""},
                                          {0, "csv", OptionValue::kOptional, "FILE", ""},
                                          {'h', "help", OptionValue::kNone, "", ""}};
  const std::vector<std::string> args{"a", "-t1.5", "--csv", "b", "--", "-c"};
  ParsedArguments parsed;
  std::string error;
  ASSERT_TRUE(ParseArguments(args, definitions, parsed, error)) << error;
  EXPECT_EQ(parsed.Get("tolerance"), "1.5");
  EXPECT_TRUE(parsed.Has("csv"));
  EXPECT_EQ(parsed.Get("csv"), "");  // an optional value never takes the next argument
  EXPECT_EQ(parsed.positional, (std::vector<std::string>{"a", "b", "-c"}));
  ASSERT_TRUE(ParseArguments(std::vector<std::string>{"--tolerance=2", "--csv=o.csv", "-t", "3"},
                             definitions, parsed, error));
  EXPECT_EQ(parsed.Get("tolerance"), "3");  // the last one counts
  EXPECT_EQ(parsed.Get("csv"), "o.csv");
  for (const std::vector<std::string>& bad :
       {std::vector<std::string>{"--help=yes"}, std::vector<std::string>{"-hx"},
        std::vector<std::string>{"--tolerance"}, std::vector<std::string>{"-x"}}) {
    EXPECT_FALSE(ParseArguments(bad, definitions, parsed, error)) << bad[0];
  }
  EXPECT_TRUE(
      ParseArguments(std::vector<std::string>{"-"}, definitions, parsed, error));  // a file "-"
}

TEST(Choices, ConditionsByCodeAliasAndObserver) {
  std::vector<Condition> conditions;
  std::string error;
  ASSERT_TRUE(ParseConditions("d65/10, TL84 ,F2/2,a/10°", 0, conditions, error)) << error;
  ASSERT_EQ(conditions.size(), 4u);
  EXPECT_EQ(conditions[0].illuminant, 2);
  EXPECT_EQ(conditions[0].label, "D65/10°");
  EXPECT_EQ(conditions[1].illuminant, 4);  // TL84 is the catalogue's T84 (F11)
  EXPECT_EQ(conditions[1].observer, 0);    // the default observer given
  EXPECT_EQ(conditions[2].illuminant, 3);  // F2 is CWF
  EXPECT_EQ(conditions[3].label, "A/10°");
  EXPECT_FALSE(ParseConditions("D65/5", 1, conditions, error));
  EXPECT_FALSE(ParseConditions("D65,", 1, conditions, error));
  EXPECT_EQ(conditions.size(), 4u);  // left as it was
}

TEST(Choices, DifferenceSystemsTakeTheirWeights) {
  const struct {
    const char* text;
    int system;
    std::array<double, 3> weights;
    double parameter;
    const char* caption;
  } kCases[] = {
      {"cmc", 1, {2, 1, 1}, 1, "CMC (L:C) = 2 : 1, cf = 1"},
      {"CMC:1.4:1", 1, {1.4, 1, 1}, 1, "CMC (L:C) = 1.4 : 1, cf = 1"},
      {"cie2000:2:1:1", 11, {2, 1, 1}, 1, "CIE2000 (KL:KC:KH) = 2 : 1 : 1"},
      {"din99:1:2", 10, {1, 2, 1}, 1, "DIN99 (KCH:KE) = 1 : 2"},
      {"din6175:1:1:1:0.75", 12, {1, 1, 1}, 0.75, "DIN6175 (gL:gC:gH) = 1 : 1 : 1"},
      {"audi:45", 9, {1, 1, 1}, 45, "Audi L*a*b*"},
      {"lab", 0, {1, 1, 1}, 1, "CIE L*a*b*"},
  };
  for (const auto& c : kCases) {
    DifferenceChoice choice;
    std::string error;
    ASSERT_TRUE(ParseDifferenceSystem(c.text, choice, error)) << c.text << ": " << error;
    EXPECT_EQ(choice.system, c.system) << c.text;
    EXPECT_EQ(choice.weights, c.weights) << c.text;
    EXPECT_EQ(choice.parameter, c.parameter) << c.text;
    EXPECT_EQ(choice.caption, c.caption) << c.text;
  }
  DifferenceChoice choice;
  std::string error;
  for (const char* bad : {"cie2000:1:1:1:1", "lab:1", "cmc:-2:1", "cmc:x:1", "delta", ""}) {
    EXPECT_FALSE(ParseDifferenceSystem(bad, choice, error)) << bad;
  }
}

TEST(Choices, IndicesByCatalogueName) {
  std::vector<IndexChoice> indices;
  std::string error;
  ASSERT_TRUE(ParseIndices("WI CIE, yi e313-73 (r)", indices, error)) << error;
  ASSERT_EQ(indices.size(), 2u);
  EXPECT_EQ(indices[0].identifier, 57u);
  EXPECT_EQ(indices[1].identifier, 0u);
  EXPECT_EQ(indices[1].name, "YI E313-73 (R)");
  EXPECT_FALSE(ParseIndices("WI CIE,", indices, error));
  EXPECT_FALSE(ParseIndices("Munsell", indices, error));  // catalogued, not computed from XYZ
  EXPECT_EQ(IndexHelp().find("Ganz"), std::string::npos);
}

TEST(Choices, StrengthMethodsByNameCodeAndWavelength) {
  const struct {
    const char* text;
    int method;
    int wavelength;
    bool absorbance;
  } kCases[] = {
      {"apparent", 0, 500, false},
      {"chromatic@520", 2, 520, false},
      {"base-chromatic@400", 14, 400, false},
      {"tris-z", 10, 500, false},
      {"12", 12, 500, false},
      {"apparent:absorbance", 0, 500, true},
  };
  for (const auto& c : kCases) {
    StrengthChoice choice;
    std::string error;
    ASSERT_TRUE(ParseStrengthMethod(c.text, choice, error)) << c.text << ": " << error;
    EXPECT_EQ(choice.settings.method, c.method) << c.text;
    EXPECT_EQ(choice.settings.userWavelength, c.wavelength) << c.text;
    EXPECT_EQ(choice.useAbsorbance, c.absorbance) << c.text;
  }
  StrengthChoice choice;
  std::string error;
  for (const char* bad : {"15", "-1", "chromatic@355", "chromatic@751", "chromatic@5x0", "tris@500",
                          "apparent:density", "strong"}) {
    EXPECT_FALSE(ParseStrengthMethod(bad, choice, error)) << bad;
  }
}

}  // namespace
}  // namespace velquor::cli
