// PLACEHOLDER so that the Windows build links while the Win32 log-file functions are written:
// every call fails. Delete this file when log_file_platform_windows.cpp is added.
#include "velquor/instrument/log_file_platform.h"

namespace velquor {

bool LogPathExists(const std::string&) { return false; }
LogFileHandle OpenLogFileExclusive(const std::string&, bool) { return kNoLogFile; }
bool LogFileLength(LogFileHandle, std::uint64_t&) { return false; }
bool SetLogFileLength(LogFileHandle, std::uint64_t) { return false; }
void AppendToLogFileEnd(LogFileHandle, std::string_view) {}
void CloseLogFile(LogFileHandle) {}
void DeleteLogFile(const std::string&) {}

}  // namespace velquor
