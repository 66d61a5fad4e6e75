// The settings store's file operations with the Win32 file API. Writers are serialised by
// LockFileEx on a lock file; a file is replaced by writing a temporary file, flushing it
// (FlushFileBuffers) and moving it over the old one with MoveFileExA(MOVEFILE_REPLACE_EXISTING
// | MOVEFILE_WRITE_THROUGH), which returns only once the move is on disk, so the folder needs
// no flush of its own. Readers open files sharing read, write and delete access, so that a
// writer can replace a file while it is being read; a move that still meets a reader's open
// handle is retried for a short while. Folders and files take the default security of the
// folder they are created in (the user's profile is private to the user).
#include "velquor/settings/settings_files_platform.h"

#include <shlobj.h>
#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>

namespace velquor {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// How often, and how many milliseconds apart, a move over a file held open by a reader is tried.
constexpr int kMoveAttempts = 50;
constexpr DWORD kMoveRetryMilliseconds = 2;

// Closes a file handle when it goes out of scope.
class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() {
    if (valid()) ::CloseHandle(handle_);
  }
  HANDLE get() const { return handle_; }
  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  // Closes now and reports whether the close succeeded.
  bool Close() {
    const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
    return handle == INVALID_HANDLE_VALUE || ::CloseHandle(handle) != 0;
  }

 private:
  HANDLE handle_;
};

bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}

// The per-user application data folder: %APPDATA%, else the shell's CSIDL_APPDATA folder.
std::string ApplicationDataFolder() {
  char buffer[MAX_PATH + 1];
  const DWORD length = ::GetEnvironmentVariableA("APPDATA", buffer, sizeof buffer);
  if (length > 0 && length < sizeof buffer) return std::string(buffer, length);
  if (::SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, buffer) == S_OK) {
    return buffer;
  }
  return {};
}

// Index of the first character after the part of `path` that names a root, not a folder to
// create: "C:", "C:\", "\", or "\\server\share\".
std::size_t RootLength(const std::string& path) {
  if (path.size() >= 2 && path[1] == ':') return path.size() > 2 && IsSeparator(path[2]) ? 3 : 2;
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    std::size_t at = 2;
    for (int part = 0; part < 2 && at < path.size(); ++part) {
      while (at < path.size() && !IsSeparator(path[at])) ++at;
      if (at < path.size()) ++at;
    }
    return at;
  }
  return !path.empty() && IsSeparator(path[0]) ? 1 : 0;
}

}  // namespace

std::filesystem::path PlatformSettingsRoot() {
  const std::string appData = ApplicationDataFolder();
  if (appData.empty()) return {};
  return std::filesystem::path(appData) / "velquor" / "registry";
}

bool IsSettingsFolder(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

MakeFolderResult MakeSettingsFolder(const std::string& path) {
  if (::CreateDirectoryA(path.c_str(), nullptr)) return MakeFolderResult::kCreated;
  return ::GetLastError() == ERROR_ALREADY_EXISTS ? MakeFolderResult::kExists
                                                  : MakeFolderResult::kFailed;
}

bool MakeSettingsFolders(const std::string& path) {
  if (IsSettingsFolder(path)) return true;
  for (std::size_t at = RootLength(path); at <= path.size(); ++at) {
    if (at < path.size() && !IsSeparator(path[at])) continue;
    if (at == 0 || IsSeparator(path[at - 1])) continue;  // a root or a doubled separator
    const std::string prefix = path.substr(0, at);
    if (!IsSettingsFolder(prefix) && MakeSettingsFolder(prefix) == MakeFolderResult::kFailed) {
      return false;
    }
  }
  return IsSettingsFolder(path);
}

bool VisitFolderEntries(const std::string& folder,
                        const std::function<bool(std::string_view name)>& visit) {
  WIN32_FIND_DATAA entry;
  const HANDLE search = ::FindFirstFileA((folder + "\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return false;  // even an empty folder lists "." and ".."
  do {
    if (visit(entry.cFileName)) break;
  } while (::FindNextFileA(search, &entry));
  ::FindClose(search);
  return true;
}

FileReadStatus ReadWholeFile(const std::string& path, std::size_t maxSize, std::string& text) {
  text.clear();
  FileHandle file(::CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) {
    const DWORD error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND
               ? FileReadStatus::kAbsent
               : FileReadStatus::kFailed;
  }
  LARGE_INTEGER size;
  if (::GetFileType(file.get()) != FILE_TYPE_DISK || !::GetFileSizeEx(file.get(), &size)) {
    return FileReadStatus::kFailed;
  }
  if (static_cast<std::uint64_t>(size.QuadPart) > maxSize) return FileReadStatus::kTooLarge;
  text.resize(static_cast<std::size_t>(size.QuadPart));
  std::size_t done = 0;
  while (done < text.size()) {
    DWORD got = 0;
    if (!::ReadFile(file.get(), text.data() + done, static_cast<DWORD>(text.size() - done), &got,
                    nullptr)) {
      text.clear();
      return FileReadStatus::kFailed;
    }
    if (got == 0) break;  // the file shrank while being read
    done += got;
  }
  text.resize(done);
  return FileReadStatus::kRead;
}

bool WriteNewFile(const std::string& path, std::string_view text, bool flush) {
  FileHandle file(::CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) return false;
  bool written = true;
  while (written && !text.empty()) {
    DWORD put = 0;
    written = ::WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &put,
                          nullptr) &&
              put > 0;
    text.remove_prefix(put);
  }
  written = written && (!flush || ::FlushFileBuffers(file.get()));
  if (!file.Close() || !written) {
    ::DeleteFileA(path.c_str());
    return false;
  }
  return true;
}

bool RenameOver(const std::string& from, const std::string& to) {
  for (int attempt = 1;; ++attempt) {
    if (::MoveFileExA(from.c_str(), to.c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      return true;
    }
    const DWORD error = ::GetLastError();
    const bool heldOpen = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!heldOpen || attempt == kMoveAttempts) return false;
    ::Sleep(kMoveRetryMilliseconds);
  }
}

void RemoveSettingsFile(const std::string& path) {
  ::DeleteFileA(path.c_str());
}

bool FlushFolder(const std::string&) {
  return true;  // MoveFileExA with MOVEFILE_WRITE_THROUGH has put the folder's entries on disk
}

ExclusiveFileLock::ExclusiveFileLock(const std::string& path) {
  const HANDLE file = ::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  handle_ = reinterpret_cast<std::intptr_t>(file);
  OVERLAPPED whole{};
  held_ = ::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &whole) != 0;
}

ExclusiveFileLock::~ExclusiveFileLock() {
  if (handle_ == -1) return;
  const HANDLE file = reinterpret_cast<HANDLE>(handle_);
  if (held_) {
    OVERLAPPED whole{};
    ::UnlockFileEx(file, 0, MAXDWORD, MAXDWORD, &whole);
  }
  ::CloseHandle(file);
}

}  // namespace velquor
