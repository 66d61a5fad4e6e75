// PLACEHOLDER so that the Windows build links while the Win32 atomic-file functions are
// written: every call fails. Delete this file when atomic_file_platform_windows.cpp is added.
#include "velquor/io/atomic_file_platform.h"

namespace velquor::atomic_file_platform {

unsigned long long ProcessNumber() noexcept { return 0; }
int SyncFile(std::FILE*) noexcept { return 1; }
int ReplaceFile(const std::string&, const std::string&) noexcept { return 1; }
void SyncFolderOf(const std::string&) noexcept {}

}  // namespace velquor::atomic_file_platform
