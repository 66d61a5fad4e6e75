// The atomic-file seam against the real Win32 calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "velquor/io/atomic_file.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

std::string Content(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// A target another program holds open without sharing cannot be replaced: the failure is
// described as the run-time describes a refused access (not by the Win32 error's number read
// as an errno), the target keeps its content and no temporary file is left.
TEST(AtomicFileWindows, ATargetHeldOpenIsLeftWholeAndTheRefusalDescribed) {
  const fs::path folder = fs::path(::testing::TempDir()) / "velquor_atomic_windows";
  fs::remove_all(folder);
  fs::create_directories(folder);
  const fs::path target = folder / "report.csv";
  std::ofstream(target, std::ios::binary) << "old";
  const HANDLE holder = ::CreateFileA(target.string().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(holder, INVALID_HANDLE_VALUE);
  std::string error;
  EXPECT_FALSE(WriteFileAtomically(target.string(), "new", error));
  ::CloseHandle(holder);
  EXPECT_EQ(error, std::strerror(EACCES));
  EXPECT_EQ(Content(target), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
  EXPECT_TRUE(WriteFileAtomically(target.string(), "new", error)) << error;
  EXPECT_EQ(Content(target), "new");
  fs::remove_all(folder);
}

}  // namespace
}  // namespace velquor
