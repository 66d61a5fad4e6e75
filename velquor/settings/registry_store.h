// The library's per-user settings store: a registry-shaped hierarchy of keys holding named,
// typed values. The library's own settings live under
//
//   <current user> / "software" / "Palomerix" / "Quelmark" / <section> / <value>
//
// (the instrument-log levels and folder in section "Diagnostics", see
// velquor/instrument/comm_log.h). Every accessor opens the section's key for one access and
// closes it again; no key is kept open between calls, so concurrent callers rely on the
// backend's own atomicity of single value reads and writes.
//
// Where the keys physically live is a SettingsBackend (default_settings_backend.h): on Windows
// the registry (registry_backend.h: RegOpenKeyExA, RegCreateKeyExA, RegQueryValueExA,
// RegSetValueExA and RegCloseKey under HKEY_CURRENT_USER), elsewhere the file tree of
// file_settings_backend.h (under $XDG_CONFIG_HOME).
//
// Failures are not reported beyond the results: a key that cannot be opened or created reads
// as the default and makes writes return false. No message is shown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace velquor {

// Access rights requested at every level of the key path: KEY_READ | KEY_WRITE.
inline constexpr std::uint32_t kSettingsKeyAccess = 0x2001F;
// Value type codes, numbered as in the Windows registry.
inline constexpr std::uint32_t kValueTypeString = 1;  // REG_SZ
inline constexpr std::uint32_t kValueTypeDword = 4;   // REG_DWORD, 4 bytes little-endian
// Bytes a string value may hold and still be read back; a longer one reads as the default.
inline constexpr std::size_t kStringValueCapacity = 260;

// Names of the key path below the current user's root.
inline constexpr std::string_view kSoftwareKeyName = "software";
inline constexpr std::string_view kVendorKeyName = "Palomerix";
inline constexpr std::string_view kProductKeyName = "Quelmark";

enum class ValueQueryStatus {
  kOk,        // the value was copied into the buffer
  kMoreData,  // the value is larger than the buffer; the buffer's content is unspecified
  kNotFound,  // the key has no value of that name
  kFailed,    // the value could not be read
};

struct ValueQuery {
  ValueQueryStatus status = ValueQueryStatus::kFailed;
  std::uint32_t type = 0;  // the stored type (kOk and kMoreData)
  std::size_t size = 0;    // the stored size in bytes (kOk and kMoreData)
};

// One open key. Destroying it closes it. Key and value names compare without regard to
// ASCII case; a key name is not empty and contains no backslash.
class SettingsKey {
 public:
  virtual ~SettingsKey() = default;
  // Opens the existing subkey `name`; nullptr if it does not exist or cannot be opened.
  virtual std::unique_ptr<SettingsKey> OpenSubKey(std::string_view name, std::uint32_t access) = 0;
  // Opens the subkey `name`, creating it when missing; nullptr on failure.
  virtual std::unique_ptr<SettingsKey> CreateSubKey(std::string_view name,
                                                    std::uint32_t access) = 0;
  // Copies the value `name` (empty: the key's unnamed value) into `buffer`.
  virtual ValueQuery QueryValue(std::string_view name, std::span<unsigned char> buffer) = 0;
  // Stores `data` as the value `name` of type `type`, replacing any value of that name as one
  // atomic step. True on success.
  virtual bool SetValue(std::string_view name, std::uint32_t type,
                        std::span<const unsigned char> data) = 0;
};

class SettingsBackend {
 public:
  virtual ~SettingsBackend() = default;
  // The current user's root key (HKEY_CURRENT_USER); nullptr if the store is unavailable.
  virtual std::unique_ptr<SettingsKey> OpenCurrentUser() = 0;
};

// Makes `backend` the store for the whole process and returns the previous one; nullptr
// restores the platform's default store. Safe to call from any thread; calls already running keep
// the backend they started with.
std::shared_ptr<SettingsBackend> SetSettingsBackend(std::shared_ptr<SettingsBackend> backend);
// The store in use.
std::shared_ptr<SettingsBackend> CurrentSettingsBackend();

// The key software -> Palomerix -> Quelmark of the current user: "software" must exist (it
// is not created), the two keys below it are created when missing. The intermediate keys are
// closed again. nullptr if a step fails.
std::unique_ptr<SettingsKey> OpenVendorKey();
// The key of `section` below the vendor key, created when missing; the vendor key is closed
// before returning. nullptr if a step fails.
std::unique_ptr<SettingsKey> OpenSettingsKey(std::string_view section);

// The 32-bit number stored as `name` in `section`, or `defaultValue` if the key cannot be
// opened or the value cannot be read. The stored type is not checked: up to 4 bytes are read
// into a zeroed 4-byte buffer and taken as a little-endian number, so a 4-byte string "abcd"
// reads as 0x64636261 and a value longer than 4 bytes reads as the default.
std::int32_t GetRegistryInt(std::string_view section, std::string_view name,
                            std::int32_t defaultValue);
// Stores `value` as a 4-byte REG_DWORD. True on success.
bool SetRegistryInt(std::string_view section, std::string_view name, std::int32_t value);

// The string stored as `name` in `section`, or `defaultValue` if the key cannot be opened or
// the value cannot be read. The value is read into a buffer of kStringValueCapacity (260)
// bytes: a longer value cannot be read and gives the default. The text ends at the value's
// first zero byte, if it has one. The stored type is not checked.
std::string GetRegistryString(std::string_view section, std::string_view name,
                              std::string_view defaultValue);
// Stores `value` as REG_SZ with a data length equal to its length, without a terminating
// zero byte (kept so that stored values match byte for byte). A text is taken up to its first
// zero byte, as a C string would be. True on success.
bool SetRegistryString(std::string_view section, std::string_view name, std::string_view value);

}  // namespace velquor
