#include "velquor/instrument/comm_log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "velquor/frame/message.h"
#include "velquor/instrument/log_file_platform.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"

namespace velquor {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::int32_t Stored(std::string_view channel) {
  return GetRegistryInt(kDiagnosticsSection, channel, -9);
}

// A settings store and a log folder in a fresh temporary folder, the messages captured, the
// level cache forgotten before and after each test.
class LogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = ::testing::TempDir() + "velquor_log_XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    fs::create_directory(logFolder_ = pattern + "/log/");
    logFile_ = logFolder_ + "PalDebug.txt";
    previousBackend_ =
        SetSettingsBackend(std::make_shared<FileSettingsBackend>(folder_ / "registry", false));
    previousSink_ = SetMessageSink([this](MessageKind kind, std::string_view text) {
      EXPECT_EQ(kind, MessageKind::kInformation);
      messages_.emplace_back(text);
    });
    ResetLogLevelCache();
  }
  void TearDown() override {
    ResetLogLevelCache();
    SetTickSource(nullptr);
    SetMessageSink(previousSink_);
    SetSettingsBackend(previousBackend_);
    fs::remove_all(folder_);
  }
  // Stores a channel's level and the log folder, as a host's settings would hold them.
  void StoreLevel(std::string_view channel, std::int32_t level) {
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, channel, level));
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, logFolder_));
    ResetLogLevelCache();
  }
  std::string Log() const { return ReadFile(logFile_); }
  // Runs `log` on an empty log file and returns what it wrote.
  template <typename Call>
  std::string Fresh(Call log) {
    fs::remove(logFile_);
    log();
    return Log();
  }

  fs::path folder_;
  std::string logFolder_, logFile_;
  std::vector<std::string> messages_;
  std::shared_ptr<SettingsBackend> previousBackend_;
  MessageSink previousSink_;
};

TEST_F(LogTest, LevelDecidesWhereATextGoes) {
  LogGeneral("hello\n");  // first use: nothing stored, so 0 is stored and nothing logged
  LogSendToComm("R\r", 0);
  EXPECT_EQ(Stored(kGeneralLevelName), 0);
  EXPECT_EQ(Stored(kColorSensorLevelName), 0);
  EXPECT_TRUE(messages_.empty());
  EXPECT_FALSE(fs::exists(logFile_));
  const struct {
    std::int32_t level;
    bool on, message, file;
  } cases[] = {{-2, true, false, false}, {0, false, false, false}, {1, true, true, false},
               {2, true, false, true},   {3, false, false, false}, {4, true, true, false},
               {5, true, false, true},   {6, true, false, false}};
  for (const auto& c : cases) {
    StoreLevel(kGeneralLevelName, c.level);
    StoreLevel(kColorSensorLevelName, c.level);
    messages_.clear();
    EXPECT_EQ(IsGeneralLogOn(), c.on) << c.level;
    EXPECT_EQ(IsColorSensorLogOn(), c.on) << c.level;
    EXPECT_EQ(Fresh([] { LogGeneral("text"); }), c.file ? "text" : "") << c.level;
    EXPECT_EQ(messages_.size(), c.message ? 1u : 0u) << c.level;
  }
  // A cached level up to 2 is kept; above 2 it is read again at every call.
  for (const std::int32_t cached : {2, 3}) {
    StoreLevel(kGeneralLevelName, cached);
    EXPECT_EQ(GetGeneralLogLevel(), cached);
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 1));
    EXPECT_EQ(GetGeneralLogLevel(), cached == 2 ? 2 : 1);
  }
}

TEST_F(LogTest, LineFeedsBecomeCrLfAndTheFolderIsPrefixedWithoutSeparator) {
  StoreLevel(kGeneralLevelName, 2);
  const std::pair<const char*, const char*> cases[] = {{"a\nb\n", "a\r\nb\r\n"},
                                                       {"a\nb", "a\r\nb"},
                                                       {"", ""},
                                                       {"\n\n", "\r\n\r\n"},
                                                       {"a\r\n", "a\r\r\n"}};
  for (const auto& [text, file] : cases) {
    EXPECT_EQ(Fresh([text = text] { LogGeneral(text); }), file) << text;
  }
  LogGeneral("more\n");  // appended
  EXPECT_EQ(Log(), "a\r\r\nmore\r\n");

  ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, folder_.string() + "/log"));
  LogGeneral("x");
  EXPECT_TRUE(fs::exists(folder_ / "logPalDebug.txt"));
  // A folder that does not exist, or an empty one, falls back to "." plus the name.
  const fs::path previous = fs::current_path();
  fs::current_path(folder_);
  for (const char* missing : {"/no/such/folder/", ""}) {
    ASSERT_TRUE(SetRegistryString(kDiagnosticsSection, kLogFolderName, missing));
    LogGeneral("y");
  }
  fs::current_path(previous);
  EXPECT_EQ(ReadFile(folder_ / ".PalDebug.txt"), "yy");
}

