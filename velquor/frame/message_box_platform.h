// Where a message goes when no host sink is installed (message.h), one seam per platform:
// message_box_platform_posix.cpp writes it to standard error, message_box_platform_windows.cpp
// shows a message box unless the environment asks for standard error. message.cpp calls the
// platform only through this.
#pragma once

#include <string_view>

#include "velquor/frame/message.h"

namespace velquor::message_box_platform {

// Delivers `text` the platform's default way. Called with the message lock held, so
// deliveries do not interleave.
void ShowDefaultMessage(MessageKind kind, std::string_view text);

}  // namespace velquor::message_box_platform
