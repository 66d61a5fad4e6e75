#include "velquor/colorimetry/illuminants.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "velquor/frame/resources.h"

namespace velquor {
namespace {

// A sample of the catalogue texts as published with the library (UTF-8 degree sign); the codes
// of all seventeen illuminants are checked through the presentation order below.
const std::pair<int, const char*> kTexts[] = {
    {0, "A|Tungsten"},
    {2, "D65|Daylight 6500° Kelvin"},
    {9, "U30|Ultralume Fluorescent 3000° Kelvin (F12)"},
    {15, "HM|Horizon - Macbeth"},
    {16, "F4|Warm White Fluorescent (WWF)"},
    {17, "17|None"},  // slots 17-30 read "<index>|None"
    {30, "30|None"},
};

TEST(IlluminantTexts, LoaderCoversTheWholeCatalogueAndNothingElse) {
  for (const auto& [index, expected] : kTexts) {
    std::string text;
    EXPECT_EQ(LoadIlluminantText(index, text), 1);
    EXPECT_EQ(text, expected);
  }
  for (int index = 0; index < kIlluminantSlots; ++index) {
    std::string text;
    EXPECT_EQ(LoadIlluminantText(index, text), 1) << index;
    EXPECT_EQ(text, LoadStringResource(kIlluminantTextBase + static_cast<std::uint32_t>(index)));
    if (index >= 17) {
      EXPECT_EQ(text, std::to_string(index) + "|None");
    }
  }
  for (int index : {-1, 31, 112}) {  // 112 would be string 496, an observer text
    std::string text = "stale";
    EXPECT_EQ(LoadIlluminantText(index, text), 0) << "index " << index;
    EXPECT_EQ(text, "");
  }
}

TEST(IlluminantTexts, CodeAndNameSplitAtTheFirstBar) {
  std::string code;
  std::string name;
  EXPECT_EQ(LoadIlluminantCode(15, code), 1);
  EXPECT_EQ(LoadIlluminantName(15, name), 1);
  EXPECT_EQ(code, "HM");
  EXPECT_EQ(name, "Horizon - Macbeth");
  EXPECT_EQ(LoadIlluminantCode(30, code), 1);
  EXPECT_EQ(code, "30");
  EXPECT_EQ(LoadIlluminantName(-1, name), 0);
  EXPECT_EQ(name, "");

  EXPECT_EQ(IlluminantCodeOf("a|b|c"), "a");
  EXPECT_EQ(IlluminantNameOf("a|b|c"), "b|c");
  EXPECT_EQ(IlluminantCodeOf("plain"), "plain");
  EXPECT_EQ(IlluminantNameOf("plain"), "plain");
  EXPECT_EQ(IlluminantNameOf("X|"), "");
}

TEST(IlluminantTexts, PresentationOrderIsAlphabeticalByCode) {
  std::vector<int> order;
  ASSERT_EQ(LoadIlluminantOrder(order), 1);
  ASSERT_EQ(order, (std::vector<int>{0, 1, 3, 5, 6, 2, 7, 16, 10, 11, 12, 13, 14, 15, 4, 9, 8}));
  const std::vector<std::string> expected = {"A",   "C",  "CWF", "D50", "D55", "D65",
                                             "D75", "F4", "F6",  "F7",  "F8",  "F10",
                                             "H23", "HM", "T84", "U30", "U50"};
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::string code;
    EXPECT_EQ(LoadIlluminantCode(order[i], code), 1);
    EXPECT_EQ(code, expected[i]) << "position " << i;
  }
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
  struct Case {
    int observer;
    ObserverTextForm form;
    const char* text;
  };
  const Case cases[] = {
      {0, ObserverTextForm::kPlain, "2°"},    {1, ObserverTextForm::kPlain, "10°"},
      {0, ObserverTextForm::kDash, " - 2°"},  {1, ObserverTextForm::kDash, " - 10°"},
      {0, ObserverTextForm::kSlash, "/2°"},   {1, ObserverTextForm::kSlash, "/10°"},
      {2, ObserverTextForm::kPlain, "2°"},    {-1, ObserverTextForm::kSlash, "/2°"},
      {10, ObserverTextForm::kDash, " - 2°"},
  };
  for (const Case& c : cases) {
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
