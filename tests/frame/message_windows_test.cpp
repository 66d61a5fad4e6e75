// The default message delivery on Windows: a message box, or standard error when the
// environment asks for it.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "velquor/frame/message.h"

namespace velquor {
namespace {

// Sets VELQUOR_MESSAGES for one test (an empty value removes it) and restores it afterwards.
class MessagesVariable {
 public:
  explicit MessagesVariable(const char* value) {
    if (const char* old = std::getenv(kMessagesVariable)) previous_ = old;
    ::_putenv_s(kMessagesVariable, value);
  }
  ~MessagesVariable() { ::_putenv_s(kMessagesVariable, previous_.c_str()); }

 private:
  std::string previous_;
};

// Presses OK on a message box as soon as it is shown, so that the test does not wait for a
// click on a desktop. (Without a display, as under wine in a terminal, no box opens at all.)
LRESULT CALLBACK PressOk(int code, WPARAM window, LPARAM data) {
  if (code == HCBT_ACTIVATE) ::PostMessageA(reinterpret_cast<HWND>(window), WM_COMMAND, IDOK, 0);
  return ::CallNextHookEx(nullptr, code, window, data);
}

TEST(DefaultMessages, GoToStandardErrorOnlyWhenTheEnvironmentSaysSo) {
  SetMessageSink(nullptr);
  const std::pair<const char*, bool> cases[] = {{"stderr", true}, {"STDERR", true}, {"", false},
                                                {"box", false},   {"stderr2", false}};
  for (const auto& [value, toStandardError] : cases) {
    MessagesVariable variable(value);
    const HHOOK hook = ::SetWindowsHookExA(WH_CBT, PressOk, nullptr, ::GetCurrentThreadId());
    ::testing::internal::CaptureStderr();
    ShowMessage(MessageKind::kWarning, "Your system clock exceeds the valid range");
    const std::string written = ::testing::internal::GetCapturedStderr();
    if (hook != nullptr) ::UnhookWindowsHookEx(hook);
    EXPECT_EQ(written, toStandardError ? "velquor warning: Your system clock exceeds the valid range\n" : "")
        << value;
  }
}

}  // namespace
}  // namespace velquor
