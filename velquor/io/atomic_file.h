// Writing a file so that readers see either the old content or the whole new content, never
// half of it: the bytes go to a temporary file beside the target (same folder, so the same
// file system), which is flushed to the disk and then renamed over the target. If anything
// fails, or the writer is destroyed before Commit, the temporary file is removed and the
// target is untouched. Nothing throws.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace velquor {

class AtomicFile {
 public:
  explicit AtomicFile(std::string path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Creates the temporary file. On failure returns false with the reason in `error`.
  bool Open(std::string& error) noexcept;
  // Appends `bytes`; false once any write has failed.
  bool Write(std::string_view bytes) noexcept;
  // Flushes, closes and renames the temporary file over the target. On failure the temporary
  // file is removed and the reason is in `error`.
  bool Commit(std::string& error) noexcept;
  // Removes the temporary file; the target keeps its old content (or stays absent).
  void Discard() noexcept;

  const std::string& TemporaryPath() const { return temporaryPath_; }

 private:
  std::string path_;
  std::string temporaryPath_;
  std::FILE* file_ = nullptr;
  bool failed_ = false;
  int writeError_ = 0;
};

// Writes `content` to `path` through an AtomicFile. On failure returns false with the system's
// reason in `error`.
bool WriteFileAtomically(const std::string& path, std::string_view content, std::string& error) noexcept;

}  // namespace velquor
