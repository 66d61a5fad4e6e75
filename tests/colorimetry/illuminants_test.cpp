#include "velquor/colorimetry/illuminants.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "velquor/frame/resources.h"

namespace velquor {
namespace {

struct TextCase {
  std::uint32_t id;
  const char* text;
};

// The catalogue texts as published with the library (UTF-8 degree sign).
constexpr TextCase kTexts[] = {
    {384, "A|Tungsten"},
    {385, "C|North Sky Daylight"},
    {386, "D65|Daylight 6500° Kelvin"},
    {387, "CWF|Cool White Fluorescent (F2)"},
    {388, "T84|TL84 (F11)"},
    {389, "D50|Daylight 5000° Kelvin"},
    {390, "D55|Daylight 5500° Kelvin"},
    {391, "D75|Daylight 7500° Kelvin"},
    {392, "U50|Ultralume Fluorescent 5000° Kelvin"},
    {393, "U30|Ultralume Fluorescent 3000° Kelvin (F12)"},
    {394, "F6|Fluorescent 4150° Kelvin (F6)"},
    {395, "F7|DLF Broad Band (F7)"},
    {396, "F8|Fluorescent 5000° Kelvin (F8)"},
    {397, "F10|Fluorescent 5000° Kelvin (F10)"},
    {398, "H23|Horizon 2300° Kelvin"},
    {399, "HM|Horizon - Macbeth"},
    {400, "F4|Warm White Fluorescent (WWF)"},
    {415, "0,1,3,5,6,2,7,16,10,11,12,13,14,15,4,9,8"},
    {496, "2°"},
    {497, "10°"},
    {498, " - 2°"},
    {499, " - 10°"},
    {500, "/2°"},
    {501, "/10°"},
    {504, "Illuminant "},
};

// Slots 17-30 (strings 401-414) read "<index>|None".
std::string TextOf(std::uint32_t id) {
  if (id >= 401 && id <= 414) {
    char text[16];
    std::snprintf(text, sizeof text, "%u|None", id - 384);
    return text;
  }
  for (const TextCase& c : kTexts) {
    if (c.id == id) return c.text;
  }
  return "?";
}

TEST(IlluminantTexts, EveryIdentifierHasItsText) {
  std::vector<std::uint32_t> ids;
  for (std::uint32_t id = 384; id <= 415; ++id) ids.push_back(id);
  for (std::uint32_t id : {496, 497, 498, 499, 500, 501, 504}) ids.push_back(id);
  for (std::uint32_t id : ids) {
    std::string text;
    EXPECT_EQ(LoadStringResource(id, text), 1) << "id " << id;
    EXPECT_EQ(text, TextOf(id)) << "id " << id;
  }
}

TEST(IlluminantTexts, LoaderCoversTheWholeCatalogueAndNothingElse) {
  for (int index = 0; index < kIlluminantSlots; ++index) {
    std::string text;
    EXPECT_EQ(LoadIlluminantText(index, text), 1);
    EXPECT_EQ(text, TextOf(kIlluminantTextBase + static_cast<std::uint32_t>(index)));
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
