#include "velquor/instrument/comm_log.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <utility>

#include "velquor/frame/message.h"
#include "velquor/instrument/log_file_platform.h"
#include "velquor/settings/registry_store.h"

namespace velquor {

namespace {

constexpr std::int32_t kUnreadLevel = -1;

std::atomic<std::int32_t> generalLevel{kUnreadLevel};
std::atomic<std::int32_t> colorSensorLevel{kUnreadLevel};

std::int32_t ReadLevel(std::atomic<std::int32_t>& cache, std::string_view name) {
  std::int32_t level = cache.load(std::memory_order_relaxed);
  if (level == kUnreadLevel || level > 2) {
    level = GetRegistryInt(kDiagnosticsSection, name, kUnreadLevel);
    if (level == kUnreadLevel) {
      level = 0;
      SetRegistryInt(kDiagnosticsSection, name, 0);
    }
    cache.store(level, std::memory_order_relaxed);
  }
  return level;
}

bool IsLevelOn(std::int32_t level) {
  return level > 2 ? level != 3 : level != 0;
}

// The text as it goes into the file: every line feed becomes CR LF.
std::string WithLineEnds(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8 + 2);
  while (!text.empty()) {
    const std::size_t lineFeed = text.find('\n');
    if (lineFeed == std::string_view::npos) {
      out += text;
      break;
    }
    out += text.substr(0, lineFeed);
    out += "\r\n";
    text.remove_prefix(lineFeed + 1);
  }
  return out;
}

void AppendToLogFile(std::string_view text) {
  const std::string folder =
      GetRegistryString(kDiagnosticsSection, kLogFolderName, kDefaultLogFolder);
  std::string fileName(LogPathExists(folder) ? std::string_view(folder) : kDefaultLogFolder);
  fileName += kLogFileName;

  LogFileHandle file = OpenLogFileExclusive(fileName, false);
  if (file == kNoLogFile) file = OpenLogFileExclusive(fileName, true);
  if (file == kNoLogFile) return;

  std::uint64_t length = 0;
  if (LogFileLength(file, length) && length > kMaxLogFileSize) {
    ShowMessage(MessageKind::kInformation, fileName + " deleted");
    SetLogFileLength(file, 2);  // the file is deleted next anyway
    CloseLogFile(file);
    DeleteLogFile(fileName);
    SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 0);
    SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, 0);
    generalLevel.store(0, std::memory_order_relaxed);
    colorSensorLevel.store(0, std::memory_order_relaxed);
    throw LogFileError(fileName);
  }

  AppendToLogFileEnd(file, WithLineEnds(text));
  CloseLogFile(file);
}

std::string FormatPrefix(const char* format, long first, long second) {
  char buffer[96];
  const int length = std::snprintf(buffer, sizeof buffer, format, first, second);
  return std::string(buffer, length > 0 ? static_cast<std::size_t>(length) : 0);
}

std::string RcvDataLine(int lineNumber, std::string_view data, std::string_view lineEnd) {
  char number[16];
  const int length = std::snprintf(number, sizeof number, "%2d", lineNumber);
  std::string line = "    Rcv Data ";
  line.append(number, length > 0 ? static_cast<std::size_t>(length) : 0);
  line += " |";
  line += data;
  line += lineEnd;
  line += "|\n";
  return line;
}

std::mutex& TickMutex() {
  static std::mutex mutex;
  return mutex;
}

TickSource& InstalledTickSource() {
  static TickSource source;
  return source;
}

}  // namespace

LogFileError::LogFileError(const std::string& fileName)
    : std::runtime_error("cannot position the closed log file " + fileName), fileName_(fileName) {}

std::int32_t GetGeneralLogLevel() {
  return ReadLevel(generalLevel, kGeneralLevelName);
}

std::int32_t GetColorSensorLogLevel() {
  return ReadLevel(colorSensorLevel, kColorSensorLevelName);
}

bool IsGeneralLogOn() {
  return IsLevelOn(GetGeneralLogLevel());
}

bool IsColorSensorLogOn() {
  return IsLevelOn(GetColorSensorLogLevel());
}

void ResetLogLevelCache() {
  generalLevel.store(kUnreadLevel, std::memory_order_relaxed);
  colorSensorLevel.store(kUnreadLevel, std::memory_order_relaxed);
}

void LogGeneral(std::string_view text) {
  WriteDiagLog(GetGeneralLogLevel(), text);
}

void LogColorSensor(std::string_view text) {
  WriteDiagLog(GetColorSensorLogLevel(), text);
}

void WriteDiagLog(std::int32_t level, std::string_view text) {
  if (level == 1 || level == 4) {
    ShowMessage(MessageKind::kInformation, text);
  } else if (level == 2 || level == 5) {
    AppendToLogFile(text);
  }
}

void MakePrintable(std::string& text) {
  for (char& c : text) {
    if (static_cast<signed char>(c) < 32) c = static_cast<char>(static_cast<unsigned char>(c) + 96);
    if (c == ' ') c = '^';
  }
}

void LogSendToComm(std::string_view command, int nError) {
  if (!IsColorSensorLogOn()) return;
  std::string printable(command);
  MakePrintable(printable);
  LogColorSensor("SendToComm = |" + printable + "|, nError = " + std::to_string(nError) + "\n");
}

void LogReceive(std::string_view buffer, std::int32_t allowedMs, std::uint32_t startTick,
                int returnError, std::string_view separator) {
  if (!IsColorSensorLogOn()) return;
  const auto elapsed = static_cast<std::int32_t>(TickCount() - startTick);
  std::string printable(separator);
  MakePrintable(printable);
  LogColorSensor(FormatPrefix("RcvBuff = Time(ms) %ld, Allowed %ld, Sep |", elapsed, allowedMs) +
                 printable + "|, Return Error " + std::to_string(returnError) + "\n");

  int lineNumber = 1;
  std::string_view rest = buffer;
  for (std::size_t cr = rest.find('\r'); cr != std::string_view::npos; cr = rest.find('\r')) {
    if (cr + 1 < rest.size() && rest[cr + 1] == '\n') {
      LogColorSensor(RcvDataLine(lineNumber, rest.substr(0, cr), "mj"));
      rest.remove_prefix(cr + 2);
    } else {
      LogColorSensor(RcvDataLine(lineNumber, rest.substr(0, cr), "m"));
      rest.remove_prefix(cr + 1);
    }
    ++lineNumber;
  }
  LogColorSensor(RcvDataLine(lineNumber, rest, ""));
}

void CycleColorSensorLog(std::string_view folder, std::span<const std::string> messages) {
  const std::int64_t stored = GetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, -1);
  // Modulo 3 taken into 0..2, so that a negative level a host stored still names a message.
  const auto level = static_cast<std::int32_t>(((stored + 1) % 3 + 3) % 3);
  SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, level);

  const auto messageText = [&](std::size_t index) {
    return index < messages.size() ? messages[index] : std::string();
  };
  std::string message = messageText(static_cast<std::size_t>(level));
  if (level == 2) {
    SetRegistryString(kDiagnosticsSection, kLogFolderName, folder);
    message += "\n    ";
    message += folder;
    message += kLogFileName;
  }
  message += "\n\n";
  message += messageText(3);
  ShowMessage(MessageKind::kInformation, message);
}

std::uint32_t TickCount() {
  {
    std::lock_guard lock(TickMutex());
    if (InstalledTickSource()) return InstalledTickSource()();
  }
  const auto since = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

TickSource SetTickSource(TickSource source) {
  std::lock_guard lock(TickMutex());
  return std::exchange(InstalledTickSource(), std::move(source));
}

}  // namespace velquor
