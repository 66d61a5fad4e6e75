#include "velquor/indices/index_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <set>
#include <string>

#include "velquor/frame/resources.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

std::set<std::uint32_t> Range(std::uint32_t first, std::uint32_t last) {
  std::set<std::uint32_t> set;
  for (std::uint32_t i = first; i <= last; ++i) set.insert(i);
  return set;
}

std::set<std::uint32_t> Union(std::initializer_list<std::set<std::uint32_t>> parts) {
  std::set<std::uint32_t> set;
  for (const auto& part : parts) set.insert(part.begin(), part.end());
  return set;
}

// Identifiers the tests sweep: all base and difference identifiers and their neighbours.
constexpr std::uint32_t kSweepEnd = 2000;

// A sample of the catalogue's texts, proof-read against its published names: the first and last
// of each block, headings with an empty first line, and difference variants with their delta.
struct IndexTexts {
  std::uint32_t identifier;
  const char* name;
  const char* longName;
  const char* heading;
};
const IndexTexts kIndexTexts[] = {
    {0, "YI E313-73 (R)", "Yellowness: ASTM E313-1973 (Recalc.)", "YI (R)\nE313-73"},
    {13, "% Haze", "Haze: ASTM D1003 (%)", "\n%Haze"},
    {57, "WI CIE", "Whiteness: CIE", "WI\nCIE-94"},
    {67, "A05 (Step)", "ISO 105.A05.2: Gray Scale (Step)", "Gray Scale (Step)\nA05"},
    {113, "h°", "CIE L*a*b*: h°", "\nh°"},
    {175, "Base % Chr. Str. User", "Base Strength: Chromatic, User Wavelength (%)",
     "Base % Chr. Str.\nUser"},
    {186, "ISO 2470-1 Br", "Brightness: ISO 2470-1", "Br.\nISO 2470-1"},
    {1000, "ΔYI E313-73 (R)", "Yellowness: ASTM E313-1973 Δ(Recalc.)", "ΔYI (R)\nE313-73"},
    {1013, "Δ% Haze", "Haze: ASTM D1003 (%) Δ", "Δ\n%Haze"},
    {1057, "ΔWI CIE", "Whiteness: CIE Δ", "ΔWI\nCIE-94"},
    {1169, "ΔSparkle Intensity 75°", "Effect: Sparkle Intensity 75° Δ",
     "ΔSparkle Intensity\n75°"},
    {1186, "ΔISO 2470-1 Br", "Brightness: ISO 2470-1 Δ", "ΔBr.\nISO 2470-1"},
};

TEST(IndexCatalogue, ExactlyTheCataloguedIdentifiersHaveTexts) {
  for (const auto& row : kIndexTexts) {
    SCOPED_TRACE(row.identifier);
    std::string text = "stale";
    LoadIndexName(row.identifier, text);
    EXPECT_EQ(text, row.name);
    LoadIndexLongName(row.identifier, text);
    EXPECT_EQ(text, row.longName);
    LoadIndexHeading(row.identifier, text);
    EXPECT_EQ(text, row.heading);
  }
  for (const std::uint32_t id : Union({{114, 118, 124, 130}, Range(136, 153), {157}})) {
    std::string name, longName, heading = "stale";
    LoadIndexName(id, name);
    LoadIndexLongName(id, longName);
    LoadIndexHeading(id, heading);
    EXPECT_EQ(name + "|" + longName + "|" + heading, "None|None|") << id;
  }
  // 138 named base identifiers, 23 reserved ones and 77 difference variants; every other
  // identifier of both ranges has no text, and the loaders empty the string. (From 256 on, a
  // base identifier's short name addresses the long-name block, and so on.)
  const auto listed = Union({Range(0, 67), Range(70, 81), Range(85, 87), Range(105, 153),
                             Range(157, 178), Range(180, 186), Range(1000, 1006),
                             Range(1013, 1022), {1031}, Range(1040, 1042), Range(1051, 1065),
                             {1070, 1071, 1087}, Range(1109, 1113), Range(1115, 1117),
                             Range(1119, 1123), Range(1125, 1129), Range(1131, 1135),
                             Range(1160, 1170), {1174, 1181, 1184, 1186}});
  ASSERT_EQ(listed.size(), 238u);
  for (const std::uint32_t id : Union({Range(0, 255), Range(1000, 1255)})) {
    SCOPED_TRACE(id);
    std::string name = "stale", longName = "stale", heading = "stale";
    LoadIndexName(id, name);
    LoadIndexLongName(id, longName);
    LoadIndexHeading(id, heading);
    const bool has = listed.count(id) != 0;
    EXPECT_EQ(name.empty(), !has);
    EXPECT_EQ(longName.empty(), !has);
    if (!has) {
      EXPECT_EQ(heading, "");
    }
  }
}

