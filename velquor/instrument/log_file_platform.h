// The file operations of the instrument communication log (comm_log.h), one seam per platform:
// log_file_platform_posix.cpp implements them with POSIX calls, a _windows.cpp twin beside it
// with the Win32 file API. comm_log.cpp calls the platform only through these.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velquor {

// An open log file: a POSIX descriptor or a Win32 handle. kNoLogFile when none.
using LogFileHandle = std::intptr_t;
inline constexpr LogFileHandle kNoLogFile = -1;

// Whether anything (file or folder) exists at `path`.
bool LogPathExists(const std::string& path);

// Opens `fileName` for writing, creating it only with `create`, and holds it exclusively
// (without waiting): kNoLogFile if opening fails, if another writer holds it, or if the name
// no longer leads to the file opened (another writer deleted it in between).
LogFileHandle OpenLogFileExclusive(const std::string& fileName, bool create);

// The length of the open file in bytes; false if it cannot be read.
bool LogFileLength(LogFileHandle file, std::uint64_t& length);

// Sets the length of the open file; false on failure.
bool SetLogFileLength(LogFileHandle file, std::uint64_t length);

// Moves to the end of the open file and writes `bytes` there. Best effort: a failed move
// writes nothing, a failed write loses the rest.
void AppendToLogFileEnd(LogFileHandle file, std::string_view bytes);

// Closes the file (releasing it for other writers).
void CloseLogFile(LogFileHandle file);

// Deletes the file `fileName`; nothing is reported.
void DeleteLogFile(const std::string& fileName);

}  // namespace velquor
