#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "velquor/data/ks_data.h"
#include "velquor/frame/message.h"
#include "velquor/frame/object.h"

namespace velquor {
namespace {

TEST(RuntimeClass, KnowsItsAncestryAndMakesObjectsByRecord) {
  const CKSData curve;
  EXPECT_STREQ(curve.GetRuntimeClass()->className, "CKSData");
  EXPECT_TRUE(curve.IsKindOf(&CValueArray::classCValueArray));
  EXPECT_TRUE(curve.IsKindOf(&CObject::classCObject));
  EXPECT_FALSE(curve.IsKindOf(&CEmptySpectrum::classCEmptySpectrum));

  std::unique_ptr<CObject> made(CEmptySpectrum::classCEmptySpectrum.CreateObject());
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->GetRuntimeClass(), &CEmptySpectrum::classCEmptySpectrum);
  EXPECT_EQ(CObject::classCObject.CreateObject(), nullptr);

  std::ostringstream dump;
  made->Dump(dump);
  EXPECT_EQ(dump.str().rfind("CEmptySpectrum with 40 elements: 1e-05", 0), 0u) << dump.str();
}

TEST(MessageSink, HostSinkReceivesMessagesUntilReplacedThenStandardError) {
  std::vector<std::pair<MessageKind, std::string>> seen;
  MessageSink previous = SetMessageSink(
      [&](MessageKind kind, std::string_view text) { seen.emplace_back(kind, std::string(text)); });
  ShowMessage(MessageKind::kWarning, "Log file is full");
  ShowMessage(MessageKind::kError, "");
  EXPECT_TRUE(static_cast<bool>(SetMessageSink(std::move(previous))));
  const std::vector<std::pair<MessageKind, std::string>> expected = {
      {MessageKind::kWarning, "Log file is full"}, {MessageKind::kError, ""}};
  EXPECT_EQ(seen, expected);

  SetMessageSink(nullptr);
  ::testing::internal::CaptureStderr();
  ShowMessage(MessageKind::kError, "Cannot open PalDebug.txt");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "velquor error: Cannot open PalDebug.txt\n");
  EXPECT_EQ(seen.size(), 2u);
}

}  // namespace
}  // namespace velquor
