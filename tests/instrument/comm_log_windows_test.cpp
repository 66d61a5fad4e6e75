// The instrument log's file operations against the real Win32 and run-time calls.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "scratch_folder.h"
#include "velquor/frame/message.h"
#include "velquor/instrument/comm_log.h"
#include "velquor/instrument/log_file_platform.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

// A log folder written with backslashes only, the General channel logging to its file.
class WindowsLogTest : public ::testing::Test, public test::ScratchFolder {
 protected:
  void SetUp() override {
    fs::create_directories(folder_ / "log");
    logFolder_ = fs::path(folder_ / "log").make_preferred().string() + "\\";
    logFile_ = logFolder_ + "PalDebug.txt";
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder_ / "registry", false));
    SetMessageSink([](MessageKind, std::string_view) {});
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 2));
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, logFolder_));
    ResetLogLevelCache();
  }
  void TearDown() override { SetMessageSink(nullptr); }

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

// The folder's backslashes lead to the file. While the log holds its file, no other handle
// opens it, not even to read or to delete it. (A text logged while another writer holds the
// file is dropped: the portable log test checks that on every platform.)
TEST_F(WindowsLogTest, BackslashFolderAndAnOpenLogFileIsSharedWithNobody) {
  ASSERT_EQ(logFolder_.find('/'), std::string::npos);
  LogGeneral("first\n");
  EXPECT_EQ(ReadFile(logFile_), "first\r\n");
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
  EXPECT_EQ(length, 11u);
  CloseLogFile(held);
  EXPECT_EQ(ReadFile(logFile_), "first\r\nkept");
}

}  // namespace
}  // namespace velquor