TEST(IndexCatalogue, StringIdentifiersFollowTheBlockArithmetic) {
  struct Case {
    std::uint32_t identifier;
    IndexText text;
    std::uint32_t expected;
  };
  const Case cases[] = {
      {0, IndexText::kName, 20482},
      {0, IndexText::kLongName, 20738},
      {0, IndexText::kHeading, 20994},
      {186, IndexText::kName, 20668},
      {256, IndexText::kName, 20738},
      {256, IndexText::kLongName, 20994},
      {999, IndexText::kName, 21481},
      {999, IndexText::kHeading, 21993},
      {1000, IndexText::kName, 21250},
      {1000, IndexText::kLongName, 21506},
      {1000, IndexText::kHeading, 21762},
      {1186, IndexText::kHeading, 21948},
      // 21250 + (d - 1000) = 65535, the last string identifier
      {45285, IndexText::kName, 65535},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(GetIndexStringId(c.identifier, c.text), c.expected) << c.identifier;
  }
  // Beyond the string table: no identifier, rather than a wrapped one.
  EXPECT_FALSE(GetIndexStringId(45286, IndexText::kName));
  EXPECT_FALSE(GetIndexStringId(0xFFFFFFFFu, IndexText::kName));
  EXPECT_FALSE(GetIndexStringId(0xFFFFFFFFu, IndexText::kHeading));
  std::string text = "stale";
  LoadIndexName(0xFFFFFFFFu, text);
  EXPECT_EQ(text, "");
}

TEST(IndexCatalogue, LoadersReadTheAddressedStrings) {
  // A translation puts markers on the strings next to the block boundaries.
  ASSERT_EQ(LoadTranslatedStringsFromText("21481\tat 21481\n21250\tat 21250\n"
                                          "21737\tat 21737\n21993\tat 21993\n"),
            1);
  std::string name, longName, heading;
  LoadIndexName(999, name);
  LoadIndexLongName(999, longName);
  LoadIndexHeading(999, heading);
  EXPECT_EQ(name, "at 21481");
  EXPECT_EQ(longName, "at 21737");
  EXPECT_EQ(heading, "at 21993");
  LoadIndexName(1000, name);
  EXPECT_EQ(name, "at 21250");
  ClearTranslatedStrings();
}

// ---- display masks

TEST(IndexMask, FixedMasks) {
  const std::string k16(16, '0');
  const std::string k15(15, '0');
  struct Case {
    std::uint32_t identifier;
    std::string mask;
  };
  const Case cases[] = {
      {0, "0000.00"},    {3, "0000.00"},    {1003, "0000.00"}, {27, "10.0/10.0"},
      {1027, "0000.00"}, {43, "CREEMM"},    {1043, "0000.00"}, {81, "0000.00"},
      {82, k16},         {84, k16},         {85, "0000.00"},   {86, "0000.00"},
      {87, "-000.00"},   {1087, "-000.00"}, {2087, "0000.00"}, {88, k16},
      {104, k16},        {1082, "0000.00"}, {105, "00000.00"}, {106, "00000.00"},
      {107, "0000.00"},  {108, "00000.00"}, {109, "0000.00"},  {1105, "0000.00"},
      {181, "0000.00"},  {182, k15},        {183, k15},        {184, "0000.00"},
      {1182, "0000.00"}, {1047, "0000.00"}, {1048, "0000.00"}, {0xFFFFFFFFu, "0000.00"},
  };
  for (const auto& c : cases) {
    std::string mask = "stale";
    GetIndexMask(c.identifier, mask, 7);
    EXPECT_EQ(mask, c.mask) << c.identifier;
  }
}

