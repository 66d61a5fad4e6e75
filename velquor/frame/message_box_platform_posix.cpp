// The default message delivery off Windows: a line on standard error.
#include "velquor/frame/message_box_platform.h"

namespace velquor::message_box_platform {

void ShowDefaultMessage(MessageKind kind, std::string_view text) {
  WriteMessageToStandardError(kind, text);
}

}  // namespace velquor::message_box_platform
