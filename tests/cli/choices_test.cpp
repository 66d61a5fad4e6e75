// Parsing what the user types: options, conditions, difference systems, indices and strength
// methods.
#include <gtest/gtest.h>

#include "arguments.h"
#include "choices.h"
#include "reference_table.h"

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
  for (const auto& row : test::LoadReferenceTable("reference/cli_difference_systems.csv")) {
    DifferenceChoice choice;
    std::string error;
    const bool accepted = ParseDifferenceSystem(row.Text("text"), choice, error);
    ASSERT_EQ(accepted, row.Text("system") != "refused") << row.Where() << ": " << error;
    if (!accepted) continue;
    EXPECT_EQ(choice.system, row.Integer("system")) << row.Where();
    EXPECT_EQ(choice.weights, (std::array{row.Number("w1"), row.Number("w2"), row.Number("w3")}))
        << row.Where();
    EXPECT_EQ(choice.parameter, row.Number("parameter")) << row.Where();
    EXPECT_EQ(choice.caption, row.Text("caption")) << row.Where();
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
  for (const auto& row : test::LoadReferenceTable("reference/cli_strength_methods.csv")) {
    StrengthChoice choice;
    std::string error;
    const bool accepted = ParseStrengthMethod(row.Text("text"), choice, error);
    ASSERT_EQ(accepted, row.Text("method") != "refused") << row.Where() << ": " << error;
    if (!accepted) continue;
    EXPECT_EQ(choice.settings.method, row.Integer("method")) << row.Where();
    EXPECT_EQ(choice.settings.userWavelength, row.Integer("wavelength")) << row.Where();
    EXPECT_EQ(choice.useAbsorbance, row.Integer("absorbance") == 1) << row.Where();
  }
}

}  // namespace
}  // namespace velquor::cli
