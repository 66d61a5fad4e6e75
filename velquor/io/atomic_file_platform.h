// The operating-system calls behind AtomicFile (atomic_file.h), one small seam so that the
// portable code calls no platform directly: atomic_file_platform_posix.cpp implements it for
// POSIX systems, atomic_file_platform_windows.cpp for Windows. CMake compiles the one that
// matches the build platform. Failures are reported as errno values on both platforms, so the
// portable code describes them with std::strerror.
#pragma once

#include <cstdio>
#include <string>

namespace velquor::atomic_file_platform {

// A number that tells this process apart from others writing beside the same target (the
// process id), used in temporary names.
unsigned long long ProcessNumber() noexcept;

// Creates `path` for binary writing, failing with EEXIST if anything already exists there
// (never opening or truncating an existing file): the open file, or nullptr with the errno
// value in `error`.
std::FILE* CreateNewFile(const std::string& path, int& error) noexcept;

// Pushes the file's written data to the storage device: 0, or an errno value.
int SyncFile(std::FILE* file) noexcept;

// Renames `from` over `to`, replacing `to` in one step: 0, or an errno value.
int ReplaceTarget(const std::string& from, const std::string& to) noexcept;

// Makes a rename inside the folder that holds `path` durable by flushing the folder itself;
// best effort, failures are ignored (the rename already happened).
void SyncFolderOf(const std::string& path) noexcept;

}  // namespace velquor::atomic_file_platform
