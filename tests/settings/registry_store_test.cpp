#include "velquor/settings/registry_store.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "reference_table.h"
#include "settings/settings_test_store.h"
#include "velquor/settings/settings_file.h"

namespace velquor {
namespace {

using namespace std::string_literals;
using test::ReadFile;
using test::ScratchStore;
namespace fs = std::filesystem;

// A line with a correct checksum, so that only the rule a case breaks can reject it.
std::string Line(const std::string& body) {
  char crc[9];
  std::snprintf(crc, sizeof crc, "%08x", SettingsCrc32(body));
  return body + " " + crc + "\n";
}

// Check value of CRC-32/ISO-HDLC in the CRC catalogue (reveng); the two lines' checksums were
// computed independently with Python's zlib.crc32. Awkward names and data survive a round trip.
TEST(SettingsValuesForm, ChecksumLinesAndRoundTrip) {
  EXPECT_EQ(SettingsCrc32("123456789"), 0xCBF43926u);
  EXPECT_EQ(FormatSettingsValues(
                {{"General", 4, std::string("\x02\0\0\0", 4)}, {"PathInfo", 1, "/tmp/"}}),
            std::string(kSettingsFileHeader) +
                "General 4 02000000 7175b740\nPathInfo 1 2f746d702f de72e460\n");
  std::string allBytes;
  for (int c = 0; c < 256; ++c) allBytes += static_cast<char>(c);
  const std::vector<SettingsValue> values = {
      {"", 1, "unnamed"}, {"%@# \t\n\x7f\xff", 3, allBytes}, {"Empty", 0xFFFFFFFFu, ""}};
  const ParsedSettingsValues parsed = ParseSettingsValues(FormatSettingsValues(values));
  EXPECT_EQ(parsed.damagedLines, 0u);
  EXPECT_EQ(FormatSettingsValues(parsed.values), FormatSettingsValues(values));
}

TEST(SettingsValuesForm, DamagedLinesAreSkippedAndTheRestRead) {
  std::string wrongCrc = Line("General 4 01000000");
  wrongCrc[wrongCrc.size() - 2] ^= 1;
  const std::string good = Line("Good 4 2a000000");
  for (const std::string& line : {wrongCrc, Line("General 4 01000000").substr(0, 27)}) {
    EXPECT_EQ(ParseSettingsValues(good + line).damagedLines, 1u) << line;  // no line feed
  }
  for (const auto& row : test::LoadReferenceTable("reference/settings_lines.csv")) {
    const ParsedSettingsValues parsed = ParseSettingsValues(good + Line(row.Text("body")));
    EXPECT_EQ(parsed.damagedLines, static_cast<std::size_t>(row.Integer("damaged"))) << row.Where();
    EXPECT_EQ(parsed.values.size(), 2u - row.Integer("damaged")) << row.Where();
  }
  // A later line wins; names ignore ASCII case only.
  const ParsedSettingsValues valid = ParseSettingsValues(Line("%25%40%23%20 4 00") + "# comment\n" +
                                                         Line("AT 1 78") + Line("at 1 79"));
  EXPECT_EQ(valid.damagedLines, 0u);
  ASSERT_EQ(valid.values.size(), 2u);
  EXPECT_EQ(valid.values[0].name, "%@# ");
  EXPECT_EQ(valid.values[1].data, "y");
  EXPECT_FALSE(SameSettingsName("\xC4", "\xE4"));
  EXPECT_FALSE(SameSettingsName("[", "{"));  // differ by 0x20 like letters, but are none
}

// A values file over the store's size limit cannot be read, so a write to its key must not
// replace it by the one new value: the 20 values it holds stay.
TEST(SettingsValuesFile, AWriteNeverDropsTheValuesOfAnOversizedFile) {
  const ScratchStore store(false);
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey("Diagnostics");
  const unsigned char data[4] = {1, 0, 0, 0};
  for (char name = 'a'; name < 'a' + 20; ++name) key->SetValue(std::string(1, name), 4, data);
  std::ofstream(store.Values(), std::ios::app) << "# " << std::string(kMaxSettingsFileSize, 'x');
  EXPECT_FALSE(key->SetValue("New", 4, data));
  EXPECT_EQ(ParseSettingsValues(ReadFile(store.Values())).values.size(), 20u);
}

// Values keep their bytes (a string without its terminating zero) and are read without a type
// check: a string of up to four bytes reads as a number, a number as a string; over 260 bytes
// a string reads as the default.
TEST(SettingsStore, ValuesKeepTheirBytesAndAreReadWithoutTypeCheck) {
  const ScratchStore store;
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  EXPECT_TRUE(fs::is_directory(store.Section()));  // the first read creates the key path
  EXPECT_FALSE(fs::exists(store.Values()));        // and stores nothing
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", std::numeric_limits<std::int32_t>::min()));
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", 7), std::numeric_limits<std::int32_t>::min());
  ASSERT_TRUE(SetRegistryString("Diagnostics", "PathInfo", "C:\\Log\\"));
  std::vector<unsigned char> buffer(8);
  const ValueQuery query = OpenSettingsKey("Diagnostics")->QueryValue("PathInfo", buffer);
  EXPECT_EQ(std::pair(query.type, query.size), std::pair(kValueTypeString, std::size_t{7}));
  const std::tuple<std::string, std::string, std::int32_t> cases[] = {
      {"abcd", "abcd", 0x64636261},
      {"abc", "abc", 0x00636261},
      {"abcde", "abcde", -9},
      {std::string("ab\0c", 4), "ab", 0x00006261},
      {std::string(260, 'x'), std::string(260, 'x'), -9},
      {std::string(261, 'x'), "<default>", -9}};
  for (const auto& [stored, asString, asNumber] : cases) {
    ASSERT_TRUE(SetRegistryString("Diagnostics", "Value", stored));
    EXPECT_EQ(GetRegistryString("Diagnostics", "Value", "<default>"), asString) << stored;
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Value", -9), asNumber) << stored;
  }
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "Value", 0x00434241));
  EXPECT_EQ(GetRegistryString("Diagnostics", "Value", "-"), "ABC");
  EXPECT_EQ(ParseSettingsValues(ReadFile(store.Values())).values.size(), 3u);
}

