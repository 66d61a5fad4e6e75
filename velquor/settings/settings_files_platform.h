// The file and folder operations of the file-tree settings store (file_settings_backend.h),
// one seam per platform: settings_files_platform_posix.cpp implements them with POSIX calls, a
// _windows.cpp twin beside it with the Win32 file API. file_settings_backend.cpp calls the
// platform only through these. Paths are narrow strings with '/' between folders (Windows
// takes '\\' as well).
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace velquor {

// The per-user default root of the store when no override is set: on POSIX
// $XDG_CONFIG_HOME/velquor/registry if XDG_CONFIG_HOME is an absolute path, else
// <home>/.config/velquor/registry with the home folder from $HOME or, when HOME is not set,
// from the password database; on Windows <application data>\velquor\registry with the
// folder from %APPDATA% or, when that is not set, SHGetFolderPathA(CSIDL_APPDATA). Empty if
// no such folder can be found.
std::filesystem::path PlatformSettingsRoot();

// Whether `path` names an existing folder.
bool IsSettingsFolder(const std::string& path);

enum class MakeFolderResult { kCreated, kExists, kFailed };
// Creates the folder `path` (its parent must exist), private to the user.
MakeFolderResult MakeSettingsFolder(const std::string& path);

// Creates `path` and any missing folders above it; true if it is a folder afterwards.
bool MakeSettingsFolders(const std::string& path);

// Calls `visit` with the name of each entry of the folder, in the order the file system lists
// them, until `visit` returns true. False if the folder cannot be read.
bool VisitFolderEntries(const std::string& folder,
                        const std::function<bool(std::string_view name)>& visit);

enum class FileReadStatus { kRead, kAbsent, kFailed, kTooLarge };
// Reads the whole regular file `path` into `text`. kAbsent when there is no such file,
// kTooLarge (with `text` empty) when it is longer than `maxSize` bytes, kFailed when it
// cannot be opened or read or is not a regular file. A file that shrinks while being read
// gives what was read.
FileReadStatus ReadWholeFile(const std::string& path, std::size_t maxSize, std::string& text);

// Creates or truncates `path` (private to the user), writes `text` and, with `flush`, flushes
// it to disk before closing; false if any step fails.
bool WriteNewFile(const std::string& path, std::string_view text, bool flush);

// Renames `from` over `to` in one step (readers see the old or the new file); false on failure.
bool RenameOver(const std::string& from, const std::string& to);

// Deletes the file `path`; nothing is reported.
void RemoveSettingsFile(const std::string& path);

// Flushes the folder's entries (new and renamed names) to disk; false on failure.
bool FlushFolder(const std::string& folder);

// An exclusive lock on the file `path` (created when missing), waited for and held for the
// object's life; it serialises writers in all threads and processes.
class ExclusiveFileLock {
 public:
  explicit ExclusiveFileLock(const std::string& path);
  ExclusiveFileLock(const ExclusiveFileLock&) = delete;
  ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;
  ~ExclusiveFileLock();
  bool held() const { return held_; }

 private:
  std::intptr_t handle_ = -1;
  bool held_ = false;
};

}  // namespace velquor
