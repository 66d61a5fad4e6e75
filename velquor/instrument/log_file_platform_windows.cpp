// The log file operations with the Win32 file API. Exclusive holding is the share mode: the
// file is opened with no sharing at all, so any other open of it, by this process or another,
// fails with a sharing violation until the handle is closed. Nobody can delete or rename the
// file while it is open either, so the name always leads to the file opened (the check the
// POSIX twin needs after locking is not needed here).
#include "velquor/instrument/log_file_platform.h"

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>

namespace velquor {

namespace {

HANDLE Handle(LogFileHandle file) {
  return reinterpret_cast<HANDLE>(file);
}

}  // namespace

bool LogPathExists(const std::string& path) {
  // The run-time's existence test (mode 0), which sees folders as well as files.
  return ::_access(path.c_str(), 0) == 0;
}

LogFileHandle OpenLogFileExclusive(const std::string& fileName, bool create) {
  // FILE_READ_ATTRIBUTES beside the write access: GetFileSizeEx needs it.
  const HANDLE file = ::CreateFileA(fileName.c_str(), GENERIC_WRITE | FILE_READ_ATTRIBUTES, 0, nullptr,
                                    create ? OPEN_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return kNoLogFile;
  return reinterpret_cast<LogFileHandle>(file);
}

bool LogFileLength(LogFileHandle file, std::uint64_t& length) {
  LARGE_INTEGER size;
  if (!::GetFileSizeEx(Handle(file), &size)) return false;
  length = static_cast<std::uint64_t>(size.QuadPart);
  return true;
}

bool SetLogFileLength(LogFileHandle file, std::uint64_t length) {
  LARGE_INTEGER position;
  position.QuadPart = static_cast<LONGLONG>(length);
  return ::SetFilePointerEx(Handle(file), position, nullptr, FILE_BEGIN) && ::SetEndOfFile(Handle(file));
}

void AppendToLogFileEnd(LogFileHandle file, std::string_view bytes) {
  LARGE_INTEGER zero;
  zero.QuadPart = 0;
  if (!::SetFilePointerEx(Handle(file), zero, nullptr, FILE_END)) return;
  while (!bytes.empty()) {
    // WriteFile takes at most a DWORD's worth of bytes per call.
    const auto chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 0x40000000));
    DWORD written = 0;
    if (!::WriteFile(Handle(file), bytes.data(), chunk, &written, nullptr) || written == 0) return;
    bytes.remove_prefix(written);
  }
}

void CloseLogFile(LogFileHandle file) {
  ::CloseHandle(Handle(file));
}

void DeleteLogFile(const std::string& fileName) {
  ::DeleteFileA(fileName.c_str());
}

}  // namespace velquor
