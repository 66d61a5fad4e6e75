// POSIX implementation of the atomic-file seam (atomic_file_platform.h).
#include "velquor/io/atomic_file_platform.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace velquor::atomic_file_platform {

unsigned long long ProcessNumber() noexcept { return static_cast<unsigned long long>(::getpid()); }

std::FILE* CreateNewFile(const std::string& path, int& error) noexcept {
  // "x": fail rather than open a file that already exists.
  std::FILE* file = std::fopen(path.c_str(), "wbx");
  error = file != nullptr ? 0 : errno;
  return file;
}

int SyncFile(std::FILE* file) noexcept { return ::fsync(::fileno(file)) == 0 ? 0 : errno; }

int ReplaceTarget(const std::string& from, const std::string& to) noexcept {
  // rename(2) replaces an existing target atomically.
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

void SyncFolderOf(const std::string& path) noexcept {
  try {
    const std::size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const int fd = ::open(folder.c_str(), O_RDONLY);
    if (fd >= 0) {
      ::fsync(fd);
      ::close(fd);
    }
  } catch (...) {
    // Out of memory for the folder's name: the rename stands, only not yet flushed.
  }
}

}  // namespace velquor::atomic_file_platform
