#include "velquor/settings/file_settings_backend.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velquor/settings/settings_file.h"

namespace velquor {

namespace {

constexpr const char* kValuesFileName = ".values";
constexpr const char* kTemporaryFileName = ".values.tmp";
constexpr const char* kLockFileName = ".lock";
// Longest folder name the file systems in use accept.
constexpr std::size_t kMaxFolderNameLength = 255;

constexpr char kUpperHex[] = "0123456789ABCDEF";

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

bool IsDirectory(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool SyncFolder(const std::string& folder, bool flush) {
  if (!flush) return true;
  FileDescriptor fd(OpenRetrying(folder, O_RDONLY | O_DIRECTORY));
  return fd.valid() && ::fsync(fd.get()) == 0;
}

// The folder name of key `name`, or nothing if the name cannot be a key's.
std::optional<std::string> EncodeKeyName(std::string_view name) {
  if (name.empty() || name.find('\\') != std::string_view::npos) return std::nullopt;
  std::string folder;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    const bool keep = c >= 0x21 && c <= 0x7E && c != '%' && c != '/' && !(i == 0 && c == '.');
    if (keep) {
      folder += static_cast<char>(c);
    } else {
      folder += '%';
      folder += kUpperHex[c >> 4];
      folder += kUpperHex[c & 15];
    }
  }
  if (folder.size() > kMaxFolderNameLength) return std::nullopt;
  return folder;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The key name of a folder name; nothing for the store's own files and foreign names.
std::optional<std::string> DecodeKeyName(std::string_view folder) {
  if (folder.empty() || folder[0] == '.') return std::nullopt;
  std::string name;
  for (std::size_t i = 0; i < folder.size(); ++i) {
    if (folder[i] != '%') {
      name += folder[i];
      continue;
    }
    if (i + 2 >= folder.size()) return std::nullopt;
    const int high = HexValue(folder[i + 1]);
    const int low = HexValue(folder[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    name += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return name;
}

// Path of the existing subfolder of `parent` that holds key `name`: the exact spelling first,
// then any spelling that differs only in ASCII case.
std::optional<std::string> FindKeyFolder(const std::string& parent, std::string_view name,
                                         const std::string& encoded) {
  const std::string exact = parent + '/' + encoded;
  if (IsDirectory(exact)) return exact;
  DIR* folder = ::opendir(parent.c_str());
  if (folder == nullptr) return std::nullopt;
  std::optional<std::string> found;
  while (const dirent* entry = ::readdir(folder)) {
    const std::optional<std::string> entryName = DecodeKeyName(entry->d_name);
    if (entryName && SameSettingsName(*entryName, name)) {
      std::string path = parent + '/' + entry->d_name;
      if (IsDirectory(path)) {
        found = std::move(path);
        break;
      }
    }
  }
  ::closedir(folder);
  return found;
}

enum class ReadResult { kRead, kAbsent, kFailed };

// Reads the key's values file into `text`. A file above the size limit cannot be read: it
// fails, so that a write refuses rather than replace values it could not see.
ReadResult ReadValuesFile(const std::string& path, std::string& text) {
  text.clear();
  FileDescriptor fd(OpenRetrying(path, O_RDONLY));
  if (!fd.valid()) return errno == ENOENT ? ReadResult::kAbsent : ReadResult::kFailed;
  struct stat info;
  if (::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return ReadResult::kFailed;
  if (static_cast<std::uintmax_t>(info.st_size) > kMaxSettingsFileSize) return ReadResult::kFailed;
  text.resize(static_cast<std::size_t>(info.st_size));
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t got = ::read(fd.get(), text.data() + done, text.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return ReadResult::kFailed;
    if (got == 0) break;  // the file shrank while being read
    done += static_cast<std::size_t>(got);
  }
  text.resize(done);
  return ReadResult::kRead;
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

// Replaces `path` by a file holding `text`: temporary file, flush, rename, flush the folder
// (the flushes only with `flush`).
bool ReplaceFile(const std::string& folder, const std::string& path, std::string_view text,
                 bool flush) {
  const std::string temporary = folder + '/' + kTemporaryFileName;
  FileDescriptor fd(OpenRetrying(temporary, O_WRONLY | O_CREAT | O_TRUNC, 0600));
  if (!fd.valid()) return false;
  const bool written = WriteAll(fd.get(), text) && (!flush || ::fsync(fd.get()) == 0);
  if (!fd.Close() || !written || ::rename(temporary.c_str(), path.c_str()) != 0) {
    ::unlink(temporary.c_str());
    return false;
  }
  return SyncFolder(folder, flush);
}

class FileSettingsKey : public SettingsKey {
 public:
  FileSettingsKey(std::string folder, bool flush) : folder_(std::move(folder)), flush_(flush) {}

  std::unique_ptr<SettingsKey> OpenSubKey(std::string_view name, std::uint32_t) override {
    const std::optional<std::string> encoded = EncodeKeyName(name);
    if (!encoded) return nullptr;
    std::optional<std::string> path = FindKeyFolder(folder_, name, *encoded);
    if (!path) return nullptr;
    return std::make_unique<FileSettingsKey>(std::move(*path), flush_);
  }

  std::unique_ptr<SettingsKey> CreateSubKey(std::string_view name, std::uint32_t access) override {
    const std::optional<std::string> encoded = EncodeKeyName(name);
    if (!encoded) return nullptr;
    if (std::unique_ptr<SettingsKey> existing = OpenSubKey(name, access)) return existing;
    const std::string path = folder_ + '/' + *encoded;
    if (::mkdir(path.c_str(), 0700) != 0) {
      // Another thread or process may have created it (perhaps in another spelling) meanwhile.
      return errno == EEXIST ? OpenSubKey(name, access) : nullptr;
    }
    SyncFolder(folder_, flush_);
    return std::make_unique<FileSettingsKey>(path, flush_);
  }

  ValueQuery QueryValue(std::string_view name, std::span<unsigned char> buffer) override {
    std::string text;
    switch (ReadValuesFile(ValuesPath(), text)) {
      case ReadResult::kAbsent:
        return {ValueQueryStatus::kNotFound, 0, 0};
      case ReadResult::kFailed:
        return {ValueQueryStatus::kFailed, 0, 0};
      case ReadResult::kRead:
        break;
    }
    for (const SettingsValue& value : ParseSettingsValues(text).values) {
      if (!SameSettingsName(value.name, name)) continue;
      if (value.data.size() > buffer.size()) {
        return {ValueQueryStatus::kMoreData, value.type, value.data.size()};
      }
      std::memcpy(buffer.data(), value.data.data(), value.data.size());
      return {ValueQueryStatus::kOk, value.type, value.data.size()};
    }
    return {ValueQueryStatus::kNotFound, 0, 0};
  }

  bool SetValue(std::string_view name, std::uint32_t type,
                std::span<const unsigned char> data) override {
    FileDescriptor lock(OpenRetrying(folder_ + '/' + kLockFileName, O_RDWR | O_CREAT, 0600));
    if (!lock.valid()) return false;
    int locked;
    do {
      locked = ::flock(lock.get(), LOCK_EX);
    } while (locked != 0 && errno == EINTR);
    if (locked != 0) return false;

    std::string text;
    if (ReadValuesFile(ValuesPath(), text) == ReadResult::kFailed) return false;
    std::vector<SettingsValue> values = ParseSettingsValues(text).values;
    std::string bytes(reinterpret_cast<const char*>(data.data()), data.size());
    bool replaced = false;
    for (SettingsValue& value : values) {
      if (SameSettingsName(value.name, name)) {
        value.type = type;
        value.data = std::move(bytes);
        replaced = true;
        break;
      }
    }
    if (!replaced) values.push_back({std::string(name), type, std::move(bytes)});
    const std::string newText = FormatSettingsValues(values);
    if (newText.size() > kMaxSettingsFileSize) return false;
    return ReplaceFile(folder_, ValuesPath(), newText, flush_);  // the lock is released on return
  }

 private:
  std::string ValuesPath() const { return folder_ + '/' + kValuesFileName; }

  std::string folder_;
  bool flush_;
};

// Creates `path` and any missing folders above it.
bool MakeFolders(const std::string& path) {
  if (IsDirectory(path)) return true;
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const std::string prefix = path.substr(0, slash);
    if (!prefix.empty() && ::mkdir(prefix.c_str(), 0700) != 0 && errno != EEXIST) return false;
    if (slash == std::string::npos) break;
  }
  return IsDirectory(path);
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

std::filesystem::path DefaultSettingsRoot() {
  if (const char* home = std::getenv(kSettingsHomeVariable); home != nullptr && home[0] != '\0') {
    return home;
  }
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && config[0] == '/') {
    return std::filesystem::path(config) / "velquor" / "registry";
  }
  const std::string home = HomeFolder();
  if (home.empty()) return {};
  return std::filesystem::path(home) / ".config" / "velquor" / "registry";
}

FileSettingsBackend::FileSettingsBackend(std::filesystem::path root, bool flushToDisk)
    : root_(std::move(root)), fixedRoot_(true), flushToDisk_(flushToDisk) {}

std::unique_ptr<SettingsKey> FileSettingsBackend::OpenCurrentUser() {
  std::string root = (fixedRoot_ ? root_ : DefaultSettingsRoot()).string();
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  if (root.empty() || !MakeFolders(root)) return nullptr;
  auto key = std::make_unique<FileSettingsKey>(root, flushToDisk_);
  key->CreateSubKey(kSoftwareKeyName, kSettingsKeyAccess);
  return key;
}

}  // namespace velquor
