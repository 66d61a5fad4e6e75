#include "velquor/indices/index_list.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "velquor/indices/index_profile.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

IndexList MakeList(std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> entries) {
  IndexList list;
  for (const auto& [identifier, parameter] : entries) {
    EXPECT_TRUE(AddIndex(list, identifier, parameter));
  }
  return list;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> Entries(const IndexList& list) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> entries;
  for (std::uint32_t i = 0; i < list.count; ++i) {
    entries.emplace_back(list.identifiers[i], list.parameters[i]);
  }
  return entries;
}

// Little-endian bytes of 32-bit words, spelled out independently of the archive.
std::string Words(std::initializer_list<std::uint32_t> words) {
  std::string bytes;
  for (const std::uint32_t w : words) {
    for (int shift = 0; shift < 32; shift += 8)
      bytes.push_back(static_cast<char>(w >> shift & 0xFF));
  }
  return bytes;
}

IndexList Load(const std::string& bytes, std::uint32_t version, std::uint32_t* next = nullptr) {
  std::istringstream in(bytes);
  CArchive archive(in);
  IndexList list;
  SerializeIndexList(list, archive, version);
  if (next != nullptr) *next = archive.ReadValue<std::uint32_t>();
  return list;
}

ArchiveError::Cause LoadFailure(const std::string& bytes, std::uint32_t version, IndexList& list) {
  std::istringstream in(bytes);
  CArchive archive(in);
  try {
    SerializeIndexList(list, archive, version);
  } catch (const ArchiveError& error) {
    return error.cause();
  }
  ADD_FAILURE() << "load of " << bytes.size() << " bytes succeeded";
  return ArchiveError::Cause::kWrongMode;
}

// ---- the list

TEST(IndexList, ColumnsCountTwoForChromaticStrengthsAndMunsell) {
  struct Case {
    std::vector<std::uint32_t> identifiers;
    unsigned columns;
  };
  const Case cases[] = {
      {{}, 0},
      {{7, 27, 3}, 5},
      {{1007}, 1},
      {{25, 175, 176}, 6},
      {{1025, 1027, 1175, 1176, 6, 8, 26, 28, 174, 177}, 10},
  };
  for (const auto& c : cases) {
    IndexList list;
    for (const auto id : c.identifiers) AddIndex(list, id);
    EXPECT_EQ(CountIndexColumns(list), c.columns) << c.identifiers.size();
  }
  // A corrupt count is read as the capacity, never past the arrays.
  IndexList full;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) AddIndex(full, 7);
  full.count = 0xFFFFFFFFu;
  EXPECT_EQ(CountIndexColumns(full), 40u);
}

TEST(IndexList, RemoveKeepsOrderAndPairing) {
  IndexList list = MakeList({{3, 10}, {5, 20}, {3, 30}, {7, 40}});
  RemoveIndex(list, 3);
  EXPECT_EQ(Entries(list),
            (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{5, 20}, {7, 40}}));
  EXPECT_EQ(list.identifiers[2], 0u);
  EXPECT_EQ(list.parameters[3], 0u);

  RemoveIndex(list, 1005);  // absent: nothing changes
  EXPECT_EQ(list.count, 2u);
  RemoveIndex(list, 5);
  RemoveIndex(list, 7);
  EXPECT_EQ(list.count, 0u);
}

TEST(IndexList, AddStopsAtTwentyEntries) {
  IndexList list;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) ASSERT_TRUE(AddIndex(list, i, i + 100));
  EXPECT_FALSE(AddIndex(list, 99, 1));
  EXPECT_EQ(list.count, 20u);
  EXPECT_EQ(list.identifiers[19], 19u);
  EXPECT_EQ(list.parameters[19], 119u);
}

// ---- stored form

TEST(IndexListArchive, StoresCountThenIdentifierParameterPairs) {
  IndexList list = MakeList({{3, 0}, {1003, 550}, {0x01020304, 0xA0B0C0D0}});
  std::ostringstream out;
  CArchive archive(out);
  SerializeIndexList(list, archive, 30);  // the version does not change what is stored
  const unsigned char expected[] = {
      0x03, 0x00, 0x00, 0x00,                          // count 3
      0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // 3, 0
      0xEB, 0x03, 0x00, 0x00, 0x26, 0x02, 0x00, 0x00,  // 1003, 550
      0x04, 0x03, 0x02, 0x01, 0xD0, 0xC0, 0xB0, 0xA0,  // 0x01020304, 0xA0B0C0D0
  };
  EXPECT_EQ(out.str(), std::string(reinterpret_cast<const char*>(expected), sizeof expected));

  std::ostringstream empty;
  CArchive emptyArchive(empty);
  IndexList none;
  SerializeIndexList(none, emptyArchive, 48);
  EXPECT_EQ(empty.str(), Words({0}));
}

