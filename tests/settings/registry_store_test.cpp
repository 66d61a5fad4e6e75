#include "velquor/settings/registry_store.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/settings_file.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const fs::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

// A file store in a fresh temporary folder, installed for the test and removed after it. It
// flushes to disk unless a test of many writes turns that off (a flush can cost tens of
// milliseconds on a busy disk; locking and atomic replacement do not depend on it).
class Store {
 public:
  explicit Store(bool flushToDisk = true, const char* below = "registry") {
    std::string pattern = ::testing::TempDir() + "velquor_settings_XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
    folder_ = pattern;
    root_ = folder_ / below;
    previous_ = SetSettingsBackend(std::make_shared<FileSettingsBackend>(root_, flushToDisk));
  }
  ~Store() {
    SetSettingsBackend(previous_);
    fs::remove_all(folder_);
  }
  fs::path Section() const { return root_ / "software/Palomerix/Quelmark/Diagnostics"; }
  fs::path Values() const { return Section() / ".values"; }

  fs::path folder_, root_;
  std::shared_ptr<SettingsBackend> previous_;
};

TEST(SettingsStore, ValuesKeepTheirBytesAndAreReadWithoutTypeCheck) {
  const Store store;
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  EXPECT_TRUE(fs::is_directory(store.Section()));  // the first read creates the key path
  EXPECT_FALSE(fs::exists(store.Values()));        // and stores nothing
  for (const std::int32_t value : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", value));
    EXPECT_EQ(GetRegistryInt("Diagnostics", "General", 7), value);
  }
  ASSERT_TRUE(SetRegistryString("Diagnostics", "PathInfo", "C:\\Log\\"));  // 7 characters
  std::vector<unsigned char> buffer(8);
  const ValueQuery query = OpenSettingsKey("Diagnostics")->QueryValue("PathInfo", buffer);
  EXPECT_EQ(query.type, kValueTypeString);
  EXPECT_EQ(query.size, 7u);  // no terminating zero

  const struct {
    std::string stored, asString;
    std::int32_t asNumber;
  } cases[] = {{"abcd", "abcd", 0x64636261},
               {"abc", "abc", 0x00636261},
               {"abcde", "abcde", -9},
               {std::string("ab\0c", 4), "ab", 0x00006261},
               {std::string(260, 'x'), std::string(260, 'x'), -9},
               {std::string(261, 'x'), "<default>", -9}};
  for (const auto& c : cases) {
    ASSERT_TRUE(SetRegistryString("Diagnostics", "Value", c.stored));
    EXPECT_EQ(GetRegistryString("Diagnostics", "Value", "<default>"), c.asString) << c.stored;
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Value", -9), c.asNumber) << c.stored;
  }
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "Value", 0x00434241));
  EXPECT_EQ(GetRegistryString("Diagnostics", "Value", "-"), "ABC");
  EXPECT_EQ(ParseSettingsValues(ReadFile(store.Values())).values.size(), 3u);
}

TEST(SettingsStore, NamesIgnoreAsciiCaseAndKeyNamesAreEncoded) {
  const Store store;
  fs::create_directories(store.root_ / "SOFTWARE");
  ASSERT_TRUE(SetRegistryInt("diagnostics", "general", 2));
  EXPECT_EQ(GetRegistryInt("DIAGNOSTICS", "General", -1), 2);
  EXPECT_TRUE(fs::is_directory(store.root_ / "SOFTWARE/Palomerix/Quelmark/diagnostics"));
  EXPECT_FALSE(fs::exists(store.root_ / "software"));

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
  ASSERT_EQ(bounds[3], intact.size());
  for (std::size_t at = 0; at < 2 * intact.size() + 1; ++at) {
    const bool cut = at % 2 == 0;  // even: cut at at / 2; odd: flip the byte at at / 2
    const std::size_t where = at / 2;
    std::string damaged = cut ? intact.substr(0, where) : intact;
    if (!cut) damaged[where] ^= 1;  // a flipped line feed joins the next line to its own
    WriteFile(store.Values(), damaged);
    const auto whole = [&](int i) {
      return cut ? where >= bounds[i + 1] : where + 1 < bounds[i] || where >= bounds[i + 1];
    };
    EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), whole(0) ? 2 : -1) << at;
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Color Sensor", -1), whole(1) ? 1 : -1) << at;
    EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), whole(2) ? "/var/log/q/" : ".");
    ASSERT_TRUE(SetRegistryInt("Diagnostics", "Repair", 1));
    const ParsedSettingsValues repaired = ParseSettingsValues(ReadFile(store.Values()));
    EXPECT_EQ(repaired.damagedLines, 0u);
    EXPECT_EQ(repaired.values.size(), 1u + whole(0) + whole(1) + whole(2)) << at;
  }
}

TEST(SettingsStore, UnusableLocationReadsDefaultsAndRefusesWrites) {
  const Store store(true, "file/registry");  // below a regular file
  WriteFile(store.folder_ / "file", "not a folder");
  EXPECT_EQ(OpenVendorKey(), nullptr);
  EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), ".");
  EXPECT_FALSE(SetRegistryInt("Diagnostics", "General", 0));
  EXPECT_FALSE(SetRegistryString("Diagnostics", "PathInfo", "/tmp/"));
}

