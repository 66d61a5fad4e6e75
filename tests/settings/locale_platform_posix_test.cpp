#include "velquor/settings/locale_platform.h"

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

// The platform's C locale matches the built-in description; a locale that is not installed
// gives none.
TEST(LocalePlatformPosix, CLocaleMatchesTheBuiltInDescription) {
  const std::optional<LocaleDescription> c = DescribePlatformLocale("C");
  const auto fields = [](const LocaleDescription& d) {
    return std::tuple(d.shortDate, d.longDate, d.timeOfDay, d.timeSeparator, d.amDesignator,
                      d.pmDesignator, d.monthNames, d.monthAbbreviations, d.dayNames,
                      d.dayAbbreviations);
  };
  EXPECT_TRUE(fields(c.value()) == fields(CLocaleDescription()));
  EXPECT_FALSE(DescribePlatformLocale("xx_YY.no-such-codeset").has_value());
  EXPECT_NE(dynamic_cast<const DescribedLocale*>(&UserLocaleFormat()), nullptr);
}

}  // namespace
}  // namespace velquor
