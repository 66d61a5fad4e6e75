// Messages from the library to the user. They go to a host-supplied sink (a message box in a
// desktop host, a log line in a service). Without one they go to the platform's default: on
// Windows a message box (caption "velquor", an information, exclamation or error icon by the
// kind, an OK button); elsewhere, and on Windows when the environment variable
// VELQUOR_MESSAGES is "stderr" (in any case), a line "velquor <kind>: <text>" on standard
// error.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace velquor {

enum class MessageKind { kInformation, kWarning, kError };

using MessageSink = std::function<void(MessageKind kind, std::string_view text)>;

// The library's name, as message boxes show it in their caption and standard error lines begin.
inline constexpr const char* kMessageCaption = "velquor";
// The environment variable that sends the default messages to standard error on Windows.
inline constexpr const char* kMessagesVariable = "VELQUOR_MESSAGES";

// Installs `sink` for the whole process and returns the previous one. An empty sink restores
// the default.
MessageSink SetMessageSink(MessageSink sink);

// Delivers `text` to the current sink. Safe to call from several threads; deliveries do not
// interleave.
void ShowMessage(MessageKind kind, std::string_view text);

// Writes "velquor <kind name>: <text>" and a line feed to standard error: the default sink off
// Windows, and a sink a command-line program may install to keep messages out of boxes.
void WriteMessageToStandardError(MessageKind kind, std::string_view text);

// Name of a kind as standard error lines print it ("information", "warning", "error").
const char* MessageKindName(MessageKind kind);

}  // namespace velquor
