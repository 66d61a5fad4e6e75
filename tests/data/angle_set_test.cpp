#include "velquor/data/angle_set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "velquor/frame/archive.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/message.h"

namespace velquor {
namespace {

using Codes = std::vector<std::uint8_t>;

// Codes used below, with their angles (sort key x 0.1).
constexpr std::uint8_t k15 = 4;     // 15°
constexpr std::uint8_t k25 = 7;     // 25°
constexpr std::uint8_t k45 = 8;     // 45°
constexpr std::uint8_t k75 = 10;    // 75°
constexpr std::uint8_t k110 = 11;   // 110°
constexpr std::uint8_t kSCI = 12;   // 45 (not a viewing angle)
constexpr std::uint8_t kZero = 25;  // 0°
constexpr std::uint8_t kMinus15 = 41;

CAngleSet MakeSet(const Codes& codes) {
  CAngleSet set;
  EXPECT_TRUE(set.SetCodes(codes));
  return set;
}

std::vector<unsigned> SortedPositions(const CAngleSet& set) {
  std::vector<unsigned> order;
  for (unsigned i = 0; i < set.GetCount(); ++i) order.push_back(set.GetStoredPosition(i));
  return order;
}

TEST(AngleSet, SortsByKeyKeepingStoredOrderAmongEqualKeys) {
  struct Case {
    Codes codes;
    std::vector<unsigned> order;
  };
  const Case cases[] = {
      // SCI and 45° share key 450: 15°, then SCI, 45° in stored order.
      {{kSCI, k15, k45}, {1, 0, 2}},
      // -15° (key -150) sorts before 0° (key 0).
      {{kZero, k110, kMinus15, k15}, {2, 0, 3, 1}},
      // d8, 45°, SCI, d0 all key 450; 0° and 15° come first.
      {{0, k45, kSCI, k15, 2, kZero}, {5, 3, 0, 1, 2, 4}},
      // Duplicated codes stay in stored order too.
      {{k45, k45, k15, k45}, {2, 0, 1, 3}},
      {{}, {}},
  };
  for (const Case& c : cases) {
    const CAngleSet set = MakeSet(c.codes);
    EXPECT_EQ(SortedPositions(set), c.order);
    for (unsigned i = 0; i < set.GetCount(); ++i) {
      EXPECT_EQ(set.GetSortedIndex(set.GetStoredPosition(i)), i);  // rank inverts order
    }
    set.AssertValid();
  }
}

TEST(AngleSet, RebuildResetsFlagsAndCurrentPosition) {
  CAngleSet set = MakeSet({k15, k45, k110});
  set.SetCurrentPosition(2);
  set.SetEnabled(0, false);
  set.SetSelected(100, false);  // 100: the current position, 2
  EXPECT_FALSE(set.IsEnabled(0));
  EXPECT_FALSE(set.IsSelected(2));
  EXPECT_TRUE(set.IsSelected(1));

  // Rebuilding from the set's own codes, and from a view of part of them.
  ASSERT_TRUE(set.SetCodes(set.GetCodes()));
  EXPECT_EQ(set.GetCodes(), (Codes{k15, k45, k110}));
  EXPECT_EQ(set.GetCurrentPosition(), 0u);
  for (unsigned p = 0; p < 3; ++p) EXPECT_TRUE(set.IsEnabled(p) && set.IsSelected(p)) << p;

  ASSERT_TRUE(set.SetCodes(std::span(set.GetCodes()).subspan(1)));
  Codes out{99};
  EXPECT_EQ(set.GetCodes(out), 2u);
  EXPECT_EQ(out, (Codes{k45, k110}));

  // Positions the set lacks are ignored.
  set.SetCurrentPosition(2);
  EXPECT_EQ(set.GetCurrentPosition(), 0u);
  set.SetEnabled(5, false);
  EXPECT_FALSE(set.IsEnabled(5));
}

TEST(AngleSet, CurrentPositionStandsInForIndexOneHundred) {
  CAngleSet set = MakeSet({k110, k15, k45});  // sorted: 15° (pos 1), 45° (pos 2), 110° (pos 0)
  set.SetCurrentPosition(2);
  EXPECT_EQ(set.GetCodeAt(100), k45);
  EXPECT_EQ(set.GetCodeAt(0), k110);
  EXPECT_EQ(set.GetCodeAt(3), CAngleSet::kNoCode);
  EXPECT_EQ(set.GetAngleDegrees(100), 45.0);
  EXPECT_EQ(set.GetAngleDegrees(3), kMissing);
  // Names: stored and sorted; a set of one angle or none has none.
  const CAngleSet one = MakeSet({k45});
  const struct {
    const CAngleSet* set;
    unsigned position;
    const char* name;
    const char* sortedName;
  } names[] = {{&set, 0, "110°", "15°"}, {&set, 100, "45°", "45°"}, {&set, 3, "", ""},
               {&one, 0, "", ""},        {&one, 100, "", ""}};
  for (const auto& n : names) {
    EXPECT_EQ(n.set->GetName(n.position), n.name) << n.position;
    EXPECT_EQ(n.set->GetSortedName(n.position), n.sortedName) << n.position;
  }
  EXPECT_EQ(CAngleSet().GetName(0), "");
  EXPECT_EQ(one.GetCodeAt(0), k45);
  EXPECT_EQ(MakeSet({k45, kSCI}).GetName(1), "SCI");
}

TEST(AngleSet, CopyAssignmentCopiesArraysAndCurrentPosition) {
  CAngleSet source = MakeSet({k25, k15, kSCI});
  source.SetCurrentPosition(1);
  source.SetEnabled(2, false);
  source.SetSelected(0, false);
  CAngleSet target = MakeSet({k110});
  target = source;
  EXPECT_EQ(target.GetCodes(), source.GetCodes());
  EXPECT_EQ(SortedPositions(target), (std::vector<unsigned>{1, 0, 2}));
  EXPECT_EQ(target.GetCurrentPosition(), 1u);
  EXPECT_FALSE(target.IsEnabled(2));
  EXPECT_FALSE(target.IsSelected(0));
  EXPECT_TRUE(target.IsSelected(1));
}

// Ties go to the earlier stored position; the search starts from 10000 degrees, which an angle
// exactly that far away does not beat.
TEST(AngleSet, FindNearest) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double below = std::nextafter(20.0, 0.0), above = std::nextafter(20.0, 100.0);
  // 20 is half-way between 15 and 25, -7.5 between -15 and 0; -9985 is 10000 from 15.
  const struct { Codes codes; double angle; unsigned position; } cases[] = {
      {{k15, k25}, 20.0, 0},  {{k15, k25}, below, 0},  {{k15, k25}, above, 1},
      {{k25, k15}, 20.0, 0},  {{k25, k15}, above, 0},  {{k25, k15}, below, 1},
      {{k15, k45, kSCI}, 45.0, 1}, {{k15, kSCI, k45}, 50.0, 1}, {{kZero, kMinus15}, -7.5, 0},
      {{kZero, kMinus15}, std::nextafter(-7.5, -8.0), 1},     {{k110, k15}, -9985.0, 0},
      {{k110, k15}, std::nextafter(-9985.0, 0.0), 1}, {{k110, k15}, nan, 0}, {{}, 15.0, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(MakeSet(c.codes).FindNearest(c.angle), c.position) << c.angle;
  }
  const CAngleSet set = MakeSet({k110, k15, k45});
  EXPECT_EQ(set.FindNearestToCode(kMinus15), 1u);
  EXPECT_EQ(set.FindNearestToCode(kSCI), 2u);  // key 450: at 45°
  EXPECT_EQ(set.FindNearestToCode(9), 2u);     // 72.5°: 27.5 from 45°, 37.5 from 110°
  EXPECT_EQ(set.FindNearestToCode(40), 0u);    // 105°
  EXPECT_EQ(set.FindNearestToCode(200), 2u);   // uncatalogued: key 450
}

TEST(AngleSet, MapSortedIndexTranslatesThroughTheNearestAngle) {
  // This set sorted: 15° (pos 1), 45° (pos 2), 110° (pos 0).
  const CAngleSet set = MakeSet({k110, k15, k45});
  // Other sorted: 25° (pos 1), SCI = 45 (pos 0), 75° (pos 2).
  const CAngleSet other = MakeSet({kSCI, k25, k75});
  EXPECT_EQ(set.MapSortedIndex(0, other), 0u);    // 25° -> 15° (10 away; 45° is 20)
  EXPECT_EQ(set.MapSortedIndex(1, other), 1u);    // 45 -> 45°
  EXPECT_EQ(set.MapSortedIndex(2, other), 1u);    // 75° -> 45° (30 away; 110° is 35)
  EXPECT_EQ(set.MapSortedIndex(3, other), 100u);  // not below other's count
  EXPECT_EQ(other.MapSortedIndex(2, set), 2u);  // 110° -> 75°, the last sorted
  EXPECT_EQ(MakeSet({k45}).MapSortedIndex(0, other), 100u);
  EXPECT_EQ(CAngleSet().MapSortedIndex(0, other), 100u);
  EXPECT_EQ(set.MapSortedIndex(0, CAngleSet()), 100u);
}

TEST(AngleSet, HoldsAtMostTwoHundredFiftySixAngles) {
  std::vector<std::string> messages;
  MessageSink previous = SetMessageSink([&](MessageKind kind, std::string_view text) {
    if (kind == MessageKind::kError) messages.emplace_back(text);
  });

  // 256 codes: every code 0..45 repeated; every byte index is used.
  Codes codes(256);
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::uint8_t>(i % 46);
  CAngleSet set;
  EXPECT_TRUE(set.SetCodes(codes));
  EXPECT_EQ(set.GetCount(), 256u);
  EXPECT_TRUE(messages.empty());
  set.AssertValid();
  // Last sorted: the last stored 110° (code 11 at 46 k + 11, largest k = 5); first: -15°.
  EXPECT_EQ(set.GetStoredPosition(255), 241u);
  EXPECT_EQ(set.GetStoredPosition(0), 41u);
  EXPECT_EQ(set.GetSortedIndex(241), 255u);

  codes.push_back(0);
  set.SetCurrentPosition(7);
  EXPECT_FALSE(set.SetCodes(codes));
  EXPECT_EQ(set.GetCount(), 256u);
  EXPECT_EQ(set.GetCurrentPosition(), 7u);
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_NE(messages[0].find("257"), std::string::npos) << messages[0];
  EXPECT_NE(messages[0].find("256"), std::string::npos) << messages[0];
  SetMessageSink(std::move(previous));
}

std::string Bytes(std::initializer_list<int> bytes) {
  std::string out;
  for (int b : bytes) out.push_back(static_cast<char>(b));
  return out;
}

std::string Stored(const CAngleSet& set) {
  std::ostringstream out;
  CArchive archive(out);
  const_cast<CAngleSet&>(set).Serialize(archive);
  return out.str();
}

TEST(AngleSetArchive, FourByteCountThenCodesInStoredOrder) {
  EXPECT_EQ(Stored(MakeSet({kSCI, k15, k45})), Bytes({3, 0, 0, 0, 12, 4, 8}));
  EXPECT_EQ(Stored(CAngleSet()), Bytes({0, 0, 0, 0}));
  const std::string full = Stored(MakeSet(Codes(256, k45)));
  ASSERT_EQ(full.size(), 260u);
  EXPECT_EQ(full.substr(0, 4), Bytes({0, 1, 0, 0}));
}

TEST(AngleSetArchive, LoadingRebuildsOrderAndFlags) {
  std::istringstream in(Bytes({4, 0, 0, 0, 11, 25, 41, 12}));
  CArchive archive(in);
  CAngleSet set = MakeSet({k15, k25});
  set.SetCurrentPosition(1);
  set.SetEnabled(0, false);
  set.Serialize(archive);
  EXPECT_EQ(set.GetCodes(), (Codes{11, 25, 41, 12}));
  EXPECT_EQ(SortedPositions(set), (std::vector<unsigned>{2, 1, 3, 0}));
  EXPECT_EQ(set.GetCurrentPosition(), 0u);
  EXPECT_TRUE(set.IsEnabled(0));
  EXPECT_EQ(in.peek(), std::char_traits<char>::eof());

  // Round trip at the limit.
  Codes codes(256);
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = static_cast<std::uint8_t>(255 - i);
  std::istringstream back(Stored(MakeSet(codes)));
  CArchive reader(back);
  CAngleSet loaded;
  loaded.Serialize(reader);
  EXPECT_EQ(loaded.GetCodes(), codes);
}

class UnseekableBuffer : public std::streambuf {
 public:
  explicit UnseekableBuffer(std::string data) : data_(std::move(data)) {
    setg(data_.data(), data_.data(), data_.data() + data_.size());
  }

