#include "sample_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velquor::cli {
namespace {

const std::vector<std::string> kNames = {"Orange standard", "T01", "t01", "T02", "Blue"};

TEST(FindSampleName, ExactFirstThenTheOnlyMatchIgnoringCase) {
  const struct {
    const char* name;
    std::size_t index;
  } cases[] = {{"T01", 1},  {"t01", 2},  {"orange STANDARD", 0}, {"BLUE", 4}, {"T02", 3},
               {"t02", 3},  {"T0", kNoSample}, {"", kNoSample}, {"blue ", kNoSample}};
  for (const auto& c : cases) EXPECT_EQ(FindSampleName(kNames, c.name), c.index) << c.name;
  // Two names equal ignoring case and neither exact: ambiguous.
  EXPECT_EQ(FindSampleName({"Red", "RED"}, "red"), kNoSample);
}

TEST(MissingNameHelp, SuggestsTheClosestNameAndListsThem) {
  EXPECT_EQ(MissingNameHelp(kNames, "orange standrd"),
            ". Did you mean 'Orange standard'? The samples are: Orange standard, T01, t01, T02, "
            "Blue");
  // Too far from every name (the limit is a third of the length, at least 2): no suggestion.
  EXPECT_EQ(MissingNameHelp(kNames, "Green"),
            ". The samples are: Orange standard, T01, t01, T02, Blue");
  EXPECT_EQ(MissingNameHelp({"Red", "RED", "Blue"}, "red"),
            ". Several samples match ignoring case: Red, RED");
  EXPECT_EQ(MissingNameHelp({}, "x"), ". The file has no samples");
  std::vector<std::string> many;
  for (int i = 0; i < 23; ++i) many.push_back(std::string(1, 'S').append(std::to_string(i)));
  const std::string listed = MissingNameHelp(many, "zzzzzz");
  EXPECT_NE(listed.find("S19 and 3 more"), std::string::npos) << listed;
  EXPECT_EQ(listed.find("S20"), std::string::npos);
}

}  // namespace
}  // namespace velquor::cli