TEST(IndexMask, SensorMaskNamesTheAngleCode) {
  struct Case {
    std::uint32_t parameter;
    const char* mask;
  };
  // Angle names 432 + code: 0 "d8", 1 "45/0", 12 "SCI"; codes from 46 on are not catalogued.
  const Case cases[] = {{0, "d8"},       {1, "45/0"},          {12, "SCI"},
                        {46, "0000.00"}, {256 + 1, "0000.00"}, {0xFFFFFFFFu, "0000.00"}};
  for (const auto& c : cases) {
    std::string mask;
    GetIndexMask(kIndexSensor, mask, c.parameter);
    EXPECT_EQ(mask, c.mask) << c.parameter;
  }
}

// A clock whose local time is UTC + offset, without daylight saving.
class OffsetClock final : public Clock {
 public:
  explicit OffsetClock(std::int64_t offset) : offset_(offset) {}
  TimeValue Now() const override { return 0; }
  std::uint32_t TickCount() const override { return 0; }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    local = CalendarFromSeconds(time + offset_);
    return true;
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return SecondsFromCalendar(local) - offset_;
  }

 private:
  std::int64_t offset_;
};

TEST(IndexMask, DateAndTimeMasksFollowTheLocale) {
  LocaleDescription us = CLocaleDescription();
  us.shortDate = "M/d/yyyy";
  us.longDate = "dddd, MMMM d, yyyy";
  us.timeOfDay = "h:mm:ss tt";
  LocaleDescription german = CLocaleDescription();
  german.shortDate = "dd.MM.yyyy";
  german.longDate = "dddd, d. MMMM yyyy";
  german.timeOfDay = "HH:mm:ss";
  const DescribedLocale usLocale(us);
  const DescribedLocale germanLocale(german);

  struct Case {
    const LocaleFormat* locale;
    std::int64_t offset;
    const char* date;
    const char* time;
  };
  // 22 December 1998 in the short date format; 23:59:59 in the time format, in local time
  // whatever the zone (a mask made from UTC seconds would show 21 or 23 December, or 00:59:59).
  const Case cases[] = {
      {&usLocale, 0, "12/22/1998", "11:59:59 PM"},
      {&germanLocale, 0, "22.12.1998", "23:59:59"},
      {&germanLocale, 3600, "22.12.1998", "23:59:59"},
      {&usLocale, -18000, "12/22/1998", "11:59:59 PM"},
  };
  for (const auto& c : cases) {
    const OffsetClock clock(c.offset);
    const Clock* previousClock = SetClock(&clock);
    const LocaleFormat* previousLocale = SetLocaleFormat(c.locale);
    std::string date, time;
    GetIndexMask(kIndexDate, date, 0);
    GetIndexMask(kIndexTime, time, 0);
    EXPECT_EQ(date, c.date) << c.offset;
    EXPECT_EQ(time, c.time) << c.offset;
    SetLocaleFormat(previousLocale);
    SetClock(previousClock);
  }
}

// ---- classification

TEST(IndexPredicates, MembershipOverBothRanges) {
  const auto infoField = Union(
      {Range(43, 48), Range(72, 81), Range(82, 84), Range(88, 104), {105, 106, 108, 182, 183}});
  const std::set<std::uint32_t> notFlagA = {25, 27, 43, 44, 45, 47, 48, 66, 67, 158, 175, 182, 183};
  const std::set<std::uint32_t> notFlagB = {29, 30,  45,  66,  67,  82, 83,
                                            84, 105, 106, 108, 158, 180};
  const std::set<std::uint32_t> flagC = {
      7,    8,    10,   11,   12,   18,   22,   26,   27,   43,   44,   47,   48,   52,   53,
      55,   56,   57,   59,   61,   66,   67,   70,   175,  176,  177,  182,  183,  186,  1007,
      1008, 1017, 1018, 1022, 1052, 1053, 1055, 1057, 1059, 1061, 1070, 1175, 1176, 1177, 1186};
  std::set<std::uint32_t> sweep = Range(0, kSweepEnd);
  sweep.insert({0xFFFFFFFFu, 0x80000000u});
  for (const std::uint32_t id : sweep) {
    const bool a = notFlagA.count(id) == 0;
    EXPECT_EQ(IsIndexInfoField(id), infoField.count(id) == 1) << id;
    EXPECT_EQ(IndexFlagA(id), a) << id;
    EXPECT_EQ(IndexFlagB(id), a && notFlagB.count(id) == 0) << id;
    EXPECT_EQ(IndexFlagC(id), flagC.count(id) == 1) << id;
  }
}

}  // namespace
}  // namespace velquor
