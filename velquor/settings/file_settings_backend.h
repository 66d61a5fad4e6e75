// The settings store as a per-user file tree, for platforms without a registry.
//
// Location of the tree (the current user's root key), chosen at every opening:
//  1. $VELQUOR_SETTINGS_HOME, if set and not empty (meant for tests and portable installs);
//  2. otherwise $XDG_CONFIG_HOME/velquor/registry, if XDG_CONFIG_HOME is an absolute path;
//  3. otherwise $HOME/.config/velquor/registry (the home folder from the password database
//     when HOME is not set); on Windows %APPDATA%\velquor\registry instead of 2 and 3.
// (On Windows the process's default store is the registry, see default_settings_backend.h;
// this store is used there when a host or test installs it.)
//
// Layout: a key is a folder, its subkeys are subfolders, and its values are one file
// ".values" in the folder, in the checksummed line form of settings_file.h. A key name is
// written as a folder name with its bytes 0x21..0x7E kept except '%' and '/', the characters
// Windows forbids in file names (: * ? " < > |), a leading '.', a trailing '.' (which Windows
// drops) and the first letter of a Windows device name (CON, PRN, AUX, NUL, COM1..9,
// LPT1..9, alone or before a '.'), each written as '%' plus two upper-case hex digits; so one
// tree means the same on every platform, no key folder starts with '.', and the store's own
// files (".values", ".values.tmp", ".lock") cannot clash with one. Key and value
// names are found without regard to ASCII case; a new key keeps the spelling it was created
// with. Opening the root provisions it and its standard key "software" unless that key exists
// in some spelling (as a new Windows user profile has HKEY_CURRENT_USER\Software).
//
// Safety:
//  - a write takes an exclusive lock on the key's ".lock" (which serialises writers in all
//    threads and processes, as each takes the lock on its own open file), reads the current
//    values, writes the whole new set to ".values.tmp", flushes it to disk (fsync), renames it
//    over ".values" and flushes the folder (a flush costs milliseconds on a busy disk; see
//    flushToDisk below); readers need no lock, as they see either the old or the new file,
//    never a mixture;
//  - damaged lines of a ".values" file read as absent (so their values read as the caller's
//    default), and the next write to the key rewrites the file from the lines that are intact;
//  - a ".values" file larger than kMaxSettingsFileSize cannot be read: its values read as the
//    defaults and a write to its key fails, leaving the file as it is; a write that would make
//    the file larger than that fails too;
//  - where folders or files cannot be created or replaced, reads give the defaults and writes
//    return false.
// The access rights passed when opening keys are not checked.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>

#include "velquor/settings/registry_store.h"

namespace velquor {

// Environment variable that overrides the store's location.
inline constexpr const char* kSettingsHomeVariable = "VELQUOR_SETTINGS_HOME";
// Largest ".values" file the store reads or writes, in bytes.
inline constexpr std::size_t kMaxSettingsFileSize = 1 << 20;

// The root folder of the current user's store by the rules above; empty if none can be found.
std::filesystem::path DefaultSettingsRoot();

class FileSettingsBackend : public SettingsBackend {
 public:
  // A store whose root follows DefaultSettingsRoot() at every opening.
  FileSettingsBackend() = default;
  // A store rooted at `root`. With `flushToDisk` false the store leaves flushing to the
  // operating system: writes stay atomic and serialised, but a system crash may lose the
  // latest of them (damaged lines then read as defaults). For scratch stores, such as tests.
  explicit FileSettingsBackend(std::filesystem::path root, bool flushToDisk = true);

  std::unique_ptr<SettingsKey> OpenCurrentUser() override;

 private:
  std::filesystem::path root_;
  bool fixedRoot_ = false;
  bool flushToDisk_ = true;
};

}  // namespace velquor
