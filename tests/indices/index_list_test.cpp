#include "velquor/indices/index_list.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "velquor/indices/index_profile.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

using Cause = ArchiveError::Cause;
using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

IndexList MakeList(const Pairs& entries) {
  IndexList list;
  for (const auto& [identifier, parameter] : entries) {
    EXPECT_TRUE(AddIndex(list, identifier, parameter));
  }
  return list;
}

Pairs Entries(const IndexList& list) {
  Pairs entries;
  for (std::uint32_t i = 0; i < list.count; ++i) {
    entries.emplace_back(list.identifiers[i], list.parameters[i]);
  }
  return entries;
}

// Twenty entries: identifiers first + step i, parameters parameter + i, i = 0 .. 19.
IndexList FullList(std::uint32_t first, std::uint32_t step, std::uint32_t parameter) {
  IndexList list;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) {
    EXPECT_TRUE(AddIndex(list, first + step * i, parameter + i));
  }
  return list;
}

// Little-endian bytes of 32-bit words, spelled out independently of the archive.
std::string Words(std::initializer_list<std::uint32_t> words) {
  std::string bytes;
  for (const std::uint32_t w : words) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(w >> shift));
  }
  return bytes;
}

// Stores `list` (at any version: the stored form does not depend on it); the bytes written,
// or empty with the cause of the ArchiveError in `cause`.
std::string Store(IndexList list, std::uint32_t version, std::optional<Cause>* cause = nullptr) {
  std::ostringstream out;
  CArchive archive(out);
  try {
    SerializeIndexList(list, archive, version);
  } catch (const ArchiveError& error) {
    if (cause != nullptr) *cause = error.cause();
  }
  return out.str();
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

// Loads `bytes` into `list`: nullopt on success (with the word after the list in `next`), or
// the cause of the ArchiveError thrown.
std::optional<Cause> Load(const std::string& bytes, std::uint32_t version, IndexList& list,
                          std::uint32_t* next = nullptr, bool seekable = true) {
  OneWayBuffer oneWay(bytes);
  std::istringstream seekableStream(bytes);
  std::istream oneWayStream(&oneWay);
  CArchive archive(seekable ? static_cast<std::istream&>(seekableStream) : oneWayStream);
  EXPECT_EQ(archive.RemainingBytes().has_value(), seekable);
  try {
    SerializeIndexList(list, archive, version);
  } catch (const ArchiveError& error) {
    return error.cause();
  }
  if (next != nullptr) *next = archive.ReadValue<std::uint32_t>();
  return std::nullopt;
}

TEST(IndexList, AddRemoveAndCountColumns) {
  // Chromatic strengths and Munsell take two columns, every other index one.
  const std::pair<std::vector<std::uint32_t>, unsigned> columns[] = {
      {{}, 0},
      {{7, 27, 3}, 5},
      {{1007}, 1},
      {{25, 175, 176}, 6},
      {{1025, 1027, 1175, 1176, 6, 8, 26, 28, 174, 177}, 10}};
  for (const auto& [identifiers, count] : columns) {
    IndexList list;
    for (const auto id : identifiers) AddIndex(list, id);
    EXPECT_EQ(CountIndexColumns(list), count) << identifiers.size();
  }
  // Add stops at twenty entries; a corrupt count is read as the capacity, never past the arrays.
  IndexList full = FullList(7, 0, 100);
  EXPECT_FALSE(AddIndex(full, 99, 1));
  EXPECT_EQ(Entries(full).back(), std::make_pair(7u, 119u));
  EXPECT_EQ(full.count, 20u);
  full.count = 0xFFFFFFFFu;
  EXPECT_EQ(CountIndexColumns(full), 40u);

  // Remove keeps order and pairing, and zeroes what it frees.
  IndexList list = MakeList({{3, 10}, {5, 20}, {3, 30}, {7, 40}});
  RemoveIndex(list, 3);
  EXPECT_EQ(Entries(list), (Pairs{{5, 20}, {7, 40}}));
  EXPECT_EQ(list.identifiers[2], 0u);
  EXPECT_EQ(list.parameters[3], 0u);
  RemoveIndex(list, 1005);  // absent: nothing changes
  EXPECT_EQ(list.count, 2u);
  RemoveIndex(list, 5);
  RemoveIndex(list, 7);
  EXPECT_EQ(list.count, 0u);
}

TEST(IndexListArchive, StoresCountThenIdentifierParameterPairs) {
  const IndexList list = MakeList({{3, 0}, {1003, 550}, {0x01020304, 0xA0B0C0D0}});
  EXPECT_EQ(Store(list, 30), Words({3, 3, 0, 1003, 550, 0x01020304, 0xA0B0C0D0}));
  EXPECT_EQ(Store(IndexList{}, 48), Words({0}));

  // A full list round-trips, and nothing is read beyond it.
  const IndexList full = FullList(1000, 9, 400);
  const std::string bytes = Store(full, 48);
  EXPECT_EQ(bytes.size(), 4u + 20u * 8u);
  IndexList loaded;
  std::uint32_t next = 0;
  EXPECT_EQ(Load(bytes + Words({0xFEEDu}), 48, loaded, &next), std::nullopt);
  EXPECT_EQ(Entries(loaded), Entries(full));
  EXPECT_EQ(next, 0xFEEDu);

  // An overfull list is refused before anything is written.
  IndexList overfull;
  overfull.count = kMaxSelectedIndices + 1;
  std::optional<Cause> cause;
  EXPECT_EQ(Store(overfull, 48, &cause), "");
  EXPECT_EQ(cause, Cause::kBadCount);
}

// Version 42 stored the difference variant of i as 100 + i; from 43 on it is 1000 + i.
// Documents before 48 carry a companion record of two words (four in version 47) after the
// list, which is skipped: the word after it must be the next thing read. Raising is unsigned
// arithmetic, modulo 2^32.
TEST(IndexListArchive, OldDocumentsRaiseDifferenceIdentifiersAndSkipTheCompanion) {
  const struct {
    std::uint32_t version, companionWords, stored, loaded;
  } cases[] = {{42, 2, 99, 99},   {42, 2, 100, 1000}, {42, 2, 103, 1003},
               {0, 2, 186, 1086}, {43, 2, 103, 103},  {43, 2, 100, 100},
               {46, 2, 5, 5},     {47, 4, 5, 5},      {48, 0, 5, 5},
               {49, 0, 5, 5},     {100, 0, 500, 500}, {42, 2, 0xFFFFFF00u, 0xFFFFFF00u + 900u}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "version " << c.version << ", id " << c.stored);
    std::string bytes = Words({1, c.stored, 77});
    for (std::uint32_t i = 0; i < c.companionWords; ++i) bytes += Words({0xC0C0C0C0u});
    IndexList list;
    std::uint32_t next = 0;
    EXPECT_EQ(Load(bytes + Words({0x5EA1u}), c.version, list, &next), std::nullopt);
    EXPECT_EQ(Entries(list), (Pairs{{c.loaded, 77}}));  // parameters are never raised
    EXPECT_EQ(next, 0x5EA1u);
  }
  IndexList both;
  EXPECT_EQ(Load(Words({2, 3, 1, 103, 2, 0, 0}), 42, both), std::nullopt);
  EXPECT_EQ(Entries(both), (Pairs{{3, 1}, {1003, 2}}));
}

