// The atomic-file seam against the real Win32 calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "scratch_folder.h"
#include "velquor/io/atomic_file.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

// A target another program holds open without sharing cannot be replaced: the failure is
// described as the run-time describes a refused access (not by the Win32 error's number read
// as an errno), the target keeps its content and no temporary file is left.
TEST(AtomicFileWindows, ATargetHeldOpenIsLeftWholeAndTheRefusalDescribed) {
  const test::ScratchFolder scratch;
  const fs::path target = scratch.folder_ / "report.csv";
  std::ofstream(target, std::ios::binary) << "old";
  const HANDLE holder = ::CreateFileA(target.string().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(holder, INVALID_HANDLE_VALUE);
  std::string error;
  EXPECT_FALSE(WriteFileAtomically(target.string(), "new", error));
  ::CloseHandle(holder);
  EXPECT_EQ(error, std::strerror(EACCES));
  EXPECT_EQ(ReadFile(target), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.folder_), fs::directory_iterator()), 1);
  EXPECT_TRUE(WriteFileAtomically(target.string(), "new", error)) << error;
  EXPECT_EQ(ReadFile(target), "new");
}

}  // namespace
}  // namespace velquor
