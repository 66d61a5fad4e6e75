// The settings store on the Win32 registry functions (advapi32).
#include "velquor/settings/registry_backend.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace velquor {

namespace {

constexpr unsigned char kNotATerminator = 0xFF;

class RegistryKey final : public SettingsKey {
 public:
  // `owned` false for the predefined root handle, which is never closed.
  RegistryKey(HKEY key, bool owned) : key_(key), owned_(owned) {}
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  ~RegistryKey() override {
    if (owned_) ::RegCloseKey(key_);
  }

  std::unique_ptr<SettingsKey> OpenSubKey(std::string_view name, std::uint32_t access) override {
    if (!IsKeyName(name)) return nullptr;
    HKEY sub = nullptr;
    if (::RegOpenKeyExA(key_, std::string(name).c_str(), 0, access, &sub) != ERROR_SUCCESS) {
      return nullptr;
    }
    return std::make_unique<RegistryKey>(sub, true);
  }

  std::unique_ptr<SettingsKey> CreateSubKey(std::string_view name,
                                            std::uint32_t access) override {
    if (!IsKeyName(name)) return nullptr;
    HKEY sub = nullptr;
    if (::RegCreateKeyExA(key_, std::string(name).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                          access, nullptr, &sub, nullptr) != ERROR_SUCCESS) {
      return nullptr;
    }
    return std::make_unique<RegistryKey>(sub, true);
  }

  ValueQuery QueryValue(std::string_view name, std::span<unsigned char> buffer) override {
    DWORD type = 0;
    DWORD size = static_cast<DWORD>(buffer.size());
    switch (::RegQueryValueExA(key_, std::string(name).c_str(), nullptr, &type, buffer.data(),
                               &size)) {
      case ERROR_SUCCESS:
        return {ValueQueryStatus::kOk, type, size};
      case ERROR_MORE_DATA:
        return {ValueQueryStatus::kMoreData, type, size};
      case ERROR_FILE_NOT_FOUND:
        return {ValueQueryStatus::kNotFound, 0, 0};
      default:
        return {ValueQueryStatus::kFailed, 0, 0};
    }
  }

  bool SetValue(std::string_view name, std::uint32_t type,
                std::span<const unsigned char> data) override {
    // RegSetValueExA adds a terminating zero to string data whose last byte is not zero when
    // the byte after it in memory is zero. The data goes from a copy followed by a non-zero
    // byte, so that exactly the given bytes are stored (a string without its zero stays so).
    std::vector<unsigned char> bytes(data.begin(), data.end());
    bytes.push_back(kNotATerminator);
    return ::RegSetValueExA(key_, std::string(name).c_str(), 0, type, bytes.data(),
                            static_cast<DWORD>(data.size())) == ERROR_SUCCESS;
  }

 private:
  // The registry takes a backslash as a path of keys; a key name of the store is one key.
  static bool IsKeyName(std::string_view name) {
    return !name.empty() && name.find('\\') == std::string_view::npos;
  }

  HKEY key_;
  bool owned_;
};

}  // namespace

RegistryBackend::RegistryBackend(std::string rootPath) : rootPath_(std::move(rootPath)) {}

std::unique_ptr<SettingsKey> RegistryBackend::OpenCurrentUser() {
  if (rootPath_.empty()) return std::make_unique<RegistryKey>(HKEY_CURRENT_USER, false);
  HKEY root = nullptr;
  if (::RegCreateKeyExA(HKEY_CURRENT_USER, rootPath_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        kSettingsKeyAccess, nullptr, &root, nullptr) != ERROR_SUCCESS) {
    return nullptr;
  }
  return std::make_unique<RegistryKey>(root, true);
}

}  // namespace velquor
