// Messages from the library to the user. They go to a host-supplied sink (a message box in a
// desktop host, a log line in a service); by default they are written to standard error.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace velquor {

enum class MessageKind { kInformation, kWarning, kError };

using MessageSink = std::function<void(MessageKind kind, std::string_view text)>;

// Installs `sink` for the whole process and returns the previous one. An empty sink restores
// the default (standard error).
MessageSink SetMessageSink(MessageSink sink);

// Delivers `text` to the current sink. Safe to call from several threads; deliveries do not
// interleave.
void ShowMessage(MessageKind kind, std::string_view text);

// Name of a kind as the default sink prints it ("information", "warning", "error").
const char* MessageKindName(MessageKind kind);

}  // namespace velquor
