#include "velquor/difference/system_catalogue.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/resources.h"

namespace velquor {
namespace {

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

TEST(DifferenceSystemCatalogue, BlockStringsHaveTheirIdentifiersAndUnusedOffsetsNone) {
  for (const auto& row : test::LoadReferenceTable("reference/difference_system_strings.csv")) {
    const std::uint32_t id = 2368 + 16 * row.Integer("system") + row.Integer("offset");
    const auto offset = static_cast<DifferenceString>(row.Integer("offset"));
    EXPECT_EQ(GetDifferenceStringId(row.Integer("system"), offset), id) << row.Where();
    EXPECT_EQ(LoadStringResource(id), row.Text("text")) << row.Where();
    EXPECT_EQ(LoadDifferenceString(row.Integer("system"), offset), row.Text("text")) << row.Where();
  }
  // Offsets 5 and 11-15 of every block have no string; the other ten all have one.
  for (int system = 0; system < 13; ++system) {
    for (std::uint32_t offset = 0; offset < 16; ++offset) {
      std::string text = "x";
      const bool used = offset != 5 && offset < 11;
      EXPECT_EQ(LoadStringResource(2368 + 16 * system + offset, text), used ? 1 : 0)
          << "system " << system << " offset " << offset;
    }
  }
}

TEST(DifferenceSystemCatalogue, CodesWithoutBlockAndOffsetsBeyondTheBlockLoadNothing) {
  // The chromaticity mode (100) and unknown codes have no block; offset 16 would be the next
  // system's caption.
  for (int system : {-1, 13, 100}) {
    EXPECT_EQ(LoadDifferenceString(system, DifferenceString::kCaption), "") << system;
    EXPECT_EQ(LoadDifferenceTotalLabel(system), "") << system;
  }
  EXPECT_EQ(LoadDifferenceString(0, static_cast<DifferenceString>(16)), "");
}

// The total labels of the thirteen systems, the column lists and the weight placeholders.
TEST(DifferenceSystemCatalogue, ColumnListsAgreeWithEachOtherAndEndInTheTotal) {
  const auto& totals = test::LoadReferenceTable("reference/difference_total_labels.csv");
  ASSERT_EQ(totals.size(), 13u);
  for (int k = 0; k < 13; ++k) {
    const auto load = [k](DifferenceString o) { return LoadDifferenceString(k, o); };
    const std::string& total = totals[k].Text("total");
    EXPECT_EQ(LoadDifferenceTotalLabel(k), total) << k;

    // Full list = values || differences without the total || total.
    const std::vector<std::string> differences =
        SplitColumnLabels(load(DifferenceString::kDifferenceColumns));
    ASSERT_GE(differences.size(), 4u) << k;
    // Only CMC, CIE94 and CIE2000 show the weighted lightness term of slot 4 (seven slots).
    EXPECT_EQ(differences.size() == 7, k == 1 || k == 4 || k == 11) << k;
    std::string expectedFull = load(DifferenceString::kValueColumns) + "||";
    for (std::size_t i = 0; i + 1 < differences.size(); ++i) {
      expectedFull += differences[i] + (i + 2 < differences.size() ? "|" : "");
    }
    expectedFull += "||" + total;
    EXPECT_EQ(load(DifferenceString::kColumns), expectedFull) << k;

    // Three-column lists have three fields; the short difference list ends in the total.
    for (int o : {6, 8, 9, 10}) EXPECT_EQ(SplitColumnLabels(load(DifferenceString(o))).size(), 3u) << k << " offset " << o;
    const std::vector<std::string> three = SplitColumnLabels(load(DifferenceString::kThreeDifferenceColumns));
    EXPECT_TRUE(three.size() == 4 && three.back() == total) << k;
    // Each "%s" of caption and short name is one weight.
    for (DifferenceString o : {DifferenceString::kCaption, DifferenceString::kShortName}) {
      const std::string text = load(o);
      int placeholders = 0;
      for (std::size_t p = text.find("%s"); p != std::string::npos; p = text.find("%s", p + 2)) ++placeholders;
      EXPECT_EQ(placeholders, CountDifferenceWeights(k)) << k;
    }
  }
}

TEST(DifferenceSystemCatalogue, WeightedCaptionsTakeTheWeightsInOrder) {
  for (const auto& row : test::LoadReferenceTable("reference/difference_captions.csv")) {
    const std::vector<std::string> weights = Words(row.Text("weights"));
    EXPECT_EQ(FormatDifferenceCaption(row.Integer("system"), weights), row.Text("caption"))
        << row.Where();
    EXPECT_EQ(FormatDifferenceShortName(row.Integer("system"), weights), row.Text("short_name"))
        << row.Where();
  }
}

// A weight is inserted literally, "%%" is one percent sign, other '%' stay as they are; the split
// keeps empty fields.
TEST(DifferenceSystemCatalogue, FormatFillsOnlyPercentSAndSplitKeepsEmptyFields) {
  const std::array<std::string, 2> weights = {"%s", "5%"};
  for (const auto& [format, expected] : {std::pair{"a %s b %s", "a %s b 5%"}, {"100%% %d %", "100% %d %"}, {"", ""}}) {
    EXPECT_EQ(FormatWithWeights(format, weights), expected);
  }
  using V = std::vector<std::string>;
  for (const auto& [text, fields] : {std::pair{"", V{}}, {"L*", V{"L*"}}, {"a||b", V{"a", "", "b"}}, {"|", V{"", ""}}, {"a|", V{"a", ""}}}) {
    EXPECT_EQ(SplitColumnLabels(text), fields) << text;
  }
}

}  // namespace
}  // namespace velquor