TEST(IndexListArchive, RoundTripOfAFullList) {
  IndexList list;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) AddIndex(list, 1000 + 9 * i, 400 + i);
  std::ostringstream out;
  CArchive store(out);
  SerializeIndexList(list, store, 48);
  EXPECT_EQ(out.str().size(), 4u + 20u * 8u);
  std::uint32_t next = 0;
  const IndexList loaded = Load(out.str() + Words({0xFEEDu}), 48, &next);
  EXPECT_EQ(Entries(loaded), Entries(list));
  EXPECT_EQ(next, 0xFEEDu);  // nothing read beyond the list
}

TEST(IndexListArchive, OldDocumentsRaiseDifferenceIdentifiers) {
  // Version 42 stored the difference variant of i as 100 + i; from 43 on it is 1000 + i.
  struct Case {
    std::uint32_t version;
    std::uint32_t stored;
    std::uint32_t loaded;
  };
  const Case cases[] = {
      {42, 99, 99},
      {42, 100, 1000},
      {42, 103, 1003},
      {0, 186, 1086},
      {43, 103, 103},
      {43, 100, 100},
      {42, 0xFFFFFF00u, 0xFFFFFF00u + 900u},  // unsigned arithmetic, modulo 2^32
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "version " << c.version << ", id " << c.stored);
    std::string bytes = Words({1, c.stored, 77});
    if (c.version < 48) bytes += Words({0, 0});
    const IndexList list = Load(bytes, c.version);
    ASSERT_EQ(list.count, 1u);
    EXPECT_EQ(list.identifiers[0], c.loaded);
    EXPECT_EQ(list.parameters[0], 77u);  // parameters are never raised
  }
  const IndexList both = Load(Words({2, 3, 1, 103, 2, 0, 0}), 42);
  EXPECT_EQ(Entries(both),
            (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{3, 1}, {1003, 2}}));
}

TEST(IndexListArchive, CompanionRecordOfOldDocumentsIsSkipped) {
  // The word after the list (and companion) must be the next thing read.
  struct Case {
    std::uint32_t version;
    std::size_t companionWords;
  };
  const Case cases[] = {{42, 2}, {46, 2}, {47, 4}, {48, 0}, {49, 0}, {100, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    std::string bytes = Words({1, 5, 9});
    for (std::size_t i = 0; i < c.companionWords; ++i) bytes += Words({0xC0C0C0C0u});
    bytes += Words({0x5EA1u});
    std::uint32_t next = 0;
    const IndexList list = Load(bytes, c.version, &next);
    EXPECT_EQ(Entries(list), (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{5, 9}}));
    EXPECT_EQ(next, 0x5EA1u);
  }
}

TEST(IndexListArchive, HostileArchivesFailCleanly) {
  const IndexList original = MakeList({{3, 1}, {5, 2}});
  struct Case {
    const char* what;
    std::string bytes;
    std::uint32_t version;
    ArchiveError::Cause cause;
  };
  const Case cases[] = {
      {"empty stream", "", 48, ArchiveError::Cause::kEndOfFile},
      {"count cut short", Words({1}).substr(0, 3), 48, ArchiveError::Cause::kEndOfFile},
      {"count 21", Words({21}) + std::string(21 * 8, '\0'), 48, ArchiveError::Cause::kBadCount},
      {"huge count", Words({0xFFFFFFFFu}), 48, ArchiveError::Cause::kBadCount},
      {"count 0x80000000", Words({0x80000000u, 1, 2}), 48, ArchiveError::Cause::kBadCount},
      {"20 entries claimed, 19 present", Words({20}) + std::string(19 * 8, '\0'), 48,
       ArchiveError::Cause::kBadCount},
      {"companion missing", Words({1, 3, 0}), 47, ArchiveError::Cause::kEndOfFile},
      {"version 47 companion short", Words({1, 3, 0, 0, 0, 0}), 47,
       ArchiveError::Cause::kEndOfFile},
      {"version 46 companion short", Words({1, 3, 0, 0}), 46, ArchiveError::Cause::kEndOfFile},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    IndexList list = original;
    EXPECT_EQ(LoadFailure(c.bytes, c.version, list), c.cause);
    EXPECT_EQ(Entries(list), Entries(original));  // a failed load changes nothing
  }

  // Every truncation of a valid version-47 document fails.
  const std::string whole = Words({2, 3, 1, 1003, 2, 0, 0, 0, 0});
  ASSERT_EQ(Load(whole, 47).count, 2u);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    IndexList list = original;
    SCOPED_TRACE(size);
    LoadFailure(whole.substr(0, size), 47, list);
    EXPECT_EQ(Entries(list), Entries(original));
  }
}

// A stream that cannot seek, so the archive cannot know how many bytes remain.
class OneWayBuffer final : public std::streambuf {
 public:
  explicit OneWayBuffer(std::string bytes) : bytes_(std::move(bytes)) {
    setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
  }

 private:
  std::string bytes_;
};

