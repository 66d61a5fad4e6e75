// A file settings store in a scratch folder of the test's own, installed for the test's life.
#pragma once

#include <filesystem>
#include <memory>

#include "scratch_folder.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor::test {

// The store flushes to disk unless a test of many writes turns that off (a flush can cost tens
// of milliseconds on a busy disk; locking and atomic replacement do not depend on it).
struct ScratchStore : ScratchFolder {
  explicit ScratchStore(bool flushToDisk = true, const char* below = "registry")
      : root_(folder_ / below) {
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(root_, flushToDisk));
  }
  ~ScratchStore() { SetSettingsBackend(nullptr); }
  std::filesystem::path Section() const { return root_ / "software/Palomerix/Quelmark/Diagnostics"; }
  std::filesystem::path Values() const { return Section() / ".values"; }

  const std::filesystem::path root_;
};

}  // namespace velquor::test
