// Files of a test's own: an empty scratch folder, removed with its content afterwards, and
// whole-file reads.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace velquor::test {

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// The folder's name is random, as test processes run side by side.
struct ScratchFolder {
  ScratchFolder() : folder_(std::filesystem::path(::testing::TempDir()) / UniqueName()) {
    std::filesystem::create_directories(folder_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  static std::string UniqueName() {
    std::random_device random;
    return "velquor_test_" + std::to_string(random()) + "_" + std::to_string(random());
  }
  const std::filesystem::path folder_;
};

}  // namespace velquor::test
