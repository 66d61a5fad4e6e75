#include "velquor/instrument/comm_log.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <utility>

#include "velquor/frame/message.h"
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

// Opens `fileName` for writing and takes an exclusive lock on it without waiting; -1 if either
// fails, or if the name no longer leads to the locked file (another writer deleted it between
// our open and our lock).
int OpenExclusive(const std::string& fileName, bool create) {
  const int flags = O_WRONLY | O_CLOEXEC | (create ? O_CREAT : 0);
  int fd;
  do {
    fd = ::open(fileName.c_str(), flags, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return -1;
  int locked;
  do {
    locked = ::flock(fd, LOCK_EX | LOCK_NB);
  } while (locked != 0 && errno == EINTR);
  struct stat opened;
  struct stat named;
  if (locked != 0 || ::fstat(fd, &opened) != 0 || ::stat(fileName.c_str(), &named) != 0 ||
      opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
    ::close(fd);
    return -1;
  }
  return fd;
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

void WriteToFile(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;  // best effort: a failed write loses the rest of the text
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void AppendToLogFile(std::string_view text) {
  const std::string folder =
      GetRegistryString(kDiagnosticsSection, kLogFolderName, kDefaultLogFolder);
  std::string fileName(::access(folder.c_str(), F_OK) == 0 ? std::string_view(folder)
                                                           : kDefaultLogFolder);
  fileName += kLogFileName;

  int fd = OpenExclusive(fileName, false);
  if (fd < 0) fd = OpenExclusive(fileName, true);
  if (fd < 0) return;

  struct stat info;
  if (::fstat(fd, &info) == 0 && static_cast<std::uint64_t>(info.st_size) > kMaxLogFileSize) {
    ShowMessage(MessageKind::kInformation, fileName + " deleted");
    if (::ftruncate(fd, 2) != 0) {
      // The file is deleted next anyway.
    }
    ::close(fd);
    ::unlink(fileName.c_str());
    SetRegistryInt(kDiagnosticsSection, kGeneralLevelName, 0);
    SetRegistryInt(kDiagnosticsSection, kColorSensorLevelName, 0);
    generalLevel.store(0, std::memory_order_relaxed);
    colorSensorLevel.store(0, std::memory_order_relaxed);
    throw LogFileError(fileName);
  }

  if (::lseek(fd, 0, SEEK_END) >= 0) WriteToFile(fd, WithLineEnds(text));
  ::close(fd);
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