TEST(IndexListArchive, HostileCountsFailOnUnseekableStreams) {
  {
    OneWayBuffer buffer(Words({0xFFFFFFFFu, 1, 2}));
    std::istream in(&buffer);
    CArchive archive(in);
    ASSERT_FALSE(archive.RemainingBytes());
    IndexList list;
    EXPECT_THROW(SerializeIndexList(list, archive, 48), ArchiveError);
    EXPECT_EQ(list.count, 0u);
  }
  {
    OneWayBuffer buffer(Words({20, 1, 2, 3}));
    std::istream in(&buffer);
    CArchive archive(in);
    IndexList list;
    try {
      SerializeIndexList(list, archive, 48);
      ADD_FAILURE() << "truncated list loaded";
    } catch (const ArchiveError& error) {
      EXPECT_EQ(error.cause(), ArchiveError::Cause::kEndOfFile);
    }
    EXPECT_EQ(list.count, 0u);
  }
}

TEST(IndexListArchive, StoringAnOverfullListIsRefused) {
  IndexList list;
  list.count = kMaxSelectedIndices + 1;
  std::ostringstream out;
  CArchive archive(out);
  try {
    SerializeIndexList(list, archive, 48);
    ADD_FAILURE() << "overfull list stored";
  } catch (const ArchiveError& error) {
    EXPECT_EQ(error.cause(), ArchiveError::Cause::kBadCount);
  }
  EXPECT_EQ(out.str(), "");
}

// ---- the profile

TEST(IndexProfile, ListsAreCommaJoined) {
  MemoryProfileStore profile;
  const IndexList list = MakeList({{3, 0}, {1003, 550}, {4294967295u, 7}});
  ASSERT_TRUE(WriteIndexListProfile(profile, "Indices", "Selection", list));
  EXPECT_EQ(profile.GetProfileString("Indices", "Selection", "-"), "3,1003,4294967295");
  EXPECT_EQ(profile.GetProfileString("INDICES", "selectionparameters", "-"), "0,550,7");

  IndexList loaded;
  ASSERT_TRUE(ReadIndexListProfile(profile, "Indices", "Selection", loaded));
  EXPECT_EQ(Entries(loaded), Entries(list));

  ASSERT_TRUE(WriteIndexListProfile(profile, "Indices", "Selection", IndexList{}));
  EXPECT_EQ(profile.GetProfileString("Indices", "Selection", "-"), "");
  loaded = list;
  ASSERT_TRUE(ReadIndexListProfile(profile, "Indices", "Selection", loaded));
  EXPECT_EQ(loaded.count, 0u);

  IndexList overfull;
  overfull.count = 21;
  EXPECT_FALSE(WriteIndexListProfile(profile, "Indices", "Selection", overfull));
}

TEST(IndexProfile, MalformedOrOverlongListsAreRefused) {
  std::string twenty = "0";
  for (int i = 1; i < 20; ++i) {
    twenty.push_back(',');
    twenty += std::to_string(i);
  }
  const std::string twentyOne = twenty + ",20";
  struct Case {
    std::string identifiers;
    std::string parameters;
    bool accepted;
    std::uint32_t count;
  };
  const Case cases[] = {
      {"5", "", true, 1},  // missing parameters read as zero
      {twenty, "", true, 20},       {twentyOne, "", false, 0},
      {"5,7", "1", false, 0},  // lengths differ
      {"", "1", false, 0},          {"5,", "", false, 0},
      {",5", "", false, 0},         {"5,,7", "", false, 0},
      {"5, 7", "", false, 0},       {"-5", "", false, 0},
      {"4294967295", "", true, 1},  {"4294967296", "", false, 0},
      {"5", "1,2", false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.identifiers + " / " + c.parameters);
    MemoryProfileStore profile;
    profile.WriteProfileString("S", "E", c.identifiers);
    if (!c.parameters.empty()) profile.WriteProfileString("S", "EParameters", c.parameters);
    IndexList list = MakeList({{9, 9}});
    EXPECT_EQ(ReadIndexListProfile(profile, "S", "E", list), c.accepted);
    EXPECT_EQ(list.count, c.accepted ? c.count : 1u);
    if (!c.accepted) {
      EXPECT_EQ(list.identifiers[0], 9u);
    }
  }
}

TEST(IndexProfile, SettingsStoreKeepsTheStrings) {
  std::string pattern = testing::TempDir() + "velquor_index_profile_XXXXXX";
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const std::filesystem::path folder(pattern);
  const auto previous =
      SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder / "root", false));

  IndexList list;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) {
    AddIndex(list, 4000000000u + i, 4000000000u + i);  // 20 ten-digit numbers: 219 bytes
  }
  ProfileStore& profile = DefaultProfileStore();
  ASSERT_TRUE(WriteIndexListProfile(profile, "Index Lists", "Result", list));
  EXPECT_EQ(GetRegistryString("Index Lists", "Result", "").size(), 219u);
  EXPECT_EQ(GetRegistryString("Index Lists", "Result", "").substr(0, 21), "4000000000,4000000001");
  IndexList loaded;
  ASSERT_TRUE(ReadIndexListProfile(profile, "Index Lists", "Result", loaded));
  EXPECT_EQ(Entries(loaded), Entries(list));

  SetSettingsBackend(previous);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace velquor
