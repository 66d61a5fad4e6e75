#include "velquor/settings/file_settings_backend.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velquor/settings/settings_file.h"
#include "velquor/settings/settings_files_platform.h"

namespace velquor {

namespace {

constexpr const char* kValuesFileName = ".values";
constexpr const char* kTemporaryFileName = ".values.tmp";
constexpr const char* kLockFileName = ".lock";
// Longest folder name the file systems in use accept.
constexpr std::size_t kMaxFolderNameLength = 255;

constexpr char kUpperHex[] = "0123456789ABCDEF";

bool SyncFolder(const std::string& folder, bool flush) {
  return !flush || FlushFolder(folder);
}

// Whether `name` is a Windows device name, alone or before an extension ("nul", "COM1.txt").
bool IsDeviceName(std::string_view name) {
  const std::string_view stem = name.substr(0, name.find('.'));
  for (const std::string_view device : {"CON", "PRN", "AUX", "NUL"}) {
    if (SameSettingsName(stem, device)) return true;
  }
  if (stem.size() != 4 || stem[3] < '1' || stem[3] > '9') return false;
  return SameSettingsName(stem.substr(0, 3), "COM") || SameSettingsName(stem.substr(0, 3), "LPT");
}

// The folder name of key `name`, or nothing if the name cannot be a key's.
std::optional<std::string> EncodeKeyName(std::string_view name) {
  if (name.empty() || name.find('\\') != std::string_view::npos) return std::nullopt;
  constexpr std::string_view kForbidden = "%/:*?\"<>|";
  const bool device = IsDeviceName(name);
  std::string folder;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    const bool dotAtEnd = c == '.' && (i == 0 || i + 1 == name.size());
    const bool keep = c >= 0x21 && c <= 0x7E && kForbidden.find(static_cast<char>(c)) ==
                      std::string_view::npos && !dotAtEnd && !(i == 0 && device);
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
  if (IsSettingsFolder(exact)) return exact;
  std::optional<std::string> found;
  VisitFolderEntries(parent, [&](std::string_view entry) {
    const std::optional<std::string> entryName = DecodeKeyName(entry);
    if (!entryName || !SameSettingsName(*entryName, name)) return false;
    std::string path = parent + '/';
    path += entry;
    if (!IsSettingsFolder(path)) return false;
    found = std::move(path);
    return true;
  });
  return found;
}

enum class ReadResult { kRead, kAbsent, kFailed };

// Reads the key's values file into `text`. A file above the size limit cannot be read: it
// fails, so that a write refuses rather than replace values it could not see.
ReadResult ReadValuesFile(const std::string& path, std::string& text) {
  switch (ReadWholeFile(path, kMaxSettingsFileSize, text)) {
    case FileReadStatus::kAbsent:
      return ReadResult::kAbsent;
    case FileReadStatus::kFailed:
    case FileReadStatus::kTooLarge:
      return ReadResult::kFailed;
    case FileReadStatus::kRead:
      break;
  }
  return ReadResult::kRead;
}

// Replaces `path` by a file holding `text`: temporary file, flush, rename, flush the folder
// (the flushes only with `flush`).
bool ReplaceFile(const std::string& folder, const std::string& path, std::string_view text,
                 bool flush) {
  const std::string temporary = folder + '/' + kTemporaryFileName;
  if (!WriteNewFile(temporary, text, flush)) return false;
  if (!RenameOver(temporary, path)) {
    RemoveSettingsFile(temporary);
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
    switch (MakeSettingsFolder(path)) {
      case MakeFolderResult::kCreated:
        break;
      case MakeFolderResult::kExists:
        // Another thread or process created it (perhaps in another spelling) meanwhile.
        return OpenSubKey(name, access);
      case MakeFolderResult::kFailed:
        return nullptr;
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
    const ExclusiveFileLock lock(folder_ + '/' + kLockFileName);
    if (!lock.held()) return false;

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

}  // namespace

std::filesystem::path DefaultSettingsRoot() {
  if (const char* home = std::getenv(kSettingsHomeVariable); home != nullptr && home[0] != '\0') {
    return home;
  }
  return PlatformSettingsRoot();
}

FileSettingsBackend::FileSettingsBackend(std::filesystem::path root, bool flushToDisk)
    : root_(std::move(root)), fixedRoot_(true), flushToDisk_(flushToDisk) {}

std::unique_ptr<SettingsKey> FileSettingsBackend::OpenCurrentUser() {
  std::string root = (fixedRoot_ ? root_ : DefaultSettingsRoot()).string();
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  if (root.empty() || !MakeSettingsFolders(root)) return nullptr;
  auto key = std::make_unique<FileSettingsKey>(root, flushToDisk_);
  key->CreateSubKey(kSoftwareKeyName, kSettingsKeyAccess);
  return key;
}

}  // namespace velquor