TEST(IndexListArchive, HostileArchivesFailCleanly) {
  const IndexList original = MakeList({{3, 1}, {5, 2}});
  const struct {
    const char* what;
    std::string bytes;
    std::uint32_t version;
    Cause cause;
    bool seekable = true;
  } cases[] = {{"empty stream", "", 48, Cause::kEndOfFile},
               {"count cut short", Words({1}).substr(0, 3), 48, Cause::kEndOfFile},
               {"count 21", Words({21}) + std::string(21 * 8, '\0'), 48, Cause::kBadCount},
               {"huge count", Words({0xFFFFFFFFu}), 48, Cause::kBadCount},
               {"count 0x80000000", Words({0x80000000u, 1, 2}), 48, Cause::kBadCount},
               {"20 entries claimed, 19 present", Words({20}) + std::string(19 * 8, '\0'), 48,
                Cause::kBadCount},
               {"companion missing", Words({1, 3, 0}), 47, Cause::kEndOfFile},
               {"version 47 companion short", Words({1, 3, 0, 0, 0, 0}), 47, Cause::kEndOfFile},
               {"version 46 companion short", Words({1, 3, 0, 0}), 46, Cause::kEndOfFile},
               // Unseekable: the count alone tells, or the stream ends inside the list.
               {"huge count, unseekable", Words({0xFFFFFFFFu, 1, 2}), 48, Cause::kBadCount, false},
               {"20 claimed, unseekable", Words({20, 1, 2, 3}), 48, Cause::kEndOfFile, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    IndexList list = original;
    EXPECT_EQ(Load(c.bytes, c.version, list, nullptr, c.seekable), c.cause);
    EXPECT_EQ(Entries(list), Entries(original));  // a failed load changes nothing
  }
  // Every truncation of a valid version-47 document fails.
  const std::string whole = Words({2, 3, 1, 1003, 2, 0, 0, 0, 0});
  IndexList list;
  ASSERT_EQ(Load(whole, 47, list), std::nullopt);
  ASSERT_EQ(list.count, 2u);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    list = original;
    EXPECT_NE(Load(whole.substr(0, size), 47, list), std::nullopt) << size;
    EXPECT_EQ(Entries(list), Entries(original)) << size;
  }
}

