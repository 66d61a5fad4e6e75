#include "velquor/indices/index_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "archive_test_support.h"
#include "velquor/indices/index_profile.h"

namespace velquor {
namespace {

using Cause = ArchiveError::Cause;
using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

IndexList MakeList(const Pairs& entries) {
  IndexList list;
  for (const auto& [id, parameter] : entries) EXPECT_TRUE(AddIndex(list, id, parameter));
  return list;
}

Pairs Entries(const IndexList& list) {
  Pairs entries;
  for (std::uint32_t i = 0; i < list.count; ++i)
    entries.emplace_back(list.identifiers[i], list.parameters[i]);
  return entries;
}

// Twenty entries: identifiers first + step i, parameters p + i, i = 0 .. 19.
IndexList FullList(std::uint32_t first, std::uint32_t step, std::uint32_t p) {
  IndexList list;
  for (std::uint32_t i = 0; i < kMaxSelectedIndices; ++i) AddIndex(list, first + step * i, p + i);
  return list;
}

// Little-endian bytes of 32-bit words, spelled out independently of the archive.
std::string Words(std::initializer_list<std::uint32_t> words) {
  std::string bytes;
  for (const std::uint32_t w : words)
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(w >> shift));
  return bytes;
}

// The bytes stored (the stored form does not depend on the version).
std::string Store(IndexList list) {
  return test::Stored([&](CArchive& archive) { SerializeIndexList(list, archive, 48); });
}

// Loads `bytes` into `list`: nullopt on success (with the word after the list in `next`), or
// the cause of the ArchiveError thrown.
std::optional<Cause> Load(const std::string& bytes, std::uint32_t version, IndexList& list,
                          std::uint32_t* next = nullptr, bool seekable = true) {
  return test::Loaded(bytes, seekable, [&](CArchive& archive) {
    SerializeIndexList(list, archive, version);
    if (next != nullptr) *next = archive.ReadValue<std::uint32_t>();
  });
}

TEST(IndexList, AddRemoveAndCountColumns) {
  // Chromatic strengths and Munsell take two columns, every other index one.
  const std::pair<std::vector<std::uint32_t>, unsigned> columns[] = {
      {{7, 27, 3}, 5}, {{1007}, 1}, {{25, 175, 176}, 6},
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
  full.count = 0xFFFFFFFFu;
  EXPECT_EQ(CountIndexColumns(full), 40u);
  // Remove keeps order and pairing and zeroes what it frees; an absent identifier changes nothing.
  IndexList list = MakeList({{3, 10}, {5, 20}, {3, 30}, {7, 40}});
  RemoveIndex(list, 3);
  RemoveIndex(list, 1005);
  EXPECT_EQ(Entries(list), (Pairs{{5, 20}, {7, 40}}));
  EXPECT_TRUE(list.identifiers[2] == 0u && list.parameters[3] == 0u);
  for (std::uint32_t id : {5, 7}) RemoveIndex(list, id);
  EXPECT_EQ(list.count, 0u);
}

TEST(IndexListArchive, StoresCountThenPairsAndRefusesAnOverfullList) {
  const IndexList full = FullList(1000, 9, 400);  // round trip; nothing is read beyond it
  IndexList loaded, overfull;
  std::uint32_t next = 0;
  EXPECT_EQ(Load(Store(full) + Words({0xFEEDu}), 48, loaded, &next), std::nullopt);
  EXPECT_TRUE(Entries(loaded) == Entries(full) && next == 0xFEEDu);
  overfull.count = kMaxSelectedIndices + 1;
  std::optional<Cause> cause;
  const std::string bytes = test::Stored([&](CArchive& archive) {
    cause = test::Caught([&] { SerializeIndexList(overfull, archive, 48); });
  });
  EXPECT_TRUE(bytes.empty() && cause == Cause::kBadCount);
}

// Version 42 stored the difference variant of i as 100 + i; from 43 on it is 1000 + i.
// Documents before 48 carry a companion record of two words (four in version 47) after the
// list, which is skipped. Raising is unsigned arithmetic, modulo 2^32; parameters never change.
TEST(IndexListArchive, OldDocumentsRaiseDifferenceIdentifiersAndSkipTheCompanion) {
  const struct { std::uint32_t version, companionWords, stored, loaded; } cases[] = {
      {42, 2, 99, 99}, {42, 2, 100, 1000}, {0, 2, 186, 1086}, {43, 2, 100, 100}, {46, 2, 5, 5},
      {47, 4, 5, 5},   {48, 0, 5, 5},      {100, 0, 500, 500},
      {42, 2, 0xFFFFFF00u, 0xFFFFFF00u + 900u}};
  for (const auto& c : cases) {
    std::string bytes = Words({1, c.stored, 77});
    for (std::uint32_t i = 0; i < c.companionWords; ++i) bytes += Words({0xC0C0C0C0u});
    IndexList list;
    std::uint32_t next = 0;
    EXPECT_EQ(Load(bytes + Words({0x5EA1u}), c.version, list, &next), std::nullopt);
    EXPECT_TRUE(Entries(list) == Pairs({{c.loaded, 77}}) && next == 0x5EA1u)
        << c.version << " " << c.stored;
  }
}

TEST(IndexListArchive, HostileArchivesFailCleanly) {
  const IndexList original = MakeList({{3, 1}, {5, 2}});
  const struct { std::string bytes; unsigned version; Cause cause; bool seek = true; } cases[] = {
      {Words({21}) + std::string(21 * 8, '\0'), 48, Cause::kBadCount},
      {Words({0x80000000u, 1, 2}), 48, Cause::kBadCount},
      {Words({20}) + std::string(19 * 8, '\0'), 48, Cause::kBadCount},  // 19 of 20 present
      {Words({1, 3, 0, 0}), 46, Cause::kEndOfFile},                      // companion short
      // Unseekable: the count alone tells, or the stream ends inside the list.
      {Words({0xFFFFFFFFu, 1, 2}), 48, Cause::kBadCount, false},
      {Words({20, 1, 2, 3}), 48, Cause::kEndOfFile, false}};
  for (const auto& c : cases) {
    IndexList list = original;
    EXPECT_EQ(Load(c.bytes, c.version, list, nullptr, c.seek), c.cause) << c.bytes.size();
    EXPECT_EQ(Entries(list), Entries(original));  // a failed load changes nothing
  }
  // A version-42 document of two entries loads; every truncation of a version-47 one fails.
  IndexList list;
  ASSERT_EQ(Load(Words({2, 3, 1, 103, 2, 0, 0}), 42, list), std::nullopt);
  EXPECT_EQ(Entries(list), (Pairs{{3, 1}, {1003, 2}}));
  const std::string whole = Words({2, 3, 1, 1003, 2, 0, 0, 0, 0});
  ASSERT_EQ(Load(whole, 47, list), std::nullopt);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    list = original;
    EXPECT_NE(Load(whole.substr(0, size), 47, list), std::nullopt) << size;
    EXPECT_EQ(Entries(list), Entries(original)) << size;
  }
}

// Lists are stored comma-joined, identifiers under the entry and parameters under the entry
// name + "Parameters" (missing parameters read as zero). count -1: refused, the list unchanged.
TEST(IndexProfile, ListsRoundTripAndMalformedOrOverlongOnesAreRefused) {
  std::string twenty = "0";
  for (int i = 1; i < 20; ++i) twenty.append(1, ',').append(std::to_string(i));
  const struct { std::string identifiers, parameters; int count; } cases[] = {
      {"3,1003,4294967295", "0,550,7", 3}, {"5", "", 1}, {twenty, "", 20}, {"", "", 0},
      {twenty + ",20", "", -1}, {"5,7", "1", -1}, {"", "1", -1},   {"5,", "", -1},
      {",5", "", -1},           {"5,,7", "", -1}, {"5, 7", "", -1}, {"-5", "", -1},
      {"5", "1,2", -1},         {"4294967296", "", -1}};
  for (const auto& c : cases) {
    MemoryProfileStore profile;
    profile.WriteProfileString("S", "E", c.identifiers);
    if (!c.parameters.empty()) profile.WriteProfileString("S", "EParameters", c.parameters);
    IndexList list = MakeList({{9, 9}});
    EXPECT_EQ(ReadIndexListProfile(profile, "S", "E", list), c.count >= 0) << c.identifiers;
    EXPECT_TRUE(c.count < 0 ? Entries(list) == Pairs({{9, 9}}) : list.count == unsigned(c.count))
        << c.identifiers;
    if (c.parameters.empty() || c.count < 1) continue;
    MemoryProfileStore written;
    ASSERT_TRUE(WriteIndexListProfile(written, "S", "E", list));
    EXPECT_EQ(written.GetProfileString("S", "E", "-"), c.identifiers);
    EXPECT_EQ(written.GetProfileString("S", "EParameters", "-"), c.parameters);
  }
  IndexList overfull;
  overfull.count = 21;
  MemoryProfileStore profile;
  EXPECT_FALSE(WriteIndexListProfile(profile, "S", "E", overfull));
}

}  // namespace
}  // namespace velquor