// Names ignore ASCII case, an existing folder keeps its spelling, and section names that are not
// plain folder names are encoded.
TEST(SettingsStore, NamesIgnoreAsciiCaseAndKeyNamesAreEncoded) {
  const ScratchStore store;
  fs::create_directories(store.root_ / "SOFTWARE");
  ASSERT_TRUE(SetRegistryInt("diagnostics", "general", 2));
  EXPECT_EQ(GetRegistryInt("DIAGNOSTICS", "General", -1), 2);
  EXPECT_TRUE(fs::is_directory(store.root_ / "SOFTWARE/Palomerix/Quelmark/diagnostics"));

  // Folder names mean the same on every platform: what Windows forbids or alters is encoded.
  const std::pair<const char*, const char*> folders[] = {
      {"a/b", "a%2Fb"},         {".x", "%2Ex"},       {"..", "%2E%2E"},   {"a.b", "a.b"},
      {"5% x", "5%25%20x"},     {"x.", "x%2E"},       {"a:b?", "a%3Ab%3F"}, {"<|>", "%3C%7C%3E"},
      {"con", "%63on"},         {"Com3.log", "%43om3.log"}, {"COM10", "COM10"}, {"console", "console"}};
  for (const auto& [section, folder] : folders) {
    ASSERT_TRUE(SetRegistryInt(section, "V", 1)) << section;
    EXPECT_TRUE(fs::exists(store.root_ / "SOFTWARE/Palomerix/Quelmark" / folder / ".values"));
  }
  for (const std::string& invalid : {std::string(), std::string("a\\b"), std::string(256, 'k')}) {
    EXPECT_FALSE(SetRegistryInt(invalid, "V", 1));
    EXPECT_EQ(GetRegistryInt(invalid, "V", -1), -1);
  }
}