TEST(SettingsStore, ReadOnlySectionKeepsItsValuesAndRefusesWrites) {
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
  std::vector<std::string> saved;  // "\x01" for a variable that was not set
  for (const char* name : names) saved.emplace_back(std::getenv(name) ? std::getenv(name) : "\x01");
  const auto set = [](const char* name, const char* value) {
    if (value == nullptr || value[0] == '\x01') return ::unsetenv(name);
    return ::setenv(name, value, 1);
  };
  const struct {
    const char *settingsHome, *configHome, *root;
  } cases[] = {{"/srv/s", "/cfg", "/srv/s"},
               {"", "/cfg", "/cfg/velquor/registry"},
               {nullptr, "relative", "/home/ann/.config/velquor/registry"},
               {nullptr, nullptr, "/home/ann/.config/velquor/registry"}};
  set("HOME", "/home/ann");
  for (const auto& c : cases) {
    set(kSettingsHomeVariable, c.settingsHome);
    set("XDG_CONFIG_HOME", c.configHome);
    EXPECT_EQ(DefaultSettingsRoot(), fs::path(c.root));
  }
  // The default store follows the variable at every opening.
  const Store scratch;
  const auto previous = SetSettingsBackend(nullptr);
  set(kSettingsHomeVariable, scratch.folder_.c_str());
  EXPECT_TRUE(SetRegistryInt("Diagnostics", "General", 1));
  EXPECT_TRUE(fs::exists(scratch.folder_ / "software/Palomerix/Quelmark/Diagnostics/.values"));
  SetSettingsBackend(previous);
  for (int i = 0; i < 3; ++i) set(names[i], saved[static_cast<std::size_t>(i)].c_str());
}

// Registry in memory recording the calls, as a Windows registry backend would receive them.
struct RecordingBackend : SettingsBackend {
  std::vector<std::string> calls;
  bool softwareExists = true;
  int openKeys = 0;

  struct Key : SettingsKey {
    explicit Key(RecordingBackend& owner) : owner(owner) { ++owner.openKeys; }
    ~Key() override { --owner.openKeys; }
    std::unique_ptr<SettingsKey> Open(const char* what, std::string_view sub, std::uint32_t access,
                                      bool exists) {
      owner.calls.push_back(std::string(what) + " " + std::string(sub) + " " +
                            std::to_string(access));
      return exists ? std::make_unique<Key>(owner) : nullptr;
    }
    std::unique_ptr<SettingsKey> OpenSubKey(std::string_view sub, std::uint32_t access) override {
      return Open("open", sub, access, sub != "software" || owner.softwareExists);
    }
    std::unique_ptr<SettingsKey> CreateSubKey(std::string_view sub, std::uint32_t access) override {
      return Open("create", sub, access, true);
    }
    ValueQuery QueryValue(std::string_view, std::span<unsigned char>) override { return {}; }
    bool SetValue(std::string_view, std::uint32_t, std::span<const unsigned char>) override {
      return true;
    }
    RecordingBackend& owner;
  };
  std::unique_ptr<SettingsKey> OpenCurrentUser() override { return std::make_unique<Key>(*this); }
};

TEST(SettingsStore, KeysAreOpenedAlongTheVendorPathAndClosedAfterEachAccess) {
  const auto backend = std::make_shared<RecordingBackend>();
  const auto previous = SetSettingsBackend(backend);
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey("Diagnostics");
  EXPECT_EQ(backend->openKeys, 1);  // only the section's key stays open
  EXPECT_EQ(backend->calls,
            (std::vector<std::string>{"open software 131103", "create Palomerix 131103",
                                      "create Quelmark 131103", "create Diagnostics 131103"}));
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), ".");
  EXPECT_EQ(backend->openKeys, 1);  // each access closes its key again

  backend->softwareExists = false;
  backend->calls.clear();
  EXPECT_EQ(OpenVendorKey(), nullptr);
  EXPECT_EQ(backend->calls, std::vector<std::string>{"open software 131103"});  // none created
  SetSettingsBackend(previous);
}

// Two processes and then four threads write one section, each its counter and, every tenth
// time, a value of its own, so that a write lost to a race shows as a missing or stale value.
TEST(SettingsStore, ConcurrentWritersKeepEveryValue) {
  const Store store(false);
  const auto writeMany = [](const std::string& writer, int count) {
    bool ok = true;
    for (int i = 1; i <= count; ++i) {
      ok &= SetRegistryInt("Diagnostics", "Counter " + writer, i);
      if (i % 10 == 0) ok &= SetRegistryInt("Diagnostics", writer + std::to_string(i), i);
    }
    return ok;
  };
  const std::pair<std::string, int> writers[] = {{"A", 1000}, {"B", 1000}, {"T0", 100},
                                                 {"T1", 100}, {"T2", 100}, {"T3", 100}};
  for (int i = 0; i < 2; ++i) {
    if (::fork() == 0) ::_exit(writeMany(writers[i].first, writers[i].second) ? 0 : 1);
  }
  for (int status = 0; ::wait(&status) > 0;) EXPECT_EQ(status, 0) << "a write failed";
  std::vector<std::thread> threads;
  for (int i = 2; i < 6; ++i) {
    threads.emplace_back([&, i] { EXPECT_TRUE(writeMany(writers[i].first, writers[i].second)); });
  }
  for (std::thread& thread : threads) thread.join();

  const ParsedSettingsValues parsed = ParseSettingsValues(ReadFile(store.Values()));
  EXPECT_EQ(parsed.damagedLines, 0u);
  EXPECT_EQ(parsed.values.size(), 2 * 101u + 4 * 11u);
  for (const auto& [writer, count] : writers) {
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Counter " + writer, -1), count);
    for (int i = 10; i <= count; i += 10) {
      EXPECT_EQ(GetRegistryInt("Diagnostics", writer + std::to_string(i), -1), i);
    }
  }
}

}  // namespace
}  // namespace velquor
