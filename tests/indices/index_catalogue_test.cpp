#include "velquor/indices/index_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <set>
#include <string>
#include <string_view>

#include "reference_table.h"
#include "velquor/frame/resources.h"
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
    EXPECT_EQ(Texts(Id(row, "identifier")),
              row.Text("name") + "|" + row.Text("long_name") + "|" + heading) << row.Where();
  }
  // Every other identifier of both ranges has no text, and the loaders empty the string. (From
  // 256 on, a base identifier's short name addresses the long-name block, and so on.)
  const auto named = CatalogueSet("named");
  ASSERT_EQ(named.size(), 238u);
  for (std::uint32_t id = 0; id < 1256; id = id == 255 ? 1000 : id + 1) {
    const std::string texts = Texts(id);
    EXPECT_EQ(texts == "||", named.count(id) == 0) << id;
    EXPECT_TRUE(named.count(id) == 0 || (texts[0] != '|' && texts.find("||") == std::string::npos))
        << id;
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

// The system clock in a time zone five hours behind UTC without daylight saving.
class FiveHoursBehindUtc final : public Clock {
 public:
  TimeValue Now() const override { return SystemClock().Now(); }
  std::uint32_t TickCount() const override { return SystemClock().TickCount(); }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    local = CalendarFromSeconds(time - kOffset);
    return true;
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return SecondsFromCalendar(local) + kOffset;
  }

 private:
  static constexpr TimeValue kOffset = 5 * 3600;
};

TEST(IndexMask, FixedSensorAndLocalDateTimeMasks) {
  for (const auto& row : LoadReferenceTable("reference/indices_masks.csv")) {
    std::string mask = "stale";
    GetIndexMask(Id(row, "identifier"), mask, Id(row, "parameter"));
    EXPECT_EQ(mask, row.Text("mask")) << row.Where();
  }
  // 22 December 1998 23:59:59 in local time five hours behind UTC, in the locale's formats (a
  // mask made from UTC seconds would show 23 December, 04:59:59).
  const FiveHoursBehindUtc clock;
  const Clock* previousClock = SetClock(&clock);
  LocaleDescription us = CLocaleDescription();
  us.shortDate = "M/d/yyyy";
  us.timeOfDay = "h:mm:ss tt";
  const DescribedLocale locale(us);
  const LocaleFormat* previousLocale = SetLocaleFormat(&locale);
  std::string date, time;
  GetIndexMask(kIndexDate, date, 0);
  GetIndexMask(kIndexTime, time, 0);
  EXPECT_EQ(date + " " + time, "12/22/1998 11:59:59 PM");
  SetLocaleFormat(previousLocale);
  SetClock(previousClock);
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
