// The settings store in the Windows registry: a SettingsBackend (registry_store.h) whose keys
// are registry keys below HKEY_CURRENT_USER, opened with RegOpenKeyExA and RegCreateKeyExA,
// read with RegQueryValueExA, written with RegSetValueExA and closed with RegCloseKey.
// Values keep the bytes and the type they are given (a string stored without its terminating
// zero keeps that length), and the access rights passed when opening keys are requested as
// they are. A value that does not fit the caller's buffer reports kMoreData.
//
// registry_backend_windows.cpp implements it; off Windows (registry_backend_posix.cpp) there
// is no registry, and the store is unavailable: every read gives the caller's default and
// every write fails.
#pragma once

#include <memory>
#include <string>

#include "velquor/settings/registry_store.h"

namespace velquor {

class RegistryBackend : public SettingsBackend {
 public:
  // The current user's registry: the root key is HKEY_CURRENT_USER itself.
  RegistryBackend() = default;
  // A store whose root key is the key `rootPath` below HKEY_CURRENT_USER (folders separated by
  // backslashes), created when missing; for scratch stores such as tests.
  explicit RegistryBackend(std::string rootPath);

  // The root key; nullptr if it cannot be opened (and always off Windows).
  std::unique_ptr<SettingsKey> OpenCurrentUser() override;

 private:
  std::string rootPath_;
};

}  // namespace velquor
