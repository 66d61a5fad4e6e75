#include "velquor/frame/archive.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "velquor/data/angle_set.h"
#include "velquor/data/dword_array.h"
#include "velquor/data/ks_data.h"
#include "velquor/data/string_array.h"

namespace velquor {
namespace {

std::string Bytes(std::initializer_list<int> bytes) {
  std::string out;
  for (int b : bytes) out.push_back(static_cast<char>(b));
  return out;
}

TEST(ArchiveCount, CompactFormByteForByteAndBack) {
  // Below 0xFFFF a 16-bit count; from 0xFFFF on, the escape 0xFFFF and then the 32-bit count.
  const std::pair<std::uint64_t, std::string> cases[] = {
      {0, Bytes({0x00, 0x00})},
      {40, Bytes({0x28, 0x00})},
      {0xFFFE, Bytes({0xFE, 0xFF})},
      {0xFFFF, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00})},
      {70000, Bytes({0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00})},
      {0xFFFFFFFF, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF})},
  };
  for (const auto& [count, bytes] : cases) {
    std::ostringstream out;
    CArchive storing(out);
    storing.WriteCount(count);
    EXPECT_EQ(out.str(), bytes) << count;
    std::istringstream in(bytes);
    CArchive loading(in);
    EXPECT_EQ(loading.ReadCount(), count);
  }
  std::ostringstream out;
  CArchive storing(out);
  EXPECT_THROW(storing.WriteCount(0x100000000ull), ArchiveError);
}

TEST(ArchiveValues, RawLittleEndianImages) {
  std::ostringstream out;
  CArchive archive(out);
  archive << 1.0 << std::int32_t{-2} << std::uint16_t{0x1234};
  EXPECT_EQ(out.str(), Bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0xFE, 0xFF, 0xFF, 0xFF, 0x34, 0x12}));
}

// A stream that cannot seek, so the archive cannot know how much is left.
class OneWayBuffer : public std::streambuf {
 public:
  explicit OneWayBuffer(std::string data) : data_(std::move(data)) {
    setg(data_.data(), data_.data(), data_.data() + data_.size());
  }

 private:
  std::string data_;
};

TEST(ArchiveHostile, TruncatedAndOversizedStreamsFailCleanly) {
  // A seekable stream's counts are checked against the bytes left (kBadCount) before anything
  // is read; a one-way stream fails where it ends (kEndOfFile). The target stays untouched.
  struct Case {
    std::string bytes;
    bool oneWay;
    ArchiveError::Cause cause;
  };
  const std::string claimsFourBillion = Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F});
  const Case cases[] = {
      {Bytes({3, 0}) + std::string(16, '\0'), false, ArchiveError::Cause::kBadCount},
      {claimsFourBillion + Bytes({1, 2, 3, 4}), false, ArchiveError::Cause::kBadCount},
      {claimsFourBillion + std::string(24, '\0'), true, ArchiveError::Cause::kEndOfFile},
      {Bytes({0xFF}), false, ArchiveError::Cause::kEndOfFile},  // inside the count
      {Bytes({0xFF, 0xFF, 0x01}), true, ArchiveError::Cause::kEndOfFile},
  };
  for (const Case& c : cases) {
    OneWayBuffer oneWay(c.bytes);
    std::istringstream seekable(c.bytes);
    std::istream oneWayStream(&oneWay);
    CArchive archive(c.oneWay ? oneWayStream : static_cast<std::istream&>(seekable));
    EXPECT_EQ(archive.RemainingBytes().has_value(), !c.oneWay);
    std::vector<double> values{1.0};
    try {
      archive.ReadElements(values, archive.ReadCount());
      ADD_FAILURE() << "no error for " << c.bytes.size() << " bytes";
    } catch (const ArchiveError& error) {
      EXPECT_EQ(error.cause(), c.cause) << c.bytes.size() << " bytes";
    }
    EXPECT_EQ(values, std::vector<double>{1.0});
  }
}

// Seven bytes claiming 2^32 - 1 elements (the count escape, then 0xFFFFFFFF, then one byte)
// on a stream that cannot seek: every loader fails with ArchiveError instead of allocating for
// the claimed count.
TEST(ArchiveHostile, EveryLoaderFailsCleanlyOnAShortOneWayStream) {
  auto load = [](CObject&& object) {
    OneWayBuffer buffer(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}));
    std::istream in(&buffer);
    CArchive archive(in);
    object.Serialize(archive);
  };
  EXPECT_THROW(load(CStringArray()), ArchiveError);
  EXPECT_THROW(load(CDWordArray()), ArchiveError);
  EXPECT_THROW(load(CUIntArray()), ArchiveError);
  EXPECT_THROW(load(CValueArray()), ArchiveError);
  EXPECT_THROW(load(CKSData()), ArchiveError);
  EXPECT_THROW(load(CAngleSet()), ArchiveError);
}

TEST(ArchiveMode, LoadingAndStoringAreSeparate) {
  std::ostringstream out;
  CArchive storing(out);
  EXPECT_TRUE(storing.IsStoring());
  EXPECT_THROW(storing.ReadCount(), ArchiveError);
  std::istringstream in(Bytes({1, 0}));
  CArchive loading(in);
  EXPECT_TRUE(loading.IsLoading());
  EXPECT_THROW(loading.WriteCount(1), ArchiveError);
}

}  // namespace
}  // namespace velquor
