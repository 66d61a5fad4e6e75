// The log file operations with POSIX calls: exclusive holding is a non-blocking flock(), so
// other writers that lock the file the same way are kept out.
#include "velquor/instrument/log_file_platform.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace velquor {

namespace {

int Descriptor(LogFileHandle file) {
  return static_cast<int>(file);
}

}  // namespace

bool LogPathExists(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

LogFileHandle OpenLogFileExclusive(const std::string& fileName, bool create) {
  const int flags = O_WRONLY | O_CLOEXEC | (create ? O_CREAT : 0);
  int fd;
  do {
    fd = ::open(fileName.c_str(), flags, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return kNoLogFile;
  int locked;
  do {
    locked = ::flock(fd, LOCK_EX | LOCK_NB);
  } while (locked != 0 && errno == EINTR);
  struct stat opened;
  struct stat named;
  if (locked != 0 || ::fstat(fd, &opened) != 0 || ::stat(fileName.c_str(), &named) != 0 ||
      opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
    ::close(fd);
    return kNoLogFile;
  }
  return fd;
}

bool LogFileLength(LogFileHandle file, std::uint64_t& length) {
  struct stat info;
  if (::fstat(Descriptor(file), &info) != 0) return false;
  length = static_cast<std::uint64_t>(info.st_size);
  return true;
}

bool SetLogFileLength(LogFileHandle file, std::uint64_t length) {
  return ::ftruncate(Descriptor(file), static_cast<off_t>(length)) == 0;
}

void AppendToLogFileEnd(LogFileHandle file, std::string_view bytes) {
  const int fd = Descriptor(file);
  if (::lseek(fd, 0, SEEK_END) < 0) return;
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void CloseLogFile(LogFileHandle file) {
  ::close(Descriptor(file));
}

void DeleteLogFile(const std::string& fileName) {
  ::unlink(fileName.c_str());
}

}  // namespace velquor
