#include "velquor/frame/message.h"

#include <cstdio>
#include <mutex>
#include <utility>

#include "velquor/frame/message_box_platform.h"

namespace velquor {

namespace {

std::mutex& SinkMutex() {
  static std::mutex mutex;
  return mutex;
}

MessageSink& CurrentSink() {
  static MessageSink sink;
  return sink;
}

}  // namespace

void WriteMessageToStandardError(MessageKind kind, std::string_view text) {
  std::fprintf(stderr, "%s %s: %.*s\n", kMessageCaption, MessageKindName(kind),
               static_cast<int>(text.size()), text.data());
}

const char* MessageKindName(MessageKind kind) {
  switch (kind) {
    case MessageKind::kInformation:
      return "information";
    case MessageKind::kWarning:
      return "warning";
    case MessageKind::kError:
      return "error";
  }
  return "message";
}

MessageSink SetMessageSink(MessageSink sink) {
  std::lock_guard lock(SinkMutex());
  return std::exchange(CurrentSink(), std::move(sink));
}

void ShowMessage(MessageKind kind, std::string_view text) {
  std::lock_guard lock(SinkMutex());
  if (CurrentSink()) {
    CurrentSink()(kind, text);
  } else {
    message_box_platform::ShowDefaultMessage(kind, text);
  }
}

}  // namespace velquor