 private:
  std::string data_;
};

TEST(AngleSetArchive, BadArchivesThrowAndLeaveTheSetAlone) {
  using Cause = ArchiveError::Cause;
  struct Case {
    std::string bytes;
    Cause seekable;  // the archive knows how many bytes are left
    Cause stream;    // it does not, and finds out at the end of the stream
  };
  const Case cases[] = {
      {Bytes({3, 0}), Cause::kEndOfFile, Cause::kEndOfFile},             // count cut short
      {Bytes({3, 0, 0, 0, 4, 8}), Cause::kBadCount, Cause::kEndOfFile},  // one code missing
      {Bytes({1, 1, 0, 0}) + std::string(257, '\x04'), Cause::kBadCount, Cause::kBadCount},
      {Bytes({0xFF, 0xFF, 0xFF, 0xFF, 4}), Cause::kBadCount, Cause::kBadCount},
      // The compact count form is not this archive's: 0xFFFF then a 32-bit 2 reads as the
      // 4-byte count 0x0002FFFF.
      {Bytes({0xFF, 0xFF, 2, 0, 0, 0, 4, 8}), Cause::kBadCount, Cause::kBadCount},
  };
  for (const Case& c : cases) {
    for (bool seekable : {true, false}) {
      CAngleSet set = MakeSet({k15, k45});
      set.SetCurrentPosition(1);
      std::istringstream seekIn(c.bytes);
      UnseekableBuffer buffer(c.bytes);
      std::istream streamIn(&buffer);
      CArchive archive(seekable ? static_cast<std::istream&>(seekIn) : streamIn);
      try {
        set.Serialize(archive);
        ADD_FAILURE() << "no error for " << c.bytes.size() << " bytes";
      } catch (const ArchiveError& e) {
        EXPECT_EQ(e.cause(), seekable ? c.seekable : c.stream)
            << c.bytes.size() << " bytes, seekable " << seekable;
      }
      EXPECT_EQ(set.GetCodes(), (Codes{k15, k45}));
      EXPECT_EQ(set.GetCurrentPosition(), 1u);
    }
  }
}

}  // namespace
}  // namespace velquor