TEST(IndexProfile, ListsAreCommaJoined) {
  MemoryProfileStore profile;
  const IndexList list = MakeList({{3, 0}, {1003, 550}, {4294967295u, 7}});
  ASSERT_TRUE(WriteIndexListProfile(profile, "Indices", "Selection", list));
  EXPECT_EQ(profile.GetProfileString("Indices", "Selection", "-"), "3,1003,4294967295");
  EXPECT_EQ(profile.GetProfileString("INDICES", "SELECTIONPARAMETERS", "-"), "0,550,7");
  IndexList loaded;
  ASSERT_TRUE(ReadIndexListProfile(profile, "Indices", "Selection", loaded));
  EXPECT_EQ(Entries(loaded), Entries(list));

  ASSERT_TRUE(WriteIndexListProfile(profile, "Indices", "Selection", IndexList{}));
  EXPECT_EQ(profile.GetProfileString("Indices", "Selection", "-"), "");
  ASSERT_TRUE(ReadIndexListProfile(profile, "Indices", "Selection", loaded));
  EXPECT_EQ(loaded.count, 0u);

  IndexList overfull;
  overfull.count = 21;
  EXPECT_FALSE(WriteIndexListProfile(profile, "Indices", "Selection", overfull));
}

TEST(IndexProfile, MalformedOrOverlongListsAreRefused) {
  std::string twenty = "0";
  for (int i = 1; i < 20; ++i) twenty.append(1, ',').append(std::to_string(i));
  const struct {
    std::string identifiers, parameters;
    std::uint32_t count;      // 0: refused, the list unchanged
  } cases[] = {{"5", "", 1},  // missing parameters read as zero
               {twenty, "", 20}, {twenty + ",20", "", 0}, {"5,7", "1", 0},  // lengths differ
               {"", "1", 0},     {"5,", "", 0},           {",5", "", 0},
               {"5,,7", "", 0},  {"5, 7", "", 0},         {"-5", "", 0},
               {"5", "1,2", 0},  {"4294967295", "", 1},   {"4294967296", "", 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.identifiers + " / " + c.parameters);
    MemoryProfileStore profile;
    profile.WriteProfileString("S", "E", c.identifiers);
    if (!c.parameters.empty()) profile.WriteProfileString("S", "EParameters", c.parameters);
    IndexList list = MakeList({{9, 9}});
    EXPECT_EQ(ReadIndexListProfile(profile, "S", "E", list), c.count != 0);
    if (c.count == 0) {
      EXPECT_EQ(Entries(list), (Pairs{{9, 9}}));
    } else {
      EXPECT_EQ(list.count, c.count);
    }
  }
}

TEST(IndexProfile, SettingsStoreKeepsTheStrings) {
  std::string pattern = testing::TempDir() + "velquor_index_profile_XXXXXX";
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const std::filesystem::path folder(pattern);
  const auto previous =
      SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder / "root", false));
  // 20 ten-digit numbers and 19 commas: 219 bytes.
  const IndexList list = FullList(4000000000u, 1, 4000000000u);
  ProfileStore& profile = DefaultProfileStore();
  ASSERT_TRUE(WriteIndexListProfile(profile, "Index Lists", "Result", list));
  const std::string stored = GetRegistryString("Index Lists", "Result", "");
  EXPECT_EQ(stored.size(), 219u);
  EXPECT_EQ(stored.substr(0, 21), "4000000000,4000000001");
  IndexList loaded;
  ASSERT_TRUE(ReadIndexListProfile(profile, "Index Lists", "Result", loaded));
  EXPECT_EQ(Entries(loaded), Entries(list));
  SetSettingsBackend(previous);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace velquor
