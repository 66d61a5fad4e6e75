#include "velquor/frame/archive.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "archive_test_support.h"
#include "velquor/data/angle_set.h"
#include "velquor/data/dword_array.h"
#include "velquor/data/ks_data.h"
#include "velquor/data/string_array.h"

namespace velquor {
namespace {

using namespace std::string_literals;

// Below 0xFFFF a 16-bit count; from 0xFFFF on, the escape 0xFFFF and then the 32-bit count.
TEST(Archive, CountsAndValuesAsLittleEndianImages) {
  const std::pair<std::uint64_t, std::string> cases[] = {{0, "\x00\x00"s},
                                                         {0xFFFE, "\xFE\xFF"s},
                                                         {0xFFFF, "\xFF\xFF\xFF\xFF\x00\x00"s},
                                                         {70000, "\xFF\xFF\x70\x11\x01\x00"s}};
  for (const auto& [count, bytes] : cases) {
    std::ostringstream out;
    CArchive(out).WriteCount(count);
    EXPECT_EQ(out.str(), bytes) << count;
    std::istringstream in(bytes);
    EXPECT_EQ(CArchive(in).ReadCount(), count);
  }
  std::ostringstream out;
  CArchive storing(out);
  storing << 1.0 << std::int32_t{-2} << std::uint16_t{0x1234};
  storing.WriteCount(0xFFFFFFFF);
  EXPECT_EQ(out.str(),
            "\x00\x00\x00\x00\x00\x00\xF0\x3F\xFE\xFF\xFF\xFF\x34\x12"
            "\xFF\xFF\xFF\xFF\xFF\xFF"s);
  EXPECT_THROW(storing.WriteCount(0x100000000ull), ArchiveError);
  EXPECT_THROW(storing.ReadCount(), ArchiveError);
  std::istringstream in("\x01\x00"s);
  EXPECT_THROW(CArchive(in).WriteCount(1), ArchiveError);
}

// A seekable stream's counts are checked against the bytes left (kBadCount) before anything is
// read; a one-way stream fails where it ends (kEndOfFile). The target stays untouched.
TEST(ArchiveHostile, TruncatedAndOversizedStreamsFailCleanly) {
  using enum ArchiveError::Cause;
  const std::string claimsFourBillion = "\xFF\xFF\xFF\xFF\xFF\x7F"s;
  const std::tuple<std::string, bool, ArchiveError::Cause> cases[] = {
      {"\x03\x00"s + std::string(16, '\0'), false, kBadCount},
      {claimsFourBillion + "\x01\x02\x03\x04"s, false, kBadCount},
      {claimsFourBillion + std::string(24, '\0'), true, kEndOfFile},
      {"\xFF"s, false, kEndOfFile},  // inside the count
      {"\xFF\xFF\x01"s, true, kEndOfFile}};
  for (const auto& [bytes, oneWay, cause] : cases) {
    std::vector<double> values{1.0};
    EXPECT_EQ(test::Loaded(bytes, !oneWay, [&](CArchive& archive) {
      EXPECT_EQ(archive.RemainingBytes().has_value(), !oneWay);
      archive.ReadElements(values, archive.ReadCount());
    }), cause) << bytes.size() << " bytes";
    EXPECT_EQ(values, std::vector<double>{1.0});
  }
}

// Seven bytes claiming 2^32 - 1 elements on a stream that cannot seek: every loader fails with
// ArchiveError instead of allocating for the claimed count.
TEST(ArchiveHostile, EveryLoaderFailsCleanlyOnAShortOneWayStream) {
  for (const CRuntimeClass* type :
       {&CStringArray::classCStringArray, &CDWordArray::classCDWordArray,
        &CUIntArray::classCUIntArray, &CValueArray::classCValueArray, &CKSData::classCKSData,
        &CAngleSet::classCAngleSet}) {
    const std::unique_ptr<CObject> object(type->CreateObject());
    EXPECT_NE(test::Loaded("\xFF\xFF\xFF\xFF\xFF\xFF\x00"s, false,
                           [&](CArchive& archive) { object->Serialize(archive); }),
              std::nullopt)
        << type->className;
  }
}

}  // namespace
}  // namespace velquor
