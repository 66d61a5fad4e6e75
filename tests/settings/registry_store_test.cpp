#include "velquor/settings/registry_store.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "reference_table.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/settings_file.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// A file store in a temporary folder of the process's own, installed for the test and removed
// after it. It flushes to disk unless a test of many writes turns that off (a flush can cost
// tens of milliseconds on a busy disk; locking and atomic replacement do not depend on it).
struct Store {
  explicit Store(bool flushToDisk = true, const char* below = "registry")
      : folder_(fs::path(::testing::TempDir()) /
                ("velquor_settings_" + std::to_string(::getpid()))),
        root_(folder_ / below) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(root_, flushToDisk));
  }
  ~Store() {
    SetSettingsBackend(nullptr);
    fs::remove_all(folder_);
  }
  fs::path Section() const { return root_ / "software/Palomerix/Quelmark/Diagnostics"; }
  fs::path Values() const { return Section() / ".values"; }
  fs::path folder_, root_;
};

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
  const Store store(false);
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
  const Store store;
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
  const Store store;
  fs::create_directories(store.root_ / "SOFTWARE");
  ASSERT_TRUE(SetRegistryInt("diagnostics", "general", 2));
  EXPECT_EQ(GetRegistryInt("DIAGNOSTICS", "General", -1), 2);
  EXPECT_TRUE(fs::is_directory(store.root_ / "SOFTWARE/Palomerix/Quelmark/diagnostics"));

  const std::pair<const char*, const char*> folders[] = {
      {"a/b", "a%2Fb"}, {".x", "%2Ex"}, {"..", "%2E."}, {"a.b", "a.b"}, {"5% x", "5%25%20x"}};
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
  const Store store(false);
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

// A store below a regular file, or a section without write permission, reads its values (or the
// defaults) and refuses writes.
TEST(SettingsStore, UnusableLocationOrSectionRefusesWrites) {
  {
    const Store store(true, "file/registry");
    std::ofstream(store.folder_ / "file") << "not a folder";
    EXPECT_EQ(OpenVendorKey(), nullptr);
    EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), ".");
    EXPECT_FALSE(SetRegistryString("Diagnostics", "PathInfo", "/tmp/"));
  }
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not stop the superuser";
  const Store writable;
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", 2));
  fs::permissions(writable.Section(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_FALSE(SetRegistryInt("Diagnostics", "General", 1));
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), 2);
  fs::permissions(writable.Section(), fs::perms::owner_all);
}

TEST(SettingsStore, EnvironmentChoosesTheRoot) {
  const char* const names[] = {"HOME", "XDG_CONFIG_HOME", kSettingsHomeVariable};
  std::optional<std::string> saved[3];
  for (int i = 0; i < 3; ++i) saved[i] = std::getenv(names[i]) ? std::getenv(names[i]) : saved[i];
  const auto set = [](const char* n, const char* v) { v ? ::setenv(n, v, 1) : ::unsetenv(n); };
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"/srv/s", "/cfg", "/srv/s"},
      {"", "/cfg", "/cfg/velquor/registry"},
      {nullptr, "relative", "/home/ann/.config/velquor/registry"},
      {nullptr, nullptr, "/home/ann/.config/velquor/registry"}};
  set("HOME", "/home/ann");
  for (const auto& [settingsHome, configHome, root] : cases) {
    set(kSettingsHomeVariable, settingsHome);
    set("XDG_CONFIG_HOME", configHome);
    EXPECT_EQ(DefaultSettingsRoot(), fs::path(root));
  }
  set("HOME", nullptr);  // then the user's home folder comes from the password database
  if (const passwd* user = ::getpwuid(::geteuid()); user != nullptr) {
    EXPECT_EQ(DefaultSettingsRoot(), fs::path(user->pw_dir) / ".config/velquor/registry");
  }
  // The default store follows the variable at every opening.
  const Store scratch;
  SetSettingsBackend(nullptr);
  set(kSettingsHomeVariable, scratch.folder_.c_str());
  EXPECT_TRUE(SetRegistryInt("Diagnostics", "General", 1));
  EXPECT_TRUE(fs::exists(scratch.folder_ / "software/Palomerix/Quelmark/Diagnostics/.values"));
  for (int i = 0; i < 3; ++i) set(names[i], saved[i] ? saved[i]->c_str() : nullptr);
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

// Three processes write one section at once, each its counter and, every tenth
// time, a value of its own, so that a write lost to a race shows as a missing or stale value.
TEST(SettingsStore, ConcurrentWritersKeepEveryValue) {
  const Store store(false);
  const auto writeMany = [](const std::string& writer) {
    bool ok = true;
    for (int i = 1; i <= 300; ++i) {
      ok &= SetRegistryInt("Diagnostics", "Counter " + writer, i);
      if (i % 10 == 0) ok &= SetRegistryInt("Diagnostics", writer + std::to_string(i), i);
    }
    return ok;
  };
  for (const char* writer : {"A", "B", "C"}) {
    if (::fork() == 0) ::_exit(writeMany(writer) ? 0 : 1);
  }
  for (int status = 0; ::wait(&status) > 0;) EXPECT_EQ(status, 0) << "a write failed";
  const ParsedSettingsValues parsed = ParseSettingsValues(ReadFile(store.Values()));
  EXPECT_EQ(parsed.damagedLines, 0u);
  EXPECT_EQ(parsed.values.size(), 3 * 31u);
  for (const char* w : {"A", "B", "C"})
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Counter "s + w, -1), 300);
}

}  // namespace
}  // namespace velquor
