#include "velquor/io/atomic_file.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>

#include "velquor/io/atomic_file_platform.h"

namespace velquor {

namespace {

// Tries so many temporary names before giving up (another writer may hold one).
constexpr int kNameAttempts = 16;

std::atomic<unsigned> gTemporaryCounter{0};

std::string TemporaryName(const std::string& path, int attempt) {
  const auto ticks = static_cast<unsigned long long>(
      std::chrono::steady_clock::now().time_since_epoch().count());
  const unsigned long long process = atomic_file_platform::ProcessNumber();
  const unsigned counter = gTemporaryCounter.fetch_add(1);
  return path + ".tmp." + std::to_string(process) + "." + std::to_string(counter) + "." +
         std::to_string((ticks + static_cast<unsigned long long>(attempt)) % 1000000);
}

}  // namespace

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {}

AtomicFile::~AtomicFile() { Discard(); }

bool AtomicFile::Open(std::string& error) noexcept {
  try {
    Discard();
    int reason = 0;
    failed_ = false;
    writeError_ = 0;
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
      temporaryPath_ = TemporaryName(path_, attempt);
      file_ = atomic_file_platform::CreateNewFile(temporaryPath_, reason);
      if (file_ != nullptr) return true;
      if (reason != EEXIST) break;
    }
    error = std::strerror(reason);
  } catch (...) {
    error = std::strerror(ENOMEM);
  }
  temporaryPath_.clear();
  return false;
}

bool AtomicFile::Write(std::string_view bytes) noexcept {
  if (file_ == nullptr || failed_) return false;
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) {
    failed_ = true;
    writeError_ = errno != 0 ? errno : EIO;
  }
  return !failed_;
}

bool AtomicFile::Commit(std::string& error) noexcept {
  if (file_ == nullptr) {
    error = std::strerror(EBADF);
    return false;
  }
  bool ok = !failed_;
  int reason = writeError_;
  if (ok && std::fflush(file_) != 0) {
    ok = false;
    reason = errno;
  }
  if (ok) {
    reason = atomic_file_platform::SyncFile(file_);
    ok = reason == 0;
  }
  if (std::fclose(file_) != 0 && ok) {
    ok = false;
    reason = errno;
  }
  file_ = nullptr;
  if (ok) {
    reason = atomic_file_platform::ReplaceTarget(temporaryPath_, path_);
    ok = reason == 0;
  }
  if (!ok) {
    error = std::strerror(reason != 0 ? reason : EIO);
    Discard();
    return false;
  }
  atomic_file_platform::SyncFolderOf(path_);
  temporaryPath_.clear();
  return true;
}

void AtomicFile::Discard() noexcept {
  if (file_ != nullptr) {
    std::fclose(file_);
    file_ = nullptr;
  }
  if (!temporaryPath_.empty()) {
    std::remove(temporaryPath_.c_str());
    temporaryPath_.clear();
  }
}

bool WriteFileAtomically(const std::string& path, std::string_view content, std::string& error) noexcept {
  AtomicFile file(path);
  if (!file.Open(error)) return false;
  file.Write(content);
  return file.Commit(error);
}

}  // namespace velquor
