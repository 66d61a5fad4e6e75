#include "velquor/settings/registry_store.h"

#include <array>
#include <cstring>
#include <mutex>
#include <utility>

#include "velquor/settings/default_settings_backend.h"

namespace velquor {

namespace {

std::mutex& BackendMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<SettingsBackend>& InstalledBackend() {
  static std::shared_ptr<SettingsBackend> backend;
  return backend;
}

}  // namespace

std::shared_ptr<SettingsBackend> SetSettingsBackend(std::shared_ptr<SettingsBackend> backend) {
  std::lock_guard lock(BackendMutex());
  return std::exchange(InstalledBackend(), std::move(backend));
}

std::shared_ptr<SettingsBackend> CurrentSettingsBackend() {
  std::lock_guard lock(BackendMutex());
  if (!InstalledBackend()) InstalledBackend() = MakeDefaultSettingsBackend();
  return InstalledBackend();
}

std::unique_ptr<SettingsKey> OpenVendorKey() {
  const std::shared_ptr<SettingsBackend> backend = CurrentSettingsBackend();
  const std::unique_ptr<SettingsKey> user = backend->OpenCurrentUser();
  if (!user) return nullptr;
  const std::unique_ptr<SettingsKey> software =
      user->OpenSubKey(kSoftwareKeyName, kSettingsKeyAccess);
  if (!software) return nullptr;
  const std::unique_ptr<SettingsKey> vendor =
      software->CreateSubKey(kVendorKeyName, kSettingsKeyAccess);
  if (!vendor) return nullptr;
  return vendor->CreateSubKey(kProductKeyName, kSettingsKeyAccess);
}

std::unique_ptr<SettingsKey> OpenSettingsKey(std::string_view section) {
  std::unique_ptr<SettingsKey> vendor = OpenVendorKey();
  if (!vendor) return nullptr;
  std::unique_ptr<SettingsKey> key = vendor->CreateSubKey(section, kSettingsKeyAccess);
  vendor.reset();
  return key;
}

std::int32_t GetRegistryInt(std::string_view section, std::string_view name,
                            std::int32_t defaultValue) {
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey(section);
  if (!key) return defaultValue;
  std::array<unsigned char, 4> buffer{};
  if (key->QueryValue(name, buffer).status != ValueQueryStatus::kOk) return defaultValue;
  const std::uint32_t bits = std::uint32_t{buffer[0]} | std::uint32_t{buffer[1]} << 8 |
                             std::uint32_t{buffer[2]} << 16 | std::uint32_t{buffer[3]} << 24;
  return static_cast<std::int32_t>(bits);
}

bool SetRegistryInt(std::string_view section, std::string_view name, std::int32_t value) {
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey(section);
  if (!key) return false;
  const auto bits = static_cast<std::uint32_t>(value);
  const std::array<unsigned char, 4> data = {
      static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8),
      static_cast<unsigned char>(bits >> 16), static_cast<unsigned char>(bits >> 24)};
  return key->SetValue(name, kValueTypeDword, data);
}

std::string GetRegistryString(std::string_view section, std::string_view name,
                              std::string_view defaultValue) {
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey(section);
  if (!key) return std::string(defaultValue);
  std::array<unsigned char, kStringValueCapacity> buffer{};
  const ValueQuery query = key->QueryValue(name, buffer);
  if (query.status != ValueQueryStatus::kOk) return std::string(defaultValue);
  const auto* text = reinterpret_cast<const char*>(buffer.data());
  const void* zero = std::memchr(text, 0, query.size);
  return std::string(text, zero != nullptr ? static_cast<const char*>(zero) : text + query.size);
}

bool SetRegistryString(std::string_view section, std::string_view name, std::string_view value) {
  const std::unique_ptr<SettingsKey> key = OpenSettingsKey(section);
  if (!key) return false;
  value = value.substr(0, value.find('\0'));
  return key->SetValue(
      name, kValueTypeString,
      std::span(reinterpret_cast<const unsigned char*>(value.data()), value.size()));
}

}  // namespace velquor
