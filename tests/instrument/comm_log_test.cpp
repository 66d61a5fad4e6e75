#include "velquor/instrument/comm_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "scratch_folder.h"
#include "velquor/frame/message.h"
#include "velquor/instrument/log_file_platform.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::ReadFile;

std::int32_t Stored(std::string_view channel) {
  return GetRegistryInt(kDiagnosticsSection, channel, -9);
}

// A settings store and a log folder in a scratch folder of the test's own, the messages
// captured, the level cache forgotten.
class LogTest : public ::testing::Test, public test::ScratchFolder {
 protected:
  void SetUp() override {
    fs::create_directories(logFolder_ = folder_.string() + "/log/");
    logFile_ = logFolder_ + "PalDebug.txt";
    SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder_ / "registry", false));
    SetMessageSink([this](MessageKind, std::string_view text) { messages_.emplace_back(text); });
    ResetLogLevelCache();
  }
  void TearDown() override {
    SetTickSource(nullptr);
    SetMessageSink(nullptr);
  }
  // Stores both channels' level and the log folder, as a host's settings would hold them.
  void StoreLevels(std::int32_t level) {
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, level));
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, level));
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, logFolder_));
    ResetLogLevelCache();
  }
  // Runs `log` on an empty log file and returns what it wrote.
  std::string Fresh(const std::function<void()>& log) {
    fs::remove(logFile_);
    log();
    return ReadFile(logFile_);
  }

  std::string logFolder_, logFile_;
  std::vector<std::string> messages_;
};

TEST_F(LogTest, LevelDecidesWhereATextGoes) {
  LogSendToComm("R\r", 0);  // first use: nothing stored, so 0 is stored and nothing logged
  EXPECT_EQ(Stored(kColorSensorLevelName), 0);
  const struct {
    std::int32_t level;
    bool on, message, file;
  } cases[] = {{-2, true, false, false}, {0, false, false, false}, {1, true, true, false},
               {2, true, false, true},   {3, false, false, false}, {4, true, true, false},
               {5, true, false, true},   {6, true, false, false}};
  for (const auto& c : cases) {
    StoreLevels(c.level);
    messages_.clear();
    EXPECT_EQ(std::pair(IsGeneralLogOn(), IsColorSensorLogOn()), std::pair(c.on, c.on)) << c.level;
    EXPECT_EQ(Fresh([] { LogGeneral("a\nb\n\n"); }), c.file ? "a\r\nb\r\n\r\n" : "") << c.level;
    EXPECT_EQ(messages_.size(), c.message ? 1u : 0u) << c.level;
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 1));
    EXPECT_EQ(GetGeneralLogLevel(), c.level > 2 ? 1 : c.level);  // a cached level up to 2 is kept
  }
}

// Texts are appended with each line feed made CR LF, and dropped when another writer holds the
// file; the folder is prefixed without a separator, and a folder that does not exist, or an
// empty one, falls back to ".".
TEST_F(LogTest, AppendsWithCrLfToTheFolderPrefixedFileName) {
  StoreLevels(2);
  LogGeneral("a\r\n");
  const LogFileHandle other = OpenLogFileExclusive(logFile_, false);
  EXPECT_EQ(OpenLogFileExclusive(logFile_, true), kNoLogFile);
  LogGeneral("dropped\n");
  CloseLogFile(other);
  LogGeneral("b");
  EXPECT_EQ(ReadFile(logFile_), "a\r\r\nb");
  const fs::path previous = fs::current_path();
  fs::current_path(folder_);
  for (const std::string& folder : {folder_.string() + "/log", "/no/such/folder/"s, ""s}) {
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, folder));
    LogGeneral("y");
  }
  fs::current_path(previous);
  EXPECT_EQ(ReadFile(folder_ / "logPalDebug.txt"), "y");
  EXPECT_EQ(ReadFile(folder_ / ".PalDebug.txt"), "yy");
}

