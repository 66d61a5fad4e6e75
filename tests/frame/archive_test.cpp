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

std::string StoredCount(std::uint64_t count) {
  std::ostringstream out;
  CArchive archive(out);
  archive.WriteCount(count);
  return out.str();
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
    EXPECT_EQ(StoredCount(count), bytes) << count;
    std::istringstream in(bytes);
    CArchive archive(in);
    EXPECT_EQ(archive.ReadCount(), count);
  }
  EXPECT_THROW(StoredCount(0x100000000ull), ArchiveError);
}

TEST(ArchiveValues, RawLittleEndianImages) {
  std::ostringstream out;
  CArchive archive(out);
  archive << 1.0 << std::int32_t{-2} << std::uint16_t{0x1234};
  EXPECT_EQ(out.str(), Bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0xFE, 0xFF, 0xFF, 0xFF, 0x34, 0x12}));
}

ArchiveError::Cause LoadDoublesCause(const std::string& bytes) {
  std::istringstream in(bytes);
  CArchive archive(in);
  std::vector<double> values;
  try {
    archive.ReadElements(values, archive.ReadCount());
  } catch (const ArchiveError& error) {
    return error.cause();
  }
  ADD_FAILURE() << "no error";
  return ArchiveError::Cause::kWrongMode;
}

TEST(ArchiveHostile, TruncatedAndOversizedStreamsFailCleanly) {
  // Count 3 but only two doubles follow.
  std::string twoDoubles = Bytes({3, 0}) + std::string(16, '\0');
  EXPECT_EQ(LoadDoublesCause(twoDoubles), ArchiveError::Cause::kBadCount);
  // A count of four billion elements in a ten-byte stream is refused before allocating.
  EXPECT_EQ(LoadDoublesCause(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3, 4})),
            ArchiveError::Cause::kBadCount);
  // The stream ends inside the count itself.
  EXPECT_EQ(LoadDoublesCause(Bytes({0xFF})), ArchiveError::Cause::kEndOfFile);
  EXPECT_EQ(LoadDoublesCause(Bytes({0xFF, 0xFF, 0x01})), ArchiveError::Cause::kEndOfFile);
}

// A stream that cannot seek, so the archive cannot know how much is left.
class UnseekableBuffer : public std::streambuf {
 public:
  explicit UnseekableBuffer(std::string data) : data_(std::move(data)) {
    setg(data_.data(), data_.data(), data_.data() + data_.size());
  }

 private:
  std::string data_;
};

TEST(ArchiveHostile, UnseekableStreamStopsAtItsEnd) {
  UnseekableBuffer buffer(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}) + std::string(24, '\0'));
  std::istream in(&buffer);
  CArchive archive(in);
  EXPECT_FALSE(archive.RemainingBytes().has_value());
  std::vector<double> values{1.0};
  try {
    archive.ReadElements(values, archive.ReadCount());
    FAIL() << "no error";
  } catch (const ArchiveError& error) {
    EXPECT_EQ(error.cause(), ArchiveError::Cause::kEndOfFile);
  }
  EXPECT_EQ(values, std::vector<double>{1.0});  // untouched on failure
}

// Seven bytes claiming 2^32 - 1 elements (the count escape, then 0xFFFFFFFF, then one byte)
// on a stream that cannot seek: every loader must fail with ArchiveError, not allocate for the
// claimed count.
TEST(ArchiveHostile, EveryLoaderFailsCleanlyOnAShortOneWayStream) {
  auto load = [](CObject&& object) {
    UnseekableBuffer buffer(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}));
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
