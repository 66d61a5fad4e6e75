#include "velquor/frame/message.h"

#include <cstdio>
#include <mutex>
#include <utility>

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

void WriteToStandardError(MessageKind kind, std::string_view text) {
  std::fprintf(stderr, "velquor %s: %.*s\n", MessageKindName(kind), static_cast<int>(text.size()),
               text.data());
}

}  // namespace

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
    WriteToStandardError(kind, text);
  }
}

}  // namespace velquor