// A file of exactly the limit is kept; one byte more is deleted, and logging stops.
TEST_F(LogTest, OversizedFileIsDeletedAndLoggingStops) {
  StoreLevels(2);
  std::ofstream(logFile_) << std::string(kMaxLogFileSize, 'x');
  LogGeneral("k");
  EXPECT_EQ(fs::file_size(logFile_), kMaxLogFileSize + 1);
  EXPECT_THROW(LogColorSensor("lost\n"), LogFileError);
  EXPECT_FALSE(fs::exists(logFile_));
  EXPECT_EQ(messages_, std::vector<std::string>{logFile_ + " deleted"});
  EXPECT_EQ(Stored(kGeneralLevelName) + Stored(kColorSensorLevelName), 0);
  ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 2));
  LogGeneral("after\n");  // the cached levels are 0, whatever the settings say
  EXPECT_EQ(GetColorSensorLogLevel(), 0);
  EXPECT_FALSE(fs::exists(logFile_));
}

TEST_F(LogTest, SendAndReceiveAreLoggedInTheirFormats) {
  std::string text = "\x1f\x80\xc0\xff\xa0 ~\0"s;  // control bytes as letters, blanks as carets
  MakePrintable(text);
  EXPECT_EQ(text, "\x7f\xe0^_\0^~`"s);
  StoreLevels(2);
  SetTickSource([] { return 1000u; });
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[] { LogSendToComm("\x1bP 1\r", -3); }, "SendToComm = |{P^1m|, nError = -3\r\n"},
      {[] { LogReceive("12.5\r\n7.25\r\n", 2000, 750, 0, "\r\n"); },
       "RcvBuff = Time(ms) 250, Allowed 2000, Sep |mj|, Return Error 0\r\n"
       "    Rcv Data  1 |12.5mj|\r\n    Rcv Data  2 |7.25mj|\r\n    Rcv Data  3 ||\r\n"},
      // A start after now shows as a negative time.
      {[] { LogReceive("A\rB\r", -1, 1005, 7, " "); },
       "RcvBuff = Time(ms) -5, Allowed -1, Sep |^|, Return Error 7\r\n"
       "    Rcv Data  1 |Am|\r\n    Rcv Data  2 |Bm|\r\n    Rcv Data  3 ||\r\n"},
      // 16 ticks to the wrap and 1000 after it; the data itself is not made printable.
      {[] { LogReceive("no end \x1b", 2000, 0xFFFFFFF0u, 0, ""); },
       "RcvBuff = Time(ms) 1016, Allowed 2000, Sep ||, Return Error 0\r\n"
       "    Rcv Data  1 |no end \x1b|\r\n"}};
  for (const auto& [call, file] : cases) EXPECT_EQ(Fresh(call), file);
}

// Cycling steps the stored level 0 -> 1 -> 2 -> 0 (a host's other levels onto 0..2) and shows
// the host's texts; the cache is not refreshed.
TEST_F(LogTest, CycleStepsTheStoredLevelAndShowsTheHostsTexts) {
  const std::vector<std::string> texts = {"Off.", "Messages.", "Log file:", "Restart."};
  EXPECT_EQ(GetColorSensorLogLevel(), 0);
  const std::tuple<std::int32_t, std::int32_t, std::string> steps[] = {
      {0, 1, "Messages.\n\nRestart."},
      {1, 2, "Log file:\n    /d/PalDebug.txt\n\nRestart."},
      {2, 0, "Off.\n\nRestart."},
      {5, 0, "Off.\n\nRestart."},
      {-5, 2, "Log file:\n    /d/PalDebug.txt\n\nRestart."}};
  for (const auto& [stored, level, message] : steps) {
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, stored));
    CycleColorSensorLog("/d/", texts);
    EXPECT_EQ(Stored(kColorSensorLevelName), level);
    EXPECT_EQ(messages_.back(), message);
  }
  EXPECT_EQ(GetRegistryString(kDiagnosticsSection, kLogFolderName, "."), "/d/");
  EXPECT_EQ(GetColorSensorLogLevel(), 0);
  ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, 4));
  CycleColorSensorLog("", std::vector<std::string>{"only"});  // too few texts
  EXPECT_EQ(messages_.back(), "\n    PalDebug.txt\n\n");
}

}  // namespace
}  // namespace velquor
