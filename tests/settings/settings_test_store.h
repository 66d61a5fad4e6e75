// A file settings store in a scratch folder of the test's own, installed for the test's life.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor::test {

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// The store flushes to disk unless a test of many writes turns that off (a flush can cost tens
// of milliseconds on a busy disk; locking and atomic replacement do not depend on it). The
// folder's name is random, as test processes run side by side.
struct ScratchStore {
  explicit ScratchStore(bool flushToDisk = true, const char* below = "registry")
      : folder_(std::filesystem::path(::testing::TempDir()) / UniqueName()), root_(folder_ / below) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(root_, flushToDisk));
  }
  ~ScratchStore() {
    SetSettingsBackend(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  std::filesystem::path Section() const { return root_ / "software/Palomerix/Quelmark/Diagnostics"; }
  std::filesystem::path Values() const { return Section() / ".values"; }

  static std::string UniqueName() {
    std::random_device random;
    return "velquor_settings_" + std::to_string(random()) + "_" + std::to_string(random());
  }

  std::filesystem::path folder_, root_;
};

}  // namespace velquor::test