// Cuts the file at every offset and flips each of its bytes: every value reads as stored if
// its line is intact and as the default otherwise, and the next write repairs the file.
TEST(SettingsStore, DamagedFileReadsDefaultsWhereHitAndIsRepairedByTheNextWrite) {
  const ScratchStore store(false);
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", 2));
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "Color Sensor", 1));
  ASSERT_TRUE(SetRegistryString("Diagnostics", "PathInfo", "/var/log/q/"));
  const std::string intact = ReadFile(store.Values());
  // bounds[i], bounds[i + 1]: start and end (one past its line feed) of value line i.
  std::size_t bounds[4] = {intact.find('\n') + 1};
  for (int i = 1; i < 4; ++i) bounds[i] = intact.find('\n', bounds[i - 1]) + 1;
  for (const bool cut : {true, false}) {  // cut at `where`, or flip the byte there
    for (std::size_t where = 0; where < intact.size() + cut; ++where) {
      std::string damaged = cut ? intact.substr(0, where) : intact;
      if (!cut) damaged[where] ^= 1;  // a flipped line feed joins the next line to its own
      std::ofstream(store.Values(), std::ios::binary) << damaged;
      const auto whole = [&](int i) {
        return cut ? where >= bounds[i + 1] : where + 1 < bounds[i] || where >= bounds[i + 1];
      };
      EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), whole(0) ? 2 : -1) << where;
      EXPECT_EQ(GetRegistryInt("Diagnostics", "Color Sensor", -1), whole(1) ? 1 : -1) << where;
      EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), whole(2) ? "/var/log/q/" : ".");
      ASSERT_TRUE(SetRegistryInt("Diagnostics", "Repair", 1));
      const ParsedSettingsValues repaired = ParseSettingsValues(ReadFile(store.Values()));
      EXPECT_EQ(repaired.damagedLines, 0u);
      EXPECT_EQ(repaired.values.size(), 1u + whole(0) + whole(1) + whole(2)) << where;
    }
  }
}

// A store below a regular file reads the defaults and refuses writes.
TEST(SettingsStore, StoreBelowAFileRefusesWrites) {
  const ScratchStore store(true, "file/registry");
  std::ofstream(store.folder_ / "file") << "not a folder";
  EXPECT_EQ(OpenVendorKey(), nullptr);
  EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), ".");
  EXPECT_FALSE(SetRegistryString("Diagnostics", "PathInfo", "/tmp/"));
}

// Registry in memory recording the calls, as a Windows registry backend would receive them.
struct RecordingBackend : SettingsBackend {
  std::vector<std::string> calls;
  bool softwareExists = true;
  struct Key : SettingsKey {
    RecordingBackend& owner;
    explicit Key(RecordingBackend& o) : owner(o) {}
    std::unique_ptr<SettingsKey> Open(std::string what, std::string_view sub, std::uint32_t a) {
      owner.calls.push_back(what + " " + std::string(sub) + " " + std::to_string(a));
      const bool exists = what == "create" || sub != "software" || owner.softwareExists;
      return exists ? std::make_unique<Key>(owner) : nullptr;
    }
    std::unique_ptr<SettingsKey> OpenSubKey(std::string_view sub, std::uint32_t a) override {
      return Open("open", sub, a);
    }
    std::unique_ptr<SettingsKey> CreateSubKey(std::string_view sub, std::uint32_t a) override {
      return Open("create", sub, a);
    }
    ValueQuery QueryValue(std::string_view, std::span<unsigned char>) override { return {}; }
    bool SetValue(std::string_view, std::uint32_t, std::span<const unsigned char>) override {
      return true;
    }
  };
  std::unique_ptr<SettingsKey> OpenCurrentUser() override { return std::make_unique<Key>(*this); }
};

TEST(SettingsStore, KeysAreOpenedAlongTheVendorPathAndClosedAfterEachAccess) {
  const auto backend = std::make_shared<RecordingBackend>();
  SetSettingsBackend(backend);
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey("Diagnostics");
  EXPECT_EQ(backend->calls,
            (std::vector<std::string>{"open software 131103", "create Palomerix 131103",
                                      "create Quelmark 131103", "create Diagnostics 131103"}));
  backend->softwareExists = false;
  backend->calls.clear();
  EXPECT_EQ(OpenVendorKey(), nullptr);
  EXPECT_EQ(backend->calls, std::vector<std::string>{"open software 131103"});  // none created
  SetSettingsBackend(nullptr);
}

}  // namespace
}  // namespace velquor
