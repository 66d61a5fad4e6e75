// Windows implementation of the atomic-file seam (atomic_file_platform.h).
#include "velquor/io/atomic_file_platform.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>

namespace velquor::atomic_file_platform {

namespace {

// The errno value of a Win32 error, as the C run-time maps the file errors it reports itself;
// other failures are input/output errors.
int ErrnoOf(DWORD error) noexcept {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
    case ERROR_CURRENT_DIRECTORY:
      return EACCES;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
      return EEXIST;
    case ERROR_NOT_SAME_DEVICE:
      return EXDEV;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return ENOMEM;
    case ERROR_FILENAME_EXCED_RANGE:
      return ENAMETOOLONG;
    case ERROR_DIR_NOT_EMPTY:
      return ENOTEMPTY;
    default:
      return EIO;
  }
}

}  // namespace

unsigned long long ProcessNumber() noexcept { return ::GetCurrentProcessId(); }

std::FILE* CreateNewFile(const std::string& path, int& error) noexcept {
  // The run-time's fopen ignores the "x" mode, so the exclusive creation is done by _open.
  const int fd = ::_open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                         _S_IREAD | _S_IWRITE);
  if (fd < 0) {
    error = errno;
    return nullptr;
  }
  std::FILE* file = ::_fdopen(fd, "wb");
  if (file == nullptr) {
    error = errno;
    ::_close(fd);
    ::_unlink(path.c_str());  // created just now, by this call
    return nullptr;
  }
  error = 0;
  return file;
}

int SyncFile(std::FILE* file) noexcept { return ::_commit(::_fileno(file)) == 0 ? 0 : errno; }

int ReplaceTarget(const std::string& from, const std::string& to) noexcept {
  // Write-through: the call returns only once the move is on the disk.
  return ::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
             ? 0
             : ErrnoOf(::GetLastError());
}

void SyncFolderOf(const std::string&) noexcept {
  // Nothing to do: Windows cannot open a folder to flush it, and MOVEFILE_WRITE_THROUGH has
  // already made the rename durable before ReplaceTarget returned.
}

}  // namespace velquor::atomic_file_platform
