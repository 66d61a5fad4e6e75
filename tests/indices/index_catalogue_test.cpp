#include "velquor/indices/index_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "reference_table.h"
#include "velquor/frame/resources.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

using test::LoadReferenceTable;

std::uint32_t Id(const test::ReferenceRow& row, std::string_view column) {
  return static_cast<std::uint32_t>(row.Number(column));
}

// A set of indices_catalogue_ranges.csv: the union of its first..last ranges.
std::set<std::uint32_t> CatalogueSet(std::string_view name) {
  std::set<std::uint32_t> set;
  for (const auto& row : LoadReferenceTable("reference/indices_catalogue_ranges.csv")) {
    if (row.Text("set") != name) continue;
    for (std::uint32_t id = Id(row, "first"); id <= Id(row, "last"); ++id) set.insert(id);
  }
  return set;
}

std::string Texts(std::uint32_t id) {
  std::string name = "stale", longName = "stale", heading = "stale";
  LoadIndexName(id, name);
  LoadIndexLongName(id, longName);
  LoadIndexHeading(id, heading);
  return name + "|" + longName + "|" + heading;
}

TEST(IndexCatalogue, ExactlyTheCataloguedIdentifiersHaveTexts) {
  for (const auto& row : LoadReferenceTable("reference/indices_catalogue_texts.csv")) {
    const std::string& raw = row.Text("heading");
    const auto at = raw.find("\\n");
    const std::string heading =
        at == std::string::npos ? raw : raw.substr(0, at) + "\n" + raw.substr(at + 2);
    EXPECT_EQ(Texts(Id(row, "identifier")), row.Text("name") + "|" + row.Text("long_name") + "|" +
                                                 heading) << row.Where();
  }
  // Every other identifier of both ranges has no text, and the loaders empty the string. (From
  // 256 on, a base identifier's short name addresses the long-name block, and so on.)
  const auto named = CatalogueSet("named");
  ASSERT_EQ(named.size(), 238u);
  for (std::uint32_t id = 0; id < 1256; id = id == 255 ? 1000 : id + 1) {
    const std::string texts = Texts(id);
    if (named.count(id) == 0) {
      EXPECT_EQ(texts, "||") << id;
    } else {
      EXPECT_NE(texts[0], '|') << id;
      EXPECT_EQ(texts.find("||"), std::string::npos) << id;
    }
  }
  EXPECT_EQ(Texts(0xFFFFFFFFu), "||");
}

TEST(IndexCatalogue, StringIdentifiersFollowTheBlockArithmetic) {
  for (const auto& row : LoadReferenceTable("reference/indices_string_ids.csv")) {
    const std::string& text = row.Text("text");
    const auto kind = text == "name"        ? IndexText::kName
                      : text == "long_name" ? IndexText::kLongName
                                            : IndexText::kHeading;
    // 0: beyond the string table, no identifier rather than a wrapped one.
    EXPECT_EQ(GetIndexStringId(Id(row, "identifier"), kind).value_or(0), Id(row, "string_id"))
        << row.Where();
  }
}

TEST(IndexCatalogue, LoadersReadTheAddressedStrings) {
  // A translation puts markers on the strings next to the block boundaries.
  ASSERT_EQ(LoadTranslatedStringsFromText("21481\tat 21481\n21250\tat 21250\n"
                                          "21737\tat 21737\n21993\tat 21993\n"),
            1);
  EXPECT_EQ(Texts(999), "at 21481|at 21737|at 21993");
  std::string name;
  LoadIndexName(1000, name);
  EXPECT_EQ(name, "at 21250");
  ClearTranslatedStrings();
}

TEST(IndexMask, FixedAndSensorMasks) {
  for (const auto& row : LoadReferenceTable("reference/indices_masks.csv")) {
    std::string mask = "stale";
    GetIndexMask(Id(row, "identifier"), mask, Id(row, "parameter"));
    EXPECT_EQ(mask, row.Text("mask")) << row.Where();
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

TEST(IndexPredicates, MembershipOverBothRanges) {
  const auto infoField = CatalogueSet("info_field"), notFlagA = CatalogueSet("not_flag_a");
  const auto notFlagB = CatalogueSet("not_flag_b"), flagC = CatalogueSet("flag_c");
  for (std::uint32_t id = 0; id <= 2002; ++id) {
    const std::uint32_t probe = id == 2001 ? 0xFFFFFFFFu : id == 2002 ? 0x80000000u : id;
    const bool a = notFlagA.count(probe) == 0;
    EXPECT_EQ(IsIndexInfoField(probe), infoField.count(probe) == 1) << probe;
    EXPECT_EQ(IndexFlagA(probe), a) << probe;
    EXPECT_EQ(IndexFlagB(probe), a && notFlagB.count(probe) == 0) << probe;
    EXPECT_EQ(IndexFlagC(probe), flagC.count(probe) == 1) << probe;
  }
}

}  // namespace
}  // namespace velquor
