// The settings store's file operations with POSIX calls. Writers are serialised by flock() on
// a lock file; replacing a file is write, fsync, rename, as POSIX makes rename atomic.
#include "velquor/settings/settings_files_platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

namespace velquor {

namespace {

// Closes a descriptor when it goes out of scope.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  // Closes now and reports whether the close succeeded.
  bool Close() {
    const int fd = std::exchange(fd_, -1);
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

int OpenRetrying(const std::string& path, int flags, mode_t mode = 0) {
  int fd;
  do {
    fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string HomeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] != '\0') return home;
  std::vector<char> buffer(16384);
  struct passwd entry;
  struct passwd* result = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &result) == 0 &&
      result != nullptr && result->pw_dir != nullptr) {
    return result->pw_dir;
  }
  return {};
}

}  // namespace

std::filesystem::path PlatformSettingsRoot() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && config[0] == '/') {
    return std::filesystem::path(config) / "velquor" / "registry";
  }
  const std::string home = HomeFolder();
  if (home.empty()) return {};
  return std::filesystem::path(home) / ".config" / "velquor" / "registry";
}

bool IsSettingsFolder(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

MakeFolderResult MakeSettingsFolder(const std::string& path) {
  if (::mkdir(path.c_str(), 0700) == 0) return MakeFolderResult::kCreated;
  return errno == EEXIST ? MakeFolderResult::kExists : MakeFolderResult::kFailed;
}

bool MakeSettingsFolders(const std::string& path) {
  if (IsSettingsFolder(path)) return true;
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const std::string prefix = path.substr(0, slash);
    if (!prefix.empty() && MakeSettingsFolder(prefix) == MakeFolderResult::kFailed) return false;
    if (slash == std::string::npos) break;
  }
  return IsSettingsFolder(path);
}

bool VisitFolderEntries(const std::string& folder,
                        const std::function<bool(std::string_view name)>& visit) {
  DIR* entries = ::opendir(folder.c_str());
  if (entries == nullptr) return false;
  while (const dirent* entry = ::readdir(entries)) {
    if (visit(entry->d_name)) break;
  }
  ::closedir(entries);
  return true;
}

FileReadStatus ReadWholeFile(const std::string& path, std::size_t maxSize, std::string& text) {
  text.clear();
  FileDescriptor fd(OpenRetrying(path, O_RDONLY));
  if (!fd.valid()) return errno == ENOENT ? FileReadStatus::kAbsent : FileReadStatus::kFailed;
  struct stat info;
  if (::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return FileReadStatus::kFailed;
  if (static_cast<std::uintmax_t>(info.st_size) > maxSize) return FileReadStatus::kTooLarge;
  text.resize(static_cast<std::size_t>(info.st_size));
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t got = ::read(fd.get(), text.data() + done, text.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return FileReadStatus::kFailed;
    if (got == 0) break;  // the file shrank while being read
    done += static_cast<std::size_t>(got);
  }
  text.resize(done);
  return FileReadStatus::kRead;
}

bool WriteNewFile(const std::string& path, std::string_view text, bool flush) {
  FileDescriptor fd(OpenRetrying(path, O_WRONLY | O_CREAT | O_TRUNC, 0600));
  if (!fd.valid()) return false;
  const bool written = WriteAll(fd.get(), text) && (!flush || ::fsync(fd.get()) == 0);
  if (!fd.Close() || !written) {
    ::unlink(path.c_str());
    return false;
  }
  return true;
}

bool RenameOver(const std::string& from, const std::string& to) {
  return ::rename(from.c_str(), to.c_str()) == 0;
}

void RemoveSettingsFile(const std::string& path) {
  ::unlink(path.c_str());
}

bool FlushFolder(const std::string& folder) {
  FileDescriptor fd(OpenRetrying(folder, O_RDONLY | O_DIRECTORY));
  return fd.valid() && ::fsync(fd.get()) == 0;
}

ExclusiveFileLock::ExclusiveFileLock(const std::string& path) {
  const int fd = OpenRetrying(path, O_RDWR | O_CREAT, 0600);
  if (fd < 0) return;
  handle_ = fd;
  int locked;
  do {
    locked = ::flock(fd, LOCK_EX);
  } while (locked != 0 && errno == EINTR);
  held_ = locked == 0;
}

ExclusiveFileLock::~ExclusiveFileLock() {
  if (handle_ >= 0) ::close(static_cast<int>(handle_));  // releases the lock
}

}  // namespace velquor
