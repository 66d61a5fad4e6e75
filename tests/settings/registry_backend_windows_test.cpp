// The registry store against the real Win32 registry, in a scratch key below HKEY_CURRENT_USER
// that stands for the user's root and is deleted afterwards. Types and sizes are read back
// with RegQueryValueExA itself.
#include "velquor/settings/registry_backend.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

class RegistryStore : public ::testing::Test {
 protected:
  void SetUp() override {
    ::RegDeleteTreeA(HKEY_CURRENT_USER, root_.c_str());
    SetSettingsBackend(std::make_shared<RegistryBackend>(root_));
  }
  void TearDown() override {
    SetSettingsBackend(nullptr);
    EXPECT_EQ(::RegDeleteTreeA(HKEY_CURRENT_USER, root_.c_str()), ERROR_SUCCESS);
  }
  // Creates the scratch root's "software", as every user profile has one.
  void CreateSoftwareKey() {
    HKEY key = nullptr;
    ASSERT_EQ(::RegCreateKeyExA(HKEY_CURRENT_USER, (root_ + "\\Software").c_str(), 0, nullptr, 0,
                                KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    ::RegCloseKey(key);
  }
  // The key `below` the scratch root, closed when dropped; null if it cannot be opened.
  std::unique_ptr<std::remove_pointer_t<HKEY>, decltype(&::RegCloseKey)> Open(
      const std::string& below, REGSAM access = KEY_READ) const {
    HKEY key = nullptr;
    ::RegOpenKeyExA(HKEY_CURRENT_USER, (root_ + below).c_str(), 0, access, &key);
    return {key, &::RegCloseKey};
  }
  // Type and size of a value of the "Diagnostics" section as the registry reports them.
  std::pair<DWORD, DWORD> TypeAndSize(const char* name) const {
    DWORD type = 0, size = 0;
    EXPECT_EQ(::RegQueryValueExA(Open(kSection).get(), name, nullptr, &type, nullptr, &size),
              ERROR_SUCCESS);
    return {type, size};
  }
  // Stores raw bytes with the registry's own call, past the library. A non-zero byte after the
  // data keeps the call from adding a terminating zero to a string.
  void SetRaw(const char* name, DWORD type, std::string bytes) {
    const auto size = static_cast<DWORD>(bytes.size());
    bytes.push_back('\xFF');
    EXPECT_EQ(::RegSetValueExA(Open(kSection, KEY_SET_VALUE).get(), name, 0, type,
                               reinterpret_cast<const BYTE*>(bytes.data()), size),
              ERROR_SUCCESS);
  }

  static constexpr const char* kSection = "\\Software\\Palomerix\\Quelmark\\Diagnostics";
  const std::string root_ = "Software\\velquor-test-" + std::to_string(::GetCurrentProcessId());
};

// "software" is opened, never created: without it nothing is created and writes fail. With it,
// the first read creates vendor, product and section one below the other and stores nothing.
TEST_F(RegistryStore, SoftwareIsOpenedAndTheKeysBelowItCreated) {
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  EXPECT_FALSE(SetRegistryInt("Diagnostics", "General", 0));
  EXPECT_FALSE(Open("\\Software"));
  CreateSoftwareKey();
  EXPECT_EQ(GetRegistryInt("Diagnostics", "General", -1), -1);
  const auto section = Open("\\software\\Palomerix\\Quelmark\\Diagnostics");
  ASSERT_TRUE(section);
  DWORD values = 99;
  ::RegQueryInfoKeyA(section.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values,
                     nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(values, 0u);
  EXPECT_EQ(kSettingsKeyAccess, static_cast<std::uint32_t>(KEY_READ | KEY_WRITE));
}

// Numbers are REG_DWORD of 4 bytes; strings REG_SZ without their terminating zero, so 7
// characters are 7 bytes.
TEST_F(RegistryStore, ValuesHaveTheRegistryTypesAndSizes) {
  CreateSoftwareKey();
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", -2));
  ASSERT_TRUE(SetRegistryString("Diagnostics", "PathInfo", "C:\\Log\\"));
  ASSERT_TRUE(SetRegistryString("Diagnostics", "Empty", ""));
  EXPECT_EQ(TypeAndSize("General"), std::pair(DWORD{REG_DWORD}, DWORD{4}));
  EXPECT_EQ(TypeAndSize("PathInfo"), std::pair(DWORD{REG_SZ}, DWORD{7}));
  EXPECT_EQ(TypeAndSize("Empty"), std::pair(DWORD{REG_SZ}, DWORD{0}));
  EXPECT_EQ(GetRegistryInt("DIAGNOSTICS", "general", 7), -2);  // the registry ignores case
  EXPECT_EQ(GetRegistryString("Diagnostics", "PathInfo", "."), "C:\\Log\\");
}

// Reads take any type into a zeroed buffer: up to 4 bytes as a number, up to 260 bytes as a
// string; what does not fit reads as the default.
TEST_F(RegistryStore, ReadsIgnoreTheTypeAndRefuseWhatDoesNotFit) {
  CreateSoftwareKey();
  ASSERT_TRUE(SetRegistryInt("Diagnostics", "General", 0));
  const std::tuple<DWORD, std::string, std::string, std::int32_t> cases[] = {
      {REG_SZ, "abcd", "abcd", 0x64636261},
      {REG_SZ, std::string("abc\0", 4), "abc", 0x00636261},
      {REG_BINARY, "ab", "ab", 0x00006261},
      {REG_SZ, "abcde", "abcde", -9},
      {REG_QWORD, std::string("\1\0\0\0\0\0\0\0", 8), "\1", -9},
      {REG_SZ, std::string(260, 'x'), std::string(260, 'x'), -9},
      {REG_SZ, std::string(261, 'x'), "<default>", -9},
      {REG_DWORD, "ABC", "ABC", 0x00434241}};
  for (const auto& [type, stored, asString, asNumber] : cases) {
    SetRaw("Value", type, stored);
    EXPECT_EQ(GetRegistryString("Diagnostics", "Value", "<default>"), asString) << stored;
    EXPECT_EQ(GetRegistryInt("Diagnostics", "Value", -9), asNumber) << stored;
  }
  EXPECT_EQ(GetRegistryString("Diagnostics", "Missing", "."), ".");
  EXPECT_EQ(GetRegistryInt("Diagnostics", "Missing", -1), -1);
}

// Without an installed store the registry is the default; the file store's default root is
// the user's application data folder.
TEST(DefaultSettingsStore, IsTheRegistryAndFilesLiveInApplicationData) {
  SetSettingsBackend(nullptr);
  EXPECT_NE(dynamic_cast<RegistryBackend*>(CurrentSettingsBackend().get()), nullptr);
  char saved[MAX_PATH + 1] = "";
  const DWORD had = ::GetEnvironmentVariableA("APPDATA", saved, sizeof saved);
  ::SetEnvironmentVariableA("APPDATA", "C:\\Users\\ann\\AppData\\Roaming");
  EXPECT_EQ(DefaultSettingsRoot(),
            std::filesystem::path("C:\\Users\\ann\\AppData\\Roaming\\velquor\\registry"));
  ::SetEnvironmentVariableA("APPDATA", had > 0 ? saved : nullptr);
}

}  // namespace
}  // namespace velquor
