// Parsing what the user types: options, conditions, difference systems, indices and strength
// methods.
#include <gtest/gtest.h>

#include "arguments.h"
#include "choices.h"
#include "reference_table.h"

namespace velquor::cli {
namespace {

using Args = std::vector<std::string>;

TEST(Arguments, ShortLongAttachedAndOptionalForms) {
  const OptionDefinition definitions[] = {{'t', "tolerance", OptionValue::kRequired, "DE", ""},
                                          {0, "csv", OptionValue::kOptional, "FILE", ""},
                                          {'h', "help", OptionValue::kNone, "", ""}};
  ParsedArguments parsed;
  std::string error;
  ASSERT_TRUE(
      ParseArguments(Args{"a", "-t1.5", "--csv", "b", "--", "-c"}, definitions, parsed, error));
  EXPECT_EQ(parsed.Get("tolerance"), "1.5");
  EXPECT_TRUE(parsed.Has("csv"));
  EXPECT_EQ(parsed.Get("csv"), "");  // an optional value never takes the next argument
  EXPECT_EQ(parsed.positional, (Args{"a", "b", "-c"}));
  ASSERT_TRUE(ParseArguments(Args{"--tolerance=2", "--csv=o.csv", "-t", "3", "-"}, definitions,
                             parsed, error));
  EXPECT_EQ(parsed.Get("tolerance") + parsed.Get("csv"), "3o.csv");  // the last one counts
  for (const Args& bad : {Args{"--help=yes"}, Args{"-hx"}, Args{"--tolerance"}, Args{"-x"}}) {
    EXPECT_FALSE(ParseArguments(bad, definitions, parsed, error)) << bad[0];
  }
}

TEST(Choices, ConditionsAndIndicesByName) {
  std::vector<Condition> conditions;
  std::string error;
  ASSERT_TRUE(ParseConditions("d65/10, TL84 ,F2/2,a/10°", 0, conditions, error)) << error;
  ASSERT_EQ(conditions.size(), 4u);
  std::vector<int> codes;  // illuminant * 10 + observer (0 for 2°, 1 for 10°)
  for (const Condition& c : conditions) codes.push_back(c.illuminant * 10 + c.observer);
  EXPECT_EQ(codes, (std::vector<int>{21, 40, 30, 1}));  // TL84 is T84 (F11), F2 is CWF
  EXPECT_EQ(conditions[0].label + conditions[3].label, "D65/10°A/10°");
  EXPECT_FALSE(ParseConditions("D65/5", 1, conditions, error));
  EXPECT_FALSE(ParseConditions("D65,", 1, conditions, error));
  EXPECT_EQ(conditions.size(), 4u);  // left as it was
  std::vector<IndexChoice> indices;
  ASSERT_TRUE(ParseIndices("WI CIE, yi e313-73 (r)", indices, error)) << error;
  ASSERT_EQ(indices.size(), 2u);
  EXPECT_EQ(indices[0].identifier + indices[1].identifier, 57u + 0u);
  EXPECT_EQ(indices[1].name, "YI E313-73 (R)");
  EXPECT_FALSE(ParseIndices("WI CIE,", indices, error));
  EXPECT_FALSE(ParseIndices("Munsell", indices, error));  // catalogued, not computed from XYZ
  EXPECT_EQ(IndexHelp().find("Ganz"), std::string::npos);
}

TEST(Choices, DifferenceSystemsAndStrengthMethodsFromTheTables) {
  for (const auto& row : test::LoadReferenceTable("reference/cli_difference_systems.csv")) {
    DifferenceChoice choice;
    std::string error;
    ASSERT_EQ(ParseDifferenceSystem(row.Text("text"), choice, error),
              row.Text("system") != "refused")
        << row.Where();
    if (row.Text("system") == "refused") continue;
    EXPECT_EQ(choice.system, row.Integer("system")) << row.Where();
    EXPECT_EQ(choice.weights, (std::array{row.Number("w1"), row.Number("w2"), row.Number("w3")}))
        << row.Where();
    EXPECT_EQ(choice.parameter, row.Number("parameter")) << row.Where();
    EXPECT_EQ(choice.caption, row.Text("caption")) << row.Where();
  }
  for (const auto& row : test::LoadReferenceTable("reference/cli_strength_methods.csv")) {
    StrengthChoice choice;
    std::string error;
    ASSERT_EQ(ParseStrengthMethod(row.Text("text"), choice, error), row.Text("method") != "refused")
        << row.Where();
    if (row.Text("method") == "refused") continue;
    EXPECT_EQ(choice.settings.method, row.Integer("method")) << row.Where();
    EXPECT_EQ(choice.settings.userWavelength, row.Integer("wavelength")) << row.Where();
    EXPECT_EQ(choice.useAbsorbance, row.Integer("absorbance") == 1) << row.Where();
  }
}

}  // namespace
}  // namespace velquor::cli
