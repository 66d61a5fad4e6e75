// The default message delivery on Windows: a modal message box with an OK button, no owner
// window, the library's name as caption and the icon of the message's kind. Programs that run
// without a user at the screen (test programs, scripts driving the command-line tool) set the
// environment variable VELQUOR_MESSAGES to "stderr" and get a line on standard error instead,
// so that no box waits for a click that never comes.
#include "velquor/frame/message_box_platform.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace velquor::message_box_platform {

namespace {

UINT IconOf(MessageKind kind) {
  switch (kind) {
    case MessageKind::kInformation:
      return MB_ICONINFORMATION;
    case MessageKind::kWarning:
      return MB_ICONEXCLAMATION;
    case MessageKind::kError:
      return MB_ICONERROR;
  }
  return MB_ICONINFORMATION;
}

bool MessagesGoToStandardError() {
  // Read at every message, so that a program may change its mind while running.
  const char* setting = std::getenv(kMessagesVariable);
  return setting != nullptr && ::_stricmp(setting, "stderr") == 0;
}

}  // namespace

void ShowDefaultMessage(MessageKind kind, std::string_view text) {
  if (MessagesGoToStandardError()) {
    WriteMessageToStandardError(kind, text);
    return;
  }
  const std::string caption(kMessageCaption);
  const std::string body(text);  // MessageBoxA takes a terminated text
  ::MessageBoxA(nullptr, body.c_str(), caption.c_str(), MB_OK | IconOf(kind));
}

}  // namespace velquor::message_box_platform