TEST_F(LogTest, FileOfExactlyTheLimitIsKeptOneByteMoreIsDeleted) {
  StoreLevel(kColorSensorLevelName, 2);
  StoreLevel(kGeneralLevelName, 2);
  std::ofstream(logFile_) << std::string(kMaxLogFileSize, 'x');
  LogGeneral("k");
  EXPECT_EQ(fs::file_size(logFile_), kMaxLogFileSize + 1);
  EXPECT_TRUE(messages_.empty());

  EXPECT_THROW(LogColorSensor("lost\n"), LogFileError);
  EXPECT_FALSE(fs::exists(logFile_));
  EXPECT_EQ(messages_, std::vector<std::string>{logFile_ + " deleted"});
  EXPECT_EQ(Stored(kGeneralLevelName), 0);
  EXPECT_EQ(Stored(kColorSensorLevelName), 0);
  // Both cached levels are 0 now, whatever the settings say: logging has stopped.
  ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 2));
  LogGeneral("after\n");
  EXPECT_EQ(GetColorSensorLogLevel(), 0);
  EXPECT_FALSE(fs::exists(logFile_));
}

TEST(MakePrintable, ShowsControlBytesAsLettersAndBlanksAsCarets) {
  const std::pair<std::string, std::string> cases[] = {{"R 1\r\n\x1b", "R^1mj{"},
                                                       {std::string(1, '\0'), "`"},
                                                       {"\x1f", "\x7f"},
                                                       {"\x80\x9f", "\xe0\xff"},
                                                       {"\xa0", std::string(1, '\0')},
                                                       {"\xc0", "^"},
                                                       {"\xff", "_"}};
  for (auto [text, printable] : cases) {
    MakePrintable(text);
    EXPECT_EQ(text, printable);
  }
}

TEST_F(LogTest, SendAndReceiveAreLoggedInTheirFormats) {
  StoreLevel(kColorSensorLevelName, 2);
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
       "    Rcv Data  1 |no end \x1b|\r\n"},
  };
  for (const auto& [call, file] : cases) EXPECT_EQ(Fresh(call), file);
  const std::string tenLines = Fresh([] { LogReceive("\r\r\r\r\r\r\r\r\r", 5, 1000, 7, "\r"); });
  EXPECT_NE(tenLines.find("    Rcv Data  9 |m|\r\n    Rcv Data 10 ||\r\n"), std::string::npos);

  StoreLevel(kColorSensorLevelName, 1);  // each line is a write of its own: one message each
  LogReceive("1\r\n2", 0, 1000, 0, "");
  EXPECT_EQ(messages_.size(), 3u);
}

TEST_F(LogTest, CycleStepsTheStoredLevelAndShowsTheHostsTexts) {
  const std::vector<std::string> texts = {"Off.", "Messages.", "Log file:", "Restart."};
  EXPECT_EQ(GetColorSensorLogLevel(), 0);  // caches 0
  const std::pair<std::int32_t, std::string> steps[] = {
      {1, "Messages.\n\nRestart."},
      {2, "Log file:\n    /d/PalDebug.txt\n\nRestart."},
      {0, "Off.\n\nRestart."}};
  for (const auto& [level, message] : steps) {
    messages_.clear();
    CycleColorSensorLog("/d/", texts);
    EXPECT_EQ(Stored(kColorSensorLevelName), level);
    EXPECT_EQ(messages_, std::vector<std::string>{message});
  }
  EXPECT_EQ(GetRegistryString(kDiagnosticsSection, kLogFolderName, "."), "/d/");
  EXPECT_EQ(GetColorSensorLogLevel(), 0);  // the cache is not refreshed by cycling

  // Levels stored by a host, and too few texts.
  const std::pair<std::int32_t, std::int32_t> others[] = {{5, 0}, {4, 2}, {-5, 2}};
  for (const auto& [stored, next] : others) {
    ASSERT_TRUE(SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, stored));
    CycleColorSensorLog("", std::vector<std::string>{"only"});
    EXPECT_EQ(Stored(kColorSensorLevelName), next);
    EXPECT_EQ(messages_.back(), next == 0 ? "only\n\n" : "\n    PalDebug.txt\n\n");
  }
}

TEST_F(LogTest, WritersFindingTheFileTakenDropTheirTextAndNeverMixLines) {
  StoreLevel(kGeneralLevelName, 2);
  LogGeneral("first\n");
  const LogFileHandle other = OpenLogFileExclusive(logFile_, false);  // another writer's
  ASSERT_NE(other, kNoLogFile);
  EXPECT_EQ(OpenLogFileExclusive(logFile_, true), kNoLogFile);
  LogGeneral("dropped\n");
  CloseLogFile(other);
  LogGeneral("second\n");
  EXPECT_EQ(Log(), "first\r\nsecond\r\n");

  // Four threads of 200 lines each: every line kept is whole, from one writer, at most once;
  // the dropped ones are simply absent.
  fs::remove(logFile_);
  const auto line = [](int writer, int i) {
    return std::to_string(writer) + " " + std::to_string(i) + std::string(40, '.');
  };
  std::vector<std::thread> threads;
  for (int writer = 0; writer < 4; ++writer) {
    threads.emplace_back([&line, writer] {
      for (int i = 0; i < 200; ++i) LogGeneral(line(writer, i) + "\n");
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::string log = Log();
  std::set<std::string> seen;
  for (std::size_t start = 0, end; start < log.size(); start = end + 2) {
    end = log.find("\r\n", start);
    ASSERT_NE(end, std::string::npos);
    const std::string text = log.substr(start, end - start);
    EXPECT_EQ(text, line(std::atoi(text.c_str()), std::atoi(text.c_str() + text.find(' '))));
    EXPECT_TRUE(seen.insert(text).second) << text;
  }
  EXPECT_FALSE(seen.empty());
}

}  // namespace
}  // namespace velquor
