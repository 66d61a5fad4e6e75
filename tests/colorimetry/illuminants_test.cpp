#include "velquor/colorimetry/illuminants.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/resources.h"

namespace velquor {

TEST(IlluminantTexts, CatalogueCodesNamesAndPresentationOrder) {
  std::vector<int> order;
  ASSERT_EQ(LoadIlluminantOrder(order), 1);
  const auto& catalogue = test::LoadReferenceTable("reference/colorimetry_illuminant_texts.csv");
  ASSERT_EQ(order.size(), catalogue.size());
  for (const auto& row : catalogue) {
    const int index = row.Integer("index");
    const std::string expected = row.Text("code") + "|" + row.Text("name");
    std::string text, code, name;
    EXPECT_EQ(LoadIlluminantText(index, text) + LoadIlluminantCode(index, code) +
                  LoadIlluminantName(index, name),
              3);
    EXPECT_EQ(text + "/" + code + "|" + name, expected + "/" + expected) << row.Where();
    EXPECT_EQ(order[static_cast<std::size_t>(row.Integer("position"))], index) << row.Where();
  }
  // Slots 17-30 read "<index>|None"; -1, 31 and 112 (string 496, an observer text) are
  // outside the catalogue and clear the output. A text without a bar is code and name.
  std::string text, code;
  EXPECT_EQ(LoadIlluminantText(17, text) + LoadIlluminantCode(30, code), 2);
  EXPECT_EQ(text + code, "17|None30");
  for (int index : {-1, 31, 112}) {
    std::string name = text = "stale";
    EXPECT_EQ(LoadIlluminantText(index, text) + LoadIlluminantName(index, name), 0) << index;
    EXPECT_EQ(text + name, "") << index;
  }
  for (const auto& [whole, code, name] :
       {std::tuple{"a|b|c", "a", "b|c"}, {"plain", "plain", "plain"}})
    EXPECT_EQ(std::string(IlluminantCodeOf(whole)) + "/" + std::string(IlluminantNameOf(whole)),
              std::string(code) + "/" + name);
}

TEST(IlluminantTexts, PresentationOrderRejectsATranslationThatIsNotAList) {
  std::vector<int> order = {99};
  EXPECT_TRUE(LoadTranslatedStringsFromText("415\t 2, 0 ,1\n") && LoadIlluminantOrder(order));
  EXPECT_EQ(order, (std::vector<int>{2, 0, 1}));
  for (const char* bad : {"415\t2,,1\n", "415\t2,x\n", "415\t2,\n", "415\t\n", "415\t2x\n"}) {
    EXPECT_TRUE(LoadTranslatedStringsFromText(bad) && !LoadIlluminantOrder(order)) << bad;
    EXPECT_TRUE(order.empty()) << bad;
  }
  ClearTranslatedStrings();
}

TEST(ObserverTexts, CodeOneIsTenDegreesEveryOtherCodeTwo) {
  using F = ObserverTextForm;
  std::string a, b, c, d, e;
  EXPECT_TRUE(LoadObserverText(1, F::kPlain, a) && LoadObserverText(0, F::kDash, b) &&
              LoadObserverText(1, F::kSlash, c) && LoadObserverText(2, F::kPlain, d) &&
              LoadIlluminantWord(e));
  EXPECT_EQ(a + b + c + d + e, "10° - 2°/10°2°Illuminant ");
}

}  // namespace velquor
