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
  EXPECT_TRUE(curve.IsKindOf(&CObject::classCObject));
  EXPECT_FALSE(curve.IsKindOf(&CEmptySpectrum::classCEmptySpectrum));
  std::unique_ptr<CObject> made(CEmptySpectrum::classCEmptySpectrum.CreateObject());
  EXPECT_EQ(CObject::classCObject.CreateObject(), nullptr);
  std::ostringstream dump;
  made->Dump(dump);
  EXPECT_EQ(dump.str().rfind("CEmptySpectrum with 40 elements: 1e-05", 0), 0u) << dump.str();
}

// A host sink receives messages until replaced; without one they go to standard error.
TEST(MessageSink, HostSinkThenStandardError) {
  std::vector<std::pair<MessageKind, std::string>> seen;
  SetMessageSink([&](MessageKind kind, std::string_view text) { seen.emplace_back(kind, text); });
  ShowMessage(MessageKind::kWarning, "Log file is full");
  EXPECT_TRUE(static_cast<bool>(SetMessageSink(nullptr)));
  ::testing::internal::CaptureStderr();
  ShowMessage(MessageKind::kError, "Cannot open PalDebug.txt");
  ShowMessage(MessageKind::kInformation, "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "velquor error: Cannot open PalDebug.txt\nvelquor information: \n");
  EXPECT_EQ(seen, (std::vector<std::pair<MessageKind, std::string>>{
                      {MessageKind::kWarning, "Log file is full"}}));
}

}  // namespace
}  // namespace velquor
