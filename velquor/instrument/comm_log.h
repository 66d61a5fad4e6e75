// Diagnostic log of instrument communication.
//
// Host applications that drive colour instruments report here what they send and receive.
// Two channels, "General" (the host's own diagnostics) and "Color Sensor" (instrument
// traffic), each have a level stored in the settings store (velquor/settings/registry_store.h),
// section "Diagnostics":
//
//   level   channel on?   a text goes to
//   0       no            nowhere
//   1, 4    yes           an information message (velquor::ShowMessage)
//   2, 5    yes           the end of the log file
//   3       no            nowhere
//   other   yes           nowhere
//
// The library itself only produces 0, 1 and 2; 3 to 5 are honoured when a host stored them.
// The log file is the setting "PathInfo" (default ".", the folder including its trailing
// separator) with "PalDebug.txt" appended directly, without a separator: with the fallback "."
// the file is ".PalDebug.txt" in the current folder. This naming is the library's behaviour
// and is kept. Lines in the file end in CR LF.
//
// Every write opens the file exclusively (without waiting; see log_file_platform.h for how
// each platform holds it), appends and closes it again. A writer in
// another thread or process that finds the file taken (or finds it deleted between opening and
// locking it) drops its text; diagnostics are best effort. The cached levels are process-wide
// and take no lock (they are atomic, so concurrent use is well defined, but two threads may
// both read the setting).
//
// Texts are narrow (8-bit) strings and are written byte for byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velquor {

// Settings section and value names of the log.
inline constexpr std::string_view kDiagnosticsSection = "Diagnostics";
inline constexpr std::string_view kGeneralLevelName = "General";
inline constexpr std::string_view kColorSensorLevelName = "Color Sensor";
inline constexpr std::string_view kLogFolderName = "PathInfo";
// Folder used when "PathInfo" is absent or names no existing path.
inline constexpr std::string_view kDefaultLogFolder = ".";
// Name appended to the folder to form the log file's name.
inline constexpr std::string_view kLogFileName = "PalDebug.txt";
// A log file longer than this many bytes is deleted at the next write.
inline constexpr std::uint64_t kMaxLogFileSize = 1048576;

// Raised out of a write that has just deleted an oversized log file: the write goes on to
// position the file it has already closed, which fails, so the text of that call is lost and
// the failure leaves the call as a file error, as the platform's file layer reports it. The
// sequence is the library's behaviour and is kept; a host catches it as it catches other file
// errors.
class LogFileError : public std::runtime_error {
 public:
  explicit LogFileError(const std::string& fileName);
  const std::string& fileName() const { return fileName_; }

 private:
  std::string fileName_;
};

// The level of a channel. A cached level of -1 (not yet read) or above 2 is read again from
// the settings with default -1; -1 there becomes 0, which is written back. The result is
// cached.
std::int32_t GetGeneralLogLevel();
std::int32_t GetColorSensorLogLevel();
// Whether the channel's current level is on: any level but 0 and 3.
bool IsGeneralLogOn();
bool IsColorSensorLogOn();
// Forgets both cached levels (they become -1), so the next use reads the settings. For hosts
// that change the settings behind the library's back, and for tests.
void ResetLogLevelCache();

// WriteDiagLog(level of the channel, text).
void LogGeneral(std::string_view text);
void LogColorSensor(std::string_view text);

// Writes `text` as `level` says (see the table above). To the file: each line feed of the text
// ends a line, written as CR LF; text after the last line feed is written without a line end,
// and a text that ends in a line feed leaves no empty line behind it. Before writing, a file
// longer than kMaxLogFileSize is deleted: the message "<file name> deleted" is shown, the file
// is cut to 2 bytes, closed and deleted, both levels are set to 0 in the settings and in the
// cache (which stops all logging), and LogFileError is raised. A file that cannot be opened is
// skipped silently.
void WriteDiagLog(std::int32_t level, std::string_view text);

// Makes control characters and blanks visible, in place: a byte whose value taken as a signed
// char is below 32 becomes that value plus 96 modulo 256 (CR -> 'm', LF -> 'j', ESC -> '{');
// as the comparison is signed, bytes 128..255 are shifted by 96 as well (the library's
// behaviour, kept). Then a blank becomes '^'.
void MakePrintable(std::string& text);

// Logs "SendToComm = |<printable command>|, nError = <nError>\n" on the Color Sensor channel,
// if it is on.
void LogSendToComm(std::string_view command, int nError);

// Logs one receive operation on the Color Sensor channel, if it is on, as separate writes:
//   "RcvBuff = Time(ms) <elapsed>, Allowed <allowedMs>, Sep |<printable separator>|,
//    Return Error <returnError>\n" (one line), where elapsed = TickCount() - startTick modulo
//    2^32, printed as a signed 32-bit number;
//   then for each carriage return in `buffer` one line "    Rcv Data %2d |<text before it>mj|\n"
//   when a line feed follows it (and the line feed is consumed), else "... |<text>m|\n";
//   then always "    Rcv Data %2d |<the rest>|\n". Lines are numbered from 1; the received
//   text itself is not made printable.
void LogReceive(std::string_view buffer, std::int32_t allowedMs, std::uint32_t startTick,
                int returnError, std::string_view separator);

// Steps the Color Sensor level to (stored level, default -1, plus 1) modulo 3 and stores it;
// the cached level is not updated (it is refreshed only when it is -1 or above 2). Shows
// messages[new level], followed for level 2 by "\n    <folder>PalDebug.txt" (and `folder` is
// stored as "PathInfo"), then by "\n\n" and messages[3]. Texts missing from `messages` (fewer
// than four) count as empty.
void CycleColorSensorLog(std::string_view folder, std::span<const std::string> messages);

// The millisecond tick count the receive log measures with: by default a monotonic clock in
// milliseconds, truncated to 32 bits (it wraps after about 49.7 days).
using TickSource = std::function<std::uint32_t()>;
std::uint32_t TickCount();
// Installs `source` for the whole process and returns the previous one; an empty source
// restores the default.
TickSource SetTickSource(TickSource source);

}  // namespace velquor
