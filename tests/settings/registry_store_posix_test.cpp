// The file store's POSIX side: permissions, the environment that locates the store, and
// writers in separate processes.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>

#include "settings/settings_test_store.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_backend.h"
#include "velquor/settings/registry_store.h"
#include "velquor/settings/settings_file.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::ReadFile;
using test::ScratchStore;

// A section without write permission reads its values and refuses writes.
TEST(SettingsStorePosix, SectionWithoutWritePermissionRefusesWrites) {
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not stop the superuser";
  const ScratchStore writable;
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", 2));
  fs::permissions(writable.Section(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_FALSE(SetRegistryInt("Diagnostics", "General", 1));
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), 2);
  fs::permissions(writable.Section(), fs::perms::owner_all);
}

// The root follows VELQUOR_SETTINGS_HOME, XDG_CONFIG_HOME and the home folder.
TEST(SettingsStorePosix, EnvironmentChoosesTheRoot) {
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
  const ScratchStore scratch;
  SetSettingsBackend(nullptr);
  set(kSettingsHomeVariable, scratch.folder_.c_str());
  EXPECT_TRUE(SetRegistryInt("Diagnostics", "General", 1));
  EXPECT_TRUE(fs::exists(scratch.folder_ / "software/Palomerix/Quelmark/Diagnostics/.values"));
  for (int i = 0; i < 3; ++i) set(names[i], saved[i] ? saved[i]->c_str() : nullptr);
}

// Without a registry the registry store is unavailable, and the default store is the file tree.
TEST(SettingsStorePosix, RegistryIsUnavailableAndTheFileTreeIsTheDefault) {
  SetSettingsBackend(std::make_shared<RegistryBackend>());
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  EXPECT_FALSE(SetRegistryInt("Diagnostics", "General", 0));
  SetSettingsBackend(nullptr);
  EXPECT_NE(dynamic_cast<FileSettingsBackend*>(CurrentSettingsBackend().get()), nullptr);
}

// Three processes write one section at once, each its counter and, every tenth
// time, a value of its own, so that a write lost to a race shows as a missing or stale value.
TEST(SettingsStorePosix, ConcurrentWritersKeepEveryValue) {
  const ScratchStore store(false);
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
