#include "velquor/data/angle_set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "archive_test_support.h"
#include "velquor/frame/archive.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/message.h"

namespace velquor {
namespace {

using namespace std::string_literals;
using Codes = std::vector<std::uint8_t>;
using Order = std::vector<unsigned>;

// Codes used below, with their angles (sort key x 0.1); SCI has the key 450 of every
// geometry that is not a viewing angle.
constexpr std::uint8_t k15 = 4, k25 = 7, k45 = 8, k75 = 10, k110 = 11, kSCI = 12, kZero = 25,
                       kMinus15 = 41;

CAngleSet MakeSet(const Codes& codes) {
  CAngleSet set;
  EXPECT_TRUE(set.SetCodes(codes));
  return set;
}

Order SortedPositions(const CAngleSet& set) {
  Order order;
  for (unsigned i = 0; i < set.GetCount(); ++i) order.push_back(set.GetStoredPosition(i));
  return order;
}

std::string Stored(CAngleSet set) { return test::Stored(set); }

TEST(AngleSet, SortsByKeyKeepingStoredOrderAmongEqualKeys) {
  const struct { Codes codes; Order order; } cases[] = {
      {{kSCI, k15, k45}, {1, 0, 2}},                       // SCI and 45° share key 450
      {{kZero, k110, kMinus15, k15}, {2, 0, 3, 1}},        // -15° before 0°
      {{0, k45, kSCI, k15, 2, kZero}, {5, 3, 0, 1, 2, 4}}, // d8, 45°, SCI, d0 all key 450
      {{k45, k45, k15, k45}, {2, 0, 1, 3}},
      {{}, {}}};
  for (const auto& c : cases) {
    const CAngleSet set = MakeSet(c.codes);
    EXPECT_EQ(SortedPositions(set), c.order);
    for (unsigned i = 0; i < set.GetCount(); ++i)
      EXPECT_EQ(set.GetSortedIndex(set.GetStoredPosition(i)), i);
    set.AssertValid();
  }
}

TEST(AngleSet, RebuildResetsFlagsAndCurrentPositionAndIgnoresUnknownPositions) {
  CAngleSet set = MakeSet({k15, k45, k110});
  set.SetCurrentPosition(2);
  set.SetEnabled(0, false);
  set.SetSelected(100, false);  // 100: the current position, 2
  EXPECT_TRUE(!set.IsEnabled(0) && !set.IsSelected(2) && set.IsSelected(1));
  ASSERT_TRUE(set.SetCodes(std::span(set.GetCodes()).subspan(1)));
  Codes out{99};
  EXPECT_EQ(set.GetCodes(out), 2u);
  EXPECT_EQ(out, (Codes{k45, k110}));
  EXPECT_EQ(set.GetCurrentPosition(), 0u);
  for (unsigned p = 0; p < 2; ++p) EXPECT_TRUE(set.IsEnabled(p) && set.IsSelected(p)) << p;
  set.SetCurrentPosition(2);
  set.SetEnabled(5, false);
  EXPECT_TRUE(set.GetCurrentPosition() == 0u && !set.IsEnabled(5));
}

TEST(AngleSet, CurrentPositionStandsInForIndexOneHundred) {
  CAngleSet set = MakeSet({k110, k15, k45});  // sorted: 15° (pos 1), 45° (pos 2), 110° (pos 0)
  set.SetCurrentPosition(2);
  EXPECT_EQ((Codes{set.GetCodeAt(100), set.GetCodeAt(0), set.GetCodeAt(3)}),
            (Codes{k45, k110, CAngleSet::kNoCode}));
  EXPECT_TRUE(set.GetAngleDegrees(100) == 45.0 && set.GetAngleDegrees(3) == kMissing);
  // Names, stored and sorted; a set of one angle has none.
  EXPECT_EQ(set.GetName(0) + set.GetSortedName(0) + set.GetName(100) + set.GetName(3),
            "110°15°45°");
  EXPECT_EQ(MakeSet({k45}).GetName(0) + MakeSet({k45, kSCI}).GetName(1), "SCI");
}

// Ties go to the earlier stored position; the search starts from 10000 degrees, which an angle
// exactly that far away does not beat.
TEST(AngleSet, FindNearest) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double below = std::nextafter(20.0, 0.0), above = std::nextafter(20.0, 100.0);
  const struct { Codes codes; double angle; unsigned position; } cases[] = {
      {{k15, k25}, 20.0, 0},  {{k15, k25}, below, 0},  {{k15, k25}, above, 1},
      {{k25, k15}, 20.0, 0},  {{k25, k15}, above, 0},  {{k25, k15}, below, 1},
      {{k15, k45, kSCI}, 45.0, 1}, {{k15, kSCI, k45}, 50.0, 1}, {{kZero, kMinus15}, -7.5, 0},
      {{kZero, kMinus15}, std::nextafter(-7.5, -8.0), 1},     {{k110, k15}, -9985.0, 0},
      {{k110, k15}, std::nextafter(-9985.0, 0.0), 1}, {{k110, k15}, nan, 0}, {{}, 15.0, 0}};
  for (const auto& c : cases) EXPECT_EQ(MakeSet(c.codes).FindNearest(c.angle), c.position);
  // Code 9 is 72.5°: 27.5 from 45°, 37.5 from 110°; 40 is 105°; 200 is uncatalogued (key 450).
  const CAngleSet set = MakeSet({k110, k15, k45});
  const std::pair<std::uint8_t, unsigned> codes[] = {
      {kMinus15, 1}, {kSCI, 2}, {9, 2}, {40, 0}, {200, 2}};
  for (const auto& [code, position] : codes) EXPECT_EQ(set.FindNearestToCode(code), position);
}

TEST(AngleSet, MapSortedIndexTranslatesThroughTheNearestAngle) {
  // Sorted: set 15° (pos 1), 45° (pos 2), 110° (pos 0); other 25°, SCI = 45, 75°. 25° -> 15°
  // (10 away; 45° is 20), 45 -> 45°, 75° -> 45° (30 away; 110° is 35), 110° -> 75°; an index
  // not below other's count, or a set of fewer than two angles, gives 100.
  const CAngleSet set = MakeSet({k110, k15, k45}), other = MakeSet({kSCI, k25, k75});
  const CAngleSet one = MakeSet({k45}), empty;
  const struct { const CAngleSet *to, *from; unsigned index, mapped; } cases[] = {
      {&set, &other, 0, 0}, {&set, &other, 1, 1}, {&set, &other, 2, 1}, {&set, &other, 3, 100},
      {&other, &set, 2, 2}, {&one, &other, 0, 100}, {&set, &empty, 0, 100}};
  for (const auto& c : cases) EXPECT_EQ(c.to->MapSortedIndex(c.index, *c.from), c.mapped);
}

TEST(AngleSet, HoldsAtMostTwoHundredFiftySixAngles) {
  std::string message;
  MessageSink previous =
      SetMessageSink([&](MessageKind, std::string_view text) { message += text; });
  Codes codes(256);  // every code 0..45 repeated
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::uint8_t>(i % 46);
  CAngleSet set = MakeSet(codes);
  // Last sorted: the last stored 110° (code 11 at 46 k + 11, k = 5); first: -15°.
  EXPECT_EQ(SortedPositions(set).back() + SortedPositions(set).front() * 1000, 41241u);
  EXPECT_EQ(message, "");
  codes.push_back(0);
  set.SetCurrentPosition(7);
  EXPECT_FALSE(set.SetCodes(codes));
  EXPECT_TRUE(set.GetCount() == 256u && set.GetCurrentPosition() == 7u);
  EXPECT_NE(message.find("257"), std::string::npos) << message;
  SetMessageSink(std::move(previous));
}

TEST(AngleSetArchive, FourByteCountThenCodesAndLoadingRebuilds) {
  EXPECT_EQ(Stored(MakeSet({kSCI, k15, k45})), "\x03\0\0\0\x0c\x04\x08"s);
  std::istringstream in("\x04\0\0\0\x0b\x19\x29\x0c"s);
  CArchive archive(in);
  CAngleSet set = MakeSet({k15, k25});
  set.SetCurrentPosition(1);
  set.SetEnabled(0, false);
  set.Serialize(archive);
  EXPECT_EQ(set.GetCodes(), (Codes{11, 25, 41, 12}));
  EXPECT_EQ(SortedPositions(set), (Order{2, 1, 3, 0}));
  EXPECT_TRUE(set.GetCurrentPosition() == 0u && set.IsEnabled(0) && in.peek() == std::istringstream::traits_type::eof());
  test::Load(set, Stored(MakeSet(Codes(256, k110))));  // loads at the limit
  EXPECT_EQ(set.GetCodes(), Codes(256, k110));
}

TEST(AngleSetArchive, BadArchivesThrowAndLeaveTheSetAlone) {
  using Cause = ArchiveError::Cause;
  // Causes when the archive knows how many bytes are left, and when it finds out at the end.
  // The compact count form is not this archive's: 0xFFFF then a 32-bit 2 reads as 0x0002FFFF.
  const struct { std::string bytes; Cause seekable, stream; } cases[] = {
      {"\x03\0"s, Cause::kEndOfFile, Cause::kEndOfFile},
      {"\x03\0\0\0\x04\x08"s, Cause::kBadCount, Cause::kEndOfFile},
      {"\x01\x01\0\0"s + std::string(257, '\x04'), Cause::kBadCount, Cause::kBadCount},
      {"\xFF\xFF\x02\0\0\0\x04\x08"s, Cause::kBadCount, Cause::kBadCount}};
  for (const auto& c : cases) {
    for (bool seekable : {true, false}) {
      CAngleSet set = MakeSet({k15, k45});
      set.SetCurrentPosition(1);
      EXPECT_EQ(test::Loaded(c.bytes, seekable, [&](CArchive& in) { set.Serialize(in); }),
                seekable ? c.seekable : c.stream)
          << c.bytes.size() << seekable;
      EXPECT_EQ(set.GetCodes(), (Codes{k15, k45}));
      EXPECT_EQ(set.GetCurrentPosition(), 1u);
    }
  }
}

}  // namespace
}  // namespace velquor
