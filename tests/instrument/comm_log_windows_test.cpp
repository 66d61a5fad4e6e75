// The instrument log's file operations against the real Win32 and run-time calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "velquor/frame/message.h"
#include "velquor/instrument/comm_log.h"
#include "velquor/instrument/log_file_platform.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// A log folder written with backslashes only, the General channel logging to its file.
class WindowsLogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::path(::testing::TempDir()) /
              ("velquor_winlog_"s + testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "log");
    logFolder_ = fs::path(folder_ / "log").make_preferred().string() + "\\";
    logFile_ = logFolder_ + "PalDebug.txt";
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder_ / "registry", false));
    SetMessageSink([](MessageKind, std::string_view) {});
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 2));
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, logFolder_));
    ResetLogLevelCache();
  }
  void TearDown() override {
    SetMessageSink(nullptr);
    fs::remove_all(folder_);
  }

  fs::path folder_;
  std::string logFolder_, logFile_;
};

TEST_F(WindowsLogTest, ExistenceSeesFoldersAndFilesButNotMissingPaths) {
  std::ofstream(folder_ / "file.txt") << "x";
  const std::string base = fs::path(folder_).make_preferred().string();
  const std::pair<std::string, bool> cases[] = {
      {base, true},           {logFolder_, true},  // with and without the trailing separator
      {base + "/log/", true}, {base + "\\file.txt", true},
      {base + "\\missing\\", false}, {base + "\\missing.txt", false}, {"", false}};
  for (const auto& [path, exists] : cases) EXPECT_EQ(LogPathExists(path), exists) << path;
}

// The folder's backslashes lead to the file; a text is dropped while another handle holds the
// file without sharing, and written again once it is closed.
TEST_F(WindowsLogTest, BackslashFolderAndAFileHeldByAnotherHandle) {
  ASSERT_NE(logFolder_.find('\\'), std::string::npos);
  ASSERT_EQ(logFolder_.find('/'), std::string::npos);
  LogGeneral("first\n");
  const HANDLE other = ::CreateFileA(logFile_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(other, INVALID_HANDLE_VALUE);
  EXPECT_EQ(OpenLogFileExclusive(logFile_, true), kNoLogFile);
  LogGeneral("dropped\n");
  ::CloseHandle(other);
  LogGeneral("last");
  EXPECT_EQ(ReadFile(logFile_), "first\r\nlast");
}

// While the log holds its file, no other handle opens it, not even to read or to delete it.
TEST_F(WindowsLogTest, AnOpenLogFileIsSharedWithNobody) {
  const LogFileHandle held = OpenLogFileExclusive(logFile_, true);
  ASSERT_NE(held, kNoLogFile);
  const HANDLE reader = ::CreateFileA(logFile_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  EXPECT_EQ(reader, INVALID_HANDLE_VALUE);
  EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  EXPECT_FALSE(::DeleteFileA(logFile_.c_str()));
  AppendToLogFileEnd(held, "kept");
  std::uint64_t length = 0;
  EXPECT_TRUE(LogFileLength(held, length));
  EXPECT_EQ(length, 4u);
  CloseLogFile(held);
  EXPECT_EQ(ReadFile(logFile_), "kept");
}

}  // namespace
}  // namespace velquor
