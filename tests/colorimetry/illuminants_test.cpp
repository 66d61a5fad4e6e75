#include "velquor/colorimetry/illuminants.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/resources.h"

namespace velquor {
namespace {

TEST(IlluminantTexts, CatalogueCodesNamesAndPresentationOrder) {
  std::vector<int> order;
  ASSERT_EQ(LoadIlluminantOrder(order), 1);
  const auto& catalogue = test::LoadReferenceTable("reference/colorimetry_illuminant_texts.csv");
  ASSERT_EQ(order.size(), catalogue.size());
  for (const auto& row : catalogue) {
    SCOPED_TRACE(row.Where());
    const int index = row.Integer("index");
    std::string text, code, name;
    EXPECT_EQ(LoadIlluminantText(index, text), 1);
    EXPECT_EQ(text, row.Text("code") + "|" + row.Text("name"));
    EXPECT_EQ(LoadIlluminantCode(index, code), 1);
    EXPECT_EQ(code, row.Text("code"));
    EXPECT_EQ(LoadIlluminantName(index, name), 1);
    EXPECT_EQ(name, row.Text("name"));
    EXPECT_EQ(order[static_cast<std::size_t>(row.Integer("position"))], index);
  }
  for (int index = 0; index < kIlluminantSlots; ++index) {
    std::string text;
    EXPECT_EQ(LoadIlluminantText(index, text), 1) << index;
    EXPECT_EQ(text, LoadStringResource(kIlluminantTextBase + static_cast<std::uint32_t>(index)));
    if (index >= 17) {
      EXPECT_EQ(text, std::to_string(index) + "|None");
    }
  }
  std::string code;
  EXPECT_EQ(LoadIlluminantCode(30, code), 1);
  EXPECT_EQ(code, "30");
  for (int index : {-1, 31, 112}) {  // 112 would be string 496, an observer text
    std::string text = "stale", name = "stale";
    EXPECT_EQ(LoadIlluminantText(index, text), 0) << "index " << index;
    EXPECT_EQ(text, "");
    EXPECT_EQ(LoadIlluminantName(index, name), 0);
    EXPECT_EQ(name, "");
  }
}

TEST(IlluminantTexts, CodeAndNameSplitAtTheFirstBar) {
  EXPECT_EQ(IlluminantCodeOf("a|b|c"), "a");
  EXPECT_EQ(IlluminantNameOf("a|b|c"), "b|c");
  EXPECT_EQ(IlluminantCodeOf("plain"), "plain");
  EXPECT_EQ(IlluminantNameOf("plain"), "plain");
  EXPECT_EQ(IlluminantNameOf("X|"), "");
}

TEST(IlluminantTexts, PresentationOrderRejectsATranslationThatIsNotAList) {
  struct DropTranslation {
    ~DropTranslation() { ClearTranslatedStrings(); }
  } dropTranslation;
  std::vector<int> order = {99};
  ASSERT_EQ(LoadTranslatedStringsFromText("415\t 2, 0 ,1\n"), 1);
  EXPECT_EQ(LoadIlluminantOrder(order), 1);
  EXPECT_EQ(order, (std::vector<int>{2, 0, 1}));
  for (const char* bad : {"415\t2,,1\n", "415\t2,x\n", "415\t2,\n", "415\t\n"}) {
    ASSERT_EQ(LoadTranslatedStringsFromText(bad), 1);
    EXPECT_EQ(LoadIlluminantOrder(order), 0) << bad;
    EXPECT_TRUE(order.empty()) << bad;
  }
}

TEST(ObserverTexts, CodeOneIsTenDegreesEveryOtherCodeTwo) {
  using F = ObserverTextForm;
  const struct {
    int observer;
    ObserverTextForm form;
    const char* text;
  } cases[] = {{0, F::kPlain, "2°"},    {1, F::kPlain, "10°"},  {0, F::kDash, " - 2°"},
               {1, F::kDash, " - 10°"}, {0, F::kSlash, "/2°"},  {1, F::kSlash, "/10°"},
               {2, F::kPlain, "2°"},    {-1, F::kSlash, "/2°"}, {10, F::kDash, " - 2°"}};
  for (const auto& c : cases) {
    std::string text;
    EXPECT_EQ(LoadObserverText(c.observer, c.form, text), 1);
    EXPECT_EQ(text, c.text) << "observer " << c.observer;
  }
  std::string word;
  EXPECT_EQ(LoadIlluminantWord(word), 1);
  EXPECT_EQ(word, "Illuminant ");
}

}  // namespace
}  // namespace velquor
